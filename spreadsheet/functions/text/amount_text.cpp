// Numbers as texts and back: amounts with a currency sign, numbers in Chinese, texts of other separators.
#include "spreadsheet/calculation/Call.h"
#include "spreadsheet/display/display_text.h"
#include "spreadsheet/display/number_format.h"
#include "spreadsheet/functions/function_families.h"
#include "spreadsheet/values/decimal.h"
#include "spreadsheet/values/decimal_text.h"
#include "spreadsheet/values/number_text.h"
#include "spreadsheet/values/numerals.h"

namespace spreadsheet {

namespace {

/// Digits after the point that a text function takes.
constexpr int mostDecimals = 127;

/// A grouped number; with fewer than no decimals it is rounded before the point.
std::string groupedText(double number, int decimals)
{
    std::string code = "#,##0";
    if (decimals > 0)
        code += "." + std::string(static_cast<std::size_t>(decimals), '0');
    return *formattedText(decimals < 0 ? roundDecimal(number, decimals) : number, code);
}

/// How a currency shows a negative amount: "($1.00)" or "￥-1.00".
struct Currency {
    std::string_view sign;
    int decimals;
    bool inBrackets;
};

constexpr Currency dollar{"$", 2, true};
constexpr Currency renminbi{"￥", 2, false};
constexpr Currency yen{"¥", 0, false};

template <const Currency& currency>
Operand amountText(Call& call)
{
    const double number = call.number(0);
    const int decimals = call.integer(1, currency.decimals);
    if (call.failed())
        return call.error();
    if (decimals > mostDecimals)
        return CellError::value;
    const std::string text = groupedText(std::fabs(number), decimals);
    const bool negative = number < 0 && text.find_first_of("123456789") != text.npos;
    const std::string sign(currency.sign);
    if (!negative)
        return Value::text(sign + text);
    return Value::text(currency.inBrackets ? "(" + sign + text + ")" : sign + "-" + text);
}

/// NUMBERSTRING: 1 一百二十三, 2 壹佰贰拾叁, 3 一二三.
Operand numberString(Call& call)
{
    const double number = call.number(0);
    const int kind = call.integer(1);
    if (call.failed())
        return call.error();
    if (number < 0 || kind < 1 || kind > 3 || number >= 1e16)
        return CellError::num;
    const std::string digits = fixedNumberText(number, 0);
    if (kind == 3)
        return Value::text(numeralDigits(digits, NumeralStyle::chinese));
    return Value::text(numeralText(digits, kind == 1 ? NumeralStyle::chinese : NumeralStyle::chineseFormal));
}

Operand amountInCapitals(Call& call)
{
    const double number = call.number(0);
    if (call.failed())
        return call.error();
    return std::fabs(number) < 1e15 ? Operand(Value::text(writtenAmount(number))) : Operand(CellError::num);
}

void takeOut(std::string& text, std::string_view piece)
{
    for (std::size_t at = 0; (at = text.find(piece, at)) != text.npos;)
        text.erase(at, piece.size());
}

/// NUMBERVALUE: a number written with other signs than "." and ",".
Operand numberOfForeignText(Call& call)
{
    std::string text = call.text(0);
    const std::string point = call.given(1) ? call.text(1).substr(0, 1) : ".";
    const std::string group = call.given(2) ? call.text(2).substr(0, 1) : point == "," ? "." : ",";
    if (call.failed())
        return call.error();
    if (point.empty() || group.empty())
        return CellError::value;
    for (const std::string_view blank : {" ", "\t", "\n", "\r", "　"})
        takeOut(text, blank);
    double divisor = 1;
    for (; text.ends_with('%'); text.pop_back())
        divisor *= 100;
    const std::size_t at = text.find(point);
    std::string whole = text.substr(0, at);
    takeOut(whole, group);
    if (at != text.npos) {
        const std::string fraction = text.substr(at + 1);
        if (fraction.find(group) != fraction.npos || fraction.find(point) != fraction.npos)
            return CellError::value;
        whole += "." + fraction;
    }
    if (text.empty())
        return 0.0;
    const auto number = parseNumber(whole);
    return number ? checked(*number / divisor) : Operand(CellError::value);
}

constexpr auto amountTextFamily = FunctionFamily::text;

const FunctionDescriptor amountTextTable[] = {
    {"DOLLAR", 1, 2, "vv", amountTextFamily, "数值,[小数位数]", "将数值转换为美元格式的文本",
     amountText<dollar>},
    {"USDOLLAR", 1, 2, "vv", amountTextFamily, "数值,[小数位数]", "将数值转换为美元格式的文本",
     amountText<dollar>},
    {"RMB", 1, 2, "vv", amountTextFamily, "数值,[小数位数]", "将数值转换为人民币格式的文本",
     amountText<renminbi>},
    {"YEN", 1, 2, "vv", amountTextFamily, "数值,[小数位数]", "将数值转换为日元格式的文本", amountText<yen>},
    {"RMBDX", 1, 1, "v", amountTextFamily, "金额", "返回人民币金额的中文大写", amountInCapitals},
    {"NUMBERSTRING", 2, 2, "vv", amountTextFamily, "数值,类型",
     "将数值转换为中文数字，1 小写、2 大写、3 逐位", numberString},
    {"NUMBERVALUE", 1, 3, "vvv", amountTextFamily, "文本,[小数点],[分节符]",
     "按指定的小数点和分节符将文本转换为数字", numberOfForeignText},
};

} // namespace

std::span<const FunctionDescriptor> amountTextFunctions()
{
    return amountTextTable;
}

} // namespace spreadsheet
