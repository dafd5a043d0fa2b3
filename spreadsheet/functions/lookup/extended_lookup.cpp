// XLOOKUP and XMATCH: lookups that search from either end and take the next smaller or larger value.
#include "spreadsheet/calculation/Call.h"
#include "spreadsheet/calculation/wildcards.h"
#include "spreadsheet/functions/function_families.h"
#include "spreadsheet/functions/lookup/line_search.h"

namespace spreadsheet {

namespace {

/// Numbers as they are handed over.
enum MatchMode { nextSmaller = -1, exact = 0, nextLarger = 1, wildcard = 2 };
enum SearchMode { descending = -2, fromLast = -1, fromFirst = 1, ascending = 2 };

struct Search {
    int match = exact;
    int search = fromFirst;
};

/// Reads both modes; the call fails with #VALUE! if there is no such mode.
Search readModes(Call& call, std::size_t first)
{
    Search modes;
    modes.match = call.given(first) ? call.integer(first) : exact;
    modes.search = call.given(first + 1) ? call.integer(first + 1) : fromFirst;
    if (modes.match < nextSmaller || modes.match > wildcard || modes.search < descending ||
        modes.search > ascending || modes.search == 0)
        call.fail(CellError::value);
    return modes;
}

bool isPlain(const Value& wanted)
{
    return !wanted.isEmpty() &&
           (!wanted.isText() || wanted.textView().find_first_of("*?~") == std::string_view::npos);
}

std::optional<int> matching(const Line& line, const WildcardPattern& pattern, bool backwards)
{
    for (int i = 0; i < line.size(); ++i) {
        const int place = backwards ? line.size() - 1 - i : i;
        const Value value = line.at(place);
        if (value.isText() && pattern.matches(value.textView()))
            return place;
    }
    return std::nullopt;
}

/// The first equal value in the direction of the search, else the one that comes next to it.
std::optional<int> nearest(const Line& line, const Value& wanted, int match, bool backwards)
{
    std::optional<int> best;
    Value bestValue;
    for (int i = 0; i < line.size(); ++i) {
        const int place = backwards ? line.size() - 1 - i : i;
        Value value = line.at(place);
        if (value.kind() != wanted.kind())
            continue;
        const int order = compareValues(value, wanted);
        if (order == 0)
            return place;
        const bool onSide = match == nextSmaller ? order < 0 : match == nextLarger && order > 0;
        if (onSide && (!best || (compareValues(value, bestValue) > 0) == (match == nextSmaller))) {
            if (best && compareValues(value, bestValue) == 0)
                continue;
            best = place;
            bestValue = std::move(value);
        }
    }
    return best;
}

std::optional<int> placeOf(const Line& line, const Value& wanted, const Search& modes)
{
    const bool backwards = modes.search == fromLast || modes.search == descending;
    if (modes.match == wildcard && wanted.isText())
        return matching(line, WildcardPattern(wanted.textView()), backwards);
    if (modes.match == exact && !backwards && isPlain(wanted))
        return line.equal(wanted);
    if (modes.match == nextSmaller && modes.search == ascending)
        return line.lastNotGreater(wanted);
    return nearest(line, wanted, modes.match, backwards);
}

/// The value to look for and the line to search it in; the call fails for an area of several rows and
/// columns.
std::optional<int> searched(Call& call, const Search& modes)
{
    const Value wanted = call.value(0);
    if (wanted.isError())
        call.fail(wanted.error());
    if (call[1].isValue() && call[1].value().isError())
        call.fail(call[1].value().error());
    if (call[1].isAreas() || call[1].isMissing() || (call.rows(1) > 1 && call.columns(1) > 1))
        call.fail(CellError::value);
    if (call.failed())
        return std::nullopt;
    return placeOf(Line::longerSide(call, 1), wanted, modes);
}

Operand extendedMatch(Call& call)
{
    const Search modes = readModes(call, 2);
    const auto place = searched(call, modes);
    if (call.failed())
        return call.error();
    return place ? Operand(*place + 1.0) : Operand(CellError::na);
}

/// The row (or column) of the third argument that stands at a place.
Operand lineAt(const Call& call, int place, bool down)
{
    if (call[2].isArea()) {
        Area line = call[2].area();
        if (down)
            line.cells.top = line.cells.bottom = line.cells.top + place;
        else
            line.cells.left = line.cells.right = line.cells.left + place;
        return line;
    }
    auto line = std::make_shared<Array>(down ? 1 : call.rows(2), down ? call.columns(2) : 1);
    for (int row = 0; row < line->rows(); ++row) {
        for (int column = 0; column < line->columns(); ++column)
            line->at(row, column) = call.element(2, down ? place : row, down ? column : place);
    }
    return std::shared_ptr<const Array>(std::move(line));
}

Operand extendedLookup(Call& call)
{
    const Search modes = readModes(call, 4);
    const auto place = searched(call, modes);
    if (call[2].isValue() && call[2].value().isError())
        call.fail(call[2].value().error());
    if (call.failed())
        return call.error();
    const bool down = call.columns(1) == 1;
    const bool fits = down ? call.rows(1) == call.rows(2) : call.columns(1) == call.columns(2);
    if (!fits || call[2].isAreas())
        return CellError::value;
    if (place)
        return lineAt(call, *place, down);
    return call.given(3) ? call[3] : Operand(CellError::na);
}

constexpr auto extendedLookupFamily = FunctionFamily::lookup;

const FunctionDescriptor extendedLookupTable[] = {
    {"XLOOKUP", 3, 6, "vaarvv", extendedLookupFamily,
     "查找值,查找数组,返回数组,[未找到时],[匹配模式],[搜索模式]",
     "在一行或一列中查找，返回另一区域中相同位置的值", extendedLookup},
    {"XMATCH", 2, 4, "vavv", extendedLookupFamily, "查找值,查找数组,[匹配模式],[搜索模式]",
     "返回查找值在一行或一列中的位置，可选匹配和搜索方式", extendedMatch},
};

} // namespace

std::span<const FunctionDescriptor> extendedLookupFunctions()
{
    return extendedLookupTable;
}

} // namespace spreadsheet
