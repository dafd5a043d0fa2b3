#include "explain/drill_sheet.h"

#include "explain/drill_text.h"
#include "spreadsheet/workbook/Workbook.h"

namespace selfreport {

namespace {

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
    void next() { ++m_row; }

private:
    spreadsheet::Sheet& m_sheet;
    int m_row = 1;
};

void named(SheetRows& rows, const std::string& name, const std::string& text)
{
    rows.text(1, name);
    rows.text(2, text);
    rows.next();
}

void figure(SheetRows& rows, const std::string& name, const std::optional<double>& amount)
{
    rows.text(2, name);
    rows.number(5, amount);
    rows.next();
}

void addRow(SheetRows& rows, const DrillNode& node, double sum, int level)
{
    rows.number(1, level);
    rows.text(2, oneLine(node.item));
    rows.text(3, oneLine(node.basis));
    rows.number(4, node.factor);
    rows.number(5, node.amount);
    rows.text(6, shareText(node, sum));
    rows.text(7, oneLine(node.remark));
    rows.next();
    for (const DrillNode& part : node.parts)
        addRow(rows, part, node.sum.value_or(0), level + 1);
}

} // namespace

void writeDrillSheet(spreadsheet::Workbook& workbook, const DrillHead& head, const DrillNode& root)
{
    SheetRows rows(workbook.sheet(1));
    named(rows, "报表", head.report);
    named(rows, "单元格", head.cell);
    named(rows, "公式", head.formula);
    named(rows, "显示", head.shown);
    rows.next();
    int column = 1;
    for (const char* heading : {"级", "项目", "依据", "系数", "金额", "占比", "说明"})
        rows.text(column++, heading);
    rows.next();
    for (const DrillNode& part : root.parts)
        addRow(rows, part, root.sum.value_or(0), 1);
    if (!root.sum || !root.whole)
        return;
    figure(rows, "合计", root.sum);
    figure(rows, "单元格", root.whole);
    figure(rows, "差额", root.difference());
}

} // namespace selfreport
