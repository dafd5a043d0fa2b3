#pragma once
#include <QGlyphRun>
#include <QImage>
#include <QRawFont>

#include <deque>
#include <unordered_map>

class QPainter;

namespace spreadsheet {

/// Letters of a size and colour on the screen, drawn once by the toolkit and kept as pictures. With fonts
/// whose strokes it thickens (CFF: most Chinese ones) the toolkit blends each letter pixel by pixel through
/// tables, which took more than all else of a frame.
class GlyphPictures {
public:
    /// Those of the user-interface thread, the only one that draws for a screen.
    static GlyphPictures& shared();

    /// Draws a run. False, and nothing is drawn, where pictures do not serve: on other devices than pictures
    /// and windows, turned, larger than letters of headings, transparent.
    bool draw(QPainter& painter, QPointF baseline, const QGlyphRun& run, const QColor& colour);

private:
    struct Glyph {
        QPoint offset; ///< of the picture from the whole pixel at which the letter stands
        QRect place;   ///< on the sheet of pictures; empty: the letter has no ink
    };
    struct Letters {
        QRawFont font;
        double scale = 1; ///< device pixels to one of the font's
        QRgb colour = 0;
        QImage sheet;
        QPoint next; ///< where the next picture may stand
        int rowHeight = 0;
        std::unordered_map<quint32, Glyph> glyphs; ///< by number and quarter of a pixel
    };

    void dropIfTooMany();
    Letters& lettersOf(const QRawFont& font, double scale, QRgb colour);
    const Glyph& glyphOf(Letters& letters, quint32 glyph, int quarter);
    Glyph drawn(Letters& letters, quint32 glyph, int quarter);
    QRect placed(Letters& letters, const QImage& picture, const QRect& inked);

    std::deque<Letters> m_letters;
    Letters* m_last = nullptr; ///< texts come in runs of one look
    qsizetype m_bytes = 0;     ///< of all pictures since they were last dropped
};

} // namespace spreadsheet
