#include "spreadsheet/print/text_decoration.h"

#include <QPainter>

#include <algorithm>

namespace spreadsheet {

void drawDecoration(QPainter& painter, QPointF baseline, double width, double em, TextDecoration decoration,
                    QColor colour)
{
    constexpr double underlineBelow = 0.14; // of the font size, from the baseline: under the CJK em square
    constexpr double strikeAbove = 0.36;    // the middle of a CJK character
    constexpr double thickness = 0.05;
    const double pixel = 1 / painter.deviceTransform().m11(); // a thinner line could vanish between pixels
    const auto line = [&](double top) {
        painter.fillRect(QRectF(baseline.x(), top, width, std::max(em * thickness, pixel)), colour);
    };
    if (decoration.underline)
        line(baseline.y() + em * underlineBelow);
    if (decoration.strikeThrough)
        line(baseline.y() - em * strikeAbove);
}

} // namespace spreadsheet
