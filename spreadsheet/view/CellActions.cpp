// Cells that act, and sizes that cells need.
#include "spreadsheet/print/PageCells.h"
#include "spreadsheet/view/commands/structure.h"
#include "spreadsheet/view/DateEntry.h"
#include "spreadsheet/view/DropDownList.h"
#include "spreadsheet/view/SheetView.h"
#include "spreadsheet/view/SpreadsheetControl.h"

#include <algorithm>
#include <cmath>

namespace spreadsheet {

namespace {

constexpr double paddingAcross = 110; // twips beside a text, the grid line included
constexpr double paddingDown = 50;
constexpr int leastWidth = 240;

/// A new value by the user as one undo step.
void putValue(Workbook& workbook, Sheet& sheet, CellAddress cell, Value value)
{
    const UndoStep step(workbook, "输入");
    sheet.setValue(cell, std::move(value));
}

bool isChecked(const Value& value)
{
    if (value.isBoolean())
        return value.boolean();
    return value.isNumber() ? value.number() != 0 : value.isText() && value.textView() == "1";
}

} // namespace

/// Buttons, check boxes and drop-downs may be used in run mode too, unless they are locked.
bool SpreadsheetControl::mayAct(CellAddress cell) const
{
    return !m_view->sheet().style(cell).locked;
}

void SpreadsheetControl::toggleCheckBox(CellAddress cell)
{
    Sheet& sheet = workbook().sheet(activeSheet());
    if (!mayAct(cell) || (mode() == GridMode::run && sheet.hasFormula(cell))) {
        refuse("单元格已锁定，不能更改");
        return;
    }
    putValue(workbook(), sheet, cell, Value::boolean(!isChecked(sheet.value(cell))));
    afterEdit(cell);
}

void SpreadsheetControl::cancelDropDown()
{
    m_dropDownCancelled = true;
}

void SpreadsheetControl::openDropDown()
{
    const CellAddress cell = activeCell();
    if (m_view->sheet().style(cell).type != CellType::dropDown) {
        showChanges(); // the cell may stand elsewhere by now
        m_dateEntry->open();
        return;
    }
    if (!commitHere())
        return;
    if (!mayAct(cell)) {
        refuse("单元格已锁定，不能更改");
        return;
    }
    m_dropDownCancelled = false;
    Q_EMIT comboDropDown(cell.column, cell.row);
    setAddressedSheet(activeSheet());
    showChanges();
    const QStringList entries = dropDownOf(cell);
    if (m_dropDownCancelled || entries.isEmpty())
        return;
    m_dropDownCell = cell;
    const QRect place = cellRect(cell);
    m_dropDown->open(entries, static_cast<int>(entries.indexOf(text(cell.column, cell.row))),
                     QRect(mapToGlobal(place.topLeft()), place.size()),
                     screenFont(m_view->sheet().style(cell).font));
}

void SpreadsheetControl::closeDropDown(int index)
{
    const CellAddress cell = m_dropDownCell;
    const QStringList entries = dropDownOf(cell);
    if (index >= 0 && index < entries.size()) {
        putValue(workbook(), workbook().sheet(activeSheet()), cell,
                 Value::text(entries[index].toStdString()));
        afterEdit(cell);
    }
    Q_EMIT comboCloseUp(cell.column, cell.row, index);
}

// --- lines

std::vector<LineRange> SpreadsheetControl::linesWith(bool rows, int line) const
{
    const SheetSettings& settings = m_view->sheet().settings();
    std::vector<CellRange> whole;
    for (const CellRange& range : selection()) {
        const bool isWhole = rows ? range.left == 1 && range.right >= settings.columnCount
                                  : range.top == 1 && range.bottom >= settings.rowCount;
        if (isWhole)
            whole.push_back(range);
    }
    const auto holds = [&](const CellRange& range) {
        return rows ? line >= range.top && line <= range.bottom : line >= range.left && line <= range.right;
    };
    if (std::ranges::any_of(whole, holds))
        return linesOf(whole, rows ? Axis::rows : Axis::columns);
    return {{line, line}};
}

void SpreadsheetControl::resizeLinesTo(bool rows, int line, int twips)
{
    Sheet& sheet = workbook().sheet(activeSheet());
    const Axis axis = rows ? Axis::rows : Axis::columns;
    if (twips > 0)
        resizeLines(workbook(), sheet, axis, linesWith(rows, line), std::min(twips, maxLineSize));
    else if (refuse(hideLines(workbook(), sheet, axis, linesWith(rows, line))))
        return;
    showChanges();
}

void SpreadsheetControl::autofitLine(bool rows, int line)
{
    if (mode() != GridMode::edit || !commitHere())
        return;
    Sheet& sheet = workbook().sheet(activeSheet());
    const UndoStep step(workbook(), rows ? "最适合的行高" : "最适合的列宽");
    const int last = rows ? sheet.lastDataRow() : sheet.lastDataColumn();
    for (const LineRange& lines : linesWith(rows, line))
        for (int each = lines.first; each <= std::min(lines.last, std::max(last, line)); ++each)
            resizeLines(workbook(), sheet, rows ? Axis::rows : Axis::columns, {{each, each}},
                        rows ? neededRowHeight(each) : neededColumnWidth(each));
    showChanges();
}

QFont SpreadsheetControl::screenFont(const CellFont& font) const
{
    return m_view->text().font({font.family.view(), font.points, font.bold, font.italic});
}

int SpreadsheetControl::neededRowHeight(int row) const
{
    const Sheet& sheet = m_view->sheet();
    PageText text;
    double needed = defaultRowHeight;
    for (int column = 1; column <= sheet.storedColumns(); ++column) {
        const CellAddress cell{column, row};
        if (sheet.spanAt(cell))
            continue;
        const CellStyle& style = sheet.style(cell);
        const std::string shown = sheet.displayText(cell);
        if (shown.empty())
            continue;
        const double width = sheet.settings().columns.size(column) - 80;
        const auto lines = text.lines(
            fromUtf8(shown),
            text.font({style.font.family.view(), style.font.points, style.font.bold, style.font.italic}),
            style.wrap ? std::optional(width) : std::nullopt);
        needed = std::max(needed, style.font.points * 20 * lineDistance * static_cast<double>(lines.size()) +
                                      paddingDown);
    }
    return std::min(static_cast<int>(std::ceil(needed)), maxLineSize);
}

int SpreadsheetControl::neededColumnWidth(int column) const
{
    const Sheet& sheet = m_view->sheet();
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
            const QString shown = fromUtf8(sheet.displayText(cell));
            // Laying out takes long: only texts that may be the widest. No character is wider than the font
            // is high.
            if (style.font.points * 20 * static_cast<double>(shown.size()) * 1.1 < needed)
                continue;
            const QFont& font =
                text.font({style.font.family.view(), style.font.points, style.font.bold, style.font.italic});
            const double arrow = style.type == CellType::dropDown ? 260 : 0;
            for (const TextLine& line : text.lines(shown, font))
                needed = std::max(needed, line.width + arrow);
        }
    if (needed == 0)
        return defaultColumnWidth;
    return std::clamp(static_cast<int>(std::ceil(needed + paddingAcross)), leastWidth, maxLineSize);
}

} // namespace spreadsheet
