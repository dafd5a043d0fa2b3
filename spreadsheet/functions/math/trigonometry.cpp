#include "spreadsheet/functions/function_families.h"
#include "spreadsheet/functions/number_calls.h"

#include <numbers>

namespace spreadsheet {

namespace {

constexpr double halfTurn = 180; ///< degrees

/// A function of an angle in radians; angles too large to name a place on the circle are #NUM!.
template <auto function>
Operand ofAngle(Call& call)
{
    constexpr double limit = 0x1p27;
    const double angle = call.number(0);
    if (call.failed())
        return call.error();
    return std::fabs(angle) < limit ? checked(function(angle)) : Operand(CellError::num);
}

/// The inverse of a function that is zero at zero, of an angle or of any number.
template <auto function, bool ofAnAngle>
Operand inverseOf(Call& call)
{
    const double number = call.number(0);
    if (!call.failed() && number == 0)
        return CellError::div0;
    constexpr auto inverse = [](double x) { return 1 / function(x); };
    return ofAnAngle ? ofAngle<inverse>(call) : ofNumber<inverse>(call);
}

double sine(double x)
{
    return std::sin(x);
}
double cosine(double x)
{
    return std::cos(x);
}
double tangent(double x)
{
    return std::tan(x);
}
double hyperbolicSine(double x)
{
    return std::sinh(x);
}
double hyperbolicTangent(double x)
{
    return std::tanh(x);
}

Operand angleOfPoint(double x, double y)
{
    return x == 0 && y == 0 ? Operand(CellError::div0) : Operand(std::atan2(y, x));
}

constexpr auto trigonometricFamily = FunctionFamily::mathematical;

const FunctionDescriptor trigonometricTable[] = {
    {"PI", 0, 0, "", trigonometricFamily, "", "返回圆周率 π",
     [](Call&) -> Operand { return std::numbers::pi; }},
    {"SIN", 1, 1, "v", trigonometricFamily, "弧度", "返回角度的正弦值", ofAngle<sine>},
    {"COS", 1, 1, "v", trigonometricFamily, "弧度", "返回角度的余弦值", ofAngle<cosine>},
    {"TAN", 1, 1, "v", trigonometricFamily, "弧度", "返回角度的正切值", ofAngle<tangent>},
    {"COT", 1, 1, "v", trigonometricFamily, "弧度", "返回角度的余切值", inverseOf<tangent, true>},
    {"SEC", 1, 1, "v", trigonometricFamily, "弧度", "返回角度的正割值",
     ofAngle<[](double x) { return 1 / std::cos(x); }>},
    {"CSC", 1, 1, "v", trigonometricFamily, "弧度", "返回角度的余割值", inverseOf<sine, true>},
    {"ASIN", 1, 1, "v", trigonometricFamily, "数值", "返回反正弦值（弧度）",
     ofNumber<[](double x) { return std::asin(x); }>},
    {"ACOS", 1, 1, "v", trigonometricFamily, "数值", "返回反余弦值（弧度）",
     ofNumber<[](double x) { return std::acos(x); }>},
    {"ATAN", 1, 1, "v", trigonometricFamily, "数值", "返回反正切值（弧度）",
     ofNumber<[](double x) { return std::atan(x); }>},
    {"ATAN2", 2, 2, "vv", trigonometricFamily, "x坐标,y坐标", "返回坐标点的反正切值（弧度）",
     ofNumbers<angleOfPoint>},
    {"ACOT", 1, 1, "v", trigonometricFamily, "数值", "返回反余切值（弧度，0到π）",
     ofNumber<[](double x) { return std::numbers::pi / 2 - std::atan(x); }>},
    {"SINH", 1, 1, "v", trigonometricFamily, "数值", "返回双曲正弦值", ofNumber<hyperbolicSine>},
    {"COSH", 1, 1, "v", trigonometricFamily, "数值", "返回双曲余弦值",
     ofNumber<[](double x) { return std::cosh(x); }>},
    {"TANH", 1, 1, "v", trigonometricFamily, "数值", "返回双曲正切值", ofNumber<hyperbolicTangent>},
    {"COTH", 1, 1, "v", trigonometricFamily, "数值", "返回双曲余切值", inverseOf<hyperbolicTangent, false>},
    {"SECH", 1, 1, "v", trigonometricFamily, "数值", "返回双曲正割值",
     ofNumber<[](double x) { return 1 / std::cosh(x); }>},
    {"CSCH", 1, 1, "v", trigonometricFamily, "数值", "返回双曲余割值", inverseOf<hyperbolicSine, false>},
    {"ASINH", 1, 1, "v", trigonometricFamily, "数值", "返回反双曲正弦值",
     ofNumber<[](double x) { return std::asinh(x); }>},
    {"ACOSH", 1, 1, "v", trigonometricFamily, "数值", "返回反双曲余弦值",
     ofNumber<[](double x) { return std::acosh(x); }>},
    {"ATANH", 1, 1, "v", trigonometricFamily, "数值", "返回反双曲正切值",
     ofNumber<[](double x) { return std::atanh(x); }>},
    {"ACOTH", 1, 1, "v", trigonometricFamily, "数值", "返回反双曲余切值",
     ofNumber<[](double x) { return std::atanh(1 / x); }>},
    {"DEGREES", 1, 1, "v", trigonometricFamily, "弧度", "将弧度转换为角度",
     ofNumber<[](double x) { return x / std::numbers::pi * halfTurn; }>},
    {"RADIANS", 1, 1, "v", trigonometricFamily, "角度", "将角度转换为弧度",
     ofNumber<[](double x) { return x / halfTurn * std::numbers::pi; }>},
};

} // namespace

std::span<const FunctionDescriptor> trigonometricFunctions()
{
    return trigonometricTable;
}

} // namespace spreadsheet
