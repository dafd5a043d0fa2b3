#include "spreadsheet/print/cell_backgrounds.h"

#include "spreadsheet/print/page_rect.h"
#include "spreadsheet/print/PageCells.h"
#include "spreadsheet/print/print_colour.h"

#include <QPainter>

namespace spreadsheet {

void drawBackgrounds(QPainter& painter, const PageCells& cells, bool inColour)
{
    const auto colourAt = [&](int row, int column) {
        const PageCell& cell = cells.at(row, column);
        return cell.span < 0 ? cell.style->background : automaticColour;
    };
    for (int row = 0; row < cells.rows(); ++row)
        for (int from = 0; from < cells.columns();) {
            const Colour colour = colourAt(row, from);
            int to = from;
            while (to + 1 < cells.columns() && colourAt(row, to + 1) == colour)
                ++to; // one rectangle: no seams between cells
            if (colour != automaticColour)
                painter.fillRect(rectOf(cells.boxOf(row, from)).united(rectOf(cells.boxOf(row, to))),
                                 printColour(colour, 0xFFFFFF, inColour));
            from = to + 1;
        }
    for (const PageSpan& span : cells.spans())
        if (span.anchor.style->background != automaticColour)
            painter.fillRect(rectOf(span.visible),
                             printColour(span.anchor.style->background, 0xFFFFFF, inColour));
}

} // namespace spreadsheet
