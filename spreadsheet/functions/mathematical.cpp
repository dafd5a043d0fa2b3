#include "spreadsheet/engine/number_text.h"
#include "spreadsheet/formula/operators.h"
#include "spreadsheet/functions/Call.h"
#include "spreadsheet/functions/FunctionTable.h"
#include "spreadsheet/functions/rounding.h"
#include "spreadsheet/functions/sums.h"

#include <algorithm>
#include <numbers>
#include <random>

namespace spreadsheet {

namespace {

/// A function of one number; infinite and undefined results are #NUM!.
template <auto function>
Operand ofNumber(Call& call)
{
    const double number = call.number(0);
    return call.failed() ? call.error() : checked(function(number));
}

/// A function of two numbers that may itself give an error.
template <auto function>
Operand ofNumbers(Call& call)
{
    const double a = call.number(0);
    const double b = call.number(1);
    return call.failed() ? call.error() : Operand(function(a, b));
}

/// A function of a number and a count of decimal places, 0 if left out.
template <auto function>
Operand ofPlaces(Call& call)
{
    const double number = call.number(0);
    const int places = std::clamp(call.integer(1, 0), -400, 400);
    return call.failed() ? call.error() : checked(function(number, places));
}

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

Operand remainder(double number, double divisor)
{
    if (divisor == 0)
        return CellError::div0;
    const double rest = std::fmod(number, divisor);
    return rest != 0 && (rest < 0) != (divisor < 0) ? rest + divisor : rest;
}

Operand quotient(double number, double divisor)
{
    return divisor == 0 ? Operand(CellError::div0) : checked(std::trunc(number / divisor));
}

Operand ceiling(double number, double step)
{
    if (step == 0 || number == 0)
        return 0.0;
    if (number > 0 && step < 0)
        return CellError::num;
    return checked(multipleAbove(number, step));
}

Operand floored(double number, double step)
{
    if (number == 0)
        return 0.0;
    if (step == 0)
        return CellError::div0;
    if (number > 0 && step < 0)
        return CellError::num;
    return checked(multipleBelow(number, step));
}

Operand multiple(double number, double step)
{
    if (step == 0 || number == 0)
        return 0.0;
    if ((number < 0) != (step < 0))
        return CellError::num;
    return checked(nearestMultiple(number, step));
}

double evenNumber(double number)
{
    return std::copysign(std::ceil(std::fabs(number) / 2) * 2, number) + 0.0;
}

double oddNumber(double number)
{
    const double size = std::fabs(number);
    const double odd = size <= 1 ? 1 : std::ceil((size - 1) / 2) * 2 + 1;
    return number < 0 ? -odd : odd;
}

double factorial(double number)
{
    if (number < 0 || number >= 171)
        return std::numeric_limits<double>::infinity();
    double product = 1;
    for (int factor = 2; factor <= static_cast<int>(number); ++factor)
        product *= factor;
    return product;
}

Operand combinations(double all, double chosen)
{
    all = std::trunc(all);
    chosen = std::trunc(chosen);
    if (all < 0 || chosen < 0 || chosen > all)
        return CellError::num;
    chosen = std::min(chosen, all - chosen);
    double product = 1;
    for (double i = 1; i <= chosen && std::isfinite(product); ++i)
        product = product * (all - chosen + i) / i;
    return checked(product < 0x1p53 ? std::round(product) : product);
}

double greatestCommonDivisor(double a, double b)
{
    while (b != 0)
        a = std::exchange(b, std::fmod(a, b));
    return a;
}

double leastCommonMultiple(double a, double b)
{
    return a == 0 || b == 0 ? 0 : a / greatestCommonDivisor(a, b) * b;
}

/// Whole numbers of all arguments, put together two by two.
template <auto function>
Operand ofWholeNumbers(Call& call)
{
    std::optional<double> result;
    for (std::size_t argument = 0; argument < call.count(); ++argument) {
        call.eachNumber(argument, [&](double number) {
            number = std::trunc(number);
            if (number < 0 || number >= 0x1p53)
                call.fail(CellError::num);
            else
                result = result ? function(*result, number) : number;
        });
    }
    if (call.failed())
        return call.error();
    return result.value_or(0) < 0x1p53 ? Operand(result.value_or(0)) : Operand(CellError::num);
}

Operand angleOfPoint(double x, double y)
{
    return x == 0 && y == 0 ? Operand(CellError::div0) : Operand(std::atan2(y, x));
}

std::mt19937_64& randomness()
{
    static std::mt19937_64 generator{std::random_device{}()};
    return generator;
}

Operand randomFraction(Call&)
{
    return std::uniform_real_distribution<double>(0, 1)(randomness());
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

constexpr auto family = FunctionFamily::mathematical;
constexpr double halfTurn = 180; ///< degrees

const FunctionDescriptor table[] = {
    {"SUM", 1, manyArguments, "r", family, "数值1,[数值2,…]", "返回所有参数之和", sum},
    {"PRODUCT", 1, manyArguments, "r", family, "数值1,[数值2,…]", "返回所有参数的乘积", product},
    {"SUMSQ", 1, manyArguments, "r", family, "数值1,[数值2,…]", "返回所有参数的平方和", sumOfSquares},
    {"SUMPRODUCT", 1, manyArguments, "a", family, "数组1,[数组2,…]", "把各数组中对应的元素相乘，返回乘积之和",
     sumProduct},
    {"SUMIF", 2, 3, "rvr", family, "区域,条件,[求和区域]", "对满足条件的单元格求和", sumIf, sumsBeside},
    {"SUMIFS", 3, manyArguments, "rrv", family, "求和区域,条件区域1,条件1,[…]", "对满足多个条件的单元格求和",
     sumIfs, pure, 2},
    {"SUBTOTAL", 2, manyArguments, "vr", family, "功能代码,引用1,[引用2,…]",
     "返回列表的分类汇总，其中已有的分类汇总不重复计算", subtotal},
    {"ABS", 1, 1, "v", family, "数值", "返回数值的绝对值", ofNumber<[](double x) { return std::fabs(x); }>},
    {"SIGN", 1, 1, "v", family, "数值", "返回数值的符号：正数为1，零为0，负数为-1",
     ofNumber<[](double x) { return static_cast<double>((x > 0) - (x < 0)); }>},
    {"SQRT", 1, 1, "v", family, "数值", "返回数值的正平方根",
     ofNumber<[](double x) { return std::sqrt(x); }>},
    {"POWER", 2, 2, "vv", family, "底数,指数", "返回数值的乘幂",
     ofNumbers<[](double a, double b) { return applyOperator(Op::power, a, b); }>},
    {"EXP", 1, 1, "v", family, "指数", "返回 e 的乘幂", ofNumber<[](double x) { return std::exp(x); }>},
    {"LN", 1, 1, "v", family, "数值", "返回数值的自然对数", ofNumber<[](double x) { return std::log(x); }>},
    {"LOG", 1, 2, "vv", family, "数值,[底数]", "返回数值对指定底数的对数，底数默认为10", logarithm},
    {"LOG10", 1, 1, "v", family, "数值", "返回数值以10为底的对数",
     ofNumber<[](double x) { return std::log10(x); }>},
    {"MOD", 2, 2, "vv", family, "被除数,除数", "返回两数相除的余数，符号与除数相同", ofNumbers<remainder>},
    {"QUOTIENT", 2, 2, "vv", family, "被除数,除数", "返回除法的整数部分", ofNumbers<quotient>},
    {"INT", 1, 1, "v", family, "数值", "将数值向下取整为最接近的整数",
     ofNumber<[](double x) { return std::floor(x); }>},
    {"TRUNC", 1, 2, "vv", family, "数值,[小数位数]", "将数值截去指定位数以后的部分", ofPlaces<roundToward>},
    {"ROUND", 2, 2, "vv", family, "数值,小数位数", "按指定的位数四舍五入", ofPlaces<roundDecimal>},
    {"ROUNDUP", 2, 2, "vv", family, "数值,小数位数", "按指定的位数朝远离零的方向舍入", ofPlaces<roundAway>},
    {"ROUNDDOWN", 2, 2, "vv", family, "数值,小数位数", "按指定的位数朝零的方向舍入", ofPlaces<roundToward>},
    {"MROUND", 2, 2, "vv", family, "数值,倍数", "返回最接近的指定倍数", ofNumbers<multiple>},
    {"CEILING", 2, 2, "vv", family, "数值,倍数", "向上舍入为最接近的指定倍数", ofNumbers<ceiling>},
    {"FLOOR", 2, 2, "vv", family, "数值,倍数", "向下舍入为最接近的指定倍数", ofNumbers<floored>},
    {"EVEN", 1, 1, "v", family, "数值", "朝远离零的方向舍入为最接近的偶数", ofNumber<evenNumber>},
    {"ODD", 1, 1, "v", family, "数值", "朝远离零的方向舍入为最接近的奇数", ofNumber<oddNumber>},
    {"FACT", 1, 1, "v", family, "数值", "返回数值的阶乘", ofNumber<factorial>},
    {"COMBIN", 2, 2, "vv", family, "总数,选取数", "返回从总数中选取若干项的组合数", ofNumbers<combinations>},
    {"GCD", 1, manyArguments, "r", family, "数值1,[数值2,…]", "返回最大公约数",
     ofWholeNumbers<greatestCommonDivisor>},
    {"LCM", 1, manyArguments, "r", family, "数值1,[数值2,…]", "返回最小公倍数",
     ofWholeNumbers<leastCommonMultiple>},
    {"PI", 0, 0, "", family, "", "返回圆周率 π", [](Call&) -> Operand { return std::numbers::pi; }},
    {"RAND", 0, 0, "", family, "", "返回大于等于0且小于1的随机数", randomFraction, isVolatile},
    {"RANDBETWEEN", 2, 2, "vv", family, "最小值,最大值", "返回两数之间的随机整数", ofNumbers<randomBetween>,
     isVolatile},
    {"SIN", 1, 1, "v", family, "弧度", "返回角度的正弦值", ofNumber<[](double x) { return std::sin(x); }>},
    {"COS", 1, 1, "v", family, "弧度", "返回角度的余弦值", ofNumber<[](double x) { return std::cos(x); }>},
    {"TAN", 1, 1, "v", family, "弧度", "返回角度的正切值", ofNumber<[](double x) { return std::tan(x); }>},
    {"ASIN", 1, 1, "v", family, "数值", "返回反正弦值（弧度）",
     ofNumber<[](double x) { return std::asin(x); }>},
    {"ACOS", 1, 1, "v", family, "数值", "返回反余弦值（弧度）",
     ofNumber<[](double x) { return std::acos(x); }>},
    {"ATAN", 1, 1, "v", family, "数值", "返回反正切值（弧度）",
     ofNumber<[](double x) { return std::atan(x); }>},
    {"ATAN2", 2, 2, "vv", family, "x坐标,y坐标", "返回坐标点的反正切值（弧度）", ofNumbers<angleOfPoint>},
    {"DEGREES", 1, 1, "v", family, "弧度", "将弧度转换为角度",
     ofNumber<[](double x) { return x / std::numbers::pi * halfTurn; }>},
    {"RADIANS", 1, 1, "v", family, "角度", "将角度转换为弧度",
     ofNumber<[](double x) { return x / halfTurn * std::numbers::pi; }>},
};

} // namespace

std::span<const FunctionDescriptor> mathematicalFunctions()
{
    return table;
}

} // namespace spreadsheet
