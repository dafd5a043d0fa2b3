#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace selfreport {

class Connection;

/// One stored report, as the list shows it.
struct ListedReport {
    std::int32_t id = 0;
    std::string name;
    std::string savedBy; ///< user name; empty if the user is unknown
    std::string savedAt; ///< "2026-12-31 08:05:09"; empty if unknown
    bool isShown = false;

    /// The list's last column.
    const char* shownText() const { return isShown ? "显示" : "不显示"; }
};

/// All stored reports in the order of their ids. @throws DatabaseError
std::vector<ListedReport> storedReports(Connection& connection);

/// Whether a report stands under the id: another user may have deleted it since it was listed.
/// @throws DatabaseError
bool isReportStored(Connection& connection, std::int32_t id);

/// The first stored report of a name; nothing if there is none. @throws DatabaseError
std::optional<std::int32_t> reportOfName(Connection& connection, const std::string& name);

/// An entry of the suite's menu of stored reports.
struct MenuReport {
    std::int32_t id = 0;
    std::string name;
};

/// What stands in the suite's menu below its node of stored reports, in the order of the reports' ids.
/// @throws DatabaseError
std::vector<MenuReport> reportMenu(Connection& connection);

} // namespace selfreport
