#include "spreadsheet/files/xls/StyleTable.h"

#include "spreadsheet/files/exchange/alignments.h"
#include "spreadsheet/files/exchange/fill_patterns.h"
#include "spreadsheet/files/exchange/line_styles.h"
#include "spreadsheet/files/exchange/number_formats.h"
#include "spreadsheet/files/xls/records.h"
#include "spreadsheet/values/twips.h"

#include <algorithm>

namespace spreadsheet {

void StyleTable::readFont(const XlsRecord& record, const CodePage& codePage)
{
    Font& font = m_fonts.emplace_back(); // a short one counts as well
    font.look.points = std::clamp(static_cast<float>(record.wordAt(0) / twipsPerPoint), 1.0f, 409.0f);
    const std::uint16_t flags = record.wordAt(2);
    font.look.italic = flags & 0x02;
    font.look.strikeThrough = flags & 0x08;
    font.colour = record.wordAt(4);
    font.look.bold = record.wordAt(6) >= 600;
    font.look.underline = record.byteAt(10) != 0;
    RecordCursor cursor(record);
    cursor.skip(14);
    font.look.family =
        Text(m_version == xls::version8 ? cursor.shortText()
                                        : codePage.decoded(cursor.bytes(cursor.take<std::uint8_t>())));
}

void StyleTable::readFormat(const XlsRecord& record, const CodePage& codePage)
{
    RecordCursor cursor(record);
    const auto number = cursor.take<std::uint16_t>();
    m_formats[number] = m_version == xls::version8
                            ? cursor.longText()
                            : codePage.decoded(cursor.bytes(cursor.take<std::uint8_t>()));
}

void StyleTable::readPalette(const XlsRecord& record)
{
    const unsigned count = std::min<unsigned>(record.wordAt(0), Palette::count);
    for (unsigned i = 0; i < count; ++i) {
        const auto reversed = record.at<std::uint32_t>(2 + 4 * i); // 0xBBGGRR
        m_palette.set(i, (reversed & 0xFF) << 16 | (reversed & 0xFF00) | (reversed >> 16 & 0xFF));
    }
}

StyleTable::CellFormat StyleTable::cellFormat8(const XlsRecord& record)
{
    CellFormat format;
    const std::uint8_t alignment = record.byteAt(6);
    format.horizontal = alignment & 7u;
    format.wrap = alignment & 8;
    format.vertical = alignment >> 4 & 7u;
    format.rotation = record.byteAt(7);
    format.indent = record.byteAt(8) & 0xFu;
    const auto lines = record.at<std::uint32_t>(10), further = record.at<std::uint32_t>(14);
    for (unsigned side = 0; side < 4; ++side)
        format.lines[side] = lines >> 4 * side & 0xF;
    format.isCrossed = lines >> 30 != 0 && (further >> 21 & 0xF) != 0;
    format.colours[0] = lines >> 16 & 0x7F;
    format.colours[1] = lines >> 23 & 0x7F;
    format.colours[2] = further & 0x7F;
    format.colours[3] = further >> 7 & 0x7F;
    format.pattern = further >> 26;
    format.patternColour = record.wordAt(18) & 0x7Fu;
    format.paperColour = record.wordAt(18) >> 7 & 0x7Fu;
    return format;
}

StyleTable::CellFormat StyleTable::cellFormat5(const XlsRecord& record)
{
    CellFormat format;
    const std::uint16_t alignment = record.wordAt(6), paper = record.wordAt(8), bottom = record.wordAt(10);
    const std::uint16_t lines = record.wordAt(12), colours = record.wordAt(14);
    format.horizontal = alignment & 7u;
    format.wrap = alignment & 8;
    format.vertical = alignment >> 4 & 7u;
    constexpr unsigned turns[]{0, CarriedAlignment::stackedLetters, 90, 180};
    format.rotation = turns[alignment >> 8 & 3];
    format.patternColour = paper & 0x7Fu;
    format.paperColour = paper >> 7 & 0x7Fu;
    format.pattern = bottom & 0x3Fu;
    format.lines[3] = bottom >> 6 & 7u;
    format.colours[3] = bottom >> 9;
    format.lines[2] = lines & 7u;
    format.lines[0] = lines >> 3 & 7u;
    format.lines[1] = lines >> 6 & 7u;
    format.colours[2] = lines >> 9;
    format.colours[0] = colours & 0x7Fu;
    format.colours[1] = colours >> 7 & 0x7Fu;
    return format;
}

void StyleTable::readCellFormat(const XlsRecord& record)
{
    m_cellFormats.emplace_back(); // a short one counts as well
    CellFormat format = m_version == xls::version8 ? cellFormat8(record) : cellFormat5(record);
    format.font = record.wordAt(0);
    format.format = record.wordAt(2);
    format.locked = record.wordAt(4) & 1;
    m_cellFormats.back() = format;
}

/// Number 4 never stands in a file.
const StyleTable::Font* StyleTable::font(std::size_t number) const
{
    const std::size_t place = number > 4 ? number - 1 : number;
    return number != 4 && place < m_fonts.size() ? &m_fonts[place] : nullptr;
}

CellFont StyleTable::defaultFont() const
{
    return m_fonts.empty() ? CellFont{Text("宋体"), 12, false, false, false, false} : m_fonts.front().look;
}

void StyleTable::fill(const CellFormat& format, CellStyle& style) const
{
    if (format.pattern == 0)
        return;
    if (format.pattern > 1)
        m_warnings.count("{} 种单元格格式的图案填充改为近似的单色");
    const Colour ink = m_palette[format.patternColour], paper = m_palette[format.paperColour];
    style.background = patternColour(format.pattern, ink, paper);
}

CellStyle StyleTable::made(const CellFormat& format, bool isProtected) const
{
    CellStyle style;
    const auto code = m_formats.find(format.format);
    applyFormatCode(code == m_formats.end() ? builtInFormatCode(format.format, m_country) : code->second,
                    style);
    if (const Font* found = font(format.font)) {
        style.font = found->look;
        if (found->colour != xls::automaticFontColour)
            style.foreground = m_palette[found->colour];
    }
    readAlignment(format.horizontal, format.vertical, style);
    readIndentAndTurn(format.indent, format.rotation, style);
    style.wrap = format.wrap;
    style.locked = format.locked && isProtected;
    BorderLine* const sides[]{&style.left, &style.right, &style.top, &style.bottom};
    for (std::size_t side = 0; side < 4; ++side) {
        const Colour colour = m_palette[format.colours[side]];
        const LineStyle line = readLineStyle(format.lines[side]);
        if (line != LineStyle::none)
            *sides[side] = {line, colour == automaticColour ? 0 : colour};
    }
    fill(format, style);
    return style;
}

std::uint32_t StyleTable::style(std::size_t cellFormat, bool isProtected)
{
    if (cellFormat >= m_cellFormats.size())
        return 0;
    CellFormat& format = m_cellFormats[cellFormat];
    std::uint32_t& number = format.styles[isProtected];
    if (number == 0) {
        number = m_pool.intern(made(format, isProtected));
        if (format.isCrossed)
            m_warnings.count("{} 种单元格格式的斜线没有引入");
    }
    return number;
}

} // namespace spreadsheet
