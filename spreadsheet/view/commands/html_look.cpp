#include "spreadsheet/view/commands/html_look.h"

#include "spreadsheet/values/number_text.h"
#include "text/ascii.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace spreadsheet {

namespace {

std::optional<Colour> hexColour(std::string_view digits)
{
    Colour colour = 0;
    const auto [end, failure] = std::from_chars(digits.data(), digits.data() + digits.size(), colour, 16);
    if (failure != std::errc() || end != digits.data() + digits.size())
        return std::nullopt;
    if (digits.size() == 6)
        return colour;
    if (digits.size() != 3)
        return std::nullopt;
    const Colour r = colour >> 8, g = colour >> 4 & 0xF, b = colour & 0xF;
    return (r * 0x11) << 16 | (g * 0x11) << 8 | b * 0x11;
}

std::optional<Colour> componentColour(std::string_view text)
{
    Colour colour = 0;
    for (int component = 0; component < 3; ++component) {
        const std::size_t end = std::min(text.find(','), text.size());
        const auto number = parseNumber(text.substr(0, end));
        if (!number || *number < 0 || *number > 255)
            return std::nullopt;
        colour = colour << 8 | static_cast<Colour>(*number);
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return colour;
}

std::optional<HorizontalAlignment> alignmentOf(std::string_view word)
{
    if (word == "left")
        return HorizontalAlignment::left;
    if (word == "right")
        return HorizontalAlignment::right;
    if (word == "center" || word == "middle")
        return HorizontalAlignment::centre;
    return std::nullopt;
}

bool isBoldWeight(std::string_view word)
{
    const auto weight = parseNumber(word);
    return word == "bold" || word == "bolder" || (weight && *weight >= 600);
}

void addDeclaration(std::string_view property, std::string_view value, HtmlStyle& style)
{
    PastedLook& look = style.look;
    if (property == "font-weight")
        look.bold = isBoldWeight(value);
    else if (property == "font-style")
        look.italic = value == "italic" || value == "oblique";
    else if (property == "text-decoration" || property == "text-decoration-line")
        look.underline = value.find("underline") != std::string_view::npos;
    else if (property == "text-align")
        look.horizontal = alignmentOf(value);
    else if (property == "color")
        look.foreground = parseHtmlColour(value);
    else if (property == "background" || property == "background-color")
        look.background = parseHtmlColour(value);
    else if (property == "mso-number-format")
        style.isText = value.find("\\@") != std::string_view::npos;
}

} // namespace

std::string htmlKeyword(std::string_view text)
{
    constexpr std::string_view blanks = " \t\r\n\f";
    return ascii::lower(ascii::trimmed(text, blanks));
}

std::optional<Colour> parseHtmlColour(std::string_view text)
{
    static constexpr std::array<std::pair<std::string_view, Colour>, 16> named{{
        {"black", 0x000000},
        {"silver", 0xC0C0C0},
        {"gray", 0x808080},
        {"white", 0xFFFFFF},
        {"maroon", 0x800000},
        {"red", 0xFF0000},
        {"purple", 0x800080},
        {"fuchsia", 0xFF00FF},
        {"green", 0x008000},
        {"lime", 0x00FF00},
        {"olive", 0x808000},
        {"yellow", 0xFFFF00},
        {"navy", 0x000080},
        {"blue", 0x0000FF},
        {"teal", 0x008080},
        {"aqua", 0x00FFFF},
    }};
    const std::string word = htmlKeyword(text);
    if (word.starts_with('#'))
        return hexColour(std::string_view(word).substr(1));
    if (word.starts_with("rgb(") && word.ends_with(')'))
        return componentColour(std::string_view(word).substr(4, word.size() - 5));
    const auto found =
        std::ranges::find(named, std::string_view(word), &std::pair<std::string_view, Colour>::first);
    return found == named.end() ? std::nullopt : std::optional(found->second);
}

void addDeclarations(std::string_view declarations, HtmlStyle& style)
{
    while (!declarations.empty()) {
        const std::size_t end = std::min(declarations.find(';'), declarations.size());
        const std::string_view declaration = declarations.substr(0, end);
        if (const std::size_t colon = declaration.find(':'); colon != std::string_view::npos)
            addDeclaration(htmlKeyword(declaration.substr(0, colon)),
                           htmlKeyword(declaration.substr(colon + 1)), style);
        declarations.remove_prefix(std::min(end + 1, declarations.size()));
    }
}

void readStyleSheet(std::string_view sheet, std::map<std::string, HtmlStyle, std::less<>>& rules)
{
    while (true) {
        const std::size_t open = sheet.find('{');
        const std::size_t close = sheet.find('}', open);
        if (open == std::string_view::npos || close == std::string_view::npos)
            return;
        std::string selector = htmlKeyword(sheet.substr(0, open));
        if (const std::size_t line = selector.find_last_of("\n\r>"); line != std::string::npos)
            selector = htmlKeyword(std::string_view(selector).substr(line + 1)); // behind a comment
        const std::size_t dot = selector.find('.');
        const std::string name = dot == std::string::npos ? selector : selector.substr(dot + 1);
        if (dot != std::string::npos || name == "td")
            addDeclarations(sheet.substr(open + 1, close - open - 1), rules[name]);
        sheet.remove_prefix(close + 1);
    }
}

void overlay(PastedLook& look, const PastedLook& over)
{
    const auto take = [](auto& mine, const auto& other) {
        if (other)
            mine = other;
    };
    take(look.bold, over.bold);
    take(look.italic, over.italic);
    take(look.underline, over.underline);
    take(look.foreground, over.foreground);
    take(look.background, over.background);
    take(look.horizontal, over.horizontal);
}

} // namespace spreadsheet
