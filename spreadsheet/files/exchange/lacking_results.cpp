#include "spreadsheet/files/exchange/lacking_results.h"

#include "spreadsheet/workbook/Workbook.h"

#include <vector>

namespace spreadsheet {

namespace {

/// What the file says that a formula shows.
struct ToldResult {
    int sheet;
    CellAddress cell;
    Value value;
};

template <typename Visit>
void eachResult(const Workbook& workbook, Visit visit)
{
    for (int sheet = 1; sheet <= workbook.sheetCount(); ++sheet) {
        const Sheet& cells = workbook.sheet(sheet);
        for (int column = 1; column <= cells.lastDataColumn(); ++column) {
            for (const Column::Slot& slot : cells.column(column)->slots()) {
                for (int i = 0; slot.block->formulas() && i < slot.block->count(); ++i) {
                    if (slot.block->formula(i) != 0)
                        visit(ToldResult{sheet, {column, slot.firstRow + i}, slot.block->value(i)});
                }
            }
        }
    }
}

} // namespace

void computeLackingResults(Workbook& workbook, bool fileAsks)
{
    const Value blank = Value::text("");
    bool isAny = false, lacksOne = fileAsks, showsOne = false;
    eachResult(workbook, [&](const ToldResult& result) {
        isAny = true;
        lacksOne = lacksOne || result.value.isEmpty();
        showsOne = showsOne || !(result.value == blank);
    });
    if (!isAny || (!lacksOne && showsOne))
        return;
    std::vector<ToldResult> told;
    eachResult(workbook, [&](ToldResult result) { told.push_back(std::move(result)); });
    workbook.recalculate();
    for (const ToldResult& result : told) {
        Sheet& sheet = workbook.sheet(result.sheet);
        const Value now = sheet.value(result.cell);
        const bool isNothing = result.value.isEmpty() || result.value == Value(0.0);
        const bool isUnknown = now == Value(CellError::name) ? !isNothing || !fileAsks
                                                             : now == Value(CellError::ref) && !isNothing;
        if (!isUnknown)
            continue;
        const Column::Place place = sheet.loadColumn(result.cell.column).writable(result.cell.row);
        place.block.setValue(place.index, result.value);
    }
}

} // namespace spreadsheet
