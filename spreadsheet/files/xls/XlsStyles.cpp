#include "spreadsheet/files/xls/XlsStyles.h"

#include "spreadsheet/files/exchange/alignments.h"
#include "spreadsheet/files/exchange/font_family.h"
#include "spreadsheet/files/exchange/line_styles.h"
#include "spreadsheet/files/exchange/number_formats.h"
#include "spreadsheet/files/xls/records.h"
#include "spreadsheet/values/twips.h"

#include <algorithm>
#include <cmath>

namespace spreadsheet {

namespace {

constexpr unsigned firstOwnFormat = 164;
constexpr std::size_t mostCellFormats = 4000; // of 4,050 that programs of the format's time take
constexpr std::size_t mostFonts = 500;
constexpr unsigned mostIndent = 15;
constexpr std::size_t usualFonts = 4; ///< number 4 never stands in a file

} // namespace

XlsStyles::XlsStyles(const StylePool& pool, Warnings& warnings)
    : m_pool(pool)
    , m_warnings(warnings)
    , m_numbers(pool.size())
{
    m_fonts.push_back({pool[0].font, xls::automaticFontColour});
    m_cellFormats.push_back(made(pool[0]));
}

unsigned XlsStyles::colour(Colour colour, unsigned automatic)
{
    return colour == automaticColour ? automatic : m_palette.number(colour);
}

unsigned XlsStyles::font(const CellStyle& style)
{
    const Font wanted{style.font, colour(style.foreground, xls::automaticFontColour)};
    auto found = std::ranges::find(m_fonts, wanted);
    if (found == m_fonts.end()) {
        if (m_fonts.size() >= mostFonts) {
            m_warnings.add("字体太多,一部分单元格改用默认字体");
            return 0;
        }
        m_fonts.push_back(wanted);
        found = m_fonts.end() - 1;
    }
    const auto place = static_cast<unsigned>(found - m_fonts.begin());
    return place == 0 ? 0 : place + usualFonts; // behind the usual ones, number 4 left out
}

unsigned XlsStyles::format(const CellStyle& style)
{
    const std::string code = exportedFormatCode(style, m_warnings);
    if (const auto number = builtInFormatNumber(code))
        return static_cast<unsigned>(*number);
    auto found = std::ranges::find(m_formats, code);
    if (found == m_formats.end()) {
        m_formats.push_back(code);
        found = m_formats.end() - 1;
    }
    return firstOwnFormat + static_cast<unsigned>(found - m_formats.begin());
}

XlsStyles::CellFormat XlsStyles::made(const CellStyle& style)
{
    CellFormat format;
    format.style = &style;
    format.font = font(style);
    format.format = this->format(style);
    const BorderLine* const lines[]{&style.left, &style.right, &style.top, &style.bottom};
    for (std::size_t side = 0; side < 4; ++side) {
        if (fileLineStyle(lines[side]->style) != 0)
            format.colours[side] = colour(lines[side]->colour, Palette::text);
    }
    countLostLines(style, m_warnings);
    format.background = colour(style.background, 0);
    return format;
}

std::uint16_t XlsStyles::cellFormat(std::uint32_t style)
{
    if (style == 0)
        return usual;
    std::uint16_t& number = m_numbers[style];
    if (number == 0 && m_cellFormats.size() >= mostCellFormats) {
        m_warnings.add("单元格格式太多,一部分单元格改用默认格式");
        number = usual;
    }
    if (number == 0) {
        m_cellFormats.push_back(made(m_pool[style]));
        number = static_cast<std::uint16_t>(usual + m_cellFormats.size() - 1);
        if (m_palette.hasApproximated())
            m_warnings.add("颜色超过 56 种,一部分改用最接近的颜色");
    }
    return number;
}

void XlsStyles::writeFont(RecordWriter& writer, const Font& font)
{
    writer.begin(xls::font);
    writer.put16(static_cast<unsigned>(std::lround(font.look.points * twipsPerPoint)));
    writer.put16((font.look.italic ? 2u : 0u) | (font.look.strikeThrough ? 8u : 0u));
    writer.put16(font.colour);
    writer.put16(font.look.bold ? 700 : 400);
    writer.put16(0);
    writer.put8(font.look.underline);
    writer.put8(0);
    writer.put8(134); // the character set of simplified Chinese
    writer.put8(0);
    writer.putShortText(fileFamily(font.look.family.view()));
    writer.end();
}

void XlsStyles::writeCellFormat(RecordWriter& writer, const CellFormat& format, bool isParent)
{
    const CellStyle& style = *format.style;
    const BorderLine* const lines[]{&style.left, &style.right, &style.top, &style.bottom};
    std::uint32_t borders = 0;
    for (unsigned side = 0; side < 4; ++side)
        borders |= static_cast<std::uint32_t>(fileLineStyle(lines[side]->style)) << 4 * side;
    borders |= format.colours[0] << 16 | format.colours[1] << 23;
    const bool isFilled = format.background != 0;
    writer.begin(xls::extendedFormat);
    writer.put16(format.font);
    writer.put16(format.format);
    writer.put16(isParent ? 0xFFF5 : style.locked ? 1u : 0u);
    writer.put8(horizontalNumber(style) | (style.wrap ? 8u : 0u) | verticalNumber(style) << 4);
    writer.put8(style.carried.rotation);
    writer.put8(std::min(indentSteps(style), mostIndent));
    writer.put8(isParent ? 0 : 0xFC); // every group of attributes is the cell's own
    writer.put32(borders);
    writer.put32(format.colours[2] | format.colours[3] << 7 | (isFilled ? 1u << 26 : 0u));
    writer.put16((isFilled ? format.background : Palette::text) | Palette::background << 7);
    writer.end();
}

void XlsStyles::writePalette(RecordWriter& writer) const
{
    if (!m_palette.isChanged())
        return;
    writer.begin(xls::palette);
    writer.put16(Palette::count);
    for (const Colour colour : m_palette.palette().colours())
        writer.put32((colour & 0xFF) << 16 | (colour & 0xFF00) | colour >> 16);
    writer.end();
}

void XlsStyles::write(RecordWriter& writer) const
{
    for (std::size_t i = 0; i < usualFonts; ++i)
        writeFont(writer, m_fonts.front());
    for (std::size_t i = 1; i < m_fonts.size(); ++i)
        writeFont(writer, m_fonts[i]);
    for (std::size_t i = 0; i < m_formats.size(); ++i) {
        writer.begin(xls::format);
        writer.put16(firstOwnFormat + static_cast<unsigned>(i));
        writer.putLongText(m_formats[i]);
        writer.end();
    }
    for (std::uint16_t i = 0; i < usual; ++i) // named styles, of which only the first is used
        writeCellFormat(writer, m_cellFormats.front(), true);
    for (const CellFormat& format : m_cellFormats)
        writeCellFormat(writer, format, false);
    writer.begin(xls::style);
    writer.put16(0x8000);
    writer.put8(0); // "Normal"
    writer.put8(0xFF);
    writer.end();
    writePalette(writer);
}

} // namespace spreadsheet
