#include "fetch/coverage_calls.h"

#include "fetch/plain_arguments.h"
#include "fetch/ReportEvaluation.h"
#include "spreadsheet/files/content/content.h"
#include "spreadsheet/workbook/Workbook.h"

namespace selfreport {

std::optional<SheetCalls> acctCallsOf(const spreadsheet::Workbook& workbook, int sheet,
                                      DatabaseAccess& database)
{
    spreadsheet::Workbook copy;
    spreadsheet::loadContent(copy, spreadsheet::saveContent(workbook));
    ReportEvaluation evaluation(copy, database);
    evaluation.addSelfFunction();
    if (!evaluation.recalculate())
        return std::nullopt;
    SheetCalls found;
    evaluation.record().eachCall([&](const spreadsheet::SheetCell& place, const RecordedCall& call) {
        if (copy.sheetIndexOfId(place.sheetId) != sheet || call.function != "Acct")
            return;
        if (call.ledger)
            found.calls.push_back(
                {place.cell.column, place.cell.row, plainArguments(call.ledger->arguments)});
        else
            ++found.unusable;
    });
    return found;
}

} // namespace selfreport
