// Ctrl+Enter: a text for all selected cells.
#include "spreadsheet/view/GridEntry.h"
#include "spreadsheet/view/InCellEditing.h"
#include "spreadsheet/view/SpreadsheetControl.h"
#include "spreadsheet/workbook/typed_text.h"

#include <algorithm>

namespace spreadsheet {

namespace {

/// Cells that Ctrl+Enter fills at most.
constexpr long long maxEnteredCells = 1'000'000;

/// The cells of ranges besides that of the editor: merged ones once, by their first cell.
std::vector<CellAddress> cellsToFill(const Sheet& own, const std::vector<CellRange>& ranges,
                                     CellAddress entered)
{
    std::vector<CellAddress> cells;
    for (const CellRange& range : ranges) {
        for (int column = range.left; column <= range.right; ++column) {
            for (int row = range.top; row <= range.bottom; ++row) {
                const CellRange extent = own.extent({column, row});
                if (CellAddress{column, row} != entered && extent.left == column && extent.top == row)
                    cells.push_back({column, row});
            }
        }
    }
    return cells;
}

/// What a text typed in whatever width stands for, if that is what came into its cell; else a text.
TypedConstant enteredFigure(const Sheet& own, CellAddress entered, const std::string& text)
{
    TypedConstant figure = typedConstant(text);
    if (figure.value.isText())
        figure = typedConstant(inPlainWidth(text));
    return figure.value == own.value(entered) ? figure : TypedConstant{Value::text(text), std::nullopt};
}

/// Puts what a cell holds into others, each of which keeps its own look. A figure comes to them as if it had
/// been typed there: a fresh cell takes the type that it was written in, one for texts only the text.
Refusal putEntered(Sheet& own, CellAddress entered, const std::vector<CellAddress>& cells,
                   const std::string& text)
{
    const LiftedCells lifted = own.lift({entered.column, entered.row, entered.column, entered.row});
    const TypedConstant figure = enteredFigure(own, entered, text);
    for (const CellAddress cell : cells) {
        CellStyle style = own.style(cell);
        if (!figure.value.isText() && style.numberFormat.view() == textFormat) {
            own.setText(cell, text);
            continue;
        }
        LiftedCells content = lifted;
        content.cells[0].style = own.styleNumber(cell);
        content.cells[0].tag = own.tag(cell);
        content.spans.clear();
        content.lists.reset();
        const std::optional<CellRange> span = own.spanAt(cell);
        if (auto problem = own.put(content, cell))
            return problem;
        if (span)
            own.addSpan(*span);
        if (figure.type && style.type == CellType::edit) {
            figure.dress(style);
            own.setStyle(cell, style);
        }
    }
    return {};
}

/// An array formula that has one of the cells and more. That of the entry's own cell goes with the entry.
bool meetsArray(const Sheet& own, CellAddress entered, const std::vector<CellAddress>& cells)
{
    const auto inArray = [&](CellAddress other) {
        const auto array = own.arrayRange(other);
        return array && !array->isOneCell() && !array->contains(entered);
    };
    return !own.settings().arrays.empty() && std::ranges::any_of(cells, inArray);
}

} // namespace

/// Enters the text and puts what came of it into all selected cells. What cannot be is told while the text
/// still stands in the editor.
void GridEntry::fillSelection()
{
    const CellAddress cell = m_inCell->cell();
    Sheet* const own = m_inCell->sheet();
    const std::vector<CellRange>& ranges = m_control.cursor().selection();
    long long count = 0;
    for (const CellRange& range : ranges)
        count += static_cast<long long>(range.columns()) * range.rows();
    if (!own || count > maxEnteredCells) {
        m_control.refuse("选定的区域太大");
        return;
    }
    const std::vector<CellAddress> cells = cellsToFill(*own, ranges, cell);
    if (meetsArray(*own, cell, cells)) {
        m_control.refuse("不能更改数组公式的一部分");
        return;
    }
    const std::string text = m_inCell->text().toStdString();
    UndoStep step(m_control.cells().workbook(), "输入");
    if (!commit())
        return;
    const Refusal why = putEntered(*own, cell, cells, text);
    if (why)
        step.takeBack();
    m_control.afterEdit();
    m_control.refuse(why);
}

} // namespace spreadsheet
