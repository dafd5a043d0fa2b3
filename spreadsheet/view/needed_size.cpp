#include "spreadsheet/view/needed_size.h"

#include "spreadsheet/display/cell_indent.h"
#include "spreadsheet/print/CellBehaviour.h"
#include "spreadsheet/print/grown_rows.h"
#include "spreadsheet/print/PageCells.h"
#include "spreadsheet/print/PageText.h"
#include "spreadsheet/print/turned_text.h"
#include "spreadsheet/view/commands/structure.h"
#include "spreadsheet/workbook/Sheet.h"

#include <algorithm>
#include <cmath>

namespace spreadsheet {

namespace {

constexpr double paddingAcross = 110; // twips beside a text, the grid line included
constexpr int leastWidth = 240;
constexpr int gap = 20; // between a text and what stands beside it

} // namespace

int shownRowHeight(const Sheet& sheet, int row)
{
    PageText text;
    const std::map<int, int> grown = grownRows(sheet, row, row, text);
    return grown.empty() ? sheet.settings().rows.size(row) : grown.begin()->second;
}

int neededRowHeight(const Sheet& sheet, int row)
{
    PageText text;
    double needed = defaultRowHeight;
    for (int column = 1; column <= sheet.storedColumns(); ++column)
        needed = std::max(needed, neededCellHeight(sheet, {column, row}, text));
    return std::min(static_cast<int>(std::ceil(needed)), maxLineSize);
}

int neededColumnWidth(const Sheet& sheet, int column)
{
    const Column* cells = sheet.column(column);
    if (!cells)
        return defaultColumnWidth;
    PageText text;
    double needed = 0;
    for (const Column::Slot& slot : cells->slots())
        for (int row = slot.firstRow; row <= slot.lastRow(); ++row) {
            const CellAddress cell{column, row};
            if (!slot.block->holdsData(row - slot.firstRow) || sheet.spanAt(cell))
                continue;
            const CellStyle& style = sheet.style(cell);
            const QString shown = QString::fromUtf8(sheet.displayText(cell));
            const int beside = behaviourOf(style.type).roomBeside(1);
            const int taken = (beside > 0 ? beside + gap : 0) + indentOf(style, style.horizontal);
            // Laying out takes long: only texts that may be the widest. No character is wider than the font
            // is high.
            if (style.font.points * twipsPerPoint * static_cast<double>(shown.size()) * 1.1 + taken < needed)
                continue;
            const QFont& font =
                text.font({style.font.family.view(), style.font.points, style.font.bold, style.font.italic});
            const TextTurn turn = turnOf(style);
            const auto lines = text.lines(turn.isStacked ? stackedLetters(shown) : shown, font);
            const double height =
                style.font.points * twipsPerPoint * lineDistance * static_cast<double>(lines.size());
            for (const TextLine& line : lines)
                needed = std::max(needed, turn.extent({line.width, height}).width() + taken);
        }
    if (needed == 0)
        return defaultColumnWidth;
    return std::clamp(static_cast<int>(std::ceil(needed + paddingAcross)), leastWidth, maxLineSize);
}

} // namespace spreadsheet
