#include "spreadsheet/functions/dates/day_counts.h"
#include "spreadsheet/functions/function_families.h"
#include "spreadsheet/functions/plain_arguments.h"
#include "spreadsheet/values/decimal.h"
#include "text/ascii.h"

#include <array>

namespace spreadsheet {

// Amounts in words are read aloud in groups of six digits, each like a number of its own, with words of their
// own for a trailing one and for twenty; so spelling works on decimal digits as they are shown, never on the
// binary number.

namespace {

constexpr std::array<std::string_view, 10> digitWords{"ศูนย์", "หนึ่ง", "สอง", "สาม", "สี่",
                                                      "ห้า",  "หก",  "เจ็ด", "แปด", "เก้า"};
/// From the hundred thousands down to the ones.
constexpr std::array<std::string_view, 6> placeWords{"แสน", "หมื่น", "พัน", "ร้อย", "สิบ", ""};
constexpr std::array<std::string_view, 7> dayNames{"วันอาทิตย์",  "วันจันทร์", "วันอังคาร", "วันพุธ",
                                                   "วันพฤหัสบดี", "วันศุกร์",  "วันเสาร์"};
constexpr std::array<std::string_view, 12> monthNames{"มกราคม",  "กุมภาพันธ์", "มีนาคม",    "เมษายน",
                                                      "พฤษภาคม", "มิถุนายน",  "กรกฎาคม",  "สิงหาคม",
                                                      "กันยายน",  "ตุลาคม",   "พฤศจิกายน", "ธันวาคม"};

/// Below a million. A one behind other digits and a two before ten have words of their own.
std::string groupWords(std::string_view digits, bool behindOthers)
{
    std::string words;
    for (std::size_t i = 0; i < digits.size(); ++i) {
        const int digit = digits[i] - '0';
        const std::size_t place = placeWords.size() - digits.size() + i;
        if (digit == 0)
            continue;
        const bool isTen = place == 4;
        if (place == 5 && digit == 1 && (behindOthers || !words.empty()))
            words += "เอ็ด";
        else if (isTen && digit == 2)
            words += "ยี่";
        else if (!(isTen && digit == 1))
            words += digitWords[static_cast<std::size_t>(digit)];
        words += placeWords[place];
    }
    return words;
}

/// Digits of a whole number in words; groups of six digits are millions of what stands before.
std::string wholeWords(std::string_view digits)
{
    std::string words;
    while (!digits.empty()) {
        const std::size_t size = digits.size() % 6 == 0 ? 6 : digits.size() % 6;
        words += groupWords(digits.substr(0, size), !words.empty());
        digits.remove_prefix(size);
        if (!digits.empty() && !words.empty())
            words += "ล้าน";
    }
    return words;
}

/// Decimal digits of a number before and behind the point, at most two behind if it is an amount.
struct SpelledNumber {
    std::string whole;
    std::string fraction;
    bool negative = false;
};

SpelledNumber spelled(double number, bool asAmount)
{
    Decimal shown = shownDecimal(number);
    if (asAmount)
        shown.roundTo(2);
    return {shown.whole(), shown.fraction(), shown.negative && shown.coefficient != 0};
}

Operand amountWords(Call& call)
{
    const double number = call.number(0);
    if (call.failed())
        return call.error();
    SpelledNumber parts = spelled(number, true);
    std::string words = parts.negative ? "ลบ" : "";
    if (!parts.whole.empty())
        words += wholeWords(parts.whole) + "บาท";
    if (parts.fraction.size() == 1)
        parts.fraction += '0';
    if (!parts.fraction.empty())
        words += wholeWords(parts.fraction) + "สตางค์";
    else
        words += parts.whole.empty() ? "ศูนย์บาทถ้วน" : "ถ้วน";
    return Value::text(words);
}

std::string digitByDigit(std::string_view digits)
{
    std::string words;
    for (const char c : digits) {
        if (ascii::isDigit(c))
            words += digitWords[static_cast<std::size_t>(c - '0')];
        else if (c == '.')
            words += "จุด";
        else if (c == '-')
            words += "ลบ";
    }
    return words;
}

Operand numberWords(Call& call)
{
    const double number = call.number(0);
    if (call.failed())
        return call.error();
    const SpelledNumber parts = spelled(number, false);
    std::string words = parts.negative ? "ลบ" : "";
    words += parts.whole.empty() ? std::string(digitWords[0]) : wholeWords(parts.whole);
    if (!parts.fraction.empty())
        words += "จุด" + digitByDigit(parts.fraction);
    return Value::text(words);
}

constexpr std::string_view thaiDigitLead = "\xE0\xB9"; ///< of the UTF-8 bytes of ๐ to ๙
constexpr unsigned char thaiZero = 0x90;               ///< the third byte of ๐

Operand thaiDigits(Call& call)
{
    const std::string text = call.text(0);
    std::string written;
    for (const char c : text) {
        if (c < '0' || c > '9')
            written += c;
        else
            written.append(thaiDigitLead) += static_cast<char>(thaiZero + (c - '0'));
    }
    return call.failed() ? call.error() : Operand(Value::text(written));
}

Operand allThaiDigits(Call& call)
{
    const std::string text = call.text(0);
    bool all = !text.empty() && text.size() % 3 == 0;
    for (std::size_t i = 0; all && i < text.size(); i += 3) {
        const auto last = static_cast<unsigned char>(text[i + 2]);
        all =
            std::string_view(text).substr(i, 2) == thaiDigitLead && last >= thaiZero && last < thaiZero + 10;
    }
    return call.failed() ? call.error() : truth(all);
}

/// Signs above and below a letter take no room of their own: U+0E31, U+0E34 to U+0E3A, U+0E47 to U+0E4E.
bool standsOverLetter(std::string_view bytes)
{
    const auto last = static_cast<unsigned char>(bytes[2]);
    if (bytes.starts_with("\xE0\xB8"))
        return last == 0xB1 || (last >= 0xB4 && last <= 0xBA);
    return bytes.starts_with("\xE0\xB9") && last >= 0x87 && last <= 0x8E;
}

Operand thaiLength(Call& call)
{
    const std::string text = call.text(0);
    double length = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool beginsCharacter = (text[i] & 0xC0) != 0x80;
        length +=
            beginsCharacter && !(i + 2 < text.size() && standsOverLetter(std::string_view(text).substr(i)));
    }
    return call.failed() ? call.error() : Operand(length);
}

constexpr double quarter = 0.25; ///< the smallest coin in use

const FunctionDescriptor thaiTable[] = {
    {"BAHTTEXT", 1, 1, "v", FunctionFamily::text, "数值", "将数值转换为泰铢大写文本", amountWords},
    {"THAINUMSOUND", 1, 1, "v", FunctionFamily::text, "数值", "将数值转换为泰语读法", numberWords},
    {"THAINUMSTRING", 1, 1, "v", FunctionFamily::text, "数值", "将数值逐位转换为泰语文字",
     [](Call& call) -> Operand {
         const std::string text = call.text(0);
         return call.failed() ? call.error() : Operand(Value::text(digitByDigit(text)));
     }},
    {"THAIDIGIT", 1, 1, "v", FunctionFamily::text, "文本", "将数字转换为泰文数字", thaiDigits},
    {"ISTHAIDIGIT", 1, 1, "v", FunctionFamily::information, "文本", "文本全部为泰文数字时返回 TRUE",
     allThaiDigits},
    {"THAISTRINGLENGTH", 1, 1, "v", FunctionFamily::text, "文本", "返回泰文文本的长度，不计上下标符号",
     thaiLength},
    {"ROUNDBAHTDOWN", 1, 1, "v", FunctionFamily::mathematical, "数值", "将泰铢金额向下舍入为0.25的倍数",
     [](Call& call) -> Operand {
         const double amount = call.number(0);
         return call.failed() ? call.error() : checked(roundToMultiple(amount, quarter, downward(amount)));
     }},
    {"ROUNDBAHTUP", 1, 1, "v", FunctionFamily::mathematical, "数值", "将泰铢金额向上舍入为0.25的倍数",
     [](Call& call) -> Operand {
         const double amount = call.number(0);
         return call.failed() ? call.error() : checked(roundToMultiple(amount, quarter, upward(amount)));
     }},
    {"THAIDAYOFWEEK", 1, 1, "v", FunctionFamily::dateAndTime, "日期", "返回日期的泰语星期",
     [](Call& call) -> Operand {
         const int day = dayArgument(call, 0);
         return call.failed() ? call.error()
                              : Operand(Value::text(dayNames[static_cast<std::size_t>(weekdayOf(day))]));
     }},
    {"THAIMONTHOFYEAR", 1, 1, "v", FunctionFamily::dateAndTime, "日期", "返回日期的泰语月份",
     [](Call& call) -> Operand {
         const int month = dayOfSerial(dayArgument(call, 0))->month;
         return call.failed() ? call.error()
                              : Operand(Value::text(monthNames[static_cast<std::size_t>(month - 1)]));
     }},
    {"THAIYEAR", 1, 1, "v", FunctionFamily::dateAndTime, "日期", "返回日期的佛历年份",
     [](Call& call) -> Operand {
         constexpr int yearsOfBuddha = 543; ///< the Buddhist era began so much earlier
         const int year = dayOfSerial(dayArgument(call, 0))->year;
         return call.failed() ? call.error() : Operand(static_cast<double>(year + yearsOfBuddha));
     }},
};

} // namespace

std::span<const FunctionDescriptor> thaiFunctions()
{
    return thaiTable;
}

} // namespace spreadsheet
