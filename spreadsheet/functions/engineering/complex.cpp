#include "spreadsheet/functions/engineering/complex_text.h"
#include "spreadsheet/functions/function_families.h"
#include "spreadsheet/functions/plain_arguments.h"

namespace spreadsheet {

// A complex number is a text here, as cells hold no such kind: every function reads texts and writes one, and
// hands on the letter ("i" or "j") that it was given, because a sheet that mixes both is more likely wrong
// than meant.

namespace {

using Complex = std::complex<double>;

ComplexNumber readComplex(Call& call, const Value& value)
{
    const Value text = value.isBoolean() ? Value(CellError::value) : toText(value);
    if (text.isError()) {
        call.fail(text.error());
        return {};
    }
    if (value.isNumber())
        return {value.number(), 0};
    if (value.isEmpty())
        return {};
    const auto number = parseComplex(text.textView());
    if (!number)
        call.fail(CellError::num);
    return number.value_or(ComplexNumber{});
}

ComplexNumber complexArgument(Call& call, std::size_t argument)
{
    return call.failed() ? ComplexNumber{} : readComplex(call, plainValue(call, argument));
}

Operand complexResult(Complex value, char unit)
{
    if (!std::isfinite(value.real()) || !std::isfinite(value.imag()))
        return CellError::num;
    return Value::text(complexText(value, unit));
}

template <auto function>
Operand ofComplex(Call& call)
{
    const ComplexNumber number = complexArgument(call, 0);
    return call.failed() ? call.error() : complexResult(function(number.value), number.unit);
}

/// Functions with a pole at zero.
template <auto function>
Operand ofNonzero(Call& call)
{
    const ComplexNumber number = complexArgument(call, 0);
    return inRangeOrNum(call, number.value != 0.0,
                        [&] { return complexResult(function(number.value), number.unit); });
}

template <auto function>
Operand partOf(Call& call)
{
    const ComplexNumber number = complexArgument(call, 0);
    return call.failed() ? call.error() : checked(function(number.value));
}

Operand argumentOf(Call& call)
{
    const ComplexNumber number = complexArgument(call, 0);
    if (call.failed())
        return call.error();
    return number.value == 0.0 ? Operand(CellError::div0) : Operand(std::arg(number.value));
}

/// The unit that two numbers share; the call fails if one has "i" and the other "j".
char sharedUnit(Call& call, char first, char second)
{
    if (first != 0 && second != 0 && first != second)
        call.fail(CellError::value);
    return first != 0 ? first : second;
}

template <auto combine>
Operand ofTwo(Call& call)
{
    const ComplexNumber first = complexArgument(call, 0);
    const ComplexNumber second = complexArgument(call, 1);
    const char unit = sharedUnit(call, first.unit, second.unit);
    return call.failed() ? call.error() : complexResult(combine(first.value, second.value), unit);
}

Complex quotient(Complex dividend, Complex divisor)
{
    const double size = std::norm(divisor);
    if (size == 0 || !std::isfinite(size))
        return dividend / divisor;
    const Complex product = dividend * std::conj(divisor);
    return {product.real() / size, product.imag() / size};
}

/// All numbers of all arguments, ranges included.
template <auto combine>
Operand ofMany(Call& call)
{
    std::optional<ComplexNumber> result;
    for (std::size_t argument = 0; argument < call.count() && !call.failed(); ++argument) {
        call.eachValue(argument, [&](const Value& value) {
            if (call.failed() || (value.isEmpty() && call[argument].isReference()))
                return;
            const ComplexNumber number = readComplex(call, value);
            if (!result)
                result = number;
            else
                result = ComplexNumber{combine(result->value, number.value),
                                       sharedUnit(call, result->unit, number.unit)};
        });
    }
    if (call.failed())
        return call.error();
    const ComplexNumber total = result.value_or(ComplexNumber{});
    return complexResult(total.value, total.unit);
}

Operand power(Call& call)
{
    const ComplexNumber number = complexArgument(call, 0);
    const double exponent = plainNumber(call, 1);
    if (call.failed())
        return call.error();
    if (number.value == 0.0)
        return exponent > 0 ? complexResult(0, number.unit) : CellError::num;
    const double size = std::pow(std::abs(number.value), exponent);
    return complexResult(std::polar(size, std::arg(number.value) * exponent), number.unit);
}

Operand composed(Call& call)
{
    const double real = plainNumber(call, 0);
    const double imaginary = plainNumber(call, 1);
    const std::string unit = call.given(2) ? plainText(call, 2) : "i";
    if (call.failed())
        return call.error();
    if (!unit.empty() && unit != "i" && unit != "j")
        return CellError::value;
    return complexResult({real, imaginary}, unit.empty() ? 'i' : unit.front());
}

Complex inverse(Complex value)
{
    return quotient(1, value);
}

constexpr auto complexFamily = FunctionFamily::engineering;

const FunctionDescriptor complexTable[] = {
    {"COMPLEX", 2, 3, "vvv", complexFamily, "实部,虚部,[虚数单位]", "由实部和虚部组成复数", composed},
    {"IMREAL", 1, 1, "v", complexFamily, "复数", "返回复数的实部",
     partOf<[](Complex z) { return z.real(); }>},
    {"IMAGINARY", 1, 1, "v", complexFamily, "复数", "返回复数的虚部",
     partOf<[](Complex z) { return z.imag(); }>},
    {"IMABS", 1, 1, "v", complexFamily, "复数", "返回复数的模",
     partOf<[](Complex z) { return std::abs(z); }>},
    {"IMARGUMENT", 1, 1, "v", complexFamily, "复数", "返回复数的辐角（弧度）", argumentOf},
    {"IMCONJUGATE", 1, 1, "v", complexFamily, "复数", "返回共轭复数",
     ofComplex<[](Complex z) { return std::conj(z); }>},
    {"IMSUM", 1, manyArguments, "r", complexFamily, "复数1,[复数2,…]", "返回多个复数之和",
     ofMany<[](Complex a, Complex b) { return a + b; }>},
    {"IMPRODUCT", 1, manyArguments, "r", complexFamily, "复数1,[复数2,…]", "返回多个复数的乘积",
     ofMany<[](Complex a, Complex b) { return a * b; }>},
    {"IMSUB", 2, 2, "vv", complexFamily, "被减复数,减复数", "返回两个复数之差",
     ofTwo<[](Complex a, Complex b) { return a - b; }>},
    {"IMDIV", 2, 2, "vv", complexFamily, "被除复数,除复数", "返回两个复数的商", ofTwo<quotient>},
    {"IMPOWER", 2, 2, "vv", complexFamily, "复数,指数", "返回复数的乘幂", power},
    {"IMSQRT", 1, 1, "v", complexFamily, "复数", "返回复数的平方根",
     ofComplex<[](Complex z) { return std::sqrt(z); }>},
    {"IMEXP", 1, 1, "v", complexFamily, "复数", "返回以 e 为底的复数乘幂",
     ofComplex<[](Complex z) { return std::exp(z); }>},
    {"IMLN", 1, 1, "v", complexFamily, "复数", "返回复数的自然对数",
     ofNonzero<[](Complex z) { return std::log(z); }>},
    {"IMLOG10", 1, 1, "v", complexFamily, "复数", "返回复数以10为底的对数",
     ofNonzero<[](Complex z) { return std::log(z) / std::log(10.0); }>},
    {"IMLOG2", 1, 1, "v", complexFamily, "复数", "返回复数以2为底的对数",
     ofNonzero<[](Complex z) { return std::log(z) / std::log(2.0); }>},
    {"IMSIN", 1, 1, "v", complexFamily, "复数", "返回复数的正弦",
     ofComplex<[](Complex z) { return std::sin(z); }>},
    {"IMCOS", 1, 1, "v", complexFamily, "复数", "返回复数的余弦",
     ofComplex<[](Complex z) { return std::cos(z); }>},
    {"IMTAN", 1, 1, "v", complexFamily, "复数", "返回复数的正切",
     ofComplex<[](Complex z) { return std::tan(z); }>},
    {"IMCOT", 1, 1, "v", complexFamily, "复数", "返回复数的余切",
     ofNonzero<[](Complex z) { return inverse(std::tan(z)); }>},
    {"IMSEC", 1, 1, "v", complexFamily, "复数", "返回复数的正割",
     ofComplex<[](Complex z) { return inverse(std::cos(z)); }>},
    {"IMCSC", 1, 1, "v", complexFamily, "复数", "返回复数的余割",
     ofNonzero<[](Complex z) { return inverse(std::sin(z)); }>},
    {"IMSINH", 1, 1, "v", complexFamily, "复数", "返回复数的双曲正弦",
     ofComplex<[](Complex z) { return std::sinh(z); }>},
    {"IMCOSH", 1, 1, "v", complexFamily, "复数", "返回复数的双曲余弦",
     ofComplex<[](Complex z) { return std::cosh(z); }>},
    {"IMSECH", 1, 1, "v", complexFamily, "复数", "返回复数的双曲正割",
     ofComplex<[](Complex z) { return inverse(std::cosh(z)); }>},
    {"IMCSCH", 1, 1, "v", complexFamily, "复数", "返回复数的双曲余割",
     ofNonzero<[](Complex z) { return inverse(std::sinh(z)); }>},
};

} // namespace

std::span<const FunctionDescriptor> complexFunctions()
{
    return complexTable;
}

} // namespace spreadsheet
