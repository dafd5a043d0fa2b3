#include "spreadsheet/functions/function_families.h"
#include "spreadsheet/functions/number_calls.h"

namespace spreadsheet {

namespace {

/// A letter or a pair that is worth the difference; forms beyond `form` 0 allow bolder pairs.
struct RomanSign {
    std::string_view letters;
    int worth;
    int form;
};

constexpr RomanSign signs[] = {
    {"M", 1000, 0}, {"IM", 999, 4}, {"VM", 995, 3}, {"XM", 990, 2}, {"LM", 950, 1},
    {"CM", 900, 0}, {"D", 500, 0},  {"ID", 499, 4}, {"VD", 495, 3}, {"XD", 490, 2},
    {"LD", 450, 1}, {"CD", 400, 0}, {"C", 100, 0},  {"IC", 99, 2},  {"VC", 95, 1},
    {"XC", 90, 0},  {"L", 50, 0},   {"IL", 49, 2},  {"VL", 45, 1},  {"XL", 40, 0},
    {"X", 10, 0},   {"IX", 9, 0},   {"V", 5, 0},    {"IV", 4, 0},   {"I", 1, 0},
};

std::string romanText(int number, int form)
{
    std::string text;
    for (const RomanSign& sign : signs) {
        for (; sign.form <= form && number >= sign.worth; number -= sign.worth)
            text += sign.letters;
    }
    return text;
}

/// Forms 0 (classic) to 4 (shortest), or TRUE and FALSE for these two.
double formArgument(Call& call)
{
    const Value form = call.value(1);
    if (form.isBoolean())
        return form.boolean() ? 0 : 4;
    return call.number(1, 0);
}

Operand roman(Call& call)
{
    const double number = call.number(0), form = formArgument(call);
    if (call.failed())
        return call.error();
    if (number < 0 || number >= 4000 || form < 0 || form >= 5)
        return CellError::value;
    return Value::text(romanText(static_cast<int>(number), static_cast<int>(form)));
}

int worthOf(char letter)
{
    for (const RomanSign& sign : signs) {
        if (sign.letters.size() == 1 && sign.letters.front() == (letter & ~0x20))
            return sign.worth;
    }
    return 0;
}

/// A letter before a larger one is taken off.
Operand arabic(Call& call)
{
    const std::string typed = call.text(0);
    if (call.failed())
        return call.error();
    std::string_view text = typed;
    while (text.starts_with(' '))
        text.remove_prefix(1);
    while (text.ends_with(' '))
        text.remove_suffix(1);
    const bool negative = text.starts_with('-');
    text.remove_prefix(negative);
    constexpr std::size_t longest = 255;
    if (text.size() > longest || (negative && text.empty()))
        return CellError::value;
    double total = 0;
    int largest = 0; // of the letters behind
    for (std::size_t i = text.size(); i-- > 0;) {
        const int worth = worthOf(text[i]);
        if (worth == 0)
            return CellError::value;
        total += worth < largest ? -worth : worth;
        largest = std::max(largest, worth);
    }
    return negative ? -total : total;
}

constexpr auto romanFamily = FunctionFamily::mathematical;

const FunctionDescriptor romanTable[] = {
    {"ROMAN", 1, 2, "vv", romanFamily, "数值,[形式]", "将数值转换为罗马数字文本", roman},
    {"ARABIC", 1, 1, "v", romanFamily, "文本", "将罗马数字文本转换为数值", arabic},
};

} // namespace

std::span<const FunctionDescriptor> romanFunctions()
{
    return romanTable;
}

} // namespace spreadsheet
