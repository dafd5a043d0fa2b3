#include "windows/formatting/number_format_choice.h"

#include "spreadsheet/display/cell_types.h"
#include "spreadsheet/display/number_format_code.h"

#include <algorithm>
#include <optional>

namespace selfreport {

// Only the code is stored. What was chosen is found again by making the codes of all choices, so that no
// second reading of codes can disagree with the first.

using Choice = NumberFormatChoice;
using spreadsheet::CellStyle;
using spreadsheet::CellType;
using spreadsheet::Text;

namespace {

constexpr std::string_view capitalsCode = "[人民币大写]";

/// A figure without its sign.
std::string figureCode(const Choice& choice)
{
    std::string code = choice.unit == Choice::Unit::tenThousands ? "[万元]" : "";
    code += choice.isGrouped ? "#,##0" : "0";
    if (choice.decimals > 0)
        code += "." + std::string(static_cast<std::size_t>(choice.decimals), '0');
    if (choice.unit == Choice::Unit::thousands)
        code += ",";
    return choice.kind == Choice::Kind::percent ? code + "%" : code;
}

std::string numberCode(const Choice& choice)
{
    const std::string figure = figureCode(choice);
    const bool inBrackets = choice.negative == Choice::Negative::brackets;
    const std::string apart = choice.isApart ? "_ " : "";
    const std::string positiveEnd = (inBrackets ? "_)" : "") + apart; // digits stand below each other
    const std::string negative = inBrackets                                 ? "(" + figure + ")" + apart
                                 : choice.negative == Choice::Negative::red ? "[Red]-" + figure + apart
                                                                            : "-" + figure + apart;
    if (choice.negative == Choice::Negative::minus && choice.zero == Choice::Zero::digits)
        return figure + positiveEnd;
    std::string code = figure + positiveEnd + ";" + negative;
    if (choice.zero == Choice::Zero::dash)
        code += ";\"–\"" + positiveEnd;
    if (choice.zero == Choice::Zero::blank)
        code += ";" + positiveEnd;
    return code;
}

/// The choice of a kind whose code it is.
std::optional<Choice> numberChoice(Choice::Kind kind, std::string_view code)
{
    constexpr int all = 2 * (mostDecimals + 1) * 3 * 3 * 3 * 2;
    for (int number = 0; number < all; ++number) {
        int rest = number;
        const auto take = [&rest](int count) {
            const int taken = rest % count;
            rest /= count;
            return taken;
        };
        Choice choice;
        choice.kind = kind;
        choice.isGrouped = take(2) == 0;
        choice.isApart = take(2) == 0;
        choice.negative = static_cast<Choice::Negative>(take(3));
        choice.zero = static_cast<Choice::Zero>(take(3));
        choice.unit = static_cast<Choice::Unit>(take(3));
        choice.decimals = take(mostDecimals + 1);
        if (numberCode(choice) == code)
            return choice;
    }
    return std::nullopt;
}

/// The places of whole digits, "#,##0" or "0", with or without their comma.
std::string regroupedPlaces(std::string places, bool isGrouped)
{
    std::erase(places, ',');
    if (!isGrouped) {
        const std::size_t first = std::min(places.find_first_not_of('#'), places.size() - 1);
        return places.substr(first);
    }
    constexpr std::size_t group = 3;
    if (places.size() <= group)
        places.insert(0, group + 1 - places.size(), '#');
    return places.insert(places.size() - group, ",");
}

/// The code with the commas of its figures put in or taken out, section by section; all else stays.
std::string regrouped(std::string_view code, bool isGrouped)
{
    std::string result;
    bool isDone = false; // in this section
    while (!code.empty()) {
        std::size_t size = 1;
        const char c = code.front();
        if (c == '"' || c == '[') {
            size = std::min(code.find(c == '"' ? '"' : ']', 1), code.size() - 1) + 1;
        } else if (c == '\\' || c == '!' || c == '_' || c == '*') {
            size = std::min<std::size_t>(2, code.size());
        } else if (!isDone && std::string_view("0#?").find(c) != std::string_view::npos) {
            isDone = true;
            size = std::min(code.find_first_not_of("0#?,"), code.size());
            while (code[size - 1] == ',')
                --size; // such a comma divides by a thousand
            result += regroupedPlaces(std::string(code.substr(0, size)), isGrouped);
            code.remove_prefix(size);
            continue;
        }
        isDone = isDone && c != ';';
        result += code.substr(0, size);
        code.remove_prefix(size);
    }
    return result;
}

/// What a figure of the cell's type looks like without a code.
Choice choiceOfType(const CellStyle& style)
{
    Choice choice;
    choice.kind = Choice::Kind::byType;
    choice.isGrouped = style.type == CellType::currency;
    choice.decimals = spreadsheet::cellTypeRow(style.type).takesDecimals ? style.decimals : 2;
    return choice;
}

} // namespace

std::string formatCode(const Choice& choice)
{
    switch (choice.kind) {
    case Choice::Kind::byType:
        return {};
    case Choice::Kind::number:
    case Choice::Kind::percent:
        return numberCode(choice);
    case Choice::Kind::date:
        return std::string(dateFormatCodes[choice.date]);
    case Choice::Kind::capitals:
        return std::string(capitalsCode);
    case Choice::Kind::byHand:
        break;
    }
    return choice.byHand;
}

Choice choiceOf(const CellStyle& style)
{
    const std::string_view code = style.numberFormat.view();
    if (code.empty())
        return choiceOfType(style);
    Choice choice;
    const auto date = std::ranges::find(dateFormatCodes, code);
    if (code == capitalsCode) {
        choice.kind = Choice::Kind::capitals;
    } else if (date != dateFormatCodes.end()) {
        choice.kind = Choice::Kind::date;
        choice.date = static_cast<std::size_t>(date - dateFormatCodes.begin());
    } else {
        for (const auto kind : {Choice::Kind::number, Choice::Kind::percent})
            if (const auto found = numberChoice(kind, code))
                return *found;
        choice.kind = Choice::Kind::byHand;
    }
    choice.byHand = code;
    return choice;
}

bool groupsThousands(const CellStyle& style)
{
    if (style.numberFormat.empty())
        return choiceOfType(style).isGrouped;
    const auto sections = spreadsheet::parseFormatCode(style.numberFormat.view());
    return sections && sections->front().grouped;
}

void groupThousands(CellStyle& style, bool isGrouped)
{
    const bool hasNone = spreadsheet::cellTypeRow(style.type).isControl || style.type == CellType::date ||
                         style.type == CellType::time || style.type == CellType::percent;
    const bool isPlain = style.numberFormat.empty();
    if ((isPlain && hasNone) || groupsThousands(style) == isGrouped)
        return;
    const std::string ofType = spreadsheet::formatCodeOfType(style);
    const std::string before =
        isPlain ? (ofType.empty() ? "0.00" : ofType) : std::string(style.numberFormat.view());
    const std::string code = regrouped(before, isGrouped);
    style.numberFormat = code == ofType ? Text() : Text(code); // what the type shows by itself needs none
}

} // namespace selfreport
