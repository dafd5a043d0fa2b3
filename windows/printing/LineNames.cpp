#include "windows/printing/LineNames.h"

#include "spreadsheet/view/SpreadsheetControl.h"
#include "windows/printing/header_codes.h"

#include <QPainter>

namespace selfreport {

LineNames::LineNames(const spreadsheet::SpreadsheetControl& grid)
    : m_grid(grid)
{
    connect(&grid, &spreadsheet::SpreadsheetControl::viewChanged, this, [this] { update(); });
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Expanding);
}

QSize LineNames::sizeHint() const
{
    return {fontMetrics().horizontalAdvance(QStringLiteral(" Line 9 ")), 0};
}

void LineNames::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    for (int row = 1; row <= headerRows; ++row) {
        const QRect cell = m_grid.cellRect({1, row});
        if (cell.isEmpty())
            continue;
        const QRect place(0, cell.top(), width() - 1, cell.height() - 1);
        painter.setPen(palette().color(QPalette::Mid));
        painter.drawLine(place.bottomLeft(), place.bottomRight());
        painter.setPen(palette().color(QPalette::ButtonText));
        painter.drawText(place, Qt::AlignCenter, QStringLiteral("Line %1").arg(row));
    }
}

} // namespace selfreport
