#pragma once
#include "spreadsheet/print/PageText.h"
#include "spreadsheet/view/CellGeometry.h"

#include <QPalette>

class QPainter;
class QRegion;

namespace spreadsheet {

class Selection;

/// Paints the headings of rows and columns in the palette of the surroundings, those of selected cells
/// marked.
class HeadingPainter {
public:
    explicit HeadingPainter(double zoom);

    /// @param columnTexts  shown for the first columns instead of their letters
    /// @param region  what is to be painted, in the widget
    void paint(QPainter& painter, const CellGeometry& geometry, const Selection& selection,
               const QPalette& palette, const QStringList& columnTexts, const QRegion& region);

    /// Of the lines between headings.
    static QColor lineColour(const QPalette& palette);

private:
    void paintOne(QPainter& painter, const QRect& rect, const QString& label, int state,
                  const QPalette& palette);

    double m_zoom;
    PageText m_text;
};

} // namespace spreadsheet
