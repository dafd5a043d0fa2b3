#pragma once
#include "spreadsheet/print/print_fonts.h"

#include <QColor>
#include <QGlyphRun>
#include <QPointF>
#include <QString>

#include <optional>
#include <vector>

class QPainter;
class QTextLayout;
class QTextLine;

namespace spreadsheet {

class GlyphRecord;

/// A text laid out in one line, ready to be drawn.
struct TextLine {
    QList<QGlyphRun> runs; ///< positions count from the line's left end on its baseline
    double width = 0;      ///< twips; of a wrapped line without trailing blanks
};

/// Lays out and draws every text of a document's pages. Coordinates and widths are twips.
class PageText {
public:
    /// @param record  notes every glyph for the text layer of a PDF; may be null
    explicit PageText(GlyphRecord* record = nullptr)
        : m_record(record)
    {
    }

    const QFont& font(const FontRequest& request) { return m_fonts.font(request); }

    /// Lines of a text. Line feeds break it; with a wrap width also every line that gets wider (Chinese
    /// text between any two characters). At least one line.
    std::vector<TextLine> lines(const QString& text, const QFont& font,
                                std::optional<double> wrapWidth = std::nullopt);

    void draw(QPainter& painter, QPointF baseline, const TextLine& line, QColor colour);

private:
    void nameGlyphs(const QTextLayout& layout, const QTextLine& line, const TextLine& drawn);

    PrintFonts m_fonts;
    GlyphRecord* m_record;
};

/// Baseline below the top of a line, and line distance, as parts of the font size. They are set here
/// instead of asked from the font, so that pages are alike with every installed font: a CJK character
/// fills its em square, which reaches from 0.12 below the baseline to 0.88 above it.
inline constexpr double lineDistance = 1.2;
inline constexpr double baselineInLine = 0.98;

} // namespace spreadsheet
