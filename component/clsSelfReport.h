#pragma once
#include "component/export.h"

#include <cstdint>
#include <string>

namespace selfreport {

/// The one class through which a host drives the report module. Texts are UTF-8.
///
/// Every operation returns false: the result carries no information. Each belongs on the thread that runs the
/// host's windows; where the host has no toolkit of its own, that is the thread of the first call. No
/// exception leaves, and the C locale is as before after every call. All instances share one state, and may
/// end while a window is open.
///
/// While a window is open a timer of the host may call. What cannot be shown then changes nothing and leaves
/// an error: a window that is open already, any window while ours wait for an answer, and init. The list and
/// the designer may open over each other; the one below goes on with what it had.
class SELFREPORT_EXPORT clsSelfReport {
public:
    clsSelfReport() noexcept;
    /// Releases the shared connection object without closing it.
    ~clsSelfReport();
    clsSelfReport(const clsSelfReport&) = delete;
    clsSelfReport& operator=(const clsSelfReport&) = delete;

    /// Shows the designer until it is closed, on whatever the shared state holds: at first a new, empty
    /// report. Neither argument is consulted.
    bool editForm(const std::int16_t& intType, const std::int16_t* isShow = nullptr) noexcept;

    /// Keeps the connection string, the title of message boxes, the logged-in user's id and the application
    /// folder (no separator at its end). Opens nothing and checks nothing.
    bool init(const std::string& strConnString, const std::string& strTitle,
              const std::string& strLoginUserId, const std::string& strAppPath) noexcept;

    /// Shows the list of reports until it is closed.
    bool cwSelfReport() noexcept;

    /// Shows the stored report of this id for use until it is closed.
    bool cwSelfReportExe(const std::int32_t& intInterId) noexcept;

    /// Why the last operation of this instance could not be carried out (wrong thread, a window that is open,
    /// no display, another release of the toolkit in the host), one Chinese sentence; "" if it was.
    const std::string& lastError() const noexcept { return m_lastError; }

private:
    struct Call;
    template <class Work>
    void call(const Work& work) noexcept;

    std::string m_lastError;
    Call* m_calls = nullptr; ///< the innermost one under way
};

} // namespace selfreport
