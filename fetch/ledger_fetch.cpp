#include "fetch/ledger_fetch.h"

#include "access/DatabaseAccess.h"
#include "access/driver_call.h"
#include "failures/failure_text.h"
#include "fetch/numeric_prefix.h"
#include "platform/database/Connection.h"
#include "platform/database/dialect/sql_text.h"

#include <exception>
#include <map>

namespace selfreport {

// One fetch asks the ledger for many calls at once. The calls of a recalculation are collected, equal ones
// are asked once, and each gets its own figure or its own failure back: one bad account code must not cost
// the others their figures.

namespace {

using ItemTables = std::map<std::string, std::optional<std::string>, std::less<>>;

/// The statements' own condition on the class, one branch for each, so that a single round trip answers all.
std::string itemClassesStatement(std::span<const std::string> names)
{
    std::string sql;
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (i > 0)
            sql += " union all ";
        sql += "select " + std::to_string(i) + " as fordinal,fitemtable from tblItemClass where fItemname='" +
               sqlQuoted(names[i]) + "'";
    }
    return sql;
}

ItemTables itemTablesOf(Connection& connection, const std::vector<std::string>& names)
{
    constexpr std::size_t mostBranches = 100; // of one compound statement
    ItemTables tables;
    for (std::size_t first = 0; first < names.size(); first += mostBranches) {
        const auto some = std::span(names).subspan(first, std::min(mostBranches, names.size() - first));
        const Recordset rows = connection.query(itemClassesStatement(some));
        for (std::size_t row = 0; row < rows.rowCount(); ++row) {
            const auto ordinal = static_cast<std::size_t>(rows.integer(row, "fordinal"));
            tables.try_emplace(some[ordinal], plainTable(rows.text(row, "fitemtable")));
        }
    }
    return tables;
}

std::vector<std::string> classNamesOf(std::span<const AccountExpression> expressions)
{
    std::map<std::string, bool> names;
    for (const AccountExpression& expression : expressions)
        for (const ItemQualifier& qualifier : expression.qualifiers)
            names[qualifier.className] = true;
    std::vector<std::string> list;
    for (const auto& [name, isNamed] : names)
        list.push_back(name);
    return list;
}

/// One qualifier's lookup as a step that may fail: nothing is found then, and `failure` says why.
std::optional<std::string> itemTableIfFound(Connection& connection, const std::string& className,
                                            std::string& failure)
{
    try {
        return itemTableOf(connection, className);
    } catch (const std::exception& error) {
        failure = "项目类别“" + className + "”没有查到：" + failures::sentenceOf(error);
        return std::nullopt;
    }
}

void fillAnswer(LedgerAnswer& answer, const AccountExpression& expression,
                std::span<const std::optional<std::string>> itemTables)
{
    for (std::size_t i = 0; i < expression.qualifiers.size(); ++i)
        if (!itemTables[i])
            answer.unknownClasses.push_back(expression.qualifiers[i].className);
}

double rowAmount(const Recordset& rows, std::size_t row)
{
    try {
        return numericPrefix(rows.text(row, "f"));
    } catch (const std::exception&) {
        return 0;
    }
}

/// Why a row's amount cannot be read; empty if all can.
std::string unreadableRow(const Recordset& rows)
{
    try {
        for (std::size_t row = 0; row < rows.rowCount(); ++row)
            rows.text(row, "f");
        return {};
    } catch (const std::exception& error) {
        return "存储过程给出的金额读不出：" + failures::sentenceOf(error);
    }
}

void takeResult(LedgerAnswer& answer, const ProcedureResult& result)
{
    answer.amount = ledgerAmount(result);
    if (!result.error)
        answer.returnValue = result.returnValue;
    if (result.error)
        answer.failure = failures::sentenceOf(*result.error);
    else if (answer.amount)
        answer.failure = unreadableRow(*result.rows);
}

} // namespace

std::optional<std::string> plainTable(const std::string& table)
{
    if (isPlainIdentifier(trimmed(table)))
        return table;
    return std::nullopt;
}

std::optional<std::string> itemTableOf(Connection& connection, const std::string& className)
{
    const Recordset rows = connection.query(itemClassStatement(className));
    if (rows.isEmpty())
        return std::nullopt;
    return plainTable(rows.text(0, "fitemtable"));
}

ProcedureCall ledgerProcedureCall(const LedgerArguments& arguments, std::string sql)
{
    ProcedureCall call{"sp_GS_AcctProc", {}};
    call.append("strSql", 2000, std::move(sql))
        .append("strField", 100, arguments.fetchType)
        .append("currenct", 50, arguments.currency)
        .append("fYear", 10, std::string(trimmed(arguments.year)))
        .append("fPeriod1", 10, std::string(trimmed(arguments.firstPeriod)))
        .append("fPeriod2", 10, std::string(trimmed(arguments.lastPeriod)));
    return call;
}

std::optional<double> ledgerAmount(const ProcedureResult& result)
{
    if (result.error || result.returnValue != 1 || !result.rows || result.rows->isEmpty() ||
        result.rows->columnCount() == 0)
        return std::nullopt;
    double sum = 0;
    for (std::size_t row = 0; row < result.rows->rowCount(); ++row)
        sum += rowAmount(*result.rows, row);
    return sum;
}

LedgerAnswer fetchLedgerAlone(Connection& connection, const LedgerArguments& arguments)
{
    LedgerAnswer answer;
    std::string failedLookup;
    try {
        const AccountExpression expression = parseAccountExpression(arguments.account);
        std::vector<std::optional<std::string>> itemTables;
        for (const ItemQualifier& qualifier : expression.qualifiers)
            itemTables.push_back(itemTableIfFound(connection, qualifier.className, failedLookup));
        fillAnswer(answer, expression, itemTables);
        takeResult(answer,
                   connection.call(ledgerProcedureCall(arguments, ledgerQuery(expression, itemTables))));
    } catch (const std::exception& error) {
        answer.failure = failures::sentenceOf(error);
    }
    if (!failedLookup.empty())
        answer.failure = failedLookup;
    return answer;
}

LedgerAnswer fetchFromLedger(DatabaseAccess& database, const LedgerArguments& arguments)
{
    LedgerAnswer answer;
    if (!database.open())
        answer.failure = databaseNotOpen;
    if (!database.connection || arguments.account.empty())
        return answer;
    answer = driverCall<LedgerAnswer>(database.connection, [arguments](Connection& connection) {
        return fetchLedgerAlone(connection, arguments);
    });
    database.close();
    return answer;
}

std::vector<std::optional<LedgerAnswer>> fetchLedger(Connection& connection,
                                                     std::span<const LedgerArguments> fetches)
{
    std::vector<AccountExpression> expressions;
    for (const LedgerArguments& fetch : fetches)
        expressions.push_back(parseAccountExpression(fetch.account));
    std::vector<LedgerAnswer> answers(fetches.size());
    ItemTables known;
    try {
        known = itemTablesOf(connection, classNamesOf(expressions));
    } catch (const DatabaseError& error) {
        if (!error.isTimeOut)
            throw;
        for (LedgerAnswer& answer : answers) // each alone would be waited for as long
            answer.failure = failures::sentenceOf(error);
        return {answers.begin(), answers.end()};
    }

    std::vector<ProcedureCall> calls;
    for (std::size_t i = 0; i < fetches.size(); ++i) {
        std::vector<std::optional<std::string>> itemTables;
        for (const ItemQualifier& qualifier : expressions[i].qualifiers) {
            const auto found = known.find(qualifier.className);
            itemTables.push_back(found == known.end() ? std::nullopt : found->second);
        }
        fillAnswer(answers[i], expressions[i], itemTables);
        calls.push_back(ledgerProcedureCall(fetches[i], ledgerQuery(expressions[i], itemTables)));
    }

    const std::vector<ProcedureResult> results = connection.callProcedures(calls);
    std::vector<std::optional<LedgerAnswer>> succeeded(fetches.size());
    for (std::size_t i = 0; i < fetches.size(); ++i) {
        if (results[i].error && !results[i].error->isTimeOut)
            continue;
        takeResult(answers[i], results[i]);
        succeeded[i] = std::move(answers[i]);
    }
    return succeeded;
}

} // namespace selfreport
