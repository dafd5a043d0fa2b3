#include "spreadsheet/calculation/operators.h"
#include "spreadsheet/functions/aggregates/aggregates.h"
#include "spreadsheet/functions/function_families.h"
#include "spreadsheet/functions/math/randomness.h"
#include "spreadsheet/functions/number_calls.h"
#include "spreadsheet/functions/plain_arguments.h"
#include "spreadsheet/values/CompensatedSum.h"
#include "spreadsheet/values/decimal.h"

#include <algorithm>
#include <numbers>
#include <random>

namespace spreadsheet {

namespace {

Operand logarithm(Call& call)
{
    const double number = call.number(0);
    const double base = call.number(1, 10);
    if (call.failed())
        return call.error();
    if (number <= 0 || base <= 0)
        return CellError::num;
    if (base == 1)
        return CellError::div0;
    return base == 10 ? std::log10(number) : std::log(number) / std::log(base);
}

/// Whether a number is a multiple of another as both show, whatever rest their last binary digits leave:
/// 6.3 of 0.1.
bool isMultiple(double number, double divisor, double rest)
{
    if (std::trunc(number) == number && std::trunc(divisor) == divisor)
        return rest == 0; // the rest of whole numbers is exact, however large they are
    const double noise = std::fabs(number) * 1e-14;
    const double beside = std::min(std::fabs(rest), std::fabs(divisor) - std::fabs(rest));
    return beside <= noise && roundToMultiple(number, divisor, Rounding::half) == number;
}

Operand remainder(double number, double divisor)
{
    if (divisor == 0)
        return CellError::div0;
    const double rest = std::fmod(number, divisor);
    if (rest == 0 || isMultiple(number, divisor, rest))
        return 0.0;
    return (rest < 0) != (divisor < 0) ? rest + divisor : rest;
}

Operand quotient(double number, double divisor)
{
    return divisor == 0 ? Operand(CellError::div0)
                        : checked(roundDecimal(number / divisor, 0, Rounding::toward));
}

/// A function of two numbers that takes neither truth values nor ranges.
template <auto function>
Operand ofPlainNumbers(Call& call)
{
    const double a = plainNumber(call, 0);
    const double b = plainNumber(call, 1);
    return call.failed() ? call.error() : Operand(function(a, b));
}

Operand rootOfPi(Call& call)
{
    const double number = plainNumber(call, 0);
    return inRangeOrNum(call, number >= 0, [&] { return checked(std::sqrt(number * std::numbers::pi)); });
}

/// Coefficients of rising powers, the first one of x to `first`, each next one `step` higher.
Operand powerSeries(Call& call)
{
    const double x = plainNumber(call, 0);
    const double first = plainNumber(call, 1);
    const double step = plainNumber(call, 2);
    const std::vector<double> coefficients = plainNumbers(call, 3);
    if (call.failed())
        return call.error();
    CompensatedSum sum;
    double power = first;
    for (const double coefficient : coefficients) {
        if (x == 0 && power == 0)
            return CellError::num; // as 0^0
        sum.add(coefficient * std::pow(x, power));
        power += step;
    }
    return checked(sum.total());
}

std::mt19937_64& randomness()
{
    static std::mt19937_64 generator{std::random_device{}()};
    return generator;
}

Operand randomFraction(Call&)
{
    return randomShare();
}

Operand randomBetween(double low, double high)
{
    low = std::ceil(low);
    high = std::floor(high);
    if (low > high || std::fabs(low) > 0x1p53 || std::fabs(high) > 0x1p53)
        return CellError::num;
    return static_cast<double>(std::uniform_int_distribution<long long>(
        static_cast<long long>(low), static_cast<long long>(high))(randomness()));
}

constexpr auto mathematicalFamily = FunctionFamily::mathematical;

const FunctionDescriptor mathematicalTable[] = {
    {"SUM", 1, manyArguments, "r", mathematicalFamily, "数值1,[数值2,…]", "返回所有参数之和", sum},
    {"PRODUCT", 1, manyArguments, "r", mathematicalFamily, "数值1,[数值2,…]", "返回所有参数的乘积", product},
    {"SUMSQ", 1, manyArguments, "r", mathematicalFamily, "数值1,[数值2,…]", "返回所有参数的平方和",
     sumOfSquares},
    {"SUMPRODUCT", 1, manyArguments, "a", mathematicalFamily, "数组1,[数组2,…]",
     "把各数组中对应的元素相乘，返回乘积之和", sumProduct},
    {"SUMIF", 2, 3, "cvc", mathematicalFamily, "区域,条件,[求和区域]", "对满足条件的单元格求和", sumIf,
     sumsBeside},
    {"SUMIFS", 3, manyArguments, "ccv", mathematicalFamily, "求和区域,条件区域1,条件1,[…]",
     "对满足多个条件的单元格求和", sumIfs, pure, 2},
    {"SUBTOTAL", 2, manyArguments, "vc", mathematicalFamily, "功能代码,引用1,[引用2,…]",
     "返回列表的分类汇总，其中已有的分类汇总不重复计算", subtotal},
    {"ABS", 1, 1, "v", mathematicalFamily, "数值", "返回数值的绝对值",
     ofNumber<[](double x) { return std::fabs(x); }>},
    {"SIGN", 1, 1, "v", mathematicalFamily, "数值", "返回数值的符号：正数为1，零为0，负数为-1",
     ofNumber<[](double x) { return static_cast<double>((x > 0) - (x < 0)); }>},
    {"SQRT", 1, 1, "v", mathematicalFamily, "数值", "返回数值的正平方根",
     ofNumber<[](double x) { return std::sqrt(x); }>},
    {"POWER", 2, 2, "vv", mathematicalFamily, "底数,指数", "返回数值的乘幂",
     ofNumbers<[](double a, double b) { return arithmetic(Op::power, a, b); }>},
    {"EXP", 1, 1, "v", mathematicalFamily, "指数", "返回 e 的乘幂",
     ofNumber<[](double x) { return std::exp(x); }>},
    {"LN", 1, 1, "v", mathematicalFamily, "数值", "返回数值的自然对数",
     ofNumber<[](double x) { return std::log(x); }>},
    {"LOG", 1, 2, "vv", mathematicalFamily, "数值,[底数]", "返回数值对指定底数的对数，底数默认为10",
     logarithm},
    {"LOG10", 1, 1, "v", mathematicalFamily, "数值", "返回数值以10为底的对数",
     ofNumber<[](double x) { return std::log10(x); }>},
    {"MOD", 2, 2, "vv", mathematicalFamily, "被除数,除数", "返回两数相除的余数，符号与除数相同",
     ofNumbers<remainder>},
    {"QUOTIENT", 2, 2, "vv", mathematicalFamily, "被除数,除数", "返回除法的整数部分",
     ofPlainNumbers<quotient>},
    {"RAND", 0, 0, "", mathematicalFamily, "", "返回大于等于0且小于1的随机数", randomFraction, isVolatile},
    {"RANDBETWEEN", 2, 2, "vv", mathematicalFamily, "最小值,最大值", "返回两数之间的随机整数",
     ofPlainNumbers<randomBetween>, isVolatile},
    {"SQRTPI", 1, 1, "v", mathematicalFamily, "数值", "返回数值与 π 的乘积的平方根", rootOfPi},
    {"SERIESSUM", 4, 4, "vvvr", mathematicalFamily, "x,首项乘幂,乘幂增量,系数", "返回幂级数的和",
     powerSeries},
    {"AGGREGATE", 3, manyArguments, "vva", mathematicalFamily, "功能代码,选项,数组,[k或引用,…]",
     "返回列表的汇总，可忽略隐藏行、错误值和已有的汇总", aggregate},
};

} // namespace

double randomShare()
{
    return std::uniform_real_distribution<double>(0, 1)(randomness());
}

std::span<const FunctionDescriptor> mathematicalFunctions()
{
    return mathematicalTable;
}

} // namespace spreadsheet
