#include "platform/database/sqlite/AcctProcedure.h"

#include "platform/database/sqlite/procedure_parameters.h"
#include "text/ascii.h"

namespace selfreport {

namespace {

std::optional<Recordset::Cell> firstCell(SqliteStatement& statement, bool asText)
{
    std::optional<Recordset::Cell> cell;
    if (statement.step() && !statement.isNull(0))
        cell = asText ? Recordset::Cell(statement.text(0)) : Recordset::Cell(statement.integer(0));
    statement.reset();
    return cell;
}

std::optional<std::int64_t> firstInteger(SqliteStatement& statement)
{
    const auto cell = firstCell(statement, false);
    return cell ? std::optional(std::get<std::int64_t>(*cell)) : std::nullopt;
}

} // namespace

AcctProcedure::AcctProcedure(const SqliteDatabase& database)
    : m_lookups(database, [](std::string_view text) { return std::string(text); })
    , m_fetches(database, [this](std::string_view text) {
        return acctSql(text.substr(text.find(' ')), m_placeholders); // the kind stands before the shape
    })
{
}

void AcctProcedure::forgetLatest()
{
    m_latestYear.reset();
    m_lastPeriods.clear();
}

/// Each account's latest year is the end of one run of its index, so no scan of the ledger is needed.
std::int64_t AcctProcedure::latestYear()
{
    if (!m_latestYear)
        m_latestYear =
            firstInteger(m_lookups.statement(
                             "select max((select max(fYear) from tblAccountBal where faccountid=b.fitemid "
                             "and fDetailId=0)) from tblAccount as b"))
                .value_or(0);
    return *m_latestYear;
}

std::int64_t AcctProcedure::lastPeriod(std::int64_t year)
{
    if (const auto known = m_lastPeriods.find(year); known != m_lastPeriods.end())
        return known->second;
    SqliteStatement& statement = m_lookups.statement(
        "select max((select max(fPeriod) from tblAccountBal where faccountid=b.fitemid and fDetailId=0 and "
        "fYear=?)) from tblAccount as b");
    const SqlValue value = year;
    statement.bind({&value, 1});
    return m_lastPeriods[year] = firstInteger(statement).value_or(1);
}

std::optional<AcctProcedure::Selection> AcctProcedure::selectionOf(const ProcedureCall& call)
{
    Selection selection;
    SqliteStatement& keys = m_lookups.statement("select fKey from tblSelfReportFieldKey where fKey=?");
    const SqlValue key = std::string(trimmedParameter(call, "strField"));
    keys.bind({&key, 1});
    const auto known = firstCell(keys, true);
    selection.kind = known ? acctKindOf(ascii::trimmed(std::get<std::string>(*known), " ")) : nullptr;
    if (!selection.kind)
        return std::nullopt;
    if (const std::string code(trimmedParameter(call, "currenct")); !code.empty()) {
        SqliteStatement& currencies = m_lookups.statement("select fitemid from tblCurrency where fnumber=?");
        const SqlValue bound = code;
        currencies.bind({&bound, 1});
        selection.currency = firstInteger(currencies);
        if (!selection.currency)
            return std::nullopt;
    }
    const auto year = wholeNumber(call, "fYear");
    const auto first = wholeNumber(call, "fPeriod1");
    const auto last = wholeNumber(call, "fPeriod2");
    selection.year = year ? *year : latestYear();
    selection.firstPeriod = first.value_or(1);
    selection.lastPeriod = last ? *last : lastPeriod(selection.year);
    return selection;
}

std::optional<std::string> AcctProcedure::finalSql(const ProcedureCall& call)
{
    const auto selection = selectionOf(call);
    if (!selection)
        return std::nullopt;
    return acctSql(parameter(call, "strSql"),
                   {.kind = selection->kind,
                    .currency = selection->currency ? std::to_string(*selection->currency) : "",
                    .year = std::to_string(selection->year),
                    .firstPeriod = std::to_string(selection->firstPeriod),
                    .lastPeriod = std::to_string(selection->lastPeriod)});
}

/// One statement serves all codes, years, periods and currencies of a kind and a form of the conditions. Its
/// parameters: the texts, then currency, year, first and last period, as far as the kind reads them.
SqliteStatement& AcctProcedure::statementFor(const Selection& selection, const LiftedSql& lifted)
{
    std::size_t count = lifted.texts.size();
    const auto next = [&] { return "?" + std::to_string(++count); };
    m_placeholders.kind = selection.kind;
    m_placeholders.currency = selection.currency ? next() : "";
    m_placeholders.year = next();
    m_placeholders.firstPeriod = selection.kind->periods == AcctPeriods::last ? "" : next();
    m_placeholders.lastPeriod = selection.kind->periods == AcctPeriods::first ? "" : next();
    std::string key(selection.kind->key);
    key += selection.currency ? "c " : " ";
    return m_fetches.statement(key += lifted.shape);
}

ProcedureResult AcctProcedure::run(const ProcedureCall& call)
{
    ProcedureResult result;
    const auto selection = selectionOf(call);
    result.returnValue = selection ? 1 : 0;
    if (!selection)
        return result;
    const LiftedSql lifted = liftTexts(parameter(call, "strSql"));
    SqliteStatement& statement = statementFor(*selection, lifted);
    std::vector<SqlValue> values(lifted.texts.begin(), lifted.texts.end());
    if (selection->currency)
        values.emplace_back(*selection->currency);
    values.emplace_back(selection->year);
    if (selection->kind->periods != AcctPeriods::last)
        values.emplace_back(selection->firstPeriod);
    if (selection->kind->periods != AcctPeriods::first)
        values.emplace_back(selection->lastPeriod);
    statement.bind(values);
    result.rows = statement.rows();
    return result;
}

std::optional<std::string> finalAcctSql(const SqliteDatabase& database, const ProcedureCall& call)
{
    return AcctProcedure(database).finalSql(call);
}

} // namespace selfreport
