#include "platform/database/dialect/ledger_companion.h"

#include "platform/database/dialect/sql_text.h"
#include "platform/database/session/names.h"

#include <algorithm>
#include <map>
#include <string_view>

namespace selfreport {

namespace {

constexpr std::string_view ledgerProcedure = "sp_GS_AcctProc";
constexpr std::string_view companion = "sp_GS_SelfReportAmounts";
constexpr std::string_view marker = "self-report ledger procedure, version 2";
constexpr std::string_view handedText = "strSql";

/// The companion's tables, in the order of their columns. One that a stopped batch left is in the way.
constexpr std::string_view tables =
    "if object_id('tempdb..#selfReportText') is not null drop table #selfReportText "
    "if object_id('tempdb..#selfReportCall') is not null drop table #selfReportCall "
    "create table #selfReportText(id int,strSql varchar(2000) collate database_default) "
    "create table #selfReportCall(ordinal int,textId int,strField varchar(100) collate database_default,"
    "currenct varchar(50) collate database_default,fYear varchar(10) collate database_default,"
    "fPeriod1 varchar(10) collate database_default,fPeriod2 varchar(10) collate database_default)";
constexpr std::string_view callColumns[] = {"strField", "currenct", "fYear", "fPeriod1", "fPeriod2"};

std::string literal(std::string_view text)
{
    return "N'" + sqlQuoted(text) + "'";
}

bool isLedgerCall(const ProcedureCall& call)
{
    return sameName(call.procedure, ledgerProcedure) &&
           call.parameters.size() == std::size(callColumns) + 1 && call.value(handedText) &&
           std::ranges::all_of(callColumns, [&](std::string_view column) { return call.value(column); });
}

} // namespace

bool areForCompanion(std::span<const ProcedureCall> calls)
{
    return calls.size() >= fewestCallsTogether && std::ranges::all_of(calls, isLedgerCall);
}

std::string companionQuestion()
{
    const auto number = [](std::string_view name) { return "object_id('" + std::string(name) + "')"; };
    return "select " + number(ledgerProcedure) +
           " as f where 2=(select count(*) from sys.sql_modules where " + "object_id in (" +
           number(ledgerProcedure) + "," + number(companion) + ") and definition like '%" +
           std::string(marker) + "%')";
}

std::string companionBatch(std::span<const ProcedureCall> calls, const std::string& procedureNumber)
{
    std::map<std::string_view, std::size_t> texts; // each is sent once
    std::string textRows, callRows;
    for (std::size_t ordinal = 0; ordinal < calls.size(); ++ordinal) {
        const std::string& text = *calls[ordinal].value(handedText);
        const auto [known, isNew] = texts.try_emplace(text, texts.size());
        const std::string id = std::to_string(known->second);
        if (isNew)
            textRows += (textRows.empty() ? "(" : ",(") + id + "," + literal(text) + ")";
        callRows += (ordinal == 0 ? "(" : ",(") + std::to_string(ordinal) + "," + id;
        for (const std::string_view column : callColumns)
            callRows += "," + literal(*calls[ordinal].value(column));
        callRows += ")";
    }
    std::string batch(tables);
    batch.append(" insert into #selfReportText values").append(textRows);
    batch.append(" insert into #selfReportCall values").append(callRows);
    batch.append(" if object_id('").append(ledgerProcedure).append("')=").append(procedureNumber);
    batch.append(" exec ").append(companion);
    return batch.append(" drop table #selfReportText drop table #selfReportCall");
}

std::vector<std::optional<ProcedureResult>> companionAnswers(const Recordset& rows, std::size_t calls)
{
    std::vector<std::optional<ProcedureResult>> answers(calls);
    for (std::size_t row = 0; row < rows.rowCount(); ++row) {
        const auto ordinal = static_cast<std::size_t>(rows.integer(row, "callOrdinal"));
        if (ordinal >= calls)
            continue;
        ProcedureResult& answer = answers[ordinal].emplace();
        answer.returnValue = rows.integer(row, "callReturn");
        if (answer.returnValue != 1)
            continue;
        answer.rows.emplace(std::vector<std::string>{"f"});
        if (rows.integer(row, "n") > 0)
            answer.rows->appendRow({rows.text(row, "f")});
    }
    return answers;
}

} // namespace selfreport
