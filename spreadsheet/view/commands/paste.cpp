#include "spreadsheet/view/commands/paste.h"

#include "spreadsheet/workbook/cell_borders.h"
#include "spreadsheet/workbook/typed_text.h"
#include "spreadsheet/workbook/Workbook.h"

#include <algorithm>

namespace spreadsheet {

// A paste must be whole or not at all, and the user asked to be told before. So it is planned first: where
// the block goes, how often, and what stands in the way (merged cells, array formulas, the end of the
// sheet). Cells of ours bring everything along; foreign ones are taken as if typed, as only the user's rules
// say what their texts mean.

namespace {

/// True if the goal is a single cell that stands for a whole merged one: its content changes, it stays.
bool isSpanItself(const Sheet& sheet, const CellRange& goal)
{
    return goal.columns() == 1 && goal.rows() == 1 && sheet.extent({goal.left, goal.top}) != goal;
}

void makeRoom(Sheet& sheet, const PastePlan& plan)
{
    if (!plan.needsMoreRoom())
        return;
    sheet.changeSettings([&](SheetSettings& settings) {
        settings.rowCount += plan.missingRows;
        settings.columnCount += plan.missingColumns;
    });
}

void stripToValues(LiftedCells& cells, const Sheet& sheet, CellAddress to)
{
    cells.spans.clear();
    cells.arrays.clear();
    cells.lists.reset();
    for (int column = 1; column <= cells.columns; ++column) {
        for (int row = 1; row <= cells.rows; ++row) {
            const CellContent& content = cells.at(column, row);
            cells.at(column, row) = {
                content.value, 0, sheet.styleNumber({to.column + column - 1, to.row + row - 1}), {}, {}};
        }
    }
}

Refusal putCopies(Sheet& sheet, const LiftedCells& cells, const PastePlan& plan, PasteKind kind)
{
    for (int down = 0; down < plan.down; ++down) {
        for (int across = 0; across < plan.across; ++across) {
            const CellAddress to{plan.goal.left + across * cells.columns, plan.goal.top + down * cells.rows};
            if (kind == PasteKind::all) {
                if (auto problem = sheet.put(cells, to))
                    return problem;
                continue;
            }
            LiftedCells values = cells;
            stripToValues(values, sheet, to);
            if (auto problem = sheet.put(values, to))
                return problem;
        }
    }
    return {};
}

/// One cell of ours into a merged one: all but the span, which stays and has the cell's lines around it.
Refusal putIntoSpan(Workbook& workbook, Sheet& sheet, const LiftedCells& cells, CellAddress to)
{
    const CellRange span = sheet.extent(to);
    LiftedCells alone = cells;
    alone.spans = {};
    if (auto problem = sheet.put(alone, to))
        return problem;
    sheet.addSpan(span);
    const CellStyle& look = sheet.style(to);
    drawBorders(workbook, sheet, span, {look.left, look.right, look.top, look.bottom, {}, {}});
    return {};
}

/// Array formulas that several copies of a block cover together go before the first copy meets a part of
/// them.
void clearArrays(Sheet& sheet, const PastePlan& plan)
{
    const auto meets = [&](const CellRange& array) { return array.intersects(plan.goal); };
    if (plan.across * plan.down > 1 && std::ranges::any_of(sheet.settings().arrays, meets))
        sheet.clearContents(plan.goal);
}

void applyLook(Sheet& sheet, const CellRange& range, const PastedLook& look)
{
    if (look == PastedLook())
        return;
    sheet.restyle(range, [&look](CellStyle& style) {
        style.font.bold = look.bold.value_or(style.font.bold);
        style.font.italic = look.italic.value_or(style.font.italic);
        style.font.underline = look.underline.value_or(style.font.underline);
        style.foreground = look.foreground.value_or(style.foreground);
        style.background = look.background.value_or(style.background);
        style.horizontal = look.horizontal.value_or(style.horizontal);
    });
}

/// Web pages write negative figures with a sign of their own.
std::string withPlainMinus(const std::string& text)
{
    constexpr std::string_view minus = "−";
    if (!text.starts_with(minus))
        return text;
    std::string plain = "-" + text.substr(minus.size());
    return typedConstant(plain).value.isNumber() ? plain : text;
}

void enterPasted(Workbook& workbook, Sheet& sheet, CellAddress cell, const PastedTable::Cell& pasted)
{
    const std::string_view typed = withoutPadding(pasted.text);
    if (pasted.literal || (!pasted.number && isDigitCode(typed))) {
        sheet.setText(cell, pasted.literal ? pasted.text : typed);
        return;
    }
    if (enterText(workbook, sheet, cell, withPlainMinus(pasted.text), TypedInto::nothing)) {
        sheet.setText(cell, pasted.text); // looks like a formula and is none; nothing is lost as a text
        return;
    }
    // The text may be rounded; what it was rounded from came along.
    if (pasted.number && !sheet.hasFormula(cell) && !sheet.value(cell).isBoolean())
        sheet.setNumber(cell, *pasted.number);
}

void pasteTable(Workbook& workbook, Sheet& sheet, const PastedTable& table, CellAddress to, PasteKind kind)
{
    for (const PastedTable::Cell& pasted : table.cells) {
        const CellAddress cell{to.column + pasted.column - 1, to.row + pasted.row - 1};
        const CellRange range{cell.column, cell.row, cell.column + pasted.columns - 1,
                              cell.row + pasted.rows - 1};
        enterPasted(workbook, sheet, cell, pasted);
        if (kind == PasteKind::valuesOnly)
            continue;
        applyLook(sheet, range, pasted.look);
        if (range.columns() > 1 || range.rows() > 1)
            sheet.addSpan(range);
    }
}

void pasteTables(Workbook& workbook, Sheet& sheet, const PastedTable& table, const PastePlan& plan,
                 PasteKind kind)
{
    const bool single = isSpanItself(sheet, {plan.goal.left, plan.goal.top, plan.goal.left, plan.goal.top}) &&
                        table.columns == 1 && table.rows == 1;
    if (!single)
        sheet.removeSpans(plan.goal);
    sheet.clearContents(plan.goal);
    for (int down = 0; down < plan.down; ++down) {
        for (int across = 0; across < plan.across; ++across)
            pasteTable(workbook, sheet, table,
                       {plan.goal.left + across * table.columns, plan.goal.top + down * table.rows}, kind);
    }
}

/// Why the plan's goal cannot take a block. A merged cell that is the goal itself stays, and is none.
Refusal goalRefusal(const Sheet& sheet, const CellRange& goal)
{
    return overlapRefusal(sheet, goal, std::nullopt, !isSpanItself(sheet, goal));
}

} // namespace

Refusal overlapRefusal(const Sheet& sheet, const CellRange& goal, const std::optional<CellRange>& leaving,
                       bool keepsSpansWhole)
{
    const auto cut = [&](const CellRange& range) {
        const bool leaves = leaving && leaving->contains(range);
        return !leaves && range.intersects(goal) && !goal.contains(range);
    };
    if (keepsSpansWhole && std::ranges::any_of(sheet.settings().spans, cut))
        return "目标区域只含合并单元格的一部分，请先取消合并";
    if (std::ranges::any_of(sheet.settings().arrays, cut))
        return "不能更改数组公式的一部分";
    return {};
}

std::variant<PastePlan, Refusal> planPaste(const Sheet& sheet, const ClipboardContent& content,
                                           const CellRange& selection)
{
    const int columns = content.columns();
    const int rows = content.rows();
    if (columns < 1 || rows < 1)
        return "剪贴板是空的";
    PastePlan plan;
    const bool oneCell = sheet.extent({selection.left, selection.top}) == selection;
    if (!oneCell && selection.columns() % columns == 0 && selection.rows() % rows == 0) {
        // A row is as long as its sheet, however little of it is in use.
        plan.across = content.own && content.own->origin.wholeRows ? 1 : selection.columns() / columns;
        plan.down = content.own && content.own->origin.wholeColumns ? 1 : selection.rows() / rows;
    }
    const long long right = selection.left + static_cast<long long>(columns) * plan.across - 1;
    const long long bottom = selection.top + static_cast<long long>(rows) * plan.down - 1;
    if (right > maxColumns || bottom > maxRows)
        return "粘贴的内容超出表的最大范围(1,048,576 行、16,384 列)，没有粘贴";
    plan.goal = {selection.left, selection.top, static_cast<int>(right), static_cast<int>(bottom)};
    if (static_cast<long long>(plan.goal.columns()) * plan.goal.rows() > maxCopiedCells)
        return "粘贴的区域太大(超过 1000 万个单元格)";
    plan.missingRows = std::max(0, plan.goal.bottom - sheet.settings().rowCount);
    plan.missingColumns = std::max(0, plan.goal.right - sheet.settings().columnCount);
    if (auto problem = goalRefusal(sheet, plan.goal))
        return problem;
    return plan;
}

Refusal paste(Workbook& workbook, Sheet& sheet, const ClipboardContent& content, const PastePlan& plan,
              PasteKind kind)
{
    if (auto problem = goalRefusal(sheet, plan.goal))
        return problem;
    UndoStep step(workbook, "粘贴");
    makeRoom(sheet, plan);
    if (!content.own) {
        pasteTables(workbook, sheet, content.table, plan, kind);
        return {};
    }
    const LiftedCells& cells = content.own->cells;
    clearArrays(sheet, plan);
    auto problem = kind == PasteKind::all && isSpanItself(sheet, plan.goal)
                       ? putIntoSpan(workbook, sheet, cells, {plan.goal.left, plan.goal.top})
                       : putCopies(sheet, cells, plan, kind);
    if (problem)
        step.takeBack();
    else if (kind == PasteKind::all && !isSpanItself(sheet, plan.goal))
        bringSides(workbook, sheet, plan.goal);
    return problem;
}

Refusal pasteCut(Workbook& workbook, Sheet& source, const CellRange& cut, Sheet& target,
                 const PastePlan& plan)
{
    if (auto problem = overlapRefusal(source, cut))
        return problem;
    if (auto problem =
            overlapRefusal(target, plan.goal, &source == &target ? std::optional(cut) : std::nullopt))
        return problem;
    UndoStep step(workbook, "移动");
    makeRoom(target, plan);
    const SharedLines former(workbook, source, cut);
    auto problem = source.moveCells(cut, target, {plan.goal.left, plan.goal.top});
    if (problem) {
        step.takeBack();
        return problem;
    }
    former.clear(workbook, source, &source == &target ? std::optional(plan.goal) : std::nullopt);
    bringSides(workbook, target, plan.goal);
    return {};
}

} // namespace spreadsheet
