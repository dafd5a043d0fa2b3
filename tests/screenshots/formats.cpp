#include "tests/screenshots/formats.h"

#include "spreadsheet/print/pdf.h"
#include "spreadsheet/view/SpreadsheetControl.h"

#include <QFile>

namespace selfreport::test {

using namespace spreadsheet;

namespace {

void lineStyles(SpreadsheetControl& grid)
{
    const char* names[] = {"No border", "Solid",        "Dash",          "Dot",
                           "Dash dot",  "Dash dot dot", "Erases",        "Fine solid",
                           "Fine dash", "Fine dot",     "Fine dash dot", "Fine dash dot dot"};
    for (int style = 0; style < 12; ++style) {
        const int column = 2 + style % 6, row = 3 + style / 6 * 2;
        grid.cells().setText(column, row, names[style]);
        grid.cells().setBorder({column, row, column, row}, allSides, 0x000080, static_cast<LineStyle>(style));
    }
}

void types(SpreadsheetControl& grid)
{
    const struct {
        CellType type;
        const char* name;
        Value value;
    } cells[] = {
        {CellType::date, "日期型", 46000.0},
        {CellType::edit, "字符型", Value::text("文字")},
        {CellType::currency, "货币型", -1234567.891},
        {CellType::number, "数字型", 12.3456},
        {CellType::percent, "百分比", 0.125},
        {CellType::scientific, "科学计数法", 0.000012345},
        {CellType::staticText, "静态文本框", Value::text("说明")},
        {CellType::time, "时间型", 0.354},
        {CellType::button, "按钮型", {}},
        {CellType::dropDown, "下拉框", Value::text("客户")},
        {CellType::checkBox, "复选框", Value::boolean(true)},
        {CellType::checkBox, "复选框", Value::boolean(false)},
        {CellType::date, "不是日期", Value::text("待定")},
        {CellType::currency, "太宽的数", 123456789012.0},
    };
    int place = 0;
    for (const auto& [type, name, value] : cells) {
        const int column = 2 + place % 7, row = 8 + place / 7 * 2;
        grid.cells().setText(column, row, name);
        grid.cells().sheet().setValue({column, row + 1}, value);
        grid.cells().changeStyle({column, row + 1, column, row + 1}, [type](CellStyle& style) {
            style.type = type;
            style.decimals = 3;
        });
        if (type == CellType::button)
            grid.cells().putButtonCaption({column, row + 1}, QStringLiteral("计算"));
        ++place;
    }
}

void alignments(SpreadsheetControl& grid)
{
    const char* across[] = {"左", "右", "中"};
    const char* down[] = {"上", "中", "下"};
    for (int vertical = 0; vertical < 3; ++vertical)
        for (int horizontal = 0; horizontal < 3; ++horizontal) {
            const int column = 2 + horizontal, row = 13 + vertical;
            grid.cells().setText(column, row, QString(across[horizontal]) + down[vertical]);
            grid.cells().setRowHeight(row,
                                      vertical == 0 ? 760 : 500); // the first one also holds a wrapped text
            grid.cells().changeStyle({column, row, column, row}, [&](CellStyle& style) {
                style.horizontal = static_cast<HorizontalAlignment>(horizontal);
                style.vertical = static_cast<VerticalAlignment>(vertical);
            });
        }
    grid.cells().setText(5, 13, "自动换行的文字在单元格里分成几行");
    grid.cells().changeStyle({5, 13, 5, 13}, [](CellStyle& style) { style.wrap = true; });
    grid.cells().setText(8, 14, "右对齐的长文字向左伸出去");
    grid.cells().changeStyle({8, 14, 8, 14},
                             [](CellStyle& style) { style.horizontal = HorizontalAlignment::right; });
    grid.cells().setText(5, 15, "左对齐的长文字向右伸出去，直到有内容的单元格");
}

void fonts(SpreadsheetControl& grid)
{
    const struct {
        const char* text;
        void (*change)(CellStyle&);
    } cells[] = {
        {"粗体", [](CellStyle& s) { s.font.bold = true; }},
        {"斜体", [](CellStyle& s) { s.font.italic = true; }},
        {"下划线", [](CellStyle& s) { s.font.underline = true; }},
        {"删除线", [](CellStyle& s) { s.font.strikeThrough = true; }},
        {"全部",
         [](CellStyle& s) { s.font.bold = s.font.italic = s.font.underline = s.font.strikeThrough = true; }},
        {"前景色", [](CellStyle& s) { s.foreground = 0xC00000; }},
        {"背景色", [](CellStyle& s) { s.background = 0xFFF2A8; }},
        {"黑体 14", [](CellStyle& s) { s.font.family = Text("黑体"), s.font.points = 14; }},
        {"宋体 12", [](CellStyle& s) { s.font.family = Text("宋体"), s.font.points = 12; }},
        {"Arial 7", [](CellStyle& s) { s.font.family = Text("Arial"), s.font.points = 7; }},
        {"锁定", [](CellStyle& s) { s.locked = true; }},
    };
    int place = 0;
    for (const auto& [text, change] : cells) {
        const int column = 2 + place % 6, row = 17 + place / 6;
        grid.cells().setText(column, row, text);
        grid.cells().setRowHeight(row, 420);
        grid.cells().changeStyle({column, row, column, row}, change);
        ++place;
    }
}

void spans(SpreadsheetControl& grid)
{
    grid.cells().setText(2, 20, "合并三列两行，居中");
    grid.cells().addSpan({2, 20, 4, 21});
    grid.cells().changeStyle({2, 20, 2, 20}, [](CellStyle& style) {
        style.horizontal = HorizontalAlignment::centre;
        style.background = 0xDDEEFF;
    });
    grid.cells().setBorder({2, 20, 4, 21}, allSides, 0x000080, LineStyle::solid);
    grid.cells().setText(6, 20, "整列和整行的格式");
    grid.cells().changeStyle({9, 1, 9, grid.cells().rowCount()},
                             [](CellStyle& style) { style.background = 0xF0F0F0; });
    grid.cells().changeStyle({1, 23, grid.cells().columnCount(), 23}, [](CellStyle& style) {
        style.background = 0xE0F0E0;
        style.bottom = {LineStyle::fineSolid, 0x008000};
    });
    grid.cells().setText(2, 23, "整行");
    grid.cells().setText(9, 2, "整列");
}

void fill(SpreadsheetControl& grid)
{
    grid.cells().setColumnWidth(1, 300);
    for (int column = 2; column <= 9; ++column)
        grid.cells().setColumnWidth(column, 1500);
    grid.cells().setText(2, 1, "单元格格式一览");
    grid.cells().changeStyle({2, 1, 2, 1}, [](CellStyle& style) {
        style.font.bold = true;
        style.font.points = 16;
        style.horizontal = HorizontalAlignment::centre;
    });
    grid.cells().addSpan({2, 1, 9, 1});
    grid.cells().setRowHeight(1, 500);
    lineStyles(grid);
    types(grid);
    alignments(grid);
    fonts(grid);
    spans(grid);
    grid.cells().changePrintSettings([](PrintSettings& print) {
        print.landscape = print.gridLines = true;
        print.fitAcross = 1;
    });
}

} // namespace

std::unique_ptr<QWidget> formatsPage()
{
    auto grid = std::make_unique<SpreadsheetControl>();
    fill(*grid);
    grid->cursor().setActiveCell(2, 9); // a date: its calendar is offered
    return grid;
}

void saveFormatsPdf(const QString& path)
{
    SpreadsheetControl grid;
    fill(grid);
    QFile file(path);
    if (file.open(QIODevice::WriteOnly))
        file.write(pdfOf(grid.cells().workbook(), {}).bytes);
}

} // namespace selfreport::test
