#include "platform/database/odbc/procedure_batch.h"

#include "platform/database/dialect/sql_text.h"
#include "platform/database/session/names.h"

#include <utility>

namespace selfreport {

namespace {

constexpr const char* ordinalColumn = "callOrdinal";
constexpr const char* returnColumn = "callReturn";

} // namespace

std::string procedureBatch(std::span<const ProcedureCall> calls)
{
    // Row counts may come between the row sets: switching them off would last as long as the session.
    std::string batch = "declare @r int";
    for (std::size_t ordinal = 0; ordinal < calls.size(); ++ordinal) {
        const ProcedureCall& call = calls[ordinal];
        batch += " set @r=-1 exec @r=" + call.procedure;
        const char* separator = " @";
        for (const ProcedureParameter& parameter : call.parameters) {
            batch += separator + parameter.name + "=N'" + sqlQuoted(parameter.value) + "'";
            separator = ",@";
        }
        batch += " select " + std::to_string(ordinal) + " as " + ordinalColumn + ",@r as " + returnColumn;
    }
    return batch;
}

void BatchAnswers::add(Recordset rows)
{
    const bool isAnswer = rows.columnCount() == 2 && rows.rowCount() == 1 &&
                          sameName(rows.columnName(0), ordinalColumn) &&
                          sameName(rows.columnName(1), returnColumn);
    if (!isAnswer) {
        if (!m_pending) // a procedure's first row set counts
            m_pending = std::move(rows);
        return;
    }
    m_hasCome = true;
    const auto ordinal = static_cast<std::size_t>(rows.integer(0, std::size_t{0}));
    const bool answered = !std::exchange(m_hasFailed, false) && !rows.isNull(0, std::size_t{1}) &&
                          rows.integer(0, std::size_t{1}) != -1;
    if (ordinal < m_results.size() && answered) {
        ProcedureResult result;
        result.returnValue = rows.integer(0, std::size_t{1});
        result.rows = std::move(m_pending);
        m_results[ordinal] = std::move(result);
    }
    m_pending.reset();
}

} // namespace selfreport
