#pragma once
#include "spreadsheet/print/print_fonts.h"

#include <QColor>
#include <QGlyphRun>
#include <QHash>
#include <QPointF>
#include <QRawFont>
#include <QString>

#include <optional>
#include <unordered_map>
#include <vector>

class QPainter;
class QTextLayout;
class QTextLine;

namespace spreadsheet {

class GlyphRecord;

/// Takes glyphs down in a painter's place.
class GlyphInk {
public:
    virtual ~GlyphInk() = default;
    /// @param baseline  left end of the run, in the painter's units
    /// @param degrees   against the clock, around that point
    virtual void drawGlyphs(QPainter& painter, QPointF baseline, const QGlyphRun& run, const QColor& colour,
                            double degrees) = 0;
};

/// A text laid out in one line, ready to be drawn.
struct TextLine {
    QList<QGlyphRun> runs; ///< positions count from the line's left end on its baseline
    double width = 0;      ///< of a wrapped line without trailing blanks
};

/// Lays out and draws every text of a document's pages, or of a sheet on screen.
class PageText {
public:
    /// @param record  notes every glyph for the text layer of a PDF; may be null
    /// @param twip    length of a twip in the units of all coordinates and widths: 1 on pages
    explicit PageText(GlyphRecord* record = nullptr, double twip = 1)
        : m_fonts(twip)
        , m_record(record)
        , m_twip(twip)
    {
    }

    double twip() const { return m_twip; }
    /// Glyphs go to an ink, which notes them, instead of the painter.
    void useInk(GlyphInk& ink) { m_ink = &ink; }
    /// Keeps laid out lines for the next time they are drawn.
    void keepLines() { m_keepsLines = true; }

    const QFont& font(const FontRequest& request) { return m_fonts.font(request); }

    /// Lines of a text. Line feeds break it; with a wrap width also every line that gets wider (Chinese
    /// text between any two characters). At least one line.
    /// @param font  the very object that font() gave: kept lines are found by it
    std::vector<TextLine> lines(const QString& text, const QFont& font,
                                std::optional<double> wrapWidth = std::nullopt);

    /// @param degrees  against the clock, around the line's left end
    void draw(QPainter& painter, QPointF baseline, const TextLine& line, QColor colour, double degrees = 0);

private:
    struct Key {
        const QFont* font; ///< of m_fonts
        double wrapWidth;
        QString text;
        friend bool operator==(const Key&, const Key&) = default;
    };
    struct KeyHash {
        std::size_t operator()(const Key& key) const
        {
            return qHashMulti(0, key.font, key.wrapWidth, key.text);
        }
    };

    std::vector<TextLine> laidOut(const QString& text, const QFont& font, std::optional<double> wrapWidth);
    std::optional<TextLine> quickLine(const QString& text, const QFont& font);
    void nameGlyphs(const QTextLayout& layout, const QTextLine& line, const TextLine& drawn);

    PrintFonts m_fonts;
    GlyphRecord* m_record;
    GlyphInk* m_ink = nullptr;
    double m_twip;
    bool m_keepsLines = false;
    std::unordered_map<Key, std::vector<TextLine>, KeyHash> m_lines;
    std::unordered_map<const QFont*, QRawFont> m_rawFonts;
};

/// Baseline below the top of a line, and line distance, as parts of the font size. They are set here
/// instead of asked from the font, so that pages are alike with every installed font: a CJK character
/// fills its em square, which reaches from 0.12 below the baseline to 0.88 above it.
inline constexpr double lineDistance = 1.2;
inline constexpr double baselineInLine = 0.98;

} // namespace spreadsheet
