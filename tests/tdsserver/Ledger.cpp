#include "tests/tdsserver/Ledger.h"

#include "platform/database/dialect/sql_tokens.h"
#include "platform/database/session/names.h"
#include "platform/database/sqlite/tsql_rewriter.h"
#include "tests/tdsserver/column_types.h"

#include <algorithm>
#include <sqlite3.h>
#include <utility>

namespace selfreport::tds {

namespace {

constexpr int stepsBetweenLooks = 1000; // of the database's machine

/// Numbers that the server gives to the failures that the embedded database words differently.
ServerError asServerError(const std::string& text)
{
    struct Known {
        const char* part;
        std::int32_t number;
    };
    static constexpr Known known[] = {
        {"no such table", 208}, {"no such column", 207},   {"already exists", 2714},
        {"UNIQUE", 2627},       {"CHECK constraint", 547}, {"NOT NULL", 515},
        {"syntax error", 102},  {"incomplete input", 102}, {"unrecognized token", 102},
    };
    for (const Known& one : known)
        if (text.find(one.part) != std::string::npos)
            return {one.number, text};
    return {50000, text};
}

/// The server's collation by the embedded database's name.
std::string withoutServerCollation(std::string_view sql)
{
    SqlEdits edits;
    for (const SqlToken& token : sqlTokens(sql))
        if (token.isName("Chinese_PRC_CI_AS"))
            edits.replace(token.begin, token.end(), "chinese");
    return edits.applied(sql);
}

/// The text columns of the file as a server's catalogue lists them, behind them the database's own collation.
std::string catalogueQuery(int codePage)
{
    const std::string page = std::to_string(codePage);
    return "select m.name as ftable,p.name as fcolumn,'varchar' as ftype,cast(substr(p.type,9) as integer) "
           "as "
           "fsize," +
           page +
           " as fpage from sqlite_schema as m join pragma_table_info(m.name) as p "
           "where m.type='table' and p.type like 'varchar(%' union all select '','','',0," +
           page;
}

SqlValue boundValue(const Value& value)
{
    if (const auto* blob = std::get_if<Blob>(&value))
        return std::as_bytes(std::span(blob->bytes));
    if (const auto* integer = std::get_if<std::int64_t>(&value))
        return *integer;
    if (const auto* number = std::get_if<double>(&value))
        return *number;
    if (const auto* text = std::get_if<std::string>(&value))
        return *text;
    return std::monostate();
}

/// Values in the order of the statement's own parameters, which it names.
std::vector<SqlValue> valuesByName(sqlite3_stmt* statement, std::span<const Parameter> parameters)
{
    std::vector<SqlValue> values;
    for (int place = 1; place <= sqlite3_bind_parameter_count(statement); ++place) {
        const char* const named = sqlite3_bind_parameter_name(statement, place);
        const std::string name = named ? named : "?";
        const auto found = std::ranges::find_if(
            parameters, [&](const Parameter& parameter) { return sameName(parameter.name, name); });
        if (found == parameters.end())
            throw ServerError{137, "必须声明标量变量 \"" + name + "\"。", true};
        values.push_back(boundValue(found->value));
    }
    return values;
}

ResultSet amountRows(const Recordset& rows)
{
    ResultSet result;
    constexpr TypeInfo sumOfDecimals{TypeToken::decimalN, 17, 38, 4};
    for (std::size_t column = 0; column < rows.columnCount(); ++column)
        result.columns.push_back({rows.columnName(column), sumOfDecimals});
    for (std::size_t row = 0; row < rows.rowCount(); ++row) {
        auto& values = result.rows.emplace_back();
        for (std::size_t column = 0; column < rows.columnCount(); ++column)
            values.push_back(rows.isNull(row, column) ? Value() : Value(rows.number(row, column)));
    }
    return result;
}

std::string textOf(const Value& value)
{
    if (const auto* text = std::get_if<std::string>(&value))
        return *text;
    if (const auto* integer = std::get_if<std::int64_t>(&value))
        return std::to_string(*integer);
    return {};
}

/// Parameters by name, or by their place in the procedure's head.
ProcedureCall boundCall(const std::string& procedure, std::span<const Parameter> parameters)
{
    static constexpr const char* head[] = {"strSql", "strField", "currenct", "fYear", "fPeriod1", "fPeriod2"};
    ProcedureCall call{procedure, {}};
    for (std::size_t at = 0; at < parameters.size(); ++at) {
        const std::string& name = parameters[at].name;
        if (name.empty() && at >= std::size(head))
            throw ServerError{8144, "为过程 " + procedure + " 指定了过多的参数。"};
        call.append(name.empty() ? head[at] : name.substr(1), 8000, textOf(parameters[at].value));
    }
    for (const char* const name : head)
        if (!call.value(name))
            throw ServerError{201, "过程 " + procedure + " 需要参数 '@" + name + "'，但未提供该参数。"};
    return call;
}

} // namespace

Ledger::Ledger(const std::string& file, std::function<bool()> wantsStop, const std::atomic<int>& codePage)
    : m_database(file)
    , m_procedure(m_database)
    , m_wantsStop(std::move(wantsStop))
    , m_codePage(codePage)
{
    const auto look = [](void* ledger) { return static_cast<Ledger*>(ledger)->m_wantsStop() ? 1 : 0; };
    sqlite3_progress_handler(m_database.handle(), stepsBetweenLooks, look, this);
}

Ledger::Outcome Ledger::run(std::string_view sql, std::span<const Parameter> parameters)
{
    try {
        beginIfWanted();
        const bool asksCatalogue = sql.find("INFORMATION_SCHEMA.COLUMNS") != std::string_view::npos;
        const std::string embedded =
            asksCatalogue ? catalogueQuery(m_codePage) : withoutServerCollation(toEmbeddedSql(sql));
        SqliteStatement statement = m_database.prepare(embedded);
        statement.bind(valuesByName(statement.handle(), parameters));
        Outcome outcome;
        ResultSet rows = typedRows(statement.handle());
        const int result = sqlite3_reset(statement.handle()); // repeats how the last step ended
        if (result == SQLITE_INTERRUPT)
            throw Interrupted();
        if (result != SQLITE_OK)
            throw asServerError(sqlite3_errmsg(m_database.handle()));
        if (!rows.columns.empty())
            outcome.rows = std::move(rows);
        else
            outcome.changed = sqlite3_changes64(m_database.handle());
        return outcome;
    } catch (const DatabaseError& error) {
        throw asServerError(error.description);
    }
}

Ledger::Called Ledger::call(const std::string& procedure, std::span<const Parameter> parameters)
{
    if (!sameName(procedure, AcctProcedure::name))
        throw ServerError{2812, "找不到存储过程 '" + procedure + "'。"};
    try {
        beginIfWanted();
        m_procedure.forgetLatest();
        const ProcedureResult result = m_procedure.run(boundCall(procedure, parameters));
        Called called{static_cast<std::int32_t>(result.returnValue), {}};
        if (result.rows)
            called.rows = amountRows(*result.rows);
        return called;
    } catch (const DatabaseError& error) {
        // A year that is no number ends the whole batch on the server too.
        const bool isConversion = error.description.find("不是整数") != std::string::npos;
        if (isConversion)
            throw ServerError{245, error.description, true};
        throw asServerError(error.description);
    }
}

bool Ledger::hasObject(const std::string& name)
{
    if (sameName(name, AcctProcedure::name))
        return true;
    const Parameter wanted{"@name", {}, name};
    const Outcome found =
        run("select 1 from sqlite_schema where name=@name collate nocase", std::span(&wanted, 1));
    return found.rows && !found.rows->rows.empty();
}

void Ledger::beginIfWanted()
{
    if (std::exchange(m_isBeginWanted, false))
        m_database.run("begin");
}

void Ledger::end(const char* how)
{
    m_isBeginWanted = false;
    try {
        if (sqlite3_get_autocommit(m_database.handle()) == 0)
            m_database.run(how);
    } catch (const DatabaseError& error) {
        throw asServerError(error.description);
    }
}

} // namespace selfreport::tds
