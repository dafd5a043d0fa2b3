#include "fetch/fetch_types.h"

#include "platform/database/Connection.h"

namespace selfreport {

std::vector<FetchType> fetchTypes(Connection& connection)
{
    const Recordset rows = connection.query("select * from tblSelfReportFieldKey order by noid");
    std::vector<FetchType> types;
    for (std::size_t row = 0; row < rows.rowCount(); ++row)
        types.push_back({rows.text(row, "fKey"), rows.text(row, "fKeyName")});
    return types;
}

} // namespace selfreport
