#include "spreadsheet/functions/Call.h"
#include "spreadsheet/functions/FunctionTable.h"
#include "spreadsheet/functions/spread.h"
#include "spreadsheet/functions/sums.h"

#include <unordered_map>

namespace spreadsheet {

Operand variance(std::span<const double> numbers, bool ofSample)
{
    const double divisor = static_cast<double>(numbers.size()) - (ofSample ? 1 : 0);
    if (divisor <= 0)
        return CellError::div0;
    const double mean = compensatedSum(numbers) / static_cast<double>(numbers.size());
    RunningSum squares;
    for (const double number : numbers)
        squares.add((number - mean) * (number - mean));
    return checked(squares.total() / divisor);
}

Operand deviation(std::span<const double> numbers, bool ofSample)
{
    const Operand squared = variance(numbers, ofSample);
    return squared.value().isError() ? squared : Operand(std::sqrt(squared.value().number()));
}

namespace {

/// AVERAGEA and its kind: truth values count as 1 and 0, texts in ranges as 0.
std::vector<double> valuesAsNumbers(Call& call)
{
    std::vector<double> numbers;
    for (std::size_t argument = 0; argument < call.count() && !call.failed(); ++argument) {
        if (!call[argument].isReference() && !call[argument].isArray()) {
            numbers.push_back(call.number(argument));
            continue;
        }
        call.eachValue(argument, [&](const Value& value) {
            if (value.isError())
                call.fail(value.error());
            else if (value.isText())
                numbers.push_back(countedNumber(value).value_or(0));
            else if (!value.isEmpty())
                numbers.push_back(toNumber(value).number());
        });
    }
    return numbers;
}

Operand averageOfAll(Call& call)
{
    const std::vector<double> numbers = valuesAsNumbers(call);
    if (call.failed())
        return call.error();
    if (numbers.empty())
        return CellError::div0;
    return checked(compensatedSum(numbers) / static_cast<double>(numbers.size()));
}

Operand smallestOfAll(Call& call)
{
    const std::vector<double> numbers = valuesAsNumbers(call);
    return call.failed() ? call.error() : Operand(numbers.empty() ? 0 : std::ranges::min(numbers));
}

Operand largestOfAll(Call& call)
{
    const std::vector<double> numbers = valuesAsNumbers(call);
    return call.failed() ? call.error() : Operand(numbers.empty() ? 0 : std::ranges::max(numbers));
}

/// The number that would stand at a place, from 0, if they were sorted.
double sortedAt(std::vector<double>& numbers, std::size_t place)
{
    const auto found = numbers.begin() + static_cast<std::ptrdiff_t>(place);
    std::ranges::nth_element(numbers, found);
    return *found;
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
    return (sortedAt(numbers, numbers.size() / 2 - 1) + upper) / 2;
}

/// The most frequent number; of several the one that comes first.
Operand mode(Call& call)
{
    const std::vector<double> numbers = call.numbers();
    if (call.failed())
        return call.error();
    std::unordered_map<double, std::size_t> counts;
    std::size_t most = 1;
    for (const double number : numbers)
        most = std::max(most, ++counts[number]);
    if (most == 1)
        return CellError::na;
    return *std::ranges::find_if(numbers, [&](double number) { return counts[number] == most; });
}

/// LARGE and SMALL.
template <bool fromLargest>
Operand orderStatistic(Call& call)
{
    std::vector<double> numbers;
    call.eachNumber(0, [&](double number) { numbers.push_back(number); });
    const double place = fromLargest ? std::ceil(call.number(1)) : std::trunc(call.number(1));
    if (call.failed())
        return call.error();
    if (place < 1 || place > static_cast<double>(numbers.size()))
        return CellError::num;
    const auto from = static_cast<std::size_t>(place);
    return sortedAt(numbers, fromLargest ? numbers.size() - from : from - 1);
}

Operand rankOf(Call& call)
{
    const double number = call.number(0);
    const bool ascending = call.logical(2, false);
    if (!call.failed() && !call[1].isReference())
        return CellError::value;
    double ahead = 0;
    bool found = false;
    call.eachNumber(1, [&](double other) {
        found = found || other == number;
        ahead += ascending ? other < number : other > number;
    });
    if (call.failed())
        return call.error();
    return found ? Operand(ahead + 1) : Operand(CellError::na);
}

template <auto function, bool ofSample>
Operand ofNumbers(Call& call)
{
    const std::vector<double> numbers = call.numbers();
    return call.failed() ? call.error() : function(numbers, ofSample);
}

constexpr auto family = FunctionFamily::statistical;

const FunctionDescriptor table[] = {
    {"AVERAGE", 1, manyArguments, "r", family, "数值1,[数值2,…]", "返回所有参数的算术平均值", average},
    {"AVERAGEA", 1, manyArguments, "r", family, "数值1,[数值2,…]",
     "返回所有参数的算术平均值，文本按0、逻辑值按1或0计算", averageOfAll},
    {"AVERAGEIF", 2, 3, "rvr", family, "区域,条件,[求平均区域]", "返回满足条件的单元格的平均值", averageIf,
     sumsBeside},
    {"AVERAGEIFS", 3, manyArguments, "rrv", family, "求平均区域,条件区域1,条件1,[…]",
     "返回满足多个条件的单元格的平均值", averageIfs, pure, 2},
    {"MIN", 1, manyArguments, "r", family, "数值1,[数值2,…]", "返回最小值，忽略文本和逻辑值", smallest},
    {"MAX", 1, manyArguments, "r", family, "数值1,[数值2,…]", "返回最大值，忽略文本和逻辑值", largest},
    {"MINA", 1, manyArguments, "r", family, "数值1,[数值2,…]", "返回最小值，文本按0、逻辑值按1或0计算",
     smallestOfAll},
    {"MAXA", 1, manyArguments, "r", family, "数值1,[数值2,…]", "返回最大值，文本按0、逻辑值按1或0计算",
     largestOfAll},
    {"MINIFS", 3, manyArguments, "rrv", family, "最小值区域,条件区域1,条件1,[…]",
     "返回满足多个条件的单元格的最小值", smallestIfs, pure, 2},
    {"MAXIFS", 3, manyArguments, "rrv", family, "最大值区域,条件区域1,条件1,[…]",
     "返回满足多个条件的单元格的最大值", largestIfs, pure, 2},
    {"COUNT", 1, manyArguments, "r", family, "值1,[值2,…]", "计算包含数字的单元格以及数字参数的个数",
     countNumbers},
    {"COUNTA", 1, manyArguments, "r", family, "值1,[值2,…]", "计算非空单元格的个数", countFilled},
    {"COUNTBLANK", 1, 1, "r", family, "区域", "计算区域中空白单元格的个数", countBlank},
    {"COUNTIF", 2, 2, "rv", family, "区域,条件", "计算满足条件的单元格的个数", countIf},
    {"COUNTIFS", 2, manyArguments, "rv", family, "条件区域1,条件1,[…]", "计算满足多个条件的单元格的个数",
     countIfs, pure, 2},
    {"MEDIAN", 1, manyArguments, "r", family, "数值1,[数值2,…]", "返回中位数", median},
    {"MODE", 1, manyArguments, "r", family, "数值1,[数值2,…]", "返回出现次数最多的数值", mode},
    {"LARGE", 2, 2, "rv", family, "数组,k", "返回数组中第 k 个最大值", orderStatistic<true>},
    {"SMALL", 2, 2, "rv", family, "数组,k", "返回数组中第 k 个最小值", orderStatistic<false>},
    {"RANK", 2, 3, "vrv", family, "数值,引用,[排位方式]", "返回数值在一列数值中的排位", rankOf},
    {"STDEV", 1, manyArguments, "r", family, "数值1,[数值2,…]", "估算样本的标准偏差",
     ofNumbers<deviation, true>},
    {"STDEVP", 1, manyArguments, "r", family, "数值1,[数值2,…]", "计算总体的标准偏差",
     ofNumbers<deviation, false>},
    {"VAR", 1, manyArguments, "r", family, "数值1,[数值2,…]", "估算样本的方差", ofNumbers<variance, true>},
    {"VARP", 1, manyArguments, "r", family, "数值1,[数值2,…]", "计算总体的方差", ofNumbers<variance, false>},
};

} // namespace

std::span<const FunctionDescriptor> statisticalFunctions()
{
    return table;
}

} // namespace spreadsheet
