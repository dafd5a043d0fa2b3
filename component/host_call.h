#pragma once
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>

namespace selfreport {

/// A call cannot be carried out in this host process; what() is one Chinese sentence.
struct HostError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// Runs what one call of the host asks for: refused on a wrong thread, exceptions trapped. The C locale is
/// left alone: while windows are open the host's own code runs too, under what it sets itself. Returns the
/// reason if it failed, else "".
std::string hostCall(const std::function<void()>& work) noexcept;

/// The file of a toolkit core library in this process other than ours. Two of them cannot share windows.
std::optional<std::string> foreignToolkit();

} // namespace selfreport
