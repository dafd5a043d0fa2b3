#include "spreadsheet/demo/demo_sheet.h"

#include "spreadsheet/view/SpreadsheetControl.h"

#include <array>

namespace spreadsheet {

namespace {

void put(SpreadsheetControl& control, int column, int row, const char* text)
{
    control.cells().setText(column, row, QString::fromUtf8(text));
}

void putNumber(SpreadsheetControl& control, int column, int row, double number, CellType type)
{
    control.cells().sheet().setNumber({column, row}, number);
    control.cells().changeStyle({column, row, column, row}, [type](CellStyle& style) { style.type = type; });
}

void fillTitle(SpreadsheetControl& control)
{
    put(control, 1, 1, "资产负债表");
    control.cells().addSpan({1, 1, 6, 1});
    control.cells().changeStyle({1, 1, 1, 1}, [](CellStyle& style) {
        style.font.family = Text("黑体");
        style.font.points = 16;
        style.font.bold = true;
        style.horizontal = HorizontalAlignment::centre;
    });
    control.cells().setRowHeight(1, 480);
    control.cells().setColumnWidth(1, 2000);
    control.cells().setColumnWidth(2, 1500);
    put(control, 1, 2, "编制单位：某某贸易有限公司，这段文字伸进右边的空单元格");
}

void fillTypes(SpreadsheetControl& control)
{
    static constexpr struct {
        const char* label;
        CellType type;
        double number;
    } rows[] = {
        {"日期型", CellType::date, 46387},       {"时间型", CellType::time, 0.572916667},
        {"货币型", CellType::currency, 1234567}, {"数字型", CellType::number, -98765.432},
        {"百分比型", CellType::percent, 0.1234}, {"科学计数", CellType::scientific, 12345678},
    };
    int row = 4;
    for (const auto& [label, type, number] : rows) {
        put(control, 1, row, label);
        putNumber(control, 2, row++, number, type);
    }
    put(control, 1, row, "放不下的数");
    putNumber(control, 3, row, 123456789012, CellType::currency);
    put(control, 1, ++row, "按钮");
    put(control, 2, row, "取数");
    control.cells().changeStyle({2, row, 2, row}, [](CellStyle& style) { style.type = CellType::button; });
    put(control, 1, ++row, "下拉列表");
    put(control, 2, row, "部门");
    control.cells().changeStyle({2, row, 2, row}, [](CellStyle& style) { style.type = CellType::dropDown; });
    control.cells().setCurrent(2, row);
    control.cells().setDropDown(
        {QStringLiteral("部门"), QStringLiteral("客户"), QStringLiteral("供应商"), QStringLiteral("商品")});
    put(control, 1, ++row, "复选框");
    for (const int column : {2, 3}) {
        control.cells().changeStyle({column, row, column, row},
                                    [](CellStyle& style) { style.type = CellType::checkBox; });
        control.cells().sheet().setValue({column, row}, Value::boolean(column == 2));
    }
    put(control, 1, ++row, "自动换行的长文字会分成几行显示在同一个单元格里");
    control.cells().changeStyle({1, row, 1, row}, [](CellStyle& style) { style.wrap = true; });
    control.cells().setRowHeight(row, 700);
    control.cells().setCurrent(2, ++row);
    put(control, 1, row, "公式");
    demand(control.cells().setFormula(QStringLiteral("SUM(B6:B7)/0")));
    control.cells().setCurrent(3, row);
    demand(control.cells().setFormula(QStringLiteral("B6>B7")));
}

void fillBorders(SpreadsheetControl& control)
{
    static constexpr std::array names{"无",   "实线",   "虚线",   "点线",   "点划线",   "双点划线",
                                      "擦除", "细实线", "细虚线", "细点线", "细点划线", "细双点划线"};
    for (std::size_t style = 0; style < names.size(); ++style) {
        const int row = 4 + static_cast<int>(style);
        put(control, 5, row, names[style]);
        control.cells().setBorder({5, row, 5, row}, allSides, 0x000080, static_cast<LineStyle>(style));
        control.cells().setRowHeight(row, row == 14 ? 700 : 360);
    }
}

void fillFonts(SpreadsheetControl& control)
{
    put(control, 7, 4, "粗体");
    put(control, 7, 5, "斜体 italic");
    put(control, 7, 6, "下划线");
    put(control, 7, 7, "删除线");
    put(control, 7, 8, "红字黄底");
    put(control, 7, 9, "右对齐");
    put(control, 7, 10, "居中");
    put(control, 7, 11, "楷体十四磅");
    put(control, 7, 12, "靠上");
    put(control, 7, 13, "靠下");
    const auto style = [&](int row, const std::function<void(CellStyle&)>& change) {
        control.cells().changeStyle({7, row, 7, row}, change);
    };
    style(4, [](CellStyle& s) { s.font.bold = true; });
    style(5, [](CellStyle& s) { s.font.italic = true; });
    style(6, [](CellStyle& s) { s.font.underline = true; });
    style(7, [](CellStyle& s) { s.font.strikeThrough = true; });
    style(8, [](CellStyle& s) {
        s.foreground = 0xC00000;
        s.background = 0xFFF2A8;
    });
    style(9, [](CellStyle& s) { s.horizontal = HorizontalAlignment::right; });
    style(10, [](CellStyle& s) { s.horizontal = HorizontalAlignment::centre; });
    style(11, [](CellStyle& s) {
        s.font.family = Text("楷体");
        s.font.points = 14;
    });
    style(12, [](CellStyle& s) { s.vertical = VerticalAlignment::top; });
    style(13, [](CellStyle& s) { s.vertical = VerticalAlignment::bottom; });
    control.cells().setColumnWidth(7, 1600);
}

} // namespace

void fillDemo(SpreadsheetControl& control)
{
    demand(control.cells().setSheetCount(3));
    demand(control.cells().setSheetName(QStringLiteral("资产负债表")));
    fillTitle(control);
    fillTypes(control);
    fillBorders(control);
    fillFonts(control);
    const int first = control.cells().sheet().id();
    control.setCellNotes([first](int sheetId, CellAddress cell) {
        return sheetId == first && cell == CellAddress{2, 15} ? QStringLiteral("没有科目 1009") : QString();
    });
    control.cells().recalculate();
    control.cursor().setActiveCell(2, 4);
}

} // namespace spreadsheet
