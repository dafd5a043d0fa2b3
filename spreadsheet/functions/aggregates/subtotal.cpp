#include "spreadsheet/formula/FormulaPool.h"
#include "spreadsheet/functions/aggregates/aggregates.h"
#include "spreadsheet/functions/aggregates/call_over_values.h"
#include "spreadsheet/functions/FunctionTable.h"

#include <array>

namespace spreadsheet {

namespace {

/// Which formulas call SUBTOTAL or AGGREGATE themselves, whatever they do with it.
class OwnCalls {
public:
    explicit OwnCalls(const FormulaPool& formulas)
        : m_formulas(formulas)
        , m_functions{findFunction("SUBTOTAL"), findFunction("AGGREGATE")}
    {
    }

    bool calls(std::uint32_t formula)
    {
        if (formula == 0)
            return false;
        if (formula != m_latest) { // cells filled down share one formula
            m_latest = formula;
            m_latestCalls = std::ranges::any_of(m_formulas[formula].functions, [this](const auto* called) {
                return called == m_functions[0] || called == m_functions[1];
            });
        }
        return m_latestCalls;
    }

private:
    const FormulaPool& m_formulas;
    std::array<const FunctionDescriptor*, 2> m_functions;
    std::uint32_t m_latest = 0;
    bool m_latestCalls = false;
};

/// What a summary passes over.
struct PassedOver {
    bool hiddenRows = false;
    bool errors = false;
    bool ownCalls = false;
};

/// Appends the filled cells of an area that count.
void gather(Call& call, const Area& area, const PassedOver& passed, std::vector<Value>& values)
{
    const Book& book = call.place().book;
    const BookSheet& sheet = book.sheet(area.sheet);
    const auto& hidden = sheet.settings.rows.hidden;
    OwnCalls own(book.formulas);
    forEachStretch(book, area, [&](const CellStretch& stretch) {
        const Column::Slot* slot = sheet.column(stretch.column)->find(stretch.firstRow);
        const std::uint32_t* formulas = passed.ownCalls ? slot->block->formulas() : nullptr;
        if (formulas)
            formulas += stretch.firstRow - slot->firstRow;
        for (int i = 0; i < stretch.count; ++i) {
            const ValueKind kind = stretch.kinds[i];
            if (kind == ValueKind::empty || (passed.errors && kind == ValueKind::error) ||
                (formulas && own.calls(formulas[i])) ||
                (passed.hiddenRows && hidden.contains(stretch.firstRow + i)))
                continue;
            values.push_back(stretch.value(i));
        }
    });
}

/// The same for arguments from `first` to before `end`, which must be references.
std::vector<Value> gatheredReferences(Call& call, std::size_t first, std::size_t end,
                                      const PassedOver& passed)
{
    std::vector<Value> values;
    for (std::size_t argument = first; argument < end && !call.failed(); ++argument) {
        if (!call[argument].isReference()) {
            const bool isError = call[argument].isValue() && call[argument].value().isError();
            call.fail(isError ? call[argument].value().error() : CellError::value);
        }
        for (const Area& area : call[argument].areas())
            gather(call, area, passed, values);
    }
    return values;
}

/// By function code from 1. The first eleven are those of SUBTOTAL; the last six take a rank.
constexpr std::array<std::string_view, 19> summaries{
    "AVERAGE",     "COUNT", "COUNTA", "MAX",  "MIN",   "PRODUCT", "STDEV",      "STDEVP",   "SUM",
    "VAR",         "VARP",  "MEDIAN", "MODE", "LARGE", "SMALL",   "PERCENTILE", "QUARTILE", "PERCENTILE.EXC",
    "QUARTILE.EXC"};
constexpr int subtotalCodes = 11;
constexpr int firstRanked = 14;
constexpr int firstWithoutHidden = 101; ///< SUBTOTAL: from this code on hidden rows do not count

/// AGGREGATE over an array: there are no rows that could be hidden.
std::vector<Value> arrayValues(Call& call, std::size_t argument, bool withoutErrors)
{
    std::vector<Value> values;
    call.eachValue(argument, [&](const Value& value) {
        if (!(withoutErrors && value.isError()))
            values.push_back(value);
    });
    return values;
}

} // namespace

Operand subtotal(Call& call)
{
    const int code = call.integer(0);
    const bool withHidden = code < firstWithoutHidden;
    const int operation = withHidden ? code : code - firstWithoutHidden + 1;
    if (!call.failed() && (operation < 1 || operation > subtotalCodes))
        return CellError::value;
    const std::vector<Value> values = gatheredReferences(
        call, 1, call.count(), {.hiddenRows = !withHidden, .errors = false, .ownCalls = true});
    if (call.failed())
        return call.error();
    return calledOver(call.place(), summaries[static_cast<std::size_t>(operation - 1)], values);
}

Operand aggregate(Call& call)
{
    const int code = call.integer(0);
    const int option = call.integer(1);
    if (call.failed())
        return call.error();
    const bool ranked = code >= firstRanked;
    if (code < 1 || code > static_cast<int>(summaries.size()) || option < 0 || option > 7 ||
        (ranked && call.count() != 4))
        return CellError::value;
    const PassedOver passed{.hiddenRows = option % 2 == 1, .errors = option % 4 >= 2, .ownCalls = option < 4};
    const std::size_t end = ranked ? 3 : call.count();
    const std::vector<Value> values = ranked && !call[2].isReference()
                                          ? arrayValues(call, 2, passed.errors)
                                          : gatheredReferences(call, 2, end, passed);
    if (call.failed())
        return call.error();
    const std::optional<Operand> rank = ranked ? std::optional<Operand>(call.value(3)) : std::nullopt;
    return calledOver(call.place(), summaries[static_cast<std::size_t>(code - 1)], values, rank);
}

} // namespace spreadsheet
