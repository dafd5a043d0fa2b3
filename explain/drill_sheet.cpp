#include "explain/drill_sheet.h"

#include "explain/drill_text.h"
#include "spreadsheet/workbook/Workbook.h"

#include <algorithm>
#include <array>
#include <functional>

namespace selfreport {

// Whoever filters or looks up in the sheet elsewhere needs names and amounts as they are. So a row's level
// shows by a number format that puts blanks before its text, and the text stays what it is.

namespace {

using spreadsheet::CellStyle;

enum Column { level = 1, item, basis, factor, amount, share, remark };
constexpr int lastColumn = remark;

constexpr std::array<int, lastColumn> widths{700, 3700, 4300, 900, 1900, 900, 3300}; // twips
constexpr spreadsheet::Colour red = 0xFF0000;
constexpr spreadsheet::Colour headingGrey = 0xE6E6E6;

class SheetRows {
public:
    explicit SheetRows(spreadsheet::Sheet& sheet)
        : m_sheet(sheet)
    {
    }
    void text(int column, const std::string& text)
    {
        if (!text.empty())
            m_sheet.setText({column, m_row}, text);
    }
    void number(int column, const std::optional<double>& number)
    {
        if (number)
            m_sheet.setNumber({column, m_row}, *number);
    }
    void style(int first, int last, const std::function<void(CellStyle&)>& change)
    {
        m_sheet.restyle({first, m_row, last, m_row}, change);
    }
    int row() const { return m_row; }
    void next() { ++m_row; }

private:
    spreadsheet::Sheet& m_sheet;
    int m_row = 1;
};

void makeBold(CellStyle& style)
{
    style.font.bold = true;
}

void showAmount(CellStyle& style)
{
    style.numberFormat = spreadsheet::Text("#,##0.00");
}

void named(SheetRows& rows, const std::string& name, const std::string& text)
{
    rows.text(level, name);
    rows.style(level, level, makeBold);
    rows.text(item, text);
    rows.next();
}

void headings(SheetRows& rows)
{
    int column = level;
    for (const char* heading : {"级", "项目", "依据", "系数", "金额", "占比", "说明"})
        rows.text(column++, heading);
    rows.style(level, lastColumn, [](CellStyle& style) {
        style.font.bold = true;
        style.background = headingGrey;
        style.horizontal = spreadsheet::HorizontalAlignment::centre;
    });
    rows.next();
}

void total(SheetRows& rows, const std::string& name, const std::optional<double>& sum, bool isFault)
{
    rows.text(item, name);
    rows.number(amount, sum);
    rows.style(amount, amount, showAmount);
    rows.style(level, lastColumn, [isFault](CellStyle& style) {
        style.font.bold = true;
        if (isFault)
            style.foreground = red;
    });
    rows.next();
}

std::string indented(int steps)
{
    std::string blanks;
    for (int step = 1; step < steps; ++step)
        blanks += "　";
    return blanks.empty() ? std::string() : "0;-0;0;\"" + blanks + "\"@";
}

void addRow(SheetRows& rows, const DrillNode& node, double sum, int depth)
{
    rows.number(level, depth);
    rows.text(item, oneLine(node.item));
    rows.text(basis, oneLine(node.basis));
    rows.number(factor, node.factor);
    rows.number(amount, node.amount);
    rows.text(share, shareText(node, sum));
    rows.text(remark, oneLine(node.remark));
    if (depth > 1)
        rows.style(item, item,
                   [&](CellStyle& style) { style.numberFormat = spreadsheet::Text(indented(depth)); });
    for (const int wrapped : {int(item), int(basis), int(remark)})
        rows.style(wrapped, wrapped, [](CellStyle& style) { style.wrap = true; });
    rows.style(amount, amount, showAmount);
    rows.style(share, share,
               [](CellStyle& style) { style.horizontal = spreadsheet::HorizontalAlignment::right; });
    if (node.isFault)
        rows.style(level, lastColumn, [](CellStyle& style) { style.foreground = red; });
    rows.next();
    for (const DrillNode& part : node.parts)
        addRow(rows, part, node.sum.value_or(0), depth + 1);
    if (node.pages > 1) {
        rows.number(level, depth + 1);
        rows.text(item, pageText(node));
        rows.next();
    }
}

int rowsOf(const DrillNode& node)
{
    int rows = 2; // with that of its pages
    for (const DrillNode& part : node.parts)
        rows += rowsOf(part);
    return rows;
}

/// Lies across the paper, all columns on a page, the headings on each.
void setUpPages(spreadsheet::Sheet& sheet, int headingRow, int rowCount)
{
    sheet.changeSettings([&](spreadsheet::SheetSettings& settings) {
        settings.rowCount = std::max(settings.rowCount, headingRow + rowCount);
        for (int column = level; column <= lastColumn; ++column)
            settings.columns.sizes[column] = widths[static_cast<std::size_t>(column - 1)];
        settings.frozenRows = headingRow;
        settings.print.landscape = true;
        settings.print.fitAcross = 1;
        settings.print.titleTop = settings.print.titleBottom = headingRow;
        settings.print.gridLines = true;
        settings.print.footer = "/c第 /p 页/n";
    });
}

} // namespace

void writeDrillSheet(spreadsheet::Workbook& workbook, const DrillHead& head, const DrillNode& root)
{
    constexpr int linesOfFoot = 3;
    workbook.setUndoEnabled(false);
    SheetRows rows(workbook.sheet(1));
    named(rows, "报表", head.report);
    named(rows, "单元格", head.cell);
    if (!head.formula.empty())
        named(rows, "公式", "=" + head.formula);
    named(rows, "显示", head.shown);
    if (!head.remark.empty())
        named(rows, "说明", head.remark);
    if (head.ledgerHasChanged)
        named(rows, "注意", ledgerHasChangedText);
    rows.next();
    setUpPages(workbook.sheet(1), rows.row(), rowsOf(root) + linesOfFoot);
    headings(rows);
    for (const DrillNode& part : root.parts)
        addRow(rows, part, root.sum.value_or(0), 1);
    if (!root.sum || !root.whole)
        return;
    total(rows, "合计", root.sum, false);
    total(rows, "单元格", root.whole, false);
    total(rows, "差额", root.difference(), !root.isWhole());
}

} // namespace selfreport
