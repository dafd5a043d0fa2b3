#include "catalogue/report_list.h"

#include "catalogue/report_statements.h"
#include "platform/database/Connection.h"

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

} // namespace selfreport
