#include "spreadsheet/files/xlsx/XlsxStyles.h"

#include "spreadsheet/files/exchange/alignments.h"
#include "spreadsheet/files/exchange/fill_patterns.h"
#include "spreadsheet/files/exchange/font_family.h"
#include "spreadsheet/files/exchange/line_styles.h"
#include "spreadsheet/files/exchange/number_formats.h"
#include "spreadsheet/files/xlsx/xml.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace spreadsheet {

// A cell names a format, which names a font, a fill, four lines and a number format by their place in lists
// of their own; colours in turn may be given outright, by place in a palette, or by a theme with a shade.
// All of it is worked out once a format, not once a cell.

namespace {

/// In the order of the numbers that fill_patterns.h knows.
constexpr std::array<std::string_view, 19> patternNames{
    "none",           "solid",           "mediumGray",    "darkGray",  "lightGray",
    "darkHorizontal", "darkVertical",    "darkDown",      "darkUp",    "darkGrid",
    "darkTrellis",    "lightHorizontal", "lightVertical", "lightDown", "lightUp",
    "lightGrid",      "lightTrellis",    "gray125",       "gray0625"};

template <std::size_t count>
unsigned place(const std::array<std::string_view, count>& names, std::string_view name)
{
    return static_cast<unsigned>(std::ranges::find(names, name) - names.begin());
}

Colour hexColour(std::string_view text)
{
    Colour colour = 0;
    if (text.size() == 8)
        text.remove_prefix(2);
    const auto end = std::from_chars(text.data(), text.data() + text.size(), colour, 16).ptr;
    return text.size() == 6 && end == text.data() + 6 ? colour : automaticColour;
}

/// Darker below 0, lighter above, as share of the way to black or white.
Colour tinted(Colour colour, double tint)
{
    if (colour == automaticColour || tint == 0)
        return colour;
    Colour result = 0;
    for (const int shift : {16, 8, 0}) {
        const double channel = static_cast<double>(colour >> shift & 0xFF);
        const double moved = tint < 0 ? channel * (1 + tint) : channel + (255 - channel) * tint;
        result |= static_cast<Colour>(std::lround(std::clamp(moved, 0.0, 255.0))) << shift;
    }
    return result;
}

/// Such files tell their language by the usual font alone: one for letters only was not chosen in China.
FileCountry countryOf(pugi::xml_node usualFont)
{
    constexpr int westernSet = 0;
    const std::string_view family = attributeNamed(childNamed(usualFont, "name"), "val").value();
    const bool isWestern =
        attributeNamed(childNamed(usualFont, "charset"), "val").as_int(westernSet) == westernSet &&
        std::ranges::all_of(family, [](char c) { return static_cast<unsigned char>(c) < 0x80; });
    return isWestern && !family.empty() && !isChineseFont(family) ? FileCountry::america : FileCountry::china;
}

/// An element that is there without a value means yes.
bool flag(pugi::xml_node node, std::string_view name)
{
    const pugi::xml_node child = childNamed(node, name);
    return child && isTrue(attributeNamed(child, "val"), true);
}

} // namespace

void XlsxStyles::readTheme(pugi::xml_node root)
{
    const pugi::xml_node scheme = childNamed(childNamed(root, "themeElements"), "clrScheme");
    for (const pugi::xml_node entry : scheme.children()) {
        const pugi::xml_node value = entry.first_child();
        const pugi::xml_attribute last = attributeNamed(value, "lastClr");
        m_theme.push_back(hexColour(last ? last.value() : attributeNamed(value, "val").value()));
    }
    // Text and paper come first in the theme, paper and text in the numbers of colours.
    for (const std::size_t pair : {0u, 2u}) {
        if (m_theme.size() > pair + 1)
            std::swap(m_theme[pair], m_theme[pair + 1]);
    }
}

Colour XlsxStyles::colour(pugi::xml_node node) const
{
    const double tint = std::clamp(numberOf(attributeNamed(node, "tint")), -1.0, 1.0);
    if (const pugi::xml_attribute rgb = attributeNamed(node, "rgb"))
        return tinted(hexColour(rgb.value()), tint);
    if (const pugi::xml_attribute theme = attributeNamed(node, "theme")) {
        const unsigned number = theme.as_uint();
        return number < m_theme.size() ? tinted(m_theme[number], tint) : automaticColour;
    }
    if (const pugi::xml_attribute indexed = attributeNamed(node, "indexed"))
        return tinted(m_palette[indexed.as_uint()], tint);
    return automaticColour;
}

XlsxStyles::Font XlsxStyles::font(pugi::xml_node node) const
{
    Font font;
    font.look.family = Text(textOf(attributeNamed(childNamed(node, "name"), "val")));
    constexpr double usualPoints = 11;
    font.look.points = static_cast<float>(
        std::clamp(numberOf(attributeNamed(childNamed(node, "sz"), "val"), usualPoints), 1.0, 409.0));
    font.look.bold = flag(node, "b");
    font.look.italic = flag(node, "i");
    font.look.strikeThrough = flag(node, "strike");
    const pugi::xml_node underline = childNamed(node, "u");
    const std::string_view lines = underline ? attributeNamed(underline, "val").as_string("single") : "none";
    font.look.underline = lines != "none";
    font.isDoubled = lines.starts_with("double");
    const std::string_view raised = attributeNamed(childNamed(node, "vertAlign"), "val").value();
    font.isRaised = raised == "superscript" || raised == "subscript";
    const pugi::xml_node colourNode = childNamed(node, "color");
    // Black by theme is the colour of a text that nobody coloured.
    if (!(attributeNamed(colourNode, "theme").as_int(-1) == 1 && !attributeNamed(colourNode, "tint")))
        font.colour = colour(colourNode);
    return font;
}

XlsxStyles::Fill XlsxStyles::fill(pugi::xml_node node) const
{
    const pugi::xml_node pattern = childNamed(node, "patternFill");
    if (!pattern) // a gradient: its first colour
        return {colour(childNamed(childNamed(childNamed(node, "gradientFill"), "stop"), "color")),
                childNamed(node, "gradientFill") ? "{} 种单元格格式的渐变填充改为单色" : nullptr};
    const unsigned number = place(patternNames, attributeNamed(pattern, "patternType").as_string("none"));
    if (number == 0 || number >= patternNames.size())
        return {};
    return {
        patternColour(number, colour(childNamed(pattern, "fgColor")), colour(childNamed(pattern, "bgColor"))),
        number > 1 ? "{} 种单元格格式的图案填充改为近似的单色" : nullptr};
}

BorderLine XlsxStyles::line(pugi::xml_node node) const
{
    const LineStyle style = readLineStyle(place(lineNames, attributeNamed(node, "style").as_string("none")));
    if (style == LineStyle::none)
        return {};
    const Colour lineColour = colour(childNamed(node, "color"));
    return {style, lineColour == automaticColour ? 0 : lineColour};
}

void XlsxStyles::read(pugi::xml_node root)
{
    unsigned number = 0;
    eachChild(childNamed(childNamed(root, "colors"), "indexedColors"), "rgbColor", [&](pugi::xml_node node) {
        if (number >= Palette::first && number < Palette::first + Palette::count)
            m_palette.set(number - Palette::first, hexColour(attributeNamed(node, "rgb").value()));
        ++number;
    });
    eachChild(childNamed(root, "numFmts"), "numFmt", [this](pugi::xml_node node) {
        m_formats[attributeNamed(node, "numFmtId").as_int()] = textOf(attributeNamed(node, "formatCode"));
    });
    eachChild(childNamed(root, "fonts"), "font",
              [this](pugi::xml_node node) { m_fonts.push_back(font(node)); });
    m_country = countryOf(childNamed(childNamed(root, "fonts"), "font"));
    eachChild(childNamed(root, "fills"), "fill",
              [this](pugi::xml_node node) { m_fills.push_back(fill(node)); });
    eachChild(childNamed(root, "borders"), "border", [this](pugi::xml_node node) {
        const auto side = [&](std::string_view name, std::string_view other) {
            const pugi::xml_node found = childNamed(node, name);
            return line(found ? found : childNamed(node, other));
        };
        const bool isCrossed =
            (isTrue(attributeNamed(node, "diagonalUp")) || isTrue(attributeNamed(node, "diagonalDown"))) &&
            line(childNamed(node, "diagonal")).style != LineStyle::none;
        m_borders.push_back({side("left", "start"), side("right", "end"), line(childNamed(node, "top")),
                             line(childNamed(node, "bottom")), isCrossed});
    });
    eachChild(childNamed(root, "cellXfs"), "xf", [this](pugi::xml_node node) {
        m_cellFormats.push_back({node, {}});
    });
}

CellFont XlsxStyles::defaultFont() const
{
    return m_fonts.empty() ? CellFont{Text("宋体"), 11, false, false, false, false} : m_fonts.front().look;
}

void XlsxStyles::align(pugi::xml_node alignment, CellStyle& style) const
{
    readAlignment(place(horizontalNames, attributeNamed(alignment, "horizontal").value()),
                  place(verticalNames, attributeNamed(alignment, "vertical").as_string("bottom")), style);
    readIndentAndTurn(attributeNamed(alignment, "indent").as_uint(),
                      attributeNamed(alignment, "textRotation").as_uint(), style);
    style.wrap = isTrue(attributeNamed(alignment, "wrapText"));
}

/// Of a format that cells use.
void XlsxStyles::countLosses(pugi::xml_node format) const
{
    const std::size_t font = attributeNamed(format, "fontId").as_uint();
    const std::size_t fill = attributeNamed(format, "fillId").as_uint();
    const std::size_t border = attributeNamed(format, "borderId").as_uint();
    if (font < m_fonts.size() && m_fonts[font].isRaised)
        m_warnings.count("{} 种单元格格式的上标或下标没有引入");
    if (font < m_fonts.size() && m_fonts[font].isDoubled)
        m_warnings.count("{} 种单元格格式的双下划线改为单下划线");
    if (fill < m_fills.size() && m_fills[fill].loss)
        m_warnings.count(m_fills[fill].loss);
    if (border < m_borders.size() && m_borders[border].isCrossed)
        m_warnings.count("{} 种单元格格式的斜线没有引入");
    if (isTrue(attributeNamed(childNamed(format, "alignment"), "shrinkToFit")))
        m_warnings.count("{} 种单元格格式的缩小字体填充没有引入");
    if (isTrue(attributeNamed(childNamed(format, "protection"), "hidden")))
        m_warnings.count("{} 种单元格格式的隐藏公式没有引入");
}

CellStyle XlsxStyles::made(pugi::xml_node format, bool isProtected) const
{
    CellStyle style;
    const int number = attributeNamed(format, "numFmtId").as_int();
    const auto code = m_formats.find(number);
    applyFormatCode(code == m_formats.end() ? builtInFormatCode(number, m_country) : code->second, style);
    const std::size_t font = attributeNamed(format, "fontId").as_uint();
    const std::size_t fill = attributeNamed(format, "fillId").as_uint();
    const std::size_t border = attributeNamed(format, "borderId").as_uint();
    if (font < m_fonts.size()) {
        style.font = m_fonts[font].look;
        style.foreground = m_fonts[font].colour;
    }
    if (fill < m_fills.size())
        style.background = m_fills[fill].colour;
    if (border < m_borders.size()) {
        style.left = m_borders[border].left;
        style.right = m_borders[border].right;
        style.top = m_borders[border].top;
        style.bottom = m_borders[border].bottom;
    }
    align(childNamed(format, "alignment"), style);
    countLosses(format);
    style.locked = isProtected && isTrue(attributeNamed(childNamed(format, "protection"), "locked"), true);
    return style;
}

std::uint32_t XlsxStyles::style(std::size_t cellFormat, bool isProtected)
{
    if (cellFormat >= m_cellFormats.size())
        return 0;
    CellFormat& format = m_cellFormats[cellFormat];
    std::uint32_t& number = format.styles[isProtected];
    if (number == 0)
        number = m_pool.intern(made(format.node, isProtected));
    return number;
}

} // namespace spreadsheet
