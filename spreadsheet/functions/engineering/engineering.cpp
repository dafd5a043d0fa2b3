#include "spreadsheet/functions/engineering/units.h"
#include "spreadsheet/functions/function_families.h"
#include "spreadsheet/functions/numeric_library.h"
#include "spreadsheet/functions/plain_arguments.h"

#include <boost/math/special_functions/bessel.hpp>

namespace spreadsheet {

namespace {

/// Bessel functions of a whole order that is not negative; K and Y exist only right of zero.
template <auto function, bool rightOfZero>
Operand bessel(Call& call)
{
    const double x = plainNumber(call, 0);
    const double order = plainNumber(call, 1);
    constexpr double farOut = 1e6; // beyond it every method is slow and the result is noise
    const double size = std::fabs(x);
    const bool inRange = order >= 0 && size <= farOut && (!rightOfZero || x > 0);
    // J and I of an order that x comes nowhere near are less than any number.
    const bool vanishes = !rightOfZero && order > farOut && order > 2 * size;
    if (call.failed() || !inRange || (order > farOut && !vanishes))
        return call.failed() ? call.error() : CellError::num;
    if (vanishes)
        return 0.0;
    call.pay(2 * (order + size));
    return call.failed() ? call.error() : checked(function(static_cast<int>(order), x));
}

double besselI(int order, double x)
{
    return boost::math::cyl_bessel_i(order, x, LibraryPolicy());
}

double besselJ(int order, double x)
{
    return boost::math::cyl_bessel_j(order, x, LibraryPolicy());
}

double besselK(int order, double x)
{
    return boost::math::cyl_bessel_k(order, x, LibraryPolicy());
}

double besselY(int order, double x)
{
    return boost::math::cyl_neumann(order, x, LibraryPolicy());
}

Operand errorFunction(Call& call)
{
    const double lower = plainNumber(call, 0);
    const double upper = plainNumber(call, 1, 0);
    if (call.failed())
        return call.error();
    return call.given(1) ? std::erf(upper) - std::erf(lower) : std::erf(lower);
}

template <auto function>
Operand ofPlainNumber(Call& call)
{
    const double number = plainNumber(call, 0);
    return call.failed() ? call.error() : checked(function(number));
}

template <auto compares>
Operand compared(Call& call)
{
    const double number = plainNumber(call, 0);
    const double other = plainNumber(call, 1, 0);
    return call.failed() ? call.error() : Operand(compares(number, other) ? 1.0 : 0.0);
}

Operand converted(Call& call)
{
    const double number = plainNumber(call, 0);
    const std::string from = plainText(call, 1);
    const std::string to = plainText(call, 2);
    if (call.failed())
        return call.error();
    const auto result = convertedUnit(number, from, to);
    return result ? checked(*result) : Operand(CellError::na);
}

double complement(double x)
{
    return std::erfc(x);
}

constexpr auto engineeringFamily = FunctionFamily::engineering;

const FunctionDescriptor engineeringTable[] = {
    {"BESSELI", 2, 2, "vv", engineeringFamily, "数值,阶数", "返回修正的贝塞尔函数 In(x)",
     bessel<besselI, false>},
    {"BESSELJ", 2, 2, "vv", engineeringFamily, "数值,阶数", "返回贝塞尔函数 Jn(x)", bessel<besselJ, false>},
    {"BESSELK", 2, 2, "vv", engineeringFamily, "数值,阶数", "返回修正的贝塞尔函数 Kn(x)",
     bessel<besselK, true>},
    {"BESSELY", 2, 2, "vv", engineeringFamily, "数值,阶数", "返回贝塞尔函数 Yn(x)", bessel<besselY, true>},
    {"ERF", 1, 2, "vv", engineeringFamily, "下限,[上限]", "返回两个界限之间的误差函数", errorFunction},
    {"ERF.PRECISE", 1, 1, "v", engineeringFamily, "数值", "返回从0到数值的误差函数",
     ofPlainNumber<[](double x) { return std::erf(x); }>},
    {"ERFC", 1, 1, "v", engineeringFamily, "数值", "返回从数值到无穷大的互补误差函数",
     ofPlainNumber<complement>},
    {"ERFC.PRECISE", 1, 1, "v", engineeringFamily, "数值", "返回从数值到无穷大的互补误差函数",
     ofPlainNumber<complement>},
    {"DELTA", 1, 2, "vv", engineeringFamily, "数值1,[数值2]", "两个数值相等时返回1，否则返回0",
     compared<[](double a, double b) { return a == b; }>},
    {"GESTEP", 1, 2, "vv", engineeringFamily, "数值,[阈值]", "数值大于等于阈值时返回1，否则返回0",
     compared<[](double a, double b) { return a >= b; }>},
    {"CONVERT", 3, 3, "vvv", engineeringFamily, "数值,原单位,新单位", "将数值从一种度量单位转换为另一种",
     converted},
};

} // namespace

std::span<const FunctionDescriptor> engineeringFunctions()
{
    return engineeringTable;
}

} // namespace spreadsheet
