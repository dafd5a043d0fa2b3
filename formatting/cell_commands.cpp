#include "formatting/cell_commands.h"

#include "component/state/shared_state.h"
#include "platform/dialogs/ColourDialog.h"
#include "spreadsheet/view/SpreadsheetControl.h"

#include <algorithm>

namespace selfreport {

using spreadsheet::CellRange;
using spreadsheet::CellStyle;
using spreadsheet::SpreadsheetControl;
using spreadsheet::Text;

namespace {

bool isReadOnly(const SpreadsheetControl& grid)
{
    return grid.mode() == spreadsheet::GridMode::run;
}

CellRange target(const SpreadsheetControl& grid)
{
    if (grid.isBlockSelected())
        return grid.selectedBlock();
    const spreadsheet::CellAddress cell = grid.activeCell();
    return {cell.column, cell.row, cell.column, cell.row};
}

/// What a dialog works on.
CellRange dialogTarget(const SpreadsheetControl& grid)
{
    return grid.isBlockSelected() ? grid.selectedBlock() : CellRange{gCellCol, gCellRow, gCellCol, gCellRow};
}

constexpr spreadsheet::Colour darkBlue = 0x000080;

std::optional<spreadsheet::Colour> chosenColour()
{
    constexpr std::uint32_t black = 0;
    return ColourDialogInUse::current().choose(black);
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
    if (isReadOnly(grid))
        return;
    const CellRange cells = target(grid);
    {
        const spreadsheet::UndoStep step(grid.workbook(), label);
        grid.changeStyle(cells, change);
    }
    grid.setCurrent(cells.right, cells.bottom);
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

void setFontName(SpreadsheetControl& grid, const std::string& name)
{
    changeCells(grid, "字体", [&](CellStyle& style) { style.font.family = Text(name); });
}

void setFontSize(SpreadsheetControl& grid, int points)
{
    changeCells(grid, "字号", [=](CellStyle& style) { style.font.points = static_cast<float>(points); });
}

void chooseForeColour(SpreadsheetControl& grid)
{
    if (isReadOnly(grid))
        return;
    if (const auto colour = chosenColour())
        changeCells(grid, "前景色", [&](CellStyle& style) { style.foreground = *colour; });
}

void chooseBackColour(SpreadsheetControl& grid)
{
    if (isReadOnly(grid))
        return;
    if (const auto colour = chosenColour())
        changeCells(grid, "背景色", [&](CellStyle& style) { style.background = *colour; });
}

void clearFormats(SpreadsheetControl& grid)
{
    changeCells(grid, "清除格式", [](CellStyle& style) {
        CellStyle fresh;
        fresh.type = style.type;
        fresh.decimals = style.decimals;
        fresh.locked = style.locked;
        style = fresh;
    });
}

void mergeCells(SpreadsheetControl& grid)
{
    const CellRange range = grid.firstRange();
    const auto meets = [&](const CellRange& span) { return span.intersects(range); };
    if (isReadOnly(grid) || std::ranges::any_of(grid.sheet().settings().spans, meets))
        return;
    grid.addSpan(range);
    structureChanged(grid);
}

void unmergeCells(SpreadsheetControl& grid)
{
    if (isReadOnly(grid))
        return;
    grid.removeSpans(grid.firstRange());
    structureChanged(grid);
}

void setCellType(SpreadsheetControl& grid, spreadsheet::CellType type, std::optional<std::uint8_t> decimals)
{
    if (isReadOnly(grid))
        return;
    const CellRange cells = dialogTarget(grid);
    {
        const spreadsheet::UndoStep step(grid.workbook(), "数据类型");
        grid.changeStyle(cells, [&](CellStyle& style) {
            style.type = type;
            style.decimals = decimals.value_or(style.decimals);
        });
        // Tags stand only in cells up to the last one with data.
        spreadsheet::Sheet& sheet = grid.sheet();
        for (int row = cells.top; row <= std::min(cells.bottom, sheet.lastDataRow()); ++row)
            for (int column = cells.left; column <= std::min(cells.right, sheet.lastDataColumn()); ++column)
                if (!sheet.tag({column, row}).view().empty())
                    sheet.setTag({column, row}, std::to_string(static_cast<int>(type)));
    }
    grid.setCurrent(cells.right, cells.bottom);
    grid.afterEdit();
}

void drawBorders(SpreadsheetControl& grid, int sides, spreadsheet::LineStyle style)
{
    if (isReadOnly(grid))
        return;
    grid.setBorder(dialogTarget(grid), sides, darkBlue, style);
    grid.afterEdit();
}

std::optional<std::string> insertRow(SpreadsheetControl& grid)
{
    if (isReadOnly(grid))
        return std::nullopt;
    const auto why = grid.insertRowsAt(grid.activeCell().row, 1);
    structureChanged(grid);
    return why ? std::optional(why->toStdString()) : std::nullopt;
}

std::optional<std::string> insertColumn(SpreadsheetControl& grid)
{
    if (isReadOnly(grid))
        return std::nullopt;
    const auto why = grid.insertColumnsAt(grid.activeCell().column, 1);
    structureChanged(grid);
    return why ? std::optional(why->toStdString()) : std::nullopt;
}

} // namespace selfreport
