#include "spreadsheet/functions/function_families.h"
#include "spreadsheet/functions/number_calls.h"
#include "spreadsheet/functions/plain_arguments.h"
#include "spreadsheet/values/decimal.h"

#include <algorithm>

namespace spreadsheet {

namespace {

/// ROUND and its kin: a number and a count of decimal places, 0 if left out.
template <Rounding rounding>
Operand toPlaces(Call& call)
{
    constexpr double farOut = 400; // beyond every digit of a number
    const double number = call.number(0);
    const auto places = static_cast<int>(std::clamp(call.number(1, 0), -farOut, farOut));
    return call.failed() ? call.error() : checked(roundDecimal(number, places, rounding));
}

Operand ceiling(double number, double step)
{
    if (step == 0 || number == 0)
        return 0.0;
    if (number > 0 && step < 0)
        return CellError::num;
    return checked(roundToMultiple(number, step, step < 0 ? Rounding::away : upward(number)));
}

Operand floored(double number, double step)
{
    if (number == 0)
        return 0.0;
    if (step == 0)
        return CellError::div0;
    if (number > 0 && step < 0)
        return CellError::num;
    return checked(roundToMultiple(number, step, step < 0 ? Rounding::toward : downward(number)));
}

Operand multiple(Call& call)
{
    const double number = plainNumber(call, 0);
    const double step = plainNumber(call, 1);
    if (call.failed())
        return call.error();
    if (step == 0 || number == 0)
        return 0.0;
    if ((number < 0) != (step < 0))
        return CellError::num;
    return checked(roundToMultiple(number, step, Rounding::half));
}

double evenNumber(double number)
{
    return roundToMultiple(number, 2, Rounding::away);
}

double oddNumber(double number)
{
    const double whole = roundDecimal(number, 0, Rounding::away);
    const double odd = std::fmod(whole, 2) == 0 ? std::fabs(whole) + 1 : std::fabs(whole);
    return number < 0 ? -odd : odd;
}

/// Multiples above or below a number whatever the sign of the step, 1 if left out. With a third
/// argument other than 0 negative numbers go the other way: away from zero for CEILING.MATH.
template <bool above>
Operand multipleOfSize(Call& call)
{
    const double number = call.number(0);
    const double step = std::fabs(call.given(1) ? call.number(1) : 1);
    const bool mirrored = call.number(2, 0) != 0 && number < 0;
    if (call.failed())
        return call.error();
    if (step == 0 || number == 0)
        return 0.0;
    return checked(roundToMultiple(number, step, above != mirrored ? upward(number) : downward(number)));
}

constexpr auto roundingFamily = FunctionFamily::mathematical;

const FunctionDescriptor roundingTable[] = {
    {"INT", 1, 1, "v", roundingFamily, "数值", "将数值向下取整为最接近的整数",
     ofNumber<[](double x) { return roundDecimal(x, 0, downward(x)); }>},
    {"TRUNC", 1, 2, "vv", roundingFamily, "数值,[小数位数]", "将数值截去指定位数以后的部分",
     toPlaces<Rounding::toward>},
    {"ROUND", 2, 2, "vv", roundingFamily, "数值,小数位数", "按指定的位数四舍五入", toPlaces<Rounding::half>},
    {"ROUNDUP", 2, 2, "vv", roundingFamily, "数值,小数位数", "按指定的位数朝远离零的方向舍入",
     toPlaces<Rounding::away>},
    {"ROUNDDOWN", 2, 2, "vv", roundingFamily, "数值,小数位数", "按指定的位数朝零的方向舍入",
     toPlaces<Rounding::toward>},
    {"MROUND", 2, 2, "vv", roundingFamily, "数值,倍数", "返回最接近的指定倍数", multiple},
    {"CEILING", 2, 2, "vv", roundingFamily, "数值,倍数", "向上舍入为最接近的指定倍数", ofNumbers<ceiling>},
    {"FLOOR", 2, 2, "vv", roundingFamily, "数值,倍数", "向下舍入为最接近的指定倍数", ofNumbers<floored>},
    {"EVEN", 1, 1, "v", roundingFamily, "数值", "朝远离零的方向舍入为最接近的偶数", ofNumber<evenNumber>},
    {"ODD", 1, 1, "v", roundingFamily, "数值", "朝远离零的方向舍入为最接近的奇数", ofNumber<oddNumber>},
    {"CEILING.MATH", 1, 3, "vvv", roundingFamily, "数值,[倍数],[方式]",
     "向上舍入为最接近的指定倍数，方式不为0时负数朝远离零的方向", multipleOfSize<true>},
    {"FLOOR.MATH", 1, 3, "vvv", roundingFamily, "数值,[倍数],[方式]",
     "向下舍入为最接近的指定倍数，方式不为0时负数朝零的方向", multipleOfSize<false>},
    {"CEILING.PRECISE", 1, 2, "vv", roundingFamily, "数值,[倍数]",
     "向上舍入为最接近的指定倍数，不论倍数的符号", multipleOfSize<true>},
    {"ISO.CEILING", 1, 2, "vv", roundingFamily, "数值,[倍数]", "向上舍入为最接近的指定倍数，不论倍数的符号",
     multipleOfSize<true>},
    {"FLOOR.PRECISE", 1, 2, "vv", roundingFamily, "数值,[倍数]", "向下舍入为最接近的指定倍数，不论倍数的符号",
     multipleOfSize<false>},
};

} // namespace

std::span<const FunctionDescriptor> roundingFunctions()
{
    return roundingTable;
}

} // namespace spreadsheet
