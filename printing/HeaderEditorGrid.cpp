#include "printing/HeaderEditorGrid.h"

#include "printing/header_codes.h"

#include <QPainter>

namespace selfreport {

void HeaderEditorGrid::paintEvent(QPaintEvent* event)
{
    static constexpr const char* columnNames[] = {"Left Justify", "", "Center", "", "Right Justify", ""};
    SpreadsheetControl::paintEvent(event);
    QPainter painter(this);
    const auto paintHeading = [&](const QRect& place, const QString& text) {
        painter.fillRect(place.adjusted(1, 1, -1, -1), palette().color(QPalette::Button));
        painter.setPen(palette().color(QPalette::ButtonText));
        painter.drawText(place, Qt::AlignCenter, text);
    };
    const QRect first = cellRect({1, 1});
    for (int column = 1; column <= columnCount(); ++column)
        if (const QRect cell = cellRect({column, 1}); !cell.isEmpty())
            paintHeading({cell.left(), 0, cell.width(), first.top()},
                         QString::fromUtf8(columnNames[column - 1]));
    for (int row = 1; row <= headerRows; ++row)
        if (const QRect cell = cellRect({1, row}); !cell.isEmpty())
            paintHeading({0, cell.top(), first.left(), cell.height()}, QStringLiteral("Line %1").arg(row));
}

} // namespace selfreport
