#include "windows/printing/header_sheet.h"

#include "spreadsheet/workbook/Sheet.h"
#include "spreadsheet/workbook/typed_text.h"

#include <algorithm>

namespace selfreport {

namespace {

using spreadsheet::CellRange;
using spreadsheet::CellStyle;
using spreadsheet::CellType;

constexpr int characterWidth = 120; // twips of a digit of the usual font
constexpr int textWidth = 20 * characterWidth;
constexpr int buttonWidth = 3 * characterWidth;
constexpr int rowHeight = 330;
constexpr spreadsheet::Colour buttonGrey = 0xC0C0C0;
constexpr spreadsheet::Colour pageNumberGrey = 0x808080;

void makeTextCell(CellStyle& style)
{
    style = {};
    style.numberFormat = spreadsheet::Text(spreadsheet::textFormat); // a typed date stays as it was typed
    style.foreground = 0x000000;
    const HeaderCellFont usual;
    style.font.family = spreadsheet::Text(usual.family);
    style.font.points = usual.points;
}

void makeButton(CellStyle& style)
{
    style = {};
    style.type = CellType::button;
    style.font.bold = true;
    style.left = style.right = style.top = style.bottom = {spreadsheet::LineStyle::solid, buttonGrey};
}

void showFont(CellStyle& style, const HeaderCellFont& font)
{
    if (!font.family.empty())
        style.font.family = spreadsheet::Text(font.family);
    if (font.points > 0)
        style.font.points = font.points;
    style.font.bold = font.bold;
    style.font.underline = font.underline;
    style.font.italic = font.italic;
    style.font.strikeThrough = font.strikeThrough;
}

} // namespace

bool isHeaderTextColumn(int column)
{
    return std::ranges::find(headerColumns, column) != headerColumns.end();
}

void layOutHeaderSheet(spreadsheet::Sheet& sheet)
{
    sheet.changeSettings([](spreadsheet::SheetSettings& settings) {
        settings.rowCount = headerRows;
        settings.columnCount = 6;
        settings.rows.defaultSize = rowHeight;
        for (const int column : headerColumns) {
            settings.columns.sizes[column] = textWidth;
            settings.columns.sizes[column + 1] = buttonWidth;
        }
    });
    for (const int column : headerColumns) {
        sheet.restyle({column + 1, 1, column + 1, headerRows}, makeButton);
        for (int row = 1; row <= headerRows; ++row)
            sheet.setText({column + 1, row}, "...");
    }
    showHeaderGrid(sheet, {});
}

void showHeaderGrid(spreadsheet::Sheet& sheet, const HeaderGrid& grid)
{
    for (std::size_t part = 0; part < headerColumns.size(); ++part) {
        const int column = headerColumns[part];
        sheet.clearContents({column, 1, column, headerRows});
        sheet.restyle({column, 1, column, headerRows}, makeTextCell);
        for (int row = 1; row <= headerRows; ++row) {
            const HeaderCell& cell = grid[static_cast<std::size_t>(row - 1)][part];
            if (cell.showsPageNumber)
                setPageNumber(sheet, column, row, true);
            if (!cell.text.empty())
                sheet.setText({column, row}, cell.text);
            sheet.restyle({column, row, column, row}, [&](CellStyle& style) { showFont(style, cell.font); });
        }
    }
}

HeaderCell headerCellOf(const spreadsheet::Sheet& sheet, int column, int row)
{
    const CellStyle& style = sheet.style({column, row});
    HeaderCell cell;
    cell.text = sheet.displayText({column, row});
    cell.showsPageNumber = style.type == CellType::staticText;
    if (!style.font.family.view().empty())
        cell.font.family = style.font.family.view();
    cell.font.points = style.font.points;
    cell.font.bold = style.font.bold;
    cell.font.italic = style.font.italic;
    cell.font.underline = style.font.underline;
    cell.font.strikeThrough = style.font.strikeThrough;
    return cell;
}

HeaderGrid headerGridOf(const spreadsheet::Sheet& sheet)
{
    HeaderGrid grid;
    for (int row = 1; row <= headerRows; ++row)
        for (std::size_t part = 0; part < headerColumns.size(); ++part)
            grid[static_cast<std::size_t>(row - 1)][part] = headerCellOf(sheet, headerColumns[part], row);
    return grid;
}

void setPageNumber(spreadsheet::Sheet& sheet, int column, int row, bool on)
{
    sheet.restyle({column, row, column, row}, [&](CellStyle& style) {
        style.type = on ? CellType::staticText : CellType::edit;
        style.foreground = on ? pageNumberGrey : 0x000000;
    });
    sheet.setText({column, row}, on ? pageNumberText : std::string_view());
}

} // namespace selfreport
