// Functions that give arrays of other shapes: FILTER, SORT, UNIQUE, SEQUENCE and their kind. Written as
// array formulas they fill the range that they are given; elsewhere their first element counts.
#include "spreadsheet/calculation/Call.h"
#include "spreadsheet/calculation/operators.h"
#include "spreadsheet/functions/function_families.h"
#include "spreadsheet/functions/math/randomness.h"

#include <algorithm>
#include <numeric>
#include <random>

namespace spreadsheet {

// Most of these functions do the same to rows or to columns, as an argument says. They are written once, for
// lines, and work out which lines stand where before a single value is copied; results can be as large as
// the sheet, so every one pays for its elements before it makes them.

namespace {

using SharedArray = std::shared_ptr<const Array>;

/// The rows of an array, or its columns.
class Lines {
public:
    Lines(SharedArray array, bool columns)
        : m_array(std::move(array))
        , m_columns(columns)
    {
    }

    int count() const { return m_columns ? m_array->columns() : m_array->rows(); }
    int length() const { return m_columns ? m_array->rows() : m_array->columns(); }
    const Value& at(int line, int place) const
    {
        return m_columns ? m_array->at(place, line) : m_array->at(line, place);
    }
    /// An array of some of the lines, in that order.
    Operand picked(const std::vector<int>& lines) const
    {
        const auto size = static_cast<int>(lines.size());
        auto result = std::make_shared<Array>(m_columns ? length() : size, m_columns ? size : length());
        for (int i = 0; i < size; ++i) {
            for (int j = 0; j < length(); ++j)
                (m_columns ? result->at(j, i) : result->at(i, j)) = at(lines[static_cast<std::size_t>(i)], j);
        }
        return SharedArray(std::move(result));
    }

private:
    SharedArray m_array;
    bool m_columns;
};

/// The elements of an argument; the call fails with the error that stands in its place.
SharedArray elements(Call& call, std::size_t argument)
{
    if (call[argument].isValue() && call[argument].value().isError())
        call.fail(call[argument].value().error());
    SharedArray array = toArray(call[argument], call.place());
    call.pay(4.0 * array->rows() * array->columns()); // read from cells and compared
    return array;
}

std::vector<int> countedFrom0(int count)
{
    std::vector<int> numbers(static_cast<std::size_t>(count));
    std::iota(numbers.begin(), numbers.end(), 0);
    return numbers;
}

/// The lines of the first argument at whose places the second one is true.
Operand filtered(Call& call)
{
    const SharedArray array = elements(call, 0);
    const SharedArray condition = elements(call, 1);
    const bool byColumns = condition->rows() == 1 && condition->columns() == array->columns();
    if (!call.failed() && !byColumns && !(condition->columns() == 1 && condition->rows() == array->rows()))
        return CellError::value;
    const Lines lines(array, byColumns && condition->columns() > 1);
    std::vector<int> kept;
    for (int i = 0; i < lines.count() && !call.failed(); ++i) {
        const Value holds = toBoolean(condition->spread(i, i));
        if (holds.isError())
            call.fail(holds.error());
        else if (holds.boolean())
            kept.push_back(i);
    }
    if (call.failed())
        return call.error();
    if (!kept.empty())
        return lines.picked(kept);
    return call.given(2) ? call[2] : Operand(CellError::na);
}

/// What lines are sorted by: a value for each line, and the direction.
struct SortKey {
    std::vector<Value> values;
    bool descends = false;
};

/// Lines in order; none where the call may not pay for that.
std::vector<int> sortedLines(Call& call, int count, const std::vector<SortKey>& keys)
{
    constexpr double slower = 8; // than to make an element
    call.pay(slower * count * static_cast<double>(keys.size()));
    if (call.failed())
        return {};
    std::vector<int> order = countedFrom0(count);
    std::ranges::stable_sort(order, [&](int a, int b) {
        for (const SortKey& key : keys) {
            const int compared = compareSorted(key.values[static_cast<std::size_t>(a)],
                                               key.values[static_cast<std::size_t>(b)], key.descends);
            if (compared != 0)
                return compared < 0;
        }
        return false;
    });
    return order;
}

/// 1 ascending, -1 descending; the call fails with #VALUE! for anything else.
bool descends(Call& call, const Value& value)
{
    const Value number = toNumber(value);
    if (number.isError())
        call.fail(number.error());
    else if (std::trunc(number.number()) != 1 && std::trunc(number.number()) != -1)
        call.fail(CellError::value);
    return number.isNumber() && number.number() < 0;
}

/// SORT: by one or several of the array's own lines.
Operand sorted(Call& call)
{
    const SharedArray array = elements(call, 0);
    const SharedArray indexes = call.given(1) ? elements(call, 1) : std::make_shared<const Array>(1, 1);
    const bool byColumns = call.logical(3, false);
    const Lines lines(array, byColumns);
    const int count = std::max(indexes->rows(), indexes->columns());
    const SharedArray orders = call.given(2) ? elements(call, 2) : nullptr;
    std::vector<SortKey> keys;
    for (int i = 0; i < count && !call.failed(); ++i) {
        SortKey key;
        const Value index = call.given(1) ? toNumber(indexes->spread(i, i)) : Value(1.0);
        if (index.isError())
            return index;
        if (index.number() < 1 || index.number() >= lines.length() + 1)
            return CellError::value;
        key.descends = orders && descends(call, orders->spread(i, i));
        call.pay(4.0 * lines.count());
        for (int line = 0; line < lines.count(); ++line)
            key.values.push_back(lines.at(line, static_cast<int>(index.number()) - 1));
        keys.push_back(std::move(key));
    }
    const std::vector<int> order = sortedLines(call, lines.count(), keys);
    return call.failed() ? call.error() : lines.picked(order);
}

/// SORTBY: by other arrays of as many rows or columns.
Operand sortedBy(Call& call)
{
    const SharedArray array = elements(call, 0);
    std::vector<SortKey> keys;
    bool byColumns = false;
    for (std::size_t argument = 1; argument < call.count() && !call.failed(); argument += 2) {
        const SharedArray by = elements(call, argument);
        const bool alongRow = by->rows() == 1 && by->columns() == array->columns() && by->columns() > 1;
        const bool alongColumn = by->columns() == 1 && by->rows() == array->rows();
        const bool otherWay = argument > 1 && alongRow != byColumns;
        if (otherWay || !(alongRow || alongColumn))
            return call.failed() ? call.error() : CellError::value;
        byColumns = alongRow;
        SortKey key;
        key.descends = call.given(argument + 1) && descends(call, call.value(argument + 1));
        call.pay(4.0 * std::max(by->rows(), by->columns()));
        for (int i = 0; i < std::max(by->rows(), by->columns()); ++i)
            key.values.push_back(byColumns ? by->at(0, i) : by->at(i, 0));
        keys.push_back(std::move(key));
    }
    const Lines lines(array, byColumns);
    const std::vector<int> order = sortedLines(call, lines.count(), keys);
    return call.failed() ? call.error() : lines.picked(order);
}

/// UNIQUE: the lines that differ, or those that occur just once.
Operand unique(Call& call)
{
    const Lines lines(elements(call, 0), call.logical(1, false));
    const bool onlySingle = call.logical(2, false);
    if (call.failed())
        return call.error();
    std::vector<SortKey> keys(static_cast<std::size_t>(lines.length()));
    for (int place = 0; place < lines.length(); ++place) {
        for (int line = 0; line < lines.count(); ++line)
            keys[static_cast<std::size_t>(place)].values.push_back(lines.at(line, place));
    }
    const std::vector<int> order = sortedLines(call, lines.count(), keys);
    if (call.failed())
        return call.error();
    const auto same = [&](int a, int b) {
        for (int place = 0; place < lines.length(); ++place) {
            const Value& left = lines.at(a, place);
            const Value& right = lines.at(b, place);
            if (compareSorted(left, right, false) != 0 || (left.isError() && !(left == right)))
                return false;
        }
        return true;
    };
    std::vector<int> kept; // equal lines stand together in the order, the first of them first
    for (std::size_t i = 0; i < order.size();) {
        std::size_t end = i + 1;
        while (end < order.size() && same(order[i], order[end]))
            ++end;
        if (!onlySingle || end == i + 1)
            kept.push_back(order[i]);
        i = end;
    }
    std::ranges::sort(kept);
    return kept.empty() ? Operand(CellError::na) : lines.picked(kept);
}

/// An array of some size; nothing, and the call fails with #VALUE!, if it has no elements or too many.
std::shared_ptr<Array> sized(Call& call)
{
    const int rows = call.given(0) ? call.integer(0) : 1;
    const int columns = call.given(1) ? call.integer(1) : 1;
    const bool fits = rows > 0 && columns > 0 && isArraySize(rows, columns);
    if (!fits)
        call.fail(CellError::value);
    else
        call.pay(8.0 * rows * columns); // here, since elements are computed before they count as made
    return fits && !call.failed() ? std::make_shared<Array>(rows, columns) : nullptr;
}

Operand sequence(Call& call)
{
    const auto array = sized(call);
    const double first = call.given(2) ? call.number(2) : 1;
    const double step = call.given(3) ? call.number(3) : 1;
    if (call.failed())
        return call.error();
    for (int row = 0; row < array->rows(); ++row) {
        for (int column = 0; column < array->columns(); ++column)
            array->at(row, column) = first + step * (static_cast<double>(row) * array->columns() + column);
    }
    return SharedArray(array);
}

Operand randomArray(Call& call)
{
    const auto array = sized(call);
    const double low = call.given(2) ? call.number(2) : 0;
    const double high = call.given(3) ? call.number(3) : 1;
    const bool whole = call.logical(4, false);
    if (call.failed())
        return call.error();
    if (low > high || (whole && (low != std::trunc(low) || high != std::trunc(high))))
        return CellError::value;
    for (int row = 0; row < array->rows(); ++row) {
        for (int column = 0; column < array->columns(); ++column) {
            const double share = randomShare();
            array->at(row, column) = whole ? std::min(low + std::floor(share * (high - low + 1)), high)
                                           : low + share * (high - low);
        }
    }
    return SharedArray(array);
}

constexpr auto arrayShapingFamily = FunctionFamily::lookup;

const FunctionDescriptor arrayShapingTable[] = {
    {"FILTER", 2, 3, "aar", arrayShapingFamily, "数组,条件,[无结果时]", "返回数组中满足条件的行或列",
     filtered},
    {"SORT", 1, 4, "aaav", arrayShapingFamily, "数组,[排序序号],[顺序],[按列]",
     "返回排序后的数组，顺序 1 升序、-1 降序", sorted},
    {"SORTBY", 2, manyArguments, "aav", arrayShapingFamily, "数组,依据1,[顺序1],[…]",
     "返回按其他数组排序后的数组", sortedBy, pure, 2},
    {"UNIQUE", 1, 3, "avv", arrayShapingFamily, "数组,[按列],[仅一次]", "返回数组中互不相同的行或列", unique},
    {"SEQUENCE", 1, 4, "vvvv", arrayShapingFamily, "行数,[列数],[起始值],[步长]", "返回等差数列组成的数组",
     sequence},
    {"RANDARRAY", 0, 5, "vvvvv", arrayShapingFamily, "[行数],[列数],[最小值],[最大值],[整数]",
     "返回随机数组成的数组", randomArray, isVolatile},
};

} // namespace

std::span<const FunctionDescriptor> arrayShapingFunctions()
{
    return arrayShapingTable;
}

} // namespace spreadsheet
