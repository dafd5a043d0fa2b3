#include "spreadsheet/functions/function_families.h"
#include "spreadsheet/functions/plain_arguments.h"
#include "text/ascii.h"

#include <algorithm>
#include <cstdint>

namespace spreadsheet {

// The older functions count in ten digits whose highest bit is the sign, the later ones (BASE, DECIMAL,
// BITAND and its kind) in whole numbers without one. Both are held in 64 bits, where no step of either can
// overflow.

namespace {

constexpr int mostDigits = 10;

/// A number written in a base with at most ten digits; the highest bit of ten digits is its sign.
struct NumberBase {
    int base;
    std::int64_t limit; ///< numbers run from -limit to limit - 1
};

constexpr NumberBase binary{2, 1LL << 9};
constexpr NumberBase octal{8, 1LL << 29};
constexpr NumberBase hexadecimal{16, 1LL << 39};

int digitOf(char c)
{
    if (ascii::isDigit(c))
        return c - '0';
    return ascii::isLetter(c) ? ascii::lower(c) - 'a' + 10 : 36;
}

std::int64_t numberArgument(Call& call, const NumberBase& from)
{
    const std::string digits = plainText(call, 0);
    if (digits.size() > mostDigits) {
        call.fail(CellError::num);
        return 0;
    }
    std::int64_t number = 0;
    for (const char c : digits) {
        if (digitOf(c) >= from.base) {
            call.fail(CellError::num);
            return 0;
        }
        number = number * from.base + digitOf(c);
    }
    return number >= from.limit ? number - 2 * from.limit : number;
}

std::string digitsOf(std::int64_t number, int base)
{
    std::string digits;
    do {
        digits.insert(digits.begin(), "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ"[number % base]);
        number /= base;
    } while (number > 0);
    return digits;
}

/// The second argument says how many digits a number that is not negative fills.
Operand written(Call& call, std::int64_t number, const NumberBase& to)
{
    const double places = call.given(1) ? std::trunc(plainNumber(call, 1)) : 0;
    if (call.failed())
        return call.error();
    if (number < -to.limit || number >= to.limit || places < 0 || places > mostDigits)
        return CellError::num;
    std::string digits = digitsOf(number < 0 ? number + 2 * to.limit : number, to.base);
    if (number < 0 || places == 0)
        return call.given(1) && places == 0 ? Operand(CellError::num) : Operand(Value::text(digits));
    const auto width = static_cast<std::size_t>(places);
    if (digits.size() > width)
        return CellError::num;
    digits.insert(0, width - digits.size(), '0');
    return Value::text(digits);
}

template <const NumberBase& from>
Operand toDecimal(Call& call)
{
    const std::int64_t number = numberArgument(call, from);
    return call.failed() ? call.error() : Operand(static_cast<double>(number));
}

template <const NumberBase& to>
Operand fromDecimal(Call& call)
{
    const double number = std::trunc(plainNumber(call, 0));
    if (!call.failed() && std::fabs(number) > 0x1p40)
        return CellError::num;
    return written(call, static_cast<std::int64_t>(number), to);
}

template <const NumberBase& from, const NumberBase& to>
Operand rewritten(Call& call)
{
    const std::int64_t number = numberArgument(call, from);
    return written(call, number, to);
}

/// BASE: digits of any base from 2 to 36.
Operand inBase(Call& call)
{
    const double number = std::trunc(call.number(0));
    const double base = std::trunc(call.number(1));
    const double width = std::trunc(call.number(2, 0));
    const bool inRange =
        number >= 0 && number < 0x1p53 && base >= 2 && base <= 36 && width >= 0 && width <= 255;
    return inRangeOrNum(call, inRange, [&] {
        std::string digits = digitsOf(static_cast<std::int64_t>(number), static_cast<int>(base));
        const auto filled = static_cast<std::size_t>(width);
        digits.insert(0, filled - std::min(filled, digits.size()), '0');
        return Operand(Value::text(digits));
    });
}

/// DECIMAL: the number that digits of any base name.
Operand fromBase(Call& call)
{
    const std::string digits = call.text(0);
    const double base = std::trunc(call.number(1));
    if (call.failed())
        return call.error();
    if (digits.size() > 255)
        return CellError::value;
    if (base < 2 || base > 36)
        return CellError::num;
    double number = 0;
    for (const char c : digits) {
        if (digitOf(c) >= base)
            return CellError::num;
        number = number * base + digitOf(c);
    }
    return checked(number);
}

constexpr double bitLimit = 0x1p48; ///< numbers of the bit functions are below

/// A whole number of at most 48 bits.
std::uint64_t bitsArgument(Call& call, std::size_t argument)
{
    const double number = call.number(argument);
    if (number >= 0 && number < bitLimit && number == std::trunc(number))
        return static_cast<std::uint64_t>(number);
    call.fail(CellError::num);
    return 0;
}

template <auto combine>
Operand ofBits(Call& call)
{
    const std::uint64_t first = bitsArgument(call, 0);
    const std::uint64_t second = bitsArgument(call, 1);
    return call.failed() ? call.error() : Operand(static_cast<double>(combine(first, second)));
}

/// To the left if `direction` is 1, to the right if it is -1; a negative count goes the other way.
template <int direction>
Operand shifted(Call& call)
{
    const std::uint64_t bits = bitsArgument(call, 0);
    const double places = std::trunc(call.number(1)) * direction;
    if (call.failed())
        return call.error();
    if (std::fabs(places) > 53)
        return CellError::num;
    const double result = std::floor(std::ldexp(static_cast<double>(bits), static_cast<int>(places)));
    return result < bitLimit ? Operand(result) : Operand(CellError::num);
}

constexpr auto numberBaseFamily = FunctionFamily::engineering;

const FunctionDescriptor numberBaseTable[] = {
    {"BIN2DEC", 1, 1, "v", numberBaseFamily, "二进制数", "将二进制数转换为十进制数", toDecimal<binary>},
    {"BIN2HEX", 1, 2, "vv", numberBaseFamily, "二进制数,[位数]", "将二进制数转换为十六进制数",
     rewritten<binary, hexadecimal>},
    {"BIN2OCT", 1, 2, "vv", numberBaseFamily, "二进制数,[位数]", "将二进制数转换为八进制数",
     rewritten<binary, octal>},
    {"DEC2BIN", 1, 2, "vv", numberBaseFamily, "十进制数,[位数]", "将十进制数转换为二进制数",
     fromDecimal<binary>},
    {"DEC2HEX", 1, 2, "vv", numberBaseFamily, "十进制数,[位数]", "将十进制数转换为十六进制数",
     fromDecimal<hexadecimal>},
    {"DEC2OCT", 1, 2, "vv", numberBaseFamily, "十进制数,[位数]", "将十进制数转换为八进制数",
     fromDecimal<octal>},
    {"HEX2BIN", 1, 2, "vv", numberBaseFamily, "十六进制数,[位数]", "将十六进制数转换为二进制数",
     rewritten<hexadecimal, binary>},
    {"HEX2DEC", 1, 1, "v", numberBaseFamily, "十六进制数", "将十六进制数转换为十进制数",
     toDecimal<hexadecimal>},
    {"HEX2OCT", 1, 2, "vv", numberBaseFamily, "十六进制数,[位数]", "将十六进制数转换为八进制数",
     rewritten<hexadecimal, octal>},
    {"OCT2BIN", 1, 2, "vv", numberBaseFamily, "八进制数,[位数]", "将八进制数转换为二进制数",
     rewritten<octal, binary>},
    {"OCT2DEC", 1, 1, "v", numberBaseFamily, "八进制数", "将八进制数转换为十进制数", toDecimal<octal>},
    {"OCT2HEX", 1, 2, "vv", numberBaseFamily, "八进制数,[位数]", "将八进制数转换为十六进制数",
     rewritten<octal, hexadecimal>},
    {"BITAND", 2, 2, "vv", numberBaseFamily, "数值1,数值2", "返回两个数按位“与”的结果",
     ofBits<[](std::uint64_t a, std::uint64_t b) { return a & b; }>},
    {"BITOR", 2, 2, "vv", numberBaseFamily, "数值1,数值2", "返回两个数按位“或”的结果",
     ofBits<[](std::uint64_t a, std::uint64_t b) { return a | b; }>},
    {"BITXOR", 2, 2, "vv", numberBaseFamily, "数值1,数值2", "返回两个数按位“异或”的结果",
     ofBits<[](std::uint64_t a, std::uint64_t b) { return a ^ b; }>},
    {"BITLSHIFT", 2, 2, "vv", numberBaseFamily, "数值,位数", "返回左移若干位的数", shifted<1>},
    {"BITRSHIFT", 2, 2, "vv", numberBaseFamily, "数值,位数", "返回右移若干位的数", shifted<-1>},
    {"BASE", 2, 3, "vvv", FunctionFamily::mathematical, "数值,基数,[最少位数]", "将数值转换为指定基数的文本",
     inBase},
    {"DECIMAL", 2, 2, "vv", FunctionFamily::mathematical, "文本,基数", "将指定基数的文本转换为十进制数",
     fromBase},
};

} // namespace

std::span<const FunctionDescriptor> numberBaseFunctions()
{
    return numberBaseTable;
}

} // namespace spreadsheet
