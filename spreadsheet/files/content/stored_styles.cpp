#include "spreadsheet/files/content/stored_styles.h"

#include "spreadsheet/files/placing/ContentError.h"

#include <algorithm>

namespace spreadsheet {

namespace {

constexpr float minPoints = 1;
constexpr float maxPoints = 1638;
constexpr std::uint8_t maxDecimals = 15;

enum FontFlag { bold = 1, italic = 2, underline = 4, strikeThrough = 8 };

int flagsOf(const CellFont& font)
{
    return (font.bold ? bold : 0) | (font.italic ? italic : 0) | (font.underline ? underline : 0) |
           (font.strikeThrough ? strikeThrough : 0);
}

stored::BorderLine storedLine(const BorderLine& line)
{
    return {line.colour, static_cast<std::uint8_t>(line.style)};
}

BorderLine readLine(const stored::BorderLine* line)
{
    if (!line)
        return {};
    requireContent(line->style() <= static_cast<int>(lastLineStyle), "边框线型不对");
    return {static_cast<LineStyle>(line->style()), line->colour()};
}

CellFont readFont(const stored::Font& font, const StoredTexts& texts)
{
    requireContent(font.points() >= minPoints && font.points() <= maxPoints, "字号不对");
    return {texts[font.family()], font.points(),    font.bold(),
            font.italic(),        font.underline(), font.strike_through()};
}

CarriedAlignment readCarried(const stored::Style& style)
{
    constexpr int most = static_cast<int>(Spread::distributed), mostDegrees = 180;
    requireContent(
        style.spread_across() <= most && style.spread_down() <= most &&
            (style.rotation() <= mostDegrees || style.rotation() == CarriedAlignment::stackedLetters),
        "对齐方式不对");
    return {static_cast<Spread>(style.spread_across()), static_cast<Spread>(style.spread_down()),
            style.indent(), style.rotation()};
}

CellStyle readStyle(const stored::Style& style, const std::vector<CellFont>& fonts, const StoredTexts& texts)
{
    const auto type = cellTypeOf(style.type());
    requireContent(type.has_value(), "单元格类型不对");
    requireContent(style.decimals() <= maxDecimals, "小数位数不对");
    requireContent(style.horizontal() <= static_cast<int>(HorizontalAlignment::general) &&
                       style.vertical() <= static_cast<int>(VerticalAlignment::bottom),
                   "对齐方式不对");
    requireContent(style.font() < fonts.size(), "字体编号超出范围");
    CellStyle result;
    result.type = *type;
    result.decimals = style.decimals();
    result.horizontal = static_cast<HorizontalAlignment>(style.horizontal());
    result.vertical = static_cast<VerticalAlignment>(style.vertical());
    result.wrap = style.wrap();
    result.locked = style.locked();
    result.foreground = style.foreground();
    result.background = style.background();
    result.font = fonts[style.font()];
    result.left = readLine(style.left());
    result.right = readLine(style.right());
    result.top = readLine(style.top());
    result.bottom = readLine(style.bottom());
    result.numberFormat = texts[style.number_format()];
    result.carried = readCarried(style);
    return result;
}

flatbuffers::Offset<stored::Style> writeStyle(flatbuffers::FlatBufferBuilder& builder, const CellStyle& style,
                                              std::uint32_t font, std::uint32_t numberFormat)
{
    const auto left = storedLine(style.left), right = storedLine(style.right);
    const auto top = storedLine(style.top), bottom = storedLine(style.bottom);
    return stored::CreateStyle(
        builder, static_cast<std::uint8_t>(style.type), std::min(style.decimals, maxDecimals),
        static_cast<std::uint8_t>(style.horizontal), static_cast<std::uint8_t>(style.vertical), style.wrap,
        style.locked, style.foreground, style.background, font, numberFormat, &left, &right, &top, &bottom,
        static_cast<std::uint8_t>(style.carried.across), static_cast<std::uint8_t>(style.carried.down),
        style.carried.indent, style.carried.rotation);
}

} // namespace

std::uint32_t StyleWriter::number(std::uint32_t number)
{
    if (number == 0)
        return 0;
    std::uint32_t& given = m_numbers.at(number);
    if (given == 0) {
        m_used.push_back(number);
        given = static_cast<std::uint32_t>(m_used.size());
    }
    return given;
}

std::uint32_t StyleWriter::fontNumber(const CellFont& font)
{
    // A size that is no number becomes the smallest one.
    const float points = font.points >= minPoints ? std::min(font.points, maxPoints) : minPoints;
    const FontKey key{m_texts.number(font.family), points, flagsOf(font)};
    const auto [entry, fresh] = m_fonts.try_emplace(key, static_cast<std::uint32_t>(m_fontList.size()));
    if (fresh)
        m_fontList.push_back(key);
    return entry->second;
}

void StyleWriter::finish(flatbuffers::FlatBufferBuilder& builder)
{
    std::vector<flatbuffers::Offset<stored::Style>> written;
    for (const std::uint32_t number : m_used) {
        const CellStyle& style = m_pool[number];
        written.push_back(
            writeStyle(builder, style, fontNumber(style.font), m_texts.number(style.numberFormat)));
    }
    styles = builder.CreateVector(written);
    std::vector<flatbuffers::Offset<stored::Font>> writtenFonts;
    for (const auto& [family, points, flags] : m_fontList)
        writtenFonts.push_back(stored::CreateFont(builder, family, points, flags & bold, flags & italic,
                                                  flags & underline, flags & strikeThrough));
    fonts = builder.CreateVector(writtenFonts);
}

std::vector<std::uint32_t> readStyles(const stored::Content& content, const StoredTexts& texts,
                                      StylePool& pool)
{
    std::vector<CellFont> fonts;
    if (content.fonts()) {
        for (const stored::Font* font : *content.fonts())
            fonts.push_back(readFont(*font, texts));
    }
    std::vector<std::uint32_t> numbers{0};
    if (content.styles()) {
        for (const stored::Style* style : *content.styles())
            numbers.push_back(pool.intern(readStyle(*style, fonts, texts)));
    }
    return numbers;
}

} // namespace spreadsheet
