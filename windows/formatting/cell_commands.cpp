#include "windows/formatting/cell_commands.h"

#include "platform/services/ColourDialog.h"
#include "spreadsheet/display/cell_indent.h"
#include "spreadsheet/view/SpreadsheetControl.h"
#include "windows/formatting/number_format_choice.h"

#include <algorithm>
#include <map>
#include <utility>
#include <vector>

namespace selfreport {

// Menus, toolbar and dialogs do the same things to different targets. So each command finds its target, works
// on the sheet within one undo step and tells the grid once, here; a window only says which command it wants.

using spreadsheet::CellAddress;
using spreadsheet::CellRange;
using spreadsheet::CellStyle;
using spreadsheet::Refusal;
using spreadsheet::SpreadsheetControl;
using spreadsheet::Text;

namespace {

std::vector<CellRange> blocksOr(CellAddress cell, const SpreadsheetControl& grid)
{
    if (grid.cursor().isBlockSelected())
        return grid.cursor().selection();
    return {{cell.column, cell.row, cell.column, cell.row}};
}

std::vector<CellRange> targets(const SpreadsheetControl& grid)
{
    return blocksOr(grid.cursor().activeCell(), grid);
}

/// Lines go around a merged cell as a whole.
std::vector<CellRange> framesOr(CellAddress cell, SpreadsheetControl& grid)
{
    if (grid.cursor().isBlockSelected())
        return grid.cursor().selection();
    return {grid.cells().sheet().extent(cell)};
}

constexpr spreadsheet::Colour darkBlue = 0x000080;

std::optional<spreadsheet::Colour> chosenColour()
{
    constexpr std::uint32_t black = 0;
    return ColourDialogInUse::current().choose(black);
}

/// Gives a range's cells, or its columns if they are whole, what cells of their type show or offer.
template <typename Entry>
void putEntries(spreadsheet::SheetSettings& settings, const CellRange& cells,
                const std::optional<Entry>& entry,
                std::map<CellAddress, Entry> spreadsheet::SheetSettings::*entries)
{
    auto& all = settings.*entries;
    const bool wholeColumns = cells.top == 1 && cells.bottom >= settings.rowCount;
    const int first = wholeColumns ? 0 : cells.top, last = wholeColumns ? 0 : cells.bottom;
    std::erase_if(all, [&](const auto& old) {
        return cells.contains(old.first) ||
               (wholeColumns && old.first.row == 0 && old.first.column >= cells.left &&
                old.first.column <= cells.right);
    });
    for (int column = cells.left; entry && column <= cells.right; ++column)
        for (int row = first; row <= last; ++row)
            all.insert_or_assign({column, row}, *entry);
}

template <typename Entry>
void putEntries(SpreadsheetControl& grid, const char* label, spreadsheet::CellType type,
                const std::optional<Entry>& entry,
                std::map<CellAddress, Entry> spreadsheet::SheetSettings::*entries)
{
    if (grid.refuseInRun())
        return;
    {
        const spreadsheet::UndoStep step(grid.cells().workbook(), label);
        spreadsheet::Sheet& sheet = grid.cells().sheet();
        for (const CellRange& cells : targets(grid)) {
            if (entry)
                grid.cells().changeStyle(cells, [type](CellStyle& style) { style.type = type; });
            retag(sheet, cells);
            sheet.changeSettings(
                [&](spreadsheet::SheetSettings& settings) { putEntries(settings, cells, entry, entries); });
        }
    }
    grid.afterEdit();
}

void resizeSelected(SpreadsheetControl& grid, spreadsheet::Axis axis, int twips)
{
    if (grid.refuseInRun())
        return;
    resizeLines(grid.cells().workbook(), grid.cells().sheet(), axis, linesOf(grid.cursor().selection(), axis),
                twips);
    grid.afterEdit();
}

/// Whether a cell of a range besides the first, which a span shows, holds something.
bool hidesContents(const spreadsheet::Sheet& sheet, const CellRange& range)
{
    const CellAddress first{range.left, range.top};
    for (int column = range.left; column <= std::min(range.right, sheet.lastDataColumn()); ++column)
        for (int row = range.top; row <= std::min(range.bottom, sheet.lastDataRow()); ++row) {
            const CellAddress cell{column, row};
            if (cell != first && (sheet.hasFormula(cell) || !sheet.value(cell).isEmpty()))
                return true;
        }
    return false;
}

/// What a command changed is shown, and the formulas that read it are computed.
void structureChanged(SpreadsheetControl& grid)
{
    grid.afterEdit();
}

} // namespace

void changeCells(SpreadsheetControl& grid, const std::string& label,
                 const std::function<void(CellStyle&)>& change)
{
    if (grid.refuseInRun())
        return;
    const std::vector<CellRange> cells = targets(grid);
    {
        const spreadsheet::UndoStep step(grid.cells().workbook(), label);
        grid.cells().changeStyleOfEach(cells, change);
    }
    grid.cells().setCurrent(cells.back().right, cells.back().bottom);
    grid.afterEdit();
}

void toggleBold(SpreadsheetControl& grid)
{
    changeCells(grid, "粗体", [](CellStyle& style) { style.font.bold = !style.font.bold; });
}

void toggleItalic(SpreadsheetControl& grid)
{
    changeCells(grid, "斜体", [](CellStyle& style) { style.font.italic = !style.font.italic; });
}

void toggleUnderline(SpreadsheetControl& grid)
{
    changeCells(grid, "下划线", [](CellStyle& style) { style.font.underline = !style.font.underline; });
}

void toggleStrikeOut(SpreadsheetControl& grid)
{
    changeCells(grid, "删除线",
                [](CellStyle& style) { style.font.strikeThrough = !style.font.strikeThrough; });
}

void toggleWrap(SpreadsheetControl& grid)
{
    changeCells(grid, "自动换行", [](CellStyle& style) { style.wrap = !style.wrap; });
}

void toggleLock(SpreadsheetControl& grid)
{
    changeCells(grid, "锁定/解锁", [](CellStyle& style) { style.locked = !style.locked; });
}

void alignCells(SpreadsheetControl& grid, spreadsheet::HorizontalAlignment alignment)
{
    changeCells(grid, "水平对齐", [=](CellStyle& style) { style.horizontal = alignment; });
}

void alignCells(SpreadsheetControl& grid, spreadsheet::VerticalAlignment alignment)
{
    changeCells(grid, "垂直对齐", [=](CellStyle& style) { style.vertical = alignment; });
}

void indentMore(SpreadsheetControl& grid)
{
    constexpr std::uint8_t mostSteps = 15; // as many as .xls files hold
    changeCells(grid, "增加缩进", [](CellStyle& style) {
        const bool isDistributed = style.carried.across == spreadsheet::Spread::distributed &&
                                   style.horizontal == spreadsheet::HorizontalAlignment::centre;
        if (!isDistributed && !takesIndent(style))
            style.carried.indent = 0; // it counted for nothing
        if (!isDistributed && style.horizontal != spreadsheet::HorizontalAlignment::right) {
            style.horizontal = spreadsheet::HorizontalAlignment::left;
            style.carried.across = spreadsheet::Spread::none;
        }
        if (style.carried.indent < mostSteps)
            ++style.carried.indent;
    });
}

void indentLess(SpreadsheetControl& grid)
{
    changeCells(grid, "减少缩进", [](CellStyle& style) {
        if (style.carried.indent > 0)
            --style.carried.indent;
    });
}

void setFontName(SpreadsheetControl& grid, const std::string& name)
{
    changeCells(grid, "字体", [&](CellStyle& style) { style.font.family = Text(name); });
}

void setFontSize(SpreadsheetControl& grid, int points)
{
    changeCells(grid, "字号", [=](CellStyle& style) { style.font.points = static_cast<float>(points); });
}

void setNumberFormat(SpreadsheetControl& grid, const std::string& code)
{
    changeCells(grid, "数字格式", [&](CellStyle& style) { style.numberFormat = Text(code); });
}

void toggleThousands(SpreadsheetControl& grid)
{
    const bool isGrouped = groupsThousands(grid.cells().sheet().style(grid.cursor().activeCell()));
    changeCells(grid, "千分位", [=](CellStyle& style) { groupThousands(style, !isGrouped); });
}

void chooseForeColour(SpreadsheetControl& grid)
{
    if (grid.refuseInRun())
        return;
    if (const auto colour = chosenColour())
        changeCells(grid, "前景色", [&](CellStyle& style) { style.foreground = *colour; });
}

void chooseBackColour(SpreadsheetControl& grid)
{
    if (grid.refuseInRun())
        return;
    if (const auto colour = chosenColour())
        changeCells(grid, "背景色", [&](CellStyle& style) { style.background = *colour; });
}

void clearFormats(SpreadsheetControl& grid)
{
    if (grid.refuseInRun())
        return;
    const std::vector<CellRange> cells = targets(grid);
    {
        const spreadsheet::UndoStep step(grid.cells().workbook(), "清除格式");
        grid.cells().drawBorders(framesOr(grid.cursor().activeCell(), grid),
                                 spreadsheet::BorderLines::all({}));
        grid.cells().changeStyleOfEach(cells, [](CellStyle& style) {
            CellStyle fresh;
            fresh.type = style.type;
            fresh.decimals = style.decimals;
            fresh.locked = style.locked;
            style = fresh;
        });
    }
    grid.cells().setCurrent(cells.back().right, cells.back().bottom);
    grid.afterEdit();
}

Refusal mergeCells(SpreadsheetControl& grid)
{
    const CellRange range = grid.cursor().firstRange();
    const auto meets = [&](const CellRange& span) { return span.intersects(range); };
    if (grid.mode() == spreadsheet::GridMode::run)
        return spreadsheet::inRunMode;
    if (std::ranges::any_of(grid.cells().sheet().settings().spans, meets))
        return "选定的区域中已有合并单元格，请先取消合并";
    if (hidesContents(grid.cells().sheet(), range) &&
        !(grid.ask &&
          grid.ask(QStringLiteral("合并后只显示左上角单元格的内容，其余单元格的内容不再显示。要继续吗?"))))
        return {}; // as the user wishes
    grid.cells().addSpan(range);
    structureChanged(grid);
    return {};
}

void unmergeCells(SpreadsheetControl& grid)
{
    if (grid.refuseInRun())
        return;
    grid.cells().removeSpans(grid.cursor().firstRange());
    structureChanged(grid);
}

void setCellType(SpreadsheetControl& grid, CellAddress cell, spreadsheet::CellType type,
                 std::optional<std::uint8_t> decimals)
{
    if (grid.refuseInRun())
        return;
    const std::vector<CellRange> cells = blocksOr(cell, grid);
    {
        const spreadsheet::UndoStep step(grid.cells().workbook(), "数据类型");
        grid.cells().changeStyleOfEach(cells, [&](CellStyle& style) {
            style.type = type;
            style.decimals = decimals.value_or(style.decimals);
            style.numberFormat = {};
        });
        for (const CellRange& range : cells)
            retag(grid.cells().sheet(), range);
    }
    grid.cells().setCurrent(cells.back().right, cells.back().bottom);
    grid.afterEdit();
}

void retag(spreadsheet::Sheet& sheet, const CellRange& range)
{
    // Tags stand only in cells up to the last one with data.
    for (int row = range.top; row <= std::min(range.bottom, sheet.lastDataRow()); ++row)
        for (int column = range.left; column <= std::min(range.right, sheet.lastDataColumn()); ++column)
            if (!sheet.tag({column, row}).view().empty())
                sheet.setTag({column, row},
                             std::to_string(static_cast<int>(sheet.style({column, row}).type)));
}

void setDropDownEntries(SpreadsheetControl& grid, const QStringList& entries)
{
    std::vector<std::string> list;
    for (const QString& entry : entries)
        list.push_back(entry.toStdString());
    std::optional<spreadsheet::DropDownEntries> shared;
    if (!list.empty())
        shared.emplace(std::move(list));
    putEntries(grid, "下拉框列表", spreadsheet::CellType::dropDown, shared,
               &spreadsheet::SheetSettings::dropDowns);
}

void setButtonCaption(SpreadsheetControl& grid, const QString& caption)
{
    putEntries(grid, "按钮标题", spreadsheet::CellType::button,
               caption.isEmpty() ? std::nullopt : std::optional(caption.toStdString()),
               &spreadsheet::SheetSettings::captions);
}

void setRowHeights(SpreadsheetControl& grid, int twips)
{
    resizeSelected(grid, spreadsheet::Axis::rows, twips);
}

void setColumnWidths(SpreadsheetControl& grid, int twips)
{
    resizeSelected(grid, spreadsheet::Axis::columns, twips);
}

void drawBorders(SpreadsheetControl& grid, CellAddress cell, int sides, spreadsheet::LineStyle style)
{
    if (grid.refuseInRun())
        return;
    {
        const spreadsheet::UndoStep step(grid.cells().workbook(), "边框");
        for (const CellRange& range : framesOr(cell, grid))
            grid.cells().setBorder(range, sides, darkBlue, style);
    }
    grid.afterEdit();
}

void drawBorders(SpreadsheetControl& grid, const spreadsheet::BorderLines& lines)
{
    if (grid.refuseInRun())
        return;
    grid.cells().drawBorders(framesOr(grid.cursor().activeCell(), grid), lines);
    grid.afterEdit();
}

Refusal insertRow(SpreadsheetControl& grid)
{
    if (grid.mode() == spreadsheet::GridMode::run)
        return spreadsheet::inRunMode;
    if (auto why = grid.cells().insertRowsAt(grid.cursor().activeCell().row, 1))
        return why;
    structureChanged(grid);
    return {};
}

Refusal insertColumn(SpreadsheetControl& grid)
{
    if (grid.mode() == spreadsheet::GridMode::run)
        return spreadsheet::inRunMode;
    if (auto why = grid.cells().insertColumnsAt(grid.cursor().activeCell().column, 1))
        return why;
    structureChanged(grid);
    return {};
}

} // namespace selfreport
