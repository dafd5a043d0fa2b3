// Averages, counts and extremes, plain and under conditions.
#include "spreadsheet/functions/aggregates/aggregates.h"
#include "spreadsheet/functions/aggregates/values_as_numbers.h"
#include "spreadsheet/functions/function_families.h"
#include "spreadsheet/values/coercion.h"
#include "spreadsheet/values/CompensatedSum.h"

#include <algorithm>

namespace spreadsheet {

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

namespace {

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

constexpr auto statisticalFamily = FunctionFamily::statistical;

const FunctionDescriptor statisticalTable[] = {
    {"AVERAGE", 1, manyArguments, "r", statisticalFamily, "数值1,[数值2,…]", "返回所有参数的算术平均值",
     average},
    {"AVERAGEA", 1, manyArguments, "r", statisticalFamily, "数值1,[数值2,…]",
     "返回所有参数的算术平均值，文本按0、逻辑值按1或0计算", averageOfAll},
    {"AVERAGEIF", 2, 3, "cvc", statisticalFamily, "区域,条件,[求平均区域]", "返回满足条件的单元格的平均值",
     averageIf, sumsBeside},
    {"AVERAGEIFS", 3, manyArguments, "ccv", statisticalFamily, "求平均区域,条件区域1,条件1,[…]",
     "返回满足多个条件的单元格的平均值", averageIfs, pure, 2},
    {"MIN", 1, manyArguments, "r", statisticalFamily, "数值1,[数值2,…]", "返回最小值，忽略文本和逻辑值",
     smallest},
    {"MAX", 1, manyArguments, "r", statisticalFamily, "数值1,[数值2,…]", "返回最大值，忽略文本和逻辑值",
     largest},
    {"MINA", 1, manyArguments, "r", statisticalFamily, "数值1,[数值2,…]",
     "返回最小值，文本按0、逻辑值按1或0计算", smallestOfAll},
    {"MAXA", 1, manyArguments, "r", statisticalFamily, "数值1,[数值2,…]",
     "返回最大值，文本按0、逻辑值按1或0计算", largestOfAll},
    {"MINIFS", 3, manyArguments, "ccv", statisticalFamily, "最小值区域,条件区域1,条件1,[…]",
     "返回满足多个条件的单元格的最小值", smallestIfs, pure, 2},
    {"MAXIFS", 3, manyArguments, "ccv", statisticalFamily, "最大值区域,条件区域1,条件1,[…]",
     "返回满足多个条件的单元格的最大值", largestIfs, pure, 2},
    {"COUNT", 1, manyArguments, "r", statisticalFamily, "值1,[值2,…]",
     "计算包含数字的单元格以及数字参数的个数", countNumbers},
    {"COUNTA", 1, manyArguments, "r", statisticalFamily, "值1,[值2,…]", "计算非空单元格的个数", countFilled},
    {"COUNTBLANK", 1, 1, "c", statisticalFamily, "区域", "计算区域中空白单元格的个数", countBlank},
    {"COUNTIF", 2, 2, "cv", statisticalFamily, "区域,条件", "计算满足条件的单元格的个数", countIf},
    {"COUNTIFS", 2, manyArguments, "cv", statisticalFamily, "条件区域1,条件1,[…]",
     "计算满足多个条件的单元格的个数", countIfs, pure, 2},
};

} // namespace

std::span<const FunctionDescriptor> statisticalFunctions()
{
    return statisticalTable;
}

} // namespace spreadsheet
