#include "fetch/compound_statement.h"

#include "platform/database/Connection.h"

#include <algorithm>

namespace selfreport {

std::string compoundStatement(std::span<const std::string> questions)
{
    std::string sql;
    for (std::size_t at = 0; at < questions.size(); ++at)
        sql += (at > 0 ? " union all select " : "select ") + std::to_string(at) + " as fordinal," +
               questions[at];
    return sql;
}

void askTogether(
    Connection& connection, std::span<const std::string> questions,
    const std::function<void(std::size_t question, const Recordset& rows, std::size_t row)>& found)
{
    for (std::size_t first = 0; first < questions.size(); first += mostBranches) {
        const auto some = questions.subspan(first, std::min(mostBranches, questions.size() - first));
        const Recordset rows = connection.query(compoundStatement(some));
        for (std::size_t row = 0; row < rows.rowCount(); ++row)
            found(first + static_cast<std::size_t>(rows.integer(row, "fordinal")), rows, row);
    }
}

} // namespace selfreport
