#include "spreadsheet/print/text_decoration.h"

#include <QPainter>

#include <algorithm>

namespace spreadsheet {

void drawDecoration(QPainter& painter, QPointF baseline, double width, double em, TextDecoration decoration,
                    QColor colour, const TextTurn& turn)
{
    constexpr double underlineBelow = 0.14; // of the font size, from the baseline: under the CJK em square
    constexpr double strikeAbove = 0.36;    // the middle of a CJK character
    constexpr double thickness = 0.05;
    const double pixel = 1 / painter.deviceTransform().m11(); // a thinner line could vanish between pixels
    const auto line = [&](double below) {
        const QRectF rect(0, below, width, std::max(em * thickness, pixel));
        if (turn.isNone())
            return painter.fillRect(rect.translated(baseline), colour);
        const QPointF corners[] = {
            baseline + turn.turned(rect.topLeft()), baseline + turn.turned(rect.topRight()),
            baseline + turn.turned(rect.bottomRight()), baseline + turn.turned(rect.bottomLeft())};
        painter.setPen(Qt::NoPen);
        painter.setBrush(colour);
        painter.drawConvexPolygon(corners, 4);
    };
    if (decoration.underline)
        line(em * underlineBelow);
    if (decoration.strikeThrough)
        line(-em * strikeAbove);
}

} // namespace spreadsheet
