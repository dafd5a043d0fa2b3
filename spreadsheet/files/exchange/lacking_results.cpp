#include "spreadsheet/files/exchange/lacking_results.h"

#include "spreadsheet/calculation/Recalculation.h"
#include "spreadsheet/formula/FormulaPool.h"
#include "spreadsheet/values/case_fold.h"
#include "spreadsheet/workbook/Workbook.h"

#include <algorithm>
#include <vector>

namespace spreadsheet {

// A result that the file tells stays where the function is not known here, and whatever reads the cell must
// read it, too. So calls of such functions are declined by functions that stand in for them, which leaves
// their cell as it is. Cells that come to #NAME? or #REF! for other reasons are found by computing once; for
// a second time their formulas are set aside.

namespace {

/// What the file says that a formula shows.
struct ToldResult {
    CallPlace place;
    Value value;
};

/// Ascending by place.
using ToldResults = std::vector<ToldResult>;

template <typename Visit>
void eachResult(const Workbook& workbook, Visit visit)
{
    for (int sheet = 1; sheet <= workbook.sheetCount(); ++sheet) {
        const Sheet& cells = workbook.sheet(sheet);
        for (int column = 1; column <= cells.lastDataColumn(); ++column) {
            for (const Column::Slot& slot : cells.column(column)->slots()) {
                for (int i = 0; slot.block->formulas() && i < slot.block->count(); ++i) {
                    if (slot.block->formula(i) != 0)
                        visit(ToldResult{{sheet, column, slot.firstRow + i}, slot.block->value(i)});
                }
            }
        }
    }
}

/// Whether the file tells a result of the cell.
bool isTold(const ToldResults& told, CallPlace place)
{
    return std::ranges::binary_search(told, place, {}, &ToldResult::place);
}

/// Functions that whoever has the ledger computes: without a result they leave their cell empty.
bool asksLedger(std::string_view function)
{
    const std::string name = foldedName(function);
    return name == foldedName("Acct") || name == foldedName("REF_F");
}

/// Stand in for the functions that are not known, as long as they live.
class StandIns {
public:
    StandIns(Workbook& workbook, const ToldResults& told, bool leavesLedger)
        : m_customs(workbook.formulas().customs())
    {
        for (int number = 0; number < m_customs.size(); ++number) {
            if (!m_customs[number].handler)
                m_names.push_back(m_customs[number].name);
        }
        for (const std::string& name : m_names) {
            const bool staysEmpty = leavesLedger && asksLedger(name);
            m_customs.add(name, 0, [&told, staysEmpty](FunctionCall& call) {
                if (staysEmpty || isTold(told, call.place()))
                    call.decline();
                else
                    call.setResult(CellError::name);
            });
        }
    }
    ~StandIns()
    {
        for (const std::string& name : m_names)
            m_customs.add(name, 0, {});
    }
    StandIns(const StandIns&) = delete;
    StandIns& operator=(const StandIns&) = delete;

private:
    CustomFunctions& m_customs;
    std::vector<std::string> m_names;
};

Column::Place placeOf(Workbook& workbook, CallPlace place)
{
    return workbook.sheet(place.sheet).loadColumn(place.column).writable(place.row);
}

/// Told results whose formulas cannot be computed here.
ToldResults lost(const Workbook& workbook, const ToldResults& told)
{
    ToldResults results;
    for (const ToldResult& result : told) {
        const Value now = workbook.sheet(result.place.sheet).value({result.place.column, result.place.row});
        if ((now == Value(CellError::name) || now == Value(CellError::ref)) && !(now == result.value))
            results.push_back(result);
    }
    return results;
}

/// Computes the rest with these cells as constants. Those of array formulas only get their values back.
void computeBeside(Workbook& workbook, const ToldResults& kept)
{
    std::vector<std::uint32_t> formulas; // 0: of an array
    for (const ToldResult& result : kept) {
        const Column::Place place = placeOf(workbook, result.place);
        const std::uint32_t formula = place.block.formula(place.index);
        const bool isArray = workbook.formulas()[formula].isArrayFormula;
        formulas.push_back(isArray ? 0 : formula);
        if (!isArray) {
            place.block.setFormula(place.index, 0);
            place.block.setValue(place.index, result.value);
        }
    }
    workbook.recalculation().noteFormulas();
    workbook.recalculate();
    for (std::size_t i = 0; i < kept.size(); ++i) {
        const Column::Place place = placeOf(workbook, kept[i].place);
        if (formulas[i] != 0)
            place.block.setFormula(place.index, formulas[i]);
        else
            place.block.setValue(place.index, kept[i].value);
    }
    workbook.recalculation().noteFormulas();
}

} // namespace

void computeLackingResults(Workbook& workbook, bool fileAsks)
{
    const Value blank = Value::text("");
    bool isAny = false, lacksOne = fileAsks, showsOne = false;
    eachResult(workbook, [&](const ToldResult& result) {
        isAny = true;
        lacksOne = lacksOne || result.value.isEmpty();
        showsOne = showsOne || !(result.value.isEmpty() || result.value == blank);
    });
    if (!isAny || (!lacksOne && showsOne))
        return;
    ToldResults told;
    eachResult(workbook, [&](ToldResult result) {
        const bool isNothing = result.value.isEmpty() || (fileAsks && result.value == Value(0.0)) ||
                               (!showsOne && result.value == blank);
        if (!isNothing)
            told.push_back(std::move(result));
    });
    const StandIns standIns(workbook, told, !fileAsks);
    workbook.recalculate();
    if (const ToldResults kept = lost(workbook, told); !kept.empty())
        computeBeside(workbook, kept);
}

} // namespace spreadsheet
