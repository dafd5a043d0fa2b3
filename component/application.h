#pragma once

namespace selfreport {

enum class Display {
    needed, ///< windows are to be shown
    none,   ///< only pages are laid out: no display is touched
};

/// Sees to it that the process has the toolkit's application object; one made here lives until the process
/// ends, since the toolkit cannot be started twice.
/// @throws HostError if the host has another toolkit or one without windows, or if there is no display
void startToolkit(Display display);

/// True from the first startToolkit that went well: code of this library may then not be unloaded any more.
bool toolkitStarted();

} // namespace selfreport
