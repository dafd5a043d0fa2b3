#pragma once

namespace selfreport {

/// Writes the descriptor of this library into the user's data folder; see selfreport_register.
/// @throws HostError if it cannot be written; a former one stays as it was
void registerLibrary();

/// Removes the descriptor. @throws HostError if it is there and cannot be removed
void unregisterLibrary();

} // namespace selfreport
