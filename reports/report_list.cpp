#include "reports/report_list.h"

#include "platform/database/Connection.h"
#include "reports/report_statements.h"

#include <algorithm>
#include <charconv>

namespace selfreport {

std::vector<ListedReport> storedReports(Connection& connection)
{
    const Recordset rows = connection.query(reportListStatement);
    std::vector<ListedReport> reports;
    for (std::size_t row = 0; row < rows.rowCount(); ++row)
        reports.push_back({static_cast<std::int32_t>(rows.integer(row, "noid")), rows.text(row, "fname"),
                           rows.text(row, "fbilleridname"), rows.text(row, "fdate"),
                           rows.integer(row, "fisshow") == 1});
    return reports;
}

bool isReportStored(Connection& connection, std::int32_t id)
{
    return connection.query(countReportStatement(id)).integer(0, "fcount") > 0;
}

std::optional<std::int32_t> reportOfName(Connection& connection, const std::string& name)
{
    const Recordset rows = connection.query(reportOfNameStatement, {name});
    if (rows.isEmpty())
        return std::nullopt;
    return static_cast<std::int32_t>(rows.integer(0, "noid"));
}

std::vector<MenuReport> reportMenu(Connection& connection)
{
    constexpr std::string_view prefix = "RSelf";
    const Recordset rows = connection.query(reportMenuStatement);
    std::vector<MenuReport> menu;
    for (std::size_t row = 0; row < rows.rowCount(); ++row) {
        const std::string number = rows.text(row, "fnumber");
        std::int32_t id = 0;
        const char* const end = number.data() + number.size();
        if (number.starts_with(prefix) && std::from_chars(number.data() + prefix.size(), end, id).ptr == end)
            menu.push_back({id, rows.text(row, "fname")});
    }
    std::ranges::sort(menu, {}, &MenuReport::id);
    return menu;
}

} // namespace selfreport
