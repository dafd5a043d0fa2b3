#include "fetch/inter_report_fetch.h"

#include "access/DatabaseAccess.h"
#include "access/driver_call.h"
#include "failures/failure_text.h"
#include "fetch/frmEditor1.h"
#include "fetch/ledger_query.h"
#include "fetch/quoted_text.h"
#include "fetch/referenced_place.h"
#include "platform/database/dialect/sql_text.h"
#include "spreadsheet/values/number_text.h"
#include "text/ascii.h"

#include <charconv>
#include <cmath>
#include <exception>

namespace selfreport {

namespace {

/// 1 to 26 for a letter of either case, 0 for any other character.
constexpr int letterNumber(char c)
{
    return ascii::isLetter(c) ? ascii::lower(c) - 'a' + 1 : 0;
}

std::optional<std::int64_t> rowOf(std::string_view digits)
{
    std::int64_t row = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), row);
    if (error != std::errc() || digits.empty())
        return std::nullopt;
    return row;
}

/// The sheet that a tab argument names; nothing if there is no such sheet.
std::optional<int> namedSheet(const spreadsheet::Workbook& workbook, std::string_view tab)
{
    const std::optional<double> number = spreadsheet::parseNumber(tab);
    const double index = number ? std::nearbyint(*number) : 0;
    if (index < 1 || index > workbook.sheetCount())
        return std::nullopt;
    return static_cast<int>(index);
}

/// Says why a cell hands over an error's name.
void explainError(ReferenceAnswer& answer, frmEditor1& hidden, const ReportReference& reference,
                  const spreadsheet::CallPlace& place)
{
    const spreadsheet::Value value = hidden.fps1.sheet(place.sheet).value({place.column, place.row});
    if (!value.isError() || answer.doubtful)
        return;
    answer.reason = "报表" + quoted(reference.report) + "的单元格" + reference.cell;
    if (value.error() == spreadsheet::CellError::name && hidden.readsReports(place)) {
        answer.reason += "本身要取别的报表的数，REF_F只取一层";
        answer.state = CallState::missing;
    } else {
        answer.reason += "是错误值" + std::string(spreadsheet::errorText(value.error()));
    }
}

} // namespace

ReferencedCell parseReferencedCell(std::string_view name)
{
    std::string letters;
    std::string digits;
    for (const char c : name)
        (ascii::isDigit(c) ? digits : letters) += c;
    ReferencedCell cell;
    cell.row = rowOf(digits);
    // A character beyond ASCII is several bytes long, and none of its bytes is a letter.
    const int first = letters.empty() ? 0 : letterNumber(letters[0]);
    const int second = letters.size() < 2 ? 0 : letterNumber(letters[1]);
    if (letters.size() == 1 && first > 0)
        cell.column = first;
    else if (letters.size() == 2 && first > 0 && second > 0)
        cell.column = first * 26 + second;
    else
        return cell;
    cell.columnIsNamed = true;
    return cell;
}

ReportProblem missingReport(std::string_view report)
{
    return {"没有名为" + quoted(report) + "的报表"};
}

ReportProblem unreadableReport(std::string_view report, const std::exception& error)
{
    return {"报表" + quoted(report) + "读不出：" + failures::sentenceOf(error), FetchOutcome::failed};
}

std::string reportByNameStatement(std::string_view report)
{
    return "select * from tblCWSelfReport where fname='" + sqlQuoted(report) + "'";
}

std::optional<std::vector<std::byte>> storedContent(Connection& connection, std::string_view report)
{
    const Recordset rows = connection.query(reportByNameStatement(report), BinaryColumns::fetched);
    if (rows.isEmpty())
        return std::nullopt;
    const std::span<const std::byte> bytes = rows.binary(0, "fFileContent");
    return std::vector<std::byte>(bytes.begin(), bytes.end());
}

std::optional<std::vector<std::byte>> fetchedContent(std::unique_ptr<Connection>& connection,
                                                     const std::string& report)
{
    return driverCall<std::optional<std::vector<std::byte>>>(
        connection, [report](Connection& open) { return storedContent(open, report); });
}

std::optional<spreadsheet::CallPlace> referencedPlace(const spreadsheet::Workbook& workbook,
                                                      const ReportReference& reference)
{
    const ReferencedCell cell = parseReferencedCell(reference.cell);
    const int index = namedSheet(workbook, reference.sheetTab).value_or(workbook.activeSheet());
    const spreadsheet::SheetSettings& settings = workbook.sheet(index).settings();
    if (!cell.row || *cell.row < 1 || *cell.row > settings.rowCount || cell.column > settings.columnCount)
        return std::nullopt;
    return spreadsheet::CallPlace{index, cell.column, static_cast<int>(*cell.row)};
}

ReferenceAnswer readReferencedCell(frmEditor1& hidden, const ReportReference& reference,
                                   const ReportProblem& problem, bool tellsKinds)
{
    const ReferencedCell cell = parseReferencedCell(reference.cell);
    ReferenceAnswer answer;
    answer.reason = problem.reason;
    answer.outcome = problem.outcome;
    if (!answer.reason.empty())
        answer.state = problem.outcome == FetchOutcome::failed ? CallState::failed : CallState::missing;
    const bool isSilent = answer.reason.empty();
    if (!cell.row) {
        if (isSilent)
            answer.reason = "单元格名称" + quoted(reference.cell) + "没有行号";
        answer.state = std::max(answer.state, CallState::missing);
        return answer;
    }
    const spreadsheet::Workbook& workbook = hidden.fps1;
    if (const auto place = referencedPlace(workbook, reference)) {
        answer.text = workbook.sheet(place->sheet).textByType({place->column, place->row});
        answer.doubtful = hidden.doubtfulBehind(*place, tellsKinds);
        answer.state = std::max(answer.state, hidden.plainStateOf(*place));
        if (isSilent)
            explainError(answer, hidden, reference, *place);
    }
    if (!isSilent)
        return answer;
    const bool named = namedSheet(workbook, reference.sheetTab).has_value();
    if (!cell.columnIsNamed)
        answer.reason = "单元格名称" + quoted(reference.cell) + "读不出列，按第1列取数";
    else if (!named && !reference.sheetTab.empty())
        answer.reason = "报表" + quoted(reference.report) + "没有第" + quoted(reference.sheetTab) + "个标签";
    else if (answer.reason.empty() && answer.text.empty())
        answer.reason = "报表" + quoted(reference.report) + "的单元格" + reference.cell + "为空";
    const bool isElsewhere = !cell.columnIsNamed || (!named && !reference.sheetTab.empty());
    if (isElsewhere)
        answer.state = std::max(answer.state, CallState::missing);
    return answer;
}

ReferenceAnswer fetchFromReport(DatabaseAccess& database, const ReportReference& reference)
{
    if (!database.open())
        return {{}, databaseNotOpen, {}, FetchOutcome::failed, CallState::failed};
    frmEditor1 hidden(database);
    ReportProblem problem;
    try {
        // The row set is gone before the report is loaded: the fetches of its cells close the connection.
        if (const auto content = fetchedContent(database.connection, reference.report))
            hidden.load(*content);
        else
            problem = missingReport(reference.report);
    } catch (const std::exception& error) {
        problem = unreadableReport(reference.report, error);
    }
    ReferenceAnswer answer = readReferencedCell(hidden, reference, problem);
    database.close();
    return answer;
}

} // namespace selfreport
