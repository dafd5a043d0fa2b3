#include "spreadsheet/print/PageText.h"

#include "spreadsheet/print/GlyphPictures.h"
#include "spreadsheet/print/GlyphRecord.h"

#include <QPainter>
#include <QTextBoundaryFinder>
#include <QTextLayout>

#include <algorithm>

namespace spreadsheet {

namespace {

constexpr double unlimited = 1e6; // twips; wider than any paper

/// Characters that the layout turns into one glyph each, in the order of the text.
bool isPlain(char32_t c)
{
    static constexpr struct {
        char32_t first, last;
    } plain[] = {{0x20, 0x7E},     {0xA0, 0xAC},      {0xAE, 0x2FF},    {0x370, 0x482},   {0x48A, 0x58F},
                 {0x1E00, 0x200A}, {0x2010, 0x2027},  {0x202F, 0x205E}, {0x2070, 0x20CF}, {0x2100, 0x3029},
                 {0x3030, 0x3098}, {0x309B, 0xA4CF},  {0xAC00, 0xD7A3}, {0xE000, 0xFAFF}, {0xFE30, 0xFE4F},
                 {0xFF01, 0xFFEE}, {0x20000, 0x3FFFD}};
    return std::ranges::any_of(plain, [c](const auto& range) { return c >= range.first && c <= range.last; });
}

qsizetype glyphCount(const QList<QGlyphRun>& runs)
{
    qsizetype count = 0;
    for (const QGlyphRun& run : runs)
        count += run.glyphIndexes().size();
    return count;
}

/// The characters of a line, if each has exactly one of the runs' glyphs.
std::optional<QList<uint>> plainCharacters(const QString& text, const QList<QGlyphRun>& runs)
{
    QList<uint> characters = text.toUcs4();
    if (!std::ranges::all_of(characters, isPlain))
        return std::nullopt;
    const qsizetype glyphs = glyphCount(runs);
    while (characters.size() > glyphs && characters.last() == ' ')
        characters.removeLast(); // blanks where a line was broken
    if (characters.size() != glyphs)
        return std::nullopt;
    return characters;
}

/// Seldom said twice, and laid out as quickly as found.
bool isFigure(const QString& text)
{
    return std::ranges::all_of(text, [](QChar c) { return c.unicode() >= '+' && c.unicode() <= '9'; });
}

QString textOf(uint character)
{
    const char32_t c = character;
    return QString::fromUcs4(&c, 1);
}

QString withLineSeparators(QString text)
{
    return text.remove(QChar('\r')).replace(QChar('\n'), QChar(QChar::LineSeparator)).replace('\t', ' ');
}

} // namespace

std::vector<TextLine> PageText::lines(const QString& text, const QFont& font, std::optional<double> wrapWidth)
{
    constexpr std::size_t mostLines = 20'000;
    if (!m_keepsLines || isFigure(text))
        return laidOut(text, font, wrapWidth);
    const Key key{&font, wrapWidth.value_or(-1), text};
    if (const auto known = m_lines.find(key); known != m_lines.end())
        return known->second;
    if (m_lines.size() >= mostLines)
        m_lines.clear();
    return m_lines.emplace(key, laidOut(text, font, wrapWidth)).first->second;
}

/// A line of characters that the font's main face has, each with one glyph, without the layout's general
/// road.
std::optional<TextLine> PageText::quickLine(const QString& text, const QFont& font)
{
    const auto isSimple = [](QChar c) {
        return c.unicode() >= 0x20 && !c.isSurrogate() && isPlain(c.unicode());
    };
    if (text.isEmpty() || !std::ranges::all_of(text, isSimple))
        return std::nullopt;
    auto known = m_rawFonts.find(&font);
    if (known == m_rawFonts.end())
        known = m_rawFonts.emplace(&font, QRawFont::fromFont(font)).first;
    const QRawFont& face = known->second;
    const QList<quint32> glyphs = face.glyphIndexesForString(text);
    if (glyphs.size() != text.size() || glyphs.contains(0))
        return std::nullopt;
    const QList<QPointF> advances = face.advancesForGlyphIndexes(glyphs);
    QList<QPointF> places(glyphs.size());
    QPointF place;
    for (qsizetype i = 0; i < glyphs.size(); ++i) {
        places[i] = place;
        place += advances[i];
    }
    if (m_record)
        m_record->name(face, glyphs, text);
    QGlyphRun run;
    run.setRawFont(face);
    run.setGlyphIndexes(glyphs);
    run.setPositions(places);
    return TextLine{{run}, place.x()};
}

std::vector<TextLine> PageText::laidOut(const QString& text, const QFont& font,
                                        std::optional<double> wrapWidth)
{
    if (auto line = quickLine(text, font);
        line && (!wrapWidth || (line->width <= *wrapWidth && !text.endsWith(' '))))
        return {std::move(*line)};
    QTextLayout layout(withLineSeparators(text), font);
    QTextOption option;
    option.setWrapMode(wrapWidth ? QTextOption::WrapAtWordBoundaryOrAnywhere : QTextOption::ManualWrap);
    if (!wrapWidth)
        option.setFlags(QTextOption::IncludeTrailingSpaces);
    layout.setTextOption(option);
    layout.setCacheEnabled(true);
    std::vector<TextLine> lines;
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(wrapWidth ? std::max(*wrapWidth, 1.0) : unlimited);
        line.setPosition({0, -line.ascent()});
        lines.push_back({{}, line.naturalTextWidth()});
    }
    layout.endLayout();
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const QTextLine line = layout.lineAt(static_cast<int>(i));
        lines[i].runs = line.glyphRuns();
        if (m_record)
            nameGlyphs(layout, line, lines[i]);
    }
    if (lines.empty())
        lines.emplace_back();
    return lines;
}

void PageText::nameGlyphs(const QTextLayout& layout, const QTextLine& line, const TextLine& drawn)
{
    const QString text = layout.text().mid(line.textStart(), line.textLength());
    if (const auto characters = plainCharacters(text, drawn.runs)) {
        auto character = characters->begin();
        for (const QGlyphRun& run : drawn.runs)
            for (const quint32 glyph : run.glyphIndexes())
                m_record->name(run.rawFont(), glyph, textOf(*character++));
        return;
    }
    // Ligatures, marks and scripts that reorder: what one user-perceived character drew stands for it.
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    for (qsizetype from = 0, to = finder.toNextBoundary(); to > from;
         from = to, to = finder.toNextBoundary()) {
        const QString cluster = text.mid(from, to - from);
        const auto runs =
            line.glyphRuns(line.textStart() + static_cast<int>(from), static_cast<int>(to - from));
        if (glyphCount(runs) == 1)
            m_record->name(runs.first().rawFont(), runs.first().glyphIndexes().first(), cluster);
    }
}

void PageText::draw(QPainter& painter, QPointF baseline, const TextLine& line, QColor colour, double degrees)
{
    if (m_ink) {
        for (const QGlyphRun& run : line.runs)
            m_ink->drawGlyphs(painter, baseline, run, colour, degrees);
        return;
    }
    const QTransform before = painter.transform();
    if (degrees != 0) {
        painter.translate(baseline);
        painter.rotate(-degrees);
        baseline = {};
    }
    for (const QGlyphRun& run : line.runs) {
        if (m_record)
            m_record->draw(run);
        if (degrees == 0 && GlyphPictures::shared().draw(painter, baseline, run, colour))
            continue;
        painter.setPen(colour);
        painter.drawGlyphRun(baseline, run);
    }
    if (degrees != 0)
        painter.setTransform(before);
}

} // namespace spreadsheet
