// How far numbers lie apart, and the means other than the plain one.
#include "spreadsheet/functions/statistics/spread.h"

#include "spreadsheet/functions/aggregates/values_as_numbers.h"
#include "spreadsheet/functions/function_families.h"
#include "spreadsheet/values/CompensatedSum.h"

namespace spreadsheet {

double meanOf(std::span<const double> numbers)
{
    return compensatedSum(numbers) / static_cast<double>(numbers.size());
}

double squaredDeviations(std::span<const double> numbers)
{
    const double mean = meanOf(numbers);
    CompensatedSum squares;
    for (const double number : numbers)
        squares.add((number - mean) * (number - mean));
    return squares.total();
}

Operand variance(std::span<const double> numbers, bool ofSample)
{
    const double divisor = static_cast<double>(numbers.size()) - (ofSample ? 1 : 0);
    if (divisor <= 0)
        return CellError::div0;
    return checked(squaredDeviations(numbers) / divisor);
}

Operand deviation(std::span<const double> numbers, bool ofSample)
{
    const Operand squared = variance(numbers, ofSample);
    return squared.value().isError() ? squared : Operand(std::sqrt(squared.value().number()));
}

namespace {

template <auto function, bool ofSample>
Operand ofList(Call& call)
{
    const std::vector<double> numbers = call.numbers();
    return call.failed() ? call.error() : function(numbers, ofSample);
}

/// VARA and its kind count texts and truth values too.
template <auto function, bool ofSample>
Operand ofAllValues(Call& call)
{
    const std::vector<double> numbers = valuesAsNumbers(call);
    return call.failed() ? call.error() : function(numbers, ofSample);
}

/// A function of at least one number.
template <auto function>
Operand ofSome(Call& call)
{
    const std::vector<double> numbers = call.numbers();
    if (call.failed())
        return call.error();
    return numbers.empty() ? Operand(CellError::num) : Operand(function(numbers));
}

Operand averageDistance(const std::vector<double>& numbers)
{
    const double mean = meanOf(numbers);
    CompensatedSum distances;
    for (const double number : numbers)
        distances.add(std::fabs(number - mean));
    return checked(distances.total() / static_cast<double>(numbers.size()));
}

Operand deviationSquares(const std::vector<double>& numbers)
{
    return checked(squaredDeviations(numbers));
}

Operand geometricMean(const std::vector<double>& numbers)
{
    CompensatedSum logarithms;
    for (const double number : numbers) {
        if (number <= 0)
            return CellError::num;
        logarithms.add(std::log(number));
    }
    return checked(std::exp(logarithms.total() / static_cast<double>(numbers.size())));
}

Operand harmonicMean(const std::vector<double>& numbers)
{
    CompensatedSum reciprocals;
    for (const double number : numbers) {
        if (number <= 0)
            return CellError::num;
        reciprocals.add(1 / number);
    }
    return checked(static_cast<double>(numbers.size()) / reciprocals.total());
}

/// Sum of the distances from the mean, measured in deviations, to a power.
double standardizedSum(std::span<const double> numbers, double deviation, int power)
{
    const double mean = meanOf(numbers);
    CompensatedSum sum;
    for (const double number : numbers)
        sum.add(std::pow((number - mean) / deviation, power));
    return sum.total();
}

/// n / ((n-1)(n-2)) Σ((x-m)/s)³ of a sample; Σ((x-m)/σ)³ / n of everything.
template <bool ofSample>
Operand skewness(Call& call)
{
    const std::vector<double> numbers = call.numbers();
    if (call.failed())
        return call.error();
    const auto n = static_cast<double>(numbers.size());
    const Operand width = deviation(numbers, ofSample);
    if (n < 3 || width.value().isError() || width.value().number() == 0)
        return CellError::div0;
    const double sum = standardizedSum(numbers, width.value().number(), 3);
    return checked(ofSample ? sum * n / ((n - 1) * (n - 2)) : sum / n);
}

/// n(n+1) / ((n-1)(n-2)(n-3)) Σ((x-m)/s)⁴ - 3(n-1)² / ((n-2)(n-3))
Operand kurtosis(Call& call)
{
    const std::vector<double> numbers = call.numbers();
    if (call.failed())
        return call.error();
    const auto n = static_cast<double>(numbers.size());
    const Operand width = deviation(numbers, true);
    if (n < 4 || width.value().isError() || width.value().number() == 0)
        return CellError::div0;
    const double sum = standardizedSum(numbers, width.value().number(), 4);
    return checked(sum * n * (n + 1) / ((n - 1) * (n - 2) * (n - 3)) -
                   3 * (n - 1) * (n - 1) / ((n - 2) * (n - 3)));
}

constexpr auto spreadFamily = FunctionFamily::statistical;

/// A row whose arguments are any number of lists.
constexpr FunctionDescriptor ofLists(std::string_view name, std::string_view help, Operand (*evaluate)(Call&))
{
    return {name, 1, manyArguments, "r", spreadFamily, "数值1,[数值2,…]", help, evaluate};
}

const FunctionDescriptor spreadTable[] = {
    ofLists("STDEV", "估算样本的标准偏差", ofList<deviation, true>),
    ofLists("STDEV.S", "估算样本的标准偏差", ofList<deviation, true>),
    ofLists("STDEVP", "计算总体的标准偏差", ofList<deviation, false>),
    ofLists("STDEV.P", "计算总体的标准偏差", ofList<deviation, false>),
    ofLists("STDEVA", "估算样本的标准偏差，文本按0、逻辑值按1或0计算", ofAllValues<deviation, true>),
    ofLists("STDEVPA", "计算总体的标准偏差，文本按0、逻辑值按1或0计算", ofAllValues<deviation, false>),
    ofLists("VAR", "估算样本的方差", ofList<variance, true>),
    ofLists("VAR.S", "估算样本的方差", ofList<variance, true>),
    ofLists("VARP", "计算总体的方差", ofList<variance, false>),
    ofLists("VAR.P", "计算总体的方差", ofList<variance, false>),
    ofLists("VARA", "估算样本的方差，文本按0、逻辑值按1或0计算", ofAllValues<variance, true>),
    ofLists("VARPA", "计算总体的方差，文本按0、逻辑值按1或0计算", ofAllValues<variance, false>),
    ofLists("AVEDEV", "返回各数值与平均值之差的绝对值的平均值", ofSome<averageDistance>),
    ofLists("DEVSQ", "返回各数值与平均值之差的平方和", ofSome<deviationSquares>),
    ofLists("GEOMEAN", "返回正数的几何平均值", ofSome<geometricMean>),
    ofLists("HARMEAN", "返回正数的调和平均值", ofSome<harmonicMean>),
    ofLists("SKEW", "返回样本分布的不对称度", skewness<true>),
    ofLists("SKEW.P", "返回总体分布的不对称度", skewness<false>),
    ofLists("KURT", "返回数据的峰值", kurtosis),
};

} // namespace

std::span<const FunctionDescriptor> spreadFunctions()
{
    return spreadTable;
}

} // namespace spreadsheet
