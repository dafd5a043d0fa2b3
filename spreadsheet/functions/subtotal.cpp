#include "spreadsheet/formula/FormulaPool.h"
#include "spreadsheet/functions/Call.h"
#include "spreadsheet/functions/FunctionTable.h"
#include "spreadsheet/functions/spread.h"
#include "spreadsheet/functions/sums.h"

#include <array>

namespace spreadsheet {

namespace {

constexpr int firstWithoutHidden = 101; ///< from this code on hidden rows do not count

/// Which formulas call SUBTOTAL themselves, whatever they do with it.
class OwnCalls {
public:
    explicit OwnCalls(const FormulaPool& formulas)
        : m_formulas(formulas)
        , m_function(findFunction("SUBTOTAL"))
    {
    }

    bool calls(std::uint32_t formula)
    {
        if (formula == 0)
            return false;
        if (formula != m_latest) { // cells filled down share one formula
            m_latest = formula;
            m_latestCalls = std::ranges::count(m_formulas[formula].functions, m_function) > 0;
        }
        return m_latestCalls;
    }

private:
    const FormulaPool& m_formulas;
    const FunctionDescriptor* m_function;
    std::uint32_t m_latest = 0;
    bool m_latestCalls = false;
};

/// Values of the cells that count.
struct Gathered {
    std::vector<double> numbers;
    std::size_t filled = 0;
    std::optional<CellError> error;
};

void gather(Call& call, const Area& area, bool withHidden, Gathered& gathered)
{
    const Workbook& workbook = call.place().workbook;
    const Sheet& sheet = workbook.sheet(area.sheet);
    const auto& hidden = sheet.settings().rows.hidden;
    OwnCalls subtotals(workbook.formulas());
    forEachStretch(workbook, area, [&](const CellStretch& stretch) {
        const Column::Slot* slot = sheet.column(stretch.column)->find(stretch.firstRow);
        const std::uint32_t* formulas = slot->block->formulas();
        if (formulas)
            formulas += stretch.firstRow - slot->firstRow;
        for (int i = 0; i < stretch.count; ++i) {
            const bool passed = (formulas && subtotals.calls(formulas[i])) ||
                                (!withHidden && hidden.contains(stretch.firstRow + i));
            if (passed || stretch.kinds[i] == ValueKind::empty)
                continue;
            ++gathered.filled;
            const Value value = stretch.value(i);
            if (const auto number = countedNumber(value))
                gathered.numbers.push_back(*number);
            else if (value.isError() && !gathered.error)
                gathered.error = value.error();
        }
    });
}

Operand averageOf(const std::vector<double>& numbers)
{
    if (numbers.empty())
        return CellError::div0;
    return checked(compensatedSum(numbers) / static_cast<double>(numbers.size()));
}

Operand productOf(const std::vector<double>& numbers)
{
    double product = numbers.empty() ? 0 : 1;
    for (const double number : numbers)
        product *= number;
    return checked(product);
}

Operand evaluated(int code, const Gathered& cells)
{
    const std::vector<double>& numbers = cells.numbers;
    if (code == 2)
        return static_cast<double>(numbers.size());
    if (code == 3)
        return static_cast<double>(cells.filled);
    if (cells.error)
        return *cells.error;
    switch (code) {
    case 1:
        return averageOf(numbers);
    case 4:
        return numbers.empty() ? 0.0 : std::ranges::max(numbers);
    case 5:
        return numbers.empty() ? 0.0 : std::ranges::min(numbers);
    case 6:
        return productOf(numbers);
    case 7:
    case 8:
        return deviation(numbers, code == 7);
    case 9:
        return checked(compensatedSum(numbers));
    default:
        return variance(numbers, code == 10);
    }
}

} // namespace

Operand subtotal(Call& call)
{
    const int code = call.integer(0);
    const bool withHidden = code < firstWithoutHidden;
    const int operation = withHidden ? code : code - firstWithoutHidden + 1;
    if (!call.failed() && (operation < 1 || operation > 11))
        return CellError::value;
    Gathered cells;
    for (std::size_t argument = 1; argument < call.count() && !call.failed(); ++argument) {
        if (!call[argument].isReference())
            return call[argument].isValue() && call[argument].value().isError() ? call[argument]
                                                                                : Operand(CellError::value);
        for (const Area& area : call[argument].areas())
            gather(call, area, withHidden, cells);
    }
    return call.failed() ? call.error() : evaluated(operation, cells);
}

} // namespace spreadsheet
