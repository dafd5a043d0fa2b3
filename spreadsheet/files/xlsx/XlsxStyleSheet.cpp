#include "spreadsheet/files/xlsx/XlsxStyleSheet.h"

#include "spreadsheet/files/exchange/alignments.h"
#include "spreadsheet/files/exchange/font_family.h"
#include "spreadsheet/files/exchange/line_styles.h"
#include "spreadsheet/files/exchange/number_formats.h"
#include "spreadsheet/files/xlsx/XmlWriter.h"

#include <cmath>

namespace spreadsheet {

namespace {

void colour(XmlWriter& xml, std::string_view name, Colour colour)
{
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string rgb = "FF000000";
    for (std::size_t i = 0; i < 6 && colour != automaticColour; ++i)
        rgb[2 + i] = digits[colour >> (20 - 4 * i) & 0xF];
    xml.open(name).attribute("rgb", rgb).close();
}

std::string fontElement(const CellStyle& style)
{
    const CellFont& font = style.font;
    XmlWriter xml;
    xml.open("font");
    const std::pair<bool, const char*> marks[]{
        {font.bold, "b"}, {font.italic, "i"}, {font.strikeThrough, "strike"}, {font.underline, "u"}};
    for (const auto& [isSet, name] : marks) {
        if (isSet)
            xml.open(name).close();
    }
    constexpr double parts = 1e4; // a float has no more, and a double would show more
    xml.open("sz").attribute("val", std::round(static_cast<double>(font.points) * parts) / parts).close();
    if (style.foreground != automaticColour)
        colour(xml, "color", style.foreground);
    xml.open("name").attribute("val", fileFamily(font.family.view())).close();
    return xml.close().take();
}

std::string patternFill(std::string_view pattern, Colour background)
{
    XmlWriter xml;
    xml.open("fill").open("patternFill").attribute("patternType", pattern);
    if (background != automaticColour) {
        colour(xml, "fgColor", background);
        xml.open("bgColor").attribute("indexed", 64).close();
    }
    return xml.close().close().take();
}

std::string borderElement(const CellStyle& style)
{
    XmlWriter xml;
    xml.open("border");
    const std::pair<const char*, const BorderLine&> sides[]{
        {"left", style.left}, {"right", style.right}, {"top", style.top}, {"bottom", style.bottom}};
    for (const auto& [name, line] : sides) {
        xml.open(name);
        if (const unsigned number = fileLineStyle(line.style)) {
            xml.attribute("style", lineNames[number]);
            colour(xml, "color", line.colour);
        }
        xml.close();
    }
    xml.open("diagonal").close();
    return xml.close().take();
}

void alignment(XmlWriter& xml, const CellStyle& style)
{
    xml.open("alignment");
    if (const unsigned across = horizontalNumber(style))
        xml.attribute("horizontal", horizontalNames[across]);
    if (style.vertical != VerticalAlignment::bottom)
        xml.attribute("vertical", verticalNames[verticalNumber(style)]);
    if (style.carried.rotation != 0)
        xml.attribute("textRotation", style.carried.rotation);
    if (style.wrap)
        xml.attribute("wrapText", 1);
    if (const unsigned indent = indentSteps(style))
        xml.attribute("indent", indent);
    xml.close();
}

} // namespace

std::uint32_t XlsxStyleSheet::Elements::number(std::string element)
{
    const auto [entry, isFresh] =
        m_numbers.try_emplace(element, static_cast<std::uint32_t>(m_elements.size()));
    if (isFresh)
        m_elements.push_back(std::move(element));
    return entry->second;
}

void XlsxStyleSheet::Elements::write(XmlWriter& xml, std::string_view name) const
{
    xml.open(name).attribute("count", m_elements.size());
    for (const std::string& element : m_elements)
        xml.raw(element);
    xml.close();
}

XlsxStyleSheet::XlsxStyleSheet(const StylePool& pool, Warnings& warnings)
    : m_pool(pool)
    , m_warnings(warnings)
    , m_numbers(pool.size())
{
    m_fills.number(patternFill("none", automaticColour)); // readers take these two for granted
    m_fills.number(patternFill("gray125", automaticColour));
    cellFormat(0); // that of cells that nobody touched, whose font is the one that widths are counted in
}

std::uint32_t XlsxStyleSheet::cellFormat(std::uint32_t style)
{
    std::uint32_t& number = m_numbers[style];
    if (number == 0)
        number = made(m_pool[style]) + 1;
    return number - 1;
}

std::uint32_t XlsxStyleSheet::numberFormat(const CellStyle& style)
{
    constexpr std::uint32_t firstOwn = 164;
    const std::string code = exportedFormatCode(style, m_warnings);
    if (const auto builtIn = builtInFormatNumber(code))
        return static_cast<std::uint32_t>(*builtIn);
    const auto [entry, isFresh] =
        m_codes.try_emplace(code, firstOwn + static_cast<std::uint32_t>(m_codes.size()));
    if (isFresh) {
        XmlWriter xml;
        xml.open("numFmt").attribute("numFmtId", entry->second).attribute("formatCode", code);
        m_codeElements.push_back(xml.close().take());
    }
    return entry->second;
}

std::uint32_t XlsxStyleSheet::made(const CellStyle& style)
{
    countLostLines(style, m_warnings);
    const std::uint32_t font = m_fonts.number(fontElement(style));
    const std::uint32_t fill =
        style.background == automaticColour ? 0 : m_fills.number(patternFill("solid", style.background));
    XmlWriter xml;
    xml.open("xf")
        .attribute("numFmtId", numberFormat(style))
        .attribute("fontId", font)
        .attribute("fillId", fill)
        .attribute("borderId", m_borders.number(borderElement(style)))
        .attribute("xfId", 0);
    // Never the same as that of untouched cells: a column that has it would count as untouched too.
    for (const char* part : {"NumberFormat", "Font", "Fill", "Border", "Alignment", "Protection"}) {
        if (&style != &m_pool[0])
            xml.attribute(std::string("apply") + part, 1);
    }
    alignment(xml, style);
    if (!style.locked)
        xml.open("protection").attribute("locked", 0).close();
    return m_cellFormats.number(xml.close().take());
}

void XlsxStyleSheet::write(XmlWriter& xml) const
{
    xml.open("styleSheet").attribute("xmlns", "http://schemas.openxmlformats.org/spreadsheetml/2006/main");
    if (!m_codeElements.empty()) {
        xml.open("numFmts").attribute("count", m_codeElements.size());
        for (const std::string& element : m_codeElements)
            xml.raw(element);
        xml.close();
    }
    m_fonts.write(xml, "fonts");
    m_fills.write(xml, "fills");
    m_borders.write(xml, "borders");
    xml.raw("<cellStyleXfs count=\"1\"><xf numFmtId=\"0\" fontId=\"0\" fillId=\"0\" borderId=\"0\"/>"
            "</cellStyleXfs>");
    m_cellFormats.write(xml, "cellXfs");
    xml.raw("<cellStyles count=\"1\"><cellStyle name=\"Normal\" xfId=\"0\" builtinId=\"0\"/></cellStyles>");
    xml.close();
}

} // namespace spreadsheet
