#pragma once
#include "spreadsheet/print/PageText.h"

#include <QByteArray>
#include <QPaintDevice>

#include <memory>

namespace spreadsheet {

/// Takes down what is painted on one page after the other as contents of PDF pages (ISO 32000-1, 8 and 9):
/// lines, filled shapes and glyphs in opaque colours, clipped to rectangles. The toolkit's writer places each
/// glyph by itself, which takes three times as long and as much room; here a run is one text. Of
/// transformations only scales and shifts count.
///
/// Fonts are called "F1", "F2" … in the order of the record's faces, glyphs have their codes there.
class PdfCanvas : public QPaintDevice, public GlyphInk {
public:
    static constexpr int unitsPerTwip = 10; ///< places are whole units

    /// @param record  must outlive the canvas; notes which glyphs are drawn
    explicit PdfCanvas(GlyphRecord& record);
    ~PdfCanvas() override;

    /// Begins a page; a painter may then be opened on the canvas.
    void begin(int paperHeight); ///< points
    /// What was painted since then.
    QByteArray content() const;

    void drawGlyphs(QPainter& painter, QPointF baseline, const QGlyphRun& run, const QColor& colour,
                    double degrees) override;
    QPaintEngine* paintEngine() const override;

protected:
    int metric(PaintDeviceMetric metric) const override;

private:
    class Engine;
    std::unique_ptr<Engine> m_engine;
};

} // namespace spreadsheet
