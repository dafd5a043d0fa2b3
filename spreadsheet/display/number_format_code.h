#pragma once
#include "spreadsheet/display/CellStyle.h"
#include "spreadsheet/values/numerals.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace spreadsheet {

/// A piece of a number format code.
struct FormatPart {
    enum class Kind {
        literal,
        digit,    ///< "0", "#" or "?" in `text`
        point,    ///< the decimal point
        percent,  ///< shown as it stands
        exponent, ///< "E+", "E-", "e+" or "e-" in `text`; the digits behind it follow
        fraction, ///< "??/??" or "?/8" in `text`
        general,  ///< the number in its general form
        capitals, ///< "[人民币大写]": the amount written out
        text,     ///< "@"
        year,
        month,          ///< by `count`: 1 and 2 digits, 3 and 4 name, 5 first letter
        day,            ///< by `count`: 1 and 2 digits, 3 and 4 English weekday
        chineseWeekday, ///< "aaa" 三, "aaaa" 星期三
        hour,
        minute,
        second,
        secondFraction, ///< ".00" behind seconds; `count` digits
        halfDay,        ///< "AM/PM", "A/P" or "上午/下午" in `text`
        elapsedHours,   ///< "[h]": all of them
        elapsedMinutes,
        elapsedSeconds,
    };
    Kind kind = Kind::literal;
    std::string text;
    int count = 1; ///< letters of a date part
};

/// One of the parts of a code between ";".
struct FormatSection {
    enum class Condition { none, less, lessEqual, equal, notEqual, greater, greaterEqual };

    std::vector<FormatPart> parts;
    Condition condition = Condition::none;
    double limit = 0; ///< of the condition
    NumeralStyle numerals = NumeralStyle::ordinary;

    // Of a section for numbers.
    int integerDigits = 0;
    int decimals = 0;
    bool grouped = false;
    int thousands = 0;            ///< commas behind the last digit or before the point: each divides by 1,000
    int percents = 0;             ///< each multiplies by 100
    int tenThousands = 0;         ///< "[万元]", which no other program knows: each divides by 10,000
    std::optional<Colour> colour; ///< "[Red]", "[红色]"

    bool isDate = false;
    bool inChinese = false;          ///< "[$-804]": names of months, weekdays and halves of a day
    bool holds(double number) const; ///< the condition
};

/// Reads a number format code ("#,##0.00;[Red]-0.0", "yyyy-mm-dd hh:mm", "[>100]0;@"); up to four
/// sections. Nothing if it holds letters without quotes that mean nothing.
std::optional<std::vector<FormatSection>> parseFormatCode(std::string_view code);

/// The English name of a colour, which files have, for the Chinese one of a code ("红色"); other texts stay.
std::string_view englishColourName(std::string_view name);

} // namespace spreadsheet
