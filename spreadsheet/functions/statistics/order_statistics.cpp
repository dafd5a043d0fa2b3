// Places of numbers in their order: medians, ranks, percentiles, frequencies.
#include "spreadsheet/calculation/Call.h"
#include "spreadsheet/functions/function_families.h"
#include "spreadsheet/functions/statistics/spread.h"

#include <algorithm>
#include <limits>
#include <numeric>
#include <unordered_map>

namespace spreadsheet {

// A place in the order is found by partial sorting, in a time that grows with the count of numbers and not
// with its logarithm too: medians and percentiles are asked over whole columns.

namespace {

/// The numbers of one argument.
std::vector<double> numbersOf(Call& call, std::size_t argument)
{
    std::vector<double> numbers;
    call.eachNumbers(argument, [&](std::span<const double> part) {
        numbers.insert(numbers.end(), part.begin(), part.end());
    });
    call.pay(static_cast<double>(numbers.size())); // to put them in order
    return numbers;
}

/// The number that would stand at a place, from 0, if they were sorted.
double sortedAt(std::vector<double>& numbers, std::size_t place)
{
    const auto found = numbers.begin() + static_cast<std::ptrdiff_t>(place);
    std::ranges::nth_element(numbers, found);
    return *found;
}

/// The numbers of the first argument by their order. Where a function is called for each element of an array
/// of ranks they are sorted once for all of them.
class NumbersInOrder {
public:
    explicit NumbersInOrder(Call& call)
        : m_kept(call.kept())
    {
        if (m_kept && m_kept->filled)
            return;
        m_own = numbersOf(call, 0);
        if (!m_kept || call.failed())
            return;
        std::ranges::sort(m_own);
        m_kept->sorted = std::move(m_own);
        m_kept->filled = true;
    }
    std::size_t size() const { return isSorted() ? m_kept->sorted.size() : m_own.size(); }
    double at(std::size_t place) { return isSorted() ? m_kept->sorted[place] : sortedAt(m_own, place); }

private:
    bool isSorted() const { return m_kept && m_kept->filled; }

    KeptNumbers* m_kept;
    std::vector<double> m_own;
};

/// The same for a place between two numbers, in proportion.
double interpolatedAt(NumbersInOrder& numbers, double place)
{
    const auto below = static_cast<std::size_t>(place);
    const double lower = numbers.at(below);
    const double part = place - std::floor(place);
    return part == 0 ? lower : lower + part * (numbers.at(below + 1) - lower);
}

Operand median(Call& call)
{
    std::vector<double> numbers = call.numbers();
    if (call.failed())
        return call.error();
    if (numbers.empty())
        return CellError::num;
    const double upper = sortedAt(numbers, numbers.size() / 2);
    if (numbers.size() % 2 == 1)
        return upper;
    return std::midpoint(sortedAt(numbers, numbers.size() / 2 - 1), upper);
}

/// The most frequent numbers in the order in which they first appear; none if all differ.
std::vector<double> modes(const std::vector<double>& numbers)
{
    std::unordered_map<double, std::size_t> counts;
    std::size_t most = 1;
    for (const double number : numbers)
        most = std::max(most, ++counts[number]);
    std::vector<double> found;
    for (const double number : numbers) {
        std::size_t& count = counts[number];
        if (most > 1 && count == most) {
            found.push_back(number);
            count = 0; // taken
        }
    }
    return found;
}

/// The numbers of all arguments; texts that are handed over themselves are none, whatever they read as.
std::vector<double> countedNumbers(Call& call)
{
    for (std::size_t argument = 0; argument < call.count(); ++argument) {
        if (call[argument].isValue() && call[argument].value().isText())
            call.fail(CellError::value);
    }
    return call.failed() ? std::vector<double>() : call.numbers();
}

Operand mode(Call& call)
{
    const std::vector<double> found = modes(countedNumbers(call));
    if (call.failed())
        return call.error();
    return found.empty() ? Operand(CellError::na) : Operand(found.front());
}

Operand columnOf(const std::vector<double>& numbers)
{
    auto array = std::make_shared<Array>(static_cast<int>(numbers.size()), 1);
    for (std::size_t i = 0; i < numbers.size(); ++i)
        array->at(static_cast<int>(i), 0) = numbers[i];
    return std::shared_ptr<const Array>(std::move(array));
}

Operand allModes(Call& call)
{
    const std::vector<double> found = modes(countedNumbers(call));
    if (call.failed())
        return call.error();
    return found.empty() ? Operand(CellError::na) : columnOf(found);
}

/// LARGE and SMALL.
template <bool fromLargest>
Operand orderStatistic(Call& call)
{
    NumbersInOrder numbers(call);
    const double place = call.number(1);
    if (call.failed())
        return call.error();
    const double whole = fromLargest ? std::ceil(place) : std::trunc(place);
    if (place < 1 || whole > static_cast<double>(numbers.size()))
        return CellError::num;
    const auto from = static_cast<std::size_t>(whole);
    return numbers.at(fromLargest ? numbers.size() - from : from - 1);
}

/// RANK.AVG gives equal numbers the mean of their places, RANK the first of them.
template <bool averaged>
Operand rankOf(Call& call)
{
    const double number = call.number(0);
    if (call[1].isValue() && call[1].value().isError())
        call.fail(call[1].value().error());
    const bool ascending = call.logical(2, false);
    if (!call.failed() && !call[1].isReference())
        return CellError::value;
    double ahead = 0;
    double equal = 0;
    call.eachNumber(1, [&](double other) {
        equal += other == number;
        ahead += ascending ? other < number : other > number;
    });
    if (call.failed())
        return call.error();
    if (equal == 0)
        return CellError::na;
    return ahead + (averaged ? (equal + 1) / 2 : 1);
}

/// A share of the way from the smallest to the largest. Counted without the ends, the smallest of n
/// numbers stands at 1/(n+1) and shares before it and behind the largest have no number.
Operand percentile(NumbersInOrder& numbers, double share, bool withEnds)
{
    const auto count = static_cast<double>(numbers.size());
    if (count == 0 || !(share >= 0 && share <= 1))
        return CellError::num;
    constexpr double noise = 1e-12; // a share such as 1/3 is not exact
    const double place = withEnds ? share * (count - 1) : share * (count + 1) - 1;
    if (place < -noise || place > count - 1 + noise)
        return CellError::num;
    return checked(interpolatedAt(numbers, std::clamp(place, 0.0, count - 1)));
}

template <bool withEnds>
Operand percentileOf(Call& call)
{
    NumbersInOrder numbers(call);
    const double share = call.number(1);
    if (call.failed())
        return call.error();
    if (!withEnds && !(share > 0 && share < 1))
        return CellError::num;
    return percentile(numbers, share, withEnds);
}

template <bool withEnds>
Operand quartileOf(Call& call)
{
    NumbersInOrder numbers(call);
    const double quarter = call.number(1);
    if (call.failed())
        return call.error();
    const bool inRange = withEnds ? quarter >= 0 && quarter < 5 : quarter >= 1 && quarter < 4;
    if (!inRange)
        return CellError::num;
    return percentile(numbers, std::trunc(quarter) / 4, withEnds);
}

/// Where x stands among numbers.
struct Neighbours {
    double count = 0;
    double below = 0; ///< how many are smaller
    bool isThere = false;
    double lower = -std::numeric_limits<double>::infinity(); ///< the largest smaller one
    double upper = std::numeric_limits<double>::infinity();  ///< the smallest greater one

    void add(double number, double x)
    {
        ++count;
        isThere = isThere || number == x;
        if (number < x) {
            ++below;
            lower = std::max(lower, number);
        } else if (number > x) {
            upper = std::min(upper, number);
        }
    }
    bool reach(double x) const
    {
        return isThere || (below > 0 && upper > x && upper < std::numeric_limits<double>::infinity());
    }
    /// The place of x in their order, from 0, in proportion between two of them; x lies within.
    double placeOf(double x) const { return isThere ? below : below - 1 + (x - lower) / (upper - lower); }
};

/// The share of the way at which x stands, cut off to some significant digits.
template <bool withEnds>
Operand percentRank(Call& call)
{
    Neighbours neighbours;
    const Value wanted = call.numberOf(call.value(1)); // an error among the numbers comes first
    const double x = wanted.isNumber() ? wanted.number() : 0;
    call.eachNumber(0, [&](double number) { neighbours.add(number, x); });
    call.number(1);
    const double digits = std::trunc(call.number(2, 3));
    if (call.failed())
        return call.error();
    if (neighbours.count == 0 || digits < 1)
        return CellError::num;
    if (!neighbours.reach(x))
        return CellError::na;
    if (withEnds && neighbours.count == 1)
        return 1.0;
    const double place = neighbours.placeOf(x);
    const double share = withEnds ? place / (neighbours.count - 1) : (place + 1) / (neighbours.count + 1);
    if (digits > 15)
        return share;
    const double scale = std::pow(10, digits);
    constexpr double noise = 1e-9; // 0.29 * 100 is a little less than 29
    return std::floor(share * scale + noise) / scale;
}

/// The mean without a share of the numbers, the same count at both ends.
Operand trimmedMean(Call& call)
{
    std::vector<double> numbers = numbersOf(call, 0);
    const double share = call.number(1);
    if (call.failed())
        return call.error();
    if (numbers.empty() || !(share >= 0 && share < 1))
        return CellError::num;
    const auto cut =
        static_cast<std::size_t>(std::floor(share * static_cast<double>(numbers.size()) / 2 + 1e-12));
    std::ranges::sort(numbers);
    return checked(meanOf(std::span(numbers).subspan(cut, numbers.size() - 2 * cut)));
}

/// How many numbers lie in each interval that ends with a bound, and above the last one.
Operand frequencies(Call& call)
{
    const std::vector<double> numbers = numbersOf(call, 0);
    const std::vector<double> bounds = numbersOf(call, 1);
    if (call.failed())
        return call.error();
    std::vector<std::size_t> order(bounds.size());
    for (std::size_t i = 0; i < order.size(); ++i)
        order[i] = i;
    std::ranges::stable_sort(order, {}, [&](std::size_t i) { return bounds[i]; });
    std::vector<double> counts(bounds.size() + 1);
    for (const double number : numbers) {
        const auto above =
            std::ranges::lower_bound(order, number, {}, [&](std::size_t i) { return bounds[i]; });
        ++counts[above == order.end() ? bounds.size() : *above];
    }
    return columnOf(counts);
}

constexpr auto orderFamily = FunctionFamily::statistical;

const FunctionDescriptor orderTable[] = {
    {"MEDIAN", 1, manyArguments, "r", orderFamily, "数值1,[数值2,…]", "返回中位数", median},
    {"MODE", 1, manyArguments, "a", orderFamily, "数值1,[数值2,…]", "返回出现次数最多的数值", mode},
    {"MODE.SNGL", 1, manyArguments, "a", orderFamily, "数值1,[数值2,…]", "返回出现次数最多的数值", mode},
    {"MODE.MULT", 1, manyArguments, "a", orderFamily, "数值1,[数值2,…]",
     "以一列数组返回出现次数最多的各个数值", allModes},
    {"LARGE", 2, 2, "rv", orderFamily, "数组,k", "返回数组中第 k 个最大值", orderStatistic<true>},
    {"SMALL", 2, 2, "rv", orderFamily, "数组,k", "返回数组中第 k 个最小值", orderStatistic<false>},
    {"RANK", 2, 3, "vcv", orderFamily, "数值,引用,[排位方式]", "返回数值在一列数值中的排位", rankOf<false>},
    {"RANK.EQ", 2, 3, "vcv", orderFamily, "数值,引用,[排位方式]", "返回数值在一列数值中的排位",
     rankOf<false>},
    {"RANK.AVG", 2, 3, "vcv", orderFamily, "数值,引用,[排位方式]", "返回数值的排位，相同的数值取平均排位",
     rankOf<true>},
    {"PERCENTILE", 2, 2, "rv", orderFamily, "数组,k", "返回第 k 个百分点的值，k 从 0 到 1",
     percentileOf<true>},
    {"PERCENTILE.INC", 2, 2, "rv", orderFamily, "数组,k", "返回第 k 个百分点的值，k 从 0 到 1",
     percentileOf<true>},
    {"PERCENTILE.EXC", 2, 2, "rv", orderFamily, "数组,k", "返回第 k 个百分点的值，k 不含 0 和 1",
     percentileOf<false>},
    {"QUARTILE", 2, 2, "rv", orderFamily, "数组,四分位", "返回四分位数，0 为最小值，4 为最大值",
     quartileOf<true>},
    {"QUARTILE.INC", 2, 2, "rv", orderFamily, "数组,四分位", "返回四分位数，0 为最小值，4 为最大值",
     quartileOf<true>},
    {"QUARTILE.EXC", 2, 2, "rv", orderFamily, "数组,四分位", "返回四分位数，不含 0 和 4", quartileOf<false>},
    {"PERCENTRANK", 2, 3, "rvv", orderFamily, "数组,x,[有效位数]", "返回 x 在数组中的百分比排位",
     percentRank<true>},
    {"PERCENTRANK.INC", 2, 3, "rvv", orderFamily, "数组,x,[有效位数]", "返回 x 在数组中的百分比排位",
     percentRank<true>},
    {"PERCENTRANK.EXC", 2, 3, "rvv", orderFamily, "数组,x,[有效位数]",
     "返回 x 在数组中的百分比排位，不含 0 和 1", percentRank<false>},
    {"TRIMMEAN", 2, 2, "rv", orderFamily, "数组,百分比", "返回去掉两端部分数值后的平均值", trimmedMean},
    {"FREQUENCY", 2, 2, "rr", orderFamily, "数据,分段点", "以一列数组返回数据在各分段中的个数", frequencies},
};

} // namespace

std::span<const FunctionDescriptor> orderFunctions()
{
    return orderTable;
}

} // namespace spreadsheet
