#include "spreadsheet/print/grown_rows.h"

#include "spreadsheet/display/cell_indent.h"
#include "spreadsheet/print/PageText.h"
#include "spreadsheet/print/turned_text.h"
#include "spreadsheet/workbook/TallCells.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace spreadsheet {

// Heights that follow texts are not stored: they are found for the rows that somebody looks at or prints, and
// found anew when something has changed. Most cells are plain ones whose line fits into every row, so the
// pass over them must cost next to nothing: looks are judged once for each style.

namespace {

constexpr double grownPadding = 50; // of a row that grows
constexpr int tallestRow = 31'680;

int widthOf(const Sheet& sheet, const CellRange& extent)
{
    int width = 0;
    for (int column = extent.left; column <= extent.right; ++column)
        width += sheet.settings().columns.size(column);
    return width;
}

bool isFigure(const Value& value)
{
    return value.isNumber() || (value.isText() && value.text().countsAsNumber());
}

struct NeededLines {
    double em = 0; ///< twips
    std::size_t count = 0;
    double turned = 0; ///< height of turned lines; 0: of plain ones

    double whole() const
    {
        return (turned > 0 ? turned : em * lineDistance * static_cast<double>(count)) + grownPadding;
    }
    /// The air above the first line may be cut.
    double least() const { return whole() - grownPadding - em * (lineDistance - 1) + leastLinePadding; }
};

/// In one line: one that wraps in a turned cell takes the height that there is.
NeededLines neededTurned(const QString& shown, const CellStyle& style, const TextTurn& turn, PageText& text)
{
    const double em = style.font.points * twipsPerPoint;
    if (style.wrap && turn.isUpright())
        return {em, 1};
    const QFont& font =
        text.font({style.font.family.view(), style.font.points, style.font.bold, style.font.italic});
    const auto lines = text.lines(turn.isStacked ? stackedLetters(shown) : shown, font);
    const double width = std::ranges::max_element(lines, {}, &TextLine::width)->width;
    return {em, lines.size(),
            turn.extent({width, em * lineDistance * static_cast<double>(lines.size())}).height()};
}

NeededLines neededLines(const Sheet& sheet, CellAddress cell, PageText& text)
{
    const CellRange extent = sheet.extent(cell);
    const std::string shown = sheet.displayText(cell);
    if (shown.empty() || extent.rows() > 1 || extent.left != cell.column)
        return {};
    const CellStyle& style = sheet.style(cell);
    const bool wraps = style.wrap && !isFigure(sheet.value(cell));
    const double em = style.font.points * twipsPerPoint;
    if (const TextTurn turn = turnOf(style); !turn.isNone())
        return neededTurned(QString::fromUtf8(shown), style, turn, text);
    const int beside = 2 * sheet.settings().print.textDistance + indentOf(style, style.horizontal);
    const double width = std::max(widthOf(sheet, extent) - beside, 1);
    // Laying out takes long. No character is wider than the font is high, and none has more units than bytes.
    const bool fits = static_cast<double>(shown.size()) * em * 1.1 <= width;
    if ((!wraps || fits) && shown.find('\n') == shown.npos)
        return {em, 1};
    const QFont& font =
        text.font({style.font.family.view(), style.font.points, style.font.bold, style.font.italic});
    const auto lines =
        text.lines(QString::fromUtf8(shown), font, wraps ? std::optional(width) : std::nullopt);
    return {em, lines.size()};
}

} // namespace

double neededCellHeight(const Sheet& sheet, CellAddress cell, PageText& text)
{
    const NeededLines needed = neededLines(sheet, cell, text);
    return needed.count == 0 ? 0 : needed.whole();
}

std::map<int, int> grownRows(const Sheet& sheet, int first, int last, PageText& text)
{
    const AxisSizes& rows = sheet.settings().rows;
    std::map<int, int> grown;
    TallCells tall(sheet);
    for (int number = 1; number <= sheet.storedColumns(); ++number) {
        const Column* column = sheet.column(number);
        if (!column)
            continue;
        const auto& slots = column->slots();
        for (std::size_t at = column->lowerSlot(first); at < slots.size() && slots[at].firstRow <= last;
             ++at) {
            const Column::Slot& slot = slots[at];
            const int end = std::min(last, slot.lastRow()) + 1;
            const auto next = [&](int row) {
                return slot.firstRow +
                       tall.next(*slot.block, row - slot.firstRow, end - slot.firstRow, {number, row});
            };
            for (int row = next(std::max(first, slot.firstRow)); row < end; row = next(row + 1)) {
                const CellAddress cell{number, row};
                if (rows.sizes.contains(row) || rows.hidden.contains(row))
                    continue;
                const NeededLines needed = neededLines(sheet, cell, text);
                if (needed.count == 0 || needed.least() <= rows.defaultSize)
                    continue;
                int& height = grown[row];
                height = std::max(height, std::min(static_cast<int>(std::ceil(needed.whole())), tallestRow));
            }
        }
    }
    return grown;
}

} // namespace spreadsheet
