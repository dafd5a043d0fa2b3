#pragma once

namespace selfreport {

/// Counts the instances of the public class that hosts hold: +1 for a new one, -1 for one that ends.
void countInstance(int change) noexcept;

/// No instance lives and the toolkit was not started, so nothing would run into code that is gone.
bool mayBeUnloaded() noexcept;

} // namespace selfreport
