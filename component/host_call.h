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

/// Puts the C locale back as it was, whatever happens while it lives.
class LocaleKept {
public:
    LocaleKept();
    ~LocaleKept();
    LocaleKept(const LocaleKept&) = delete;
    LocaleKept& operator=(const LocaleKept&) = delete;

private:
    std::string m_former;
};

/// Runs what one call of the host asks for: refused on a wrong thread, C locale kept, exceptions trapped.
/// Returns the reason if it failed, else "".
std::string hostCall(const std::function<void()>& work) noexcept;

/// The file of a toolkit core library in this process other than ours. Two of them cannot share windows.
std::optional<std::string> foreignToolkit();

} // namespace selfreport
