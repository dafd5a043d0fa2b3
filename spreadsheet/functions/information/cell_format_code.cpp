#include "spreadsheet/functions/information/cell_format_code.h"

#include "spreadsheet/display/cell_types.h"
#include "spreadsheet/display/number_format_code.h"
#include "text/ascii.h"

#include <algorithm>

namespace spreadsheet {

namespace {

using Kind = FormatPart::Kind;

bool has(const FormatSection& section, Kind kind)
{
    return std::ranges::find(section.parts, kind, &FormatPart::kind) != section.parts.end();
}

/// "D1" 5-Mar-11, "D2" 5-Mar, "D3" Mar-11, "D4" whole dates in digits, "D5" 03/05; "D6" to "D9" times
/// with and without half of the day and seconds.
std::string dateLetters(const FormatSection& section)
{
    const bool year = has(section, Kind::year);
    const bool month = has(section, Kind::month);
    const bool day = has(section, Kind::day);
    if (!year && !month && !day) {
        const bool seconds = has(section, Kind::second);
        if (has(section, Kind::halfDay))
            return seconds ? "D6" : "D7";
        return seconds ? "D8" : "D9";
    }
    const bool named = std::ranges::any_of(
        section.parts, [](const FormatPart& part) { return part.kind == Kind::month && part.count > 2; });
    if (!named)
        return year ? "D4" : "D5";
    return !day ? "D3" : year ? "D1" : "D2";
}

bool showsCurrency(const FormatSection& section)
{
    static constexpr std::string_view signs[] = {"$", "¥", "￥", "€"};
    return std::ranges::any_of(section.parts, [](const FormatPart& part) {
        return part.kind == Kind::literal && std::ranges::any_of(signs, [&](std::string_view sign) {
                   return part.text.find(sign) != std::string::npos;
               });
    });
}

std::string sectionLetters(const FormatSection& section)
{
    if (section.isDate)
        return dateLetters(section);
    if (!has(section, Kind::digit))
        return "G";
    const char* letter = "F";
    if (section.percents > 0)
        letter = "P";
    else if (has(section, Kind::exponent))
        letter = "S";
    else if (showsCurrency(section))
        letter = "C";
    else if (section.grouped)
        letter = ",";
    return letter + std::to_string(section.decimals);
}

/// Square brackets that name a colour.
bool namesColour(std::string_view code)
{
    static constexpr std::string_view colours[] = {"[Red]",  "[Blue]",    "[Green]",  "[Black]",
                                                   "[Cyan]", "[Magenta]", "[Yellow]", "[White]",
                                                   "[Color", "[红色]",    "[蓝色]",   "[绿色]"};
    return std::ranges::any_of(colours, [&](std::string_view colour) {
        return ascii::lower(code).find(ascii::lower(colour)) != std::string::npos;
    });
}

} // namespace

std::string formatCodeLetters(const CellStyle& style)
{
    auto sections = parseFormatCode(style.numberFormat.view());
    if (style.numberFormat.empty() || !sections || sections->empty())
        sections = parseFormatCode(formatCodeOfType(style));
    std::string letters = sections && !sections->empty() ? sectionLetters(sections->front()) : "G";
    if (negativesColoured(style))
        letters += "-";
    if (positivesInBrackets(style))
        letters += "()";
    return letters;
}

bool negativesColoured(const CellStyle& style)
{
    const std::string_view code = style.numberFormat.view();
    const std::size_t second = code.find(';');
    return second != code.npos && namesColour(code.substr(second, code.find(';', second + 1) - second));
}

bool positivesInBrackets(const CellStyle& style)
{
    const std::string_view code = style.numberFormat.view();
    const std::string_view first = code.substr(0, code.find(';'));
    return first.find('(') != first.npos && first.find("_(") == first.npos;
}

} // namespace spreadsheet
