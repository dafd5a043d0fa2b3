#include "tests/spreadsheet/files/FilesTest.h"
#include "tests/spreadsheet/files/python.h"

#include <gmock/gmock.h>

namespace spreadsheet {
namespace {

/// A report as companies write them, without what the other libraries do not show.
void fillReport(Workbook& workbook)
{
    demand(workbook.renameSheet(1, "资产负债表"));
    demand(workbook.addSheet("数据"));
    Sheet& sheet = workbook.sheet(1);
    CellStyle money;
    money.numberFormat = Text("#,##0.00");
    money.type = CellType::number;
    money.font = {Text("黑体"), 12, true, false, false, false};
    money.background = 0xFFFF00;
    money.left = {LineStyle::solid, 0};
    money.bottom = {LineStyle::fineSolid, 0x0000FF};
    money.horizontal = HorizontalAlignment::right;
    money.wrap = true;
    money.font.underline = true;
    sheet.setText({1, 1}, "货币资金");
    sheet.setNumber({2, 1}, 1234567.891);
    sheet.setStyle({2, 1}, money);
    demand(sheet.setFormula({3, 1}, "SUM(B1:B2)*2+数据!$A$1"));
    demand(sheet.setFormula({4, 1}, "IF(B1>0,\"盈\",\"亏\")"));
    sheet.setValue({5, 1}, Value::boolean(true));
    demand(sheet.setFormula({6, 1}, "1/0"));
    CellStyle offer;
    offer.type = CellType::dropDown;
    sheet.setStyle({7, 1}, offer);
    sheet.setStyle({7, 2}, offer);
    sheet.addSpan({1, 3, 3, 3});
    sheet.setText({1, 3}, "合计");
    sheet.changeSettings([](SheetSettings& settings) {
        settings.notes[{1, 1}] = "批注";
        settings.columns.sizes[2] = 1800; // 120 pixels: 20 digits of 6
        settings.dropDowns = {{{7, 1}, DropDownEntries({"是", "a\"b"})},
                              {{7, 2}, DropDownEntries({"是", "a\"b"})}};
        settings.rows.sizes[3] = 480;
        settings.print.landscape = true;
        settings.print.header = "/c报表/n";
    });
    workbook.sheet(2).setNumber({1, 1}, 0.5);
    workbook.recalculate();
}

TEST(Interoperability, AnotherReaderOpensOurXls)
{
    const TestFolder folder;
    Workbook workbook;
    fillReport(workbook);
    saveWorkbook(workbook, folder.file("a.xls"), fileFormat(".xls"));
    const std::string output = python(folder, R"(
import sys, xlrd
book = xlrd.open_workbook(sys.argv[1], formatting_info=True)
sheet = book.sheet_by_index(0)
print(book.sheet_names(), sheet.merged_cells, sheet.cell_note_map[0, 0].text)
print([(cell.ctype, cell.value) for cell in sheet.row(0)[:6]])
look = book.xf_list[sheet.cell(0, 1).xf_index]
font = book.font_list[look.font_index]
print(book.format_map[look.format_key].format_str, font.name, font.height, font.weight,
      book.colour_map[look.background.pattern_colour_index], look.border.left_line_style)
print(look.border.bottom_line_style, book.colour_map[look.border.bottom_colour_index], look.alignment.hor_align,
      look.alignment.text_wrapped, font.underline_type, sheet.colinfo_map[1].width / 256, sheet.rowinfo_map[2].height)
)",
                                      folder.file("a.xls"));
    EXPECT_EQ(output, "['资产负债表', '数据'] [(2, 3, 0, 3)] 批注\n"
                      "[(1, '货币资金'), (2, 1234567.891), (2, 2469136.282), (1, '盈'), (4, 1), (5, 7)]\n"
                      "#,##0.00 黑体 240 700 (255, 255, 0) 1\n"
                      "7 (0, 0, 255) 3 1 1 20.0 480\n");
}

TEST(Interoperability, AnotherReaderOpensOurXlsx)
{
    const TestFolder folder;
    Workbook workbook;
    fillReport(workbook);
    saveWorkbook(workbook, folder.file("a.xlsx"), fileFormat(".xlsx"));
    const std::string output = python(folder, R"(
import sys, openpyxl
sheet = openpyxl.load_workbook(sys.argv[1])['资产负债表']
values = openpyxl.load_workbook(sys.argv[1], data_only=True)['资产负债表']
print([cell.value for cell in sheet[1]][:6], [str(span) for span in sheet.merged_cells.ranges], sheet['A1'].comment.text)
print([cell.value for cell in values[1]][:6])
cell = sheet['B1']
print(cell.number_format, cell.font.name, cell.font.sz, cell.font.b, cell.fill.fgColor.rgb, cell.border.left.style)
print(cell.border.bottom.style, cell.border.bottom.color.rgb, cell.alignment.horizontal, cell.alignment.wrap_text,
      cell.font.u, round(sheet.row_dimensions[3].height, 3), sheet.page_setup.orientation,
      sheet.oddHeader.center.text, sheet.protection.sheet)
print([(check.type, check.formula1, str(check.sqref)) for check in
       sheet.data_validations.dataValidation], abs(sheet.column_dimensions['B'].width - 20) * 6 < 0.5)
)",
                                      folder.file("a.xlsx"));
    EXPECT_EQ(output,
              "['货币资金', 1234567.891, '=SUM(B1:B2)*2+数据!$A$1', '=IF(B1>0,\"盈\",\"亏\")', True, '=1/0'] "
              "['A3:C3'] 批注\n"
              "['货币资金', 1234567.891, 2469136.282, '盈', True, '#DIV/0!']\n"
              "#,##0.00 黑体 12.0 True FFFFFF00 thin\n"
              "hair FF0000FF right True single 24.0 landscape 报表 False\n"
              "[('list', '\"是,a\"\"b\"', 'G1:G2')] True\n");
}

/// Who shows a row that follows its texts finds its height; others are as high as here.
TEST(Interoperability, RowsWithoutAHeightFollowTheirTextsElsewhereToo)
{
    const TestFolder folder;
    Workbook workbook;
    Sheet& sheet = workbook.sheet(1);
    for (int row = 1; row <= 4; ++row)
        sheet.setText({1, row}, "一二三四五六");
    sheet.restyle({1, 2, 1, 3}, [](CellStyle& style) { style.wrap = true; });
    sheet.setText({1, 4}, "甲\n乙");
    sheet.changeSettings([](SheetSettings& settings) { settings.rows.sizes[3] = 300; });
    saveWorkbook(workbook, folder.file("a.xlsx"), fileFormat(".xlsx"));
    saveWorkbook(workbook, folder.file("a.xls"), fileFormat(".xls"));
    EXPECT_EQ(python(folder, R"(
import sys, openpyxl
rows = openpyxl.load_workbook(sys.argv[1]).active.row_dimensions
print([rows[row].height for row in range(1, 5)])
)",
                     folder.file("a.xlsx")),
              "[14.25, None, 15.0, None]\n");
    EXPECT_EQ(python(folder, R"(
import sys, xlrd
rows = xlrd.open_workbook(sys.argv[1], formatting_info=True).sheet_by_index(0).rowinfo_map
print([(rows[row].height, rows[row].height_mismatch) for row in range(4)])
)",
                     folder.file("a.xls")),
              "[(285, 1), (285, 0), (300, 1), (285, 0)]\n");
    for (const char* file : {"a.xlsx", "a.xls"}) {
        Workbook again;
        loadWorkbook(again, folder.file(file));
        EXPECT_EQ(again.sheet(1).settings().rows.sizes, (std::map<int, int>{{3, 300}})) << file;
    }
}

TEST(Interoperability, SheetsStayAsHiddenAsTheyWere)
{
    const TestFolder folder;
    EXPECT_EQ(python(folder, R"(
import sys, openpyxl
book = openpyxl.Workbook()
book.create_sheet('b').sheet_state = 'hidden'
book.create_sheet('c').sheet_state = 'veryHidden'
book.save(sys.argv[1])
)",
                     folder.file("foreign.xlsx")),
              "");
    std::filesystem::path last = folder.file("foreign.xlsx");
    for (const char* format : {".xlsx", ".ss7", ".xls", ".ss7"}) { // each from the one before
        Workbook workbook;
        loadWorkbook(workbook, last);
        last = folder.file(std::string("own") + format);
        saveWorkbook(workbook, last, fileFormat(format));
    }
    EXPECT_EQ(python(folder, R"(
import sys, openpyxl, xlrd
print([sheet.sheet_state for sheet in openpyxl.load_workbook(sys.argv[1] + '/own.xlsx')])
print([sheet.visibility for sheet in xlrd.open_workbook(sys.argv[1] + '/own.xls').sheets()])
)",
                     folder.file("")),
              "['visible', 'hidden', 'veryHidden']\n[0, 1, 2]\n");
    Workbook workbook;
    loadWorkbook(workbook, last);
    for (int sheet = 1; sheet <= 3; ++sheet) {
        EXPECT_EQ(workbook.sheet(sheet).settings().isHidden, sheet > 1) << sheet;
        EXPECT_EQ(workbook.sheet(sheet).settings().isVeryHidden, sheet > 2) << sheet;
    }
}

constexpr const char* severalFonts = "单元格内各段文字的不同字体没有保留,按单元格的字体显示";

void expectForeign(const std::filesystem::path& file, const std::vector<std::string>& losses)
{
    Workbook workbook;
    EXPECT_EQ(loadWorkbook(workbook, file), losses);
    const Sheet& sheet = workbook.sheet(1);
    EXPECT_EQ(sheet.name(), "报表");
    EXPECT_EQ(sheet.displayText({1, 1}), "科目 & 余额");
    EXPECT_EQ(sheet.value({2, 1}), Value(1234.5));
    EXPECT_EQ(sheet.formula({3, 1}), "SUM(A1:B1)*2");
    EXPECT_EQ(sheet.value({3, 1}), Value(2469.0)); // even if its writer did not know
    EXPECT_EQ(sheet.value({4, 1}), Value::boolean(true));
    EXPECT_EQ(sheet.displayText({1, 2}), "2026-12-31");
    EXPECT_EQ(sheet.displayText({2, 2}), "科目"); // in two fonts
    const CellStyle& style = sheet.style({2, 1});
    EXPECT_EQ(style.numberFormat.view(), "#,##0.00");
    EXPECT_EQ(style.font.family.view(), "Arial");
    EXPECT_TRUE(style.font.bold);
    EXPECT_EQ(style.background, 0xFFFF00U);
    EXPECT_EQ(style.foreground, 0xFF0000U);
    EXPECT_EQ(style.left, (BorderLine{LineStyle::solid, 0}));
    EXPECT_EQ(style.horizontal, HorizontalAlignment::centre);
    EXPECT_EQ(sheet.settings().spans, (std::vector{CellRange{1, 4, 3, 5}}));
    EXPECT_EQ(sheet.settings().frozenRows, 1);
    EXPECT_EQ(sheet.settings().rows.size(2), 600);
    EXPECT_TRUE(sheet.settings().print.landscape);
}

TEST(Interoperability, OpensXlsOfAnotherWriter)
{
    const TestFolder folder;
    EXPECT_EQ(python(folder, R"(
import datetime, sys, xlwt
book = xlwt.Workbook(encoding='utf-8')
sheet = book.add_sheet('报表')
look = xlwt.easyxf('font: name Arial, bold on, colour red; align: horiz centre; borders: left thin; '
                   'pattern: pattern solid, fore_colour yellow', num_format_str='#,##0.00')
sheet.write(0, 0, '科目 & 余额')
sheet.write(0, 1, 1234.5, look)
sheet.write(0, 2, xlwt.Formula('SUM(A1:B1)*2'))
sheet.write(0, 3, True)
sheet.write(1, 0, datetime.date(2026, 12, 31), xlwt.easyxf(num_format_str='yyyy-mm-dd'))
sheet.write_rich_text(1, 1, [('科', xlwt.easyfont('bold on')), '目'])
sheet.write_merge(3, 4, 0, 2, 'x')
sheet.row(1).height_mismatch = True
sheet.row(1).height = 600
sheet.panes_frozen = True
sheet.horz_split_pos = 1
sheet.portrait = False
sheet.header_str = sheet.footer_str = b''
book.save(sys.argv[1])
)",
                     folder.file("a.xls")),
              "");
    expectForeign(folder.file("a.xls"), {severalFonts});
}

TEST(Interoperability, OpensXlsxOfAnotherWriter)
{
    const TestFolder folder;
    EXPECT_EQ(python(folder, R"(
import datetime, sys, xlsxwriter
book = xlsxwriter.Workbook(sys.argv[1])
sheet = book.add_worksheet('报表')
look = book.add_format({'font_name': 'Arial', 'bold': True, 'font_color': '#FF0000', 'align': 'center', 'left': 1,
                        'bg_color': '#FFFF00', 'num_format': '#,##0.00'})
sheet.set_row(1, 30)
sheet.write(0, 0, '科目 & 余额')
sheet.write(0, 1, 1234.5, look)
sheet.write_formula(0, 2, '=SUM(A1:B1)*2', None, 2469)
sheet.write(0, 3, True)
sheet.write_datetime(1, 0, datetime.date(2026, 12, 31), book.add_format({'num_format': 'yyyy-mm-dd'}))
sheet.write_rich_string(1, 1, '科', book.add_format({'bold': True}), '目')
sheet.merge_range(3, 0, 4, 2, 'x')
sheet.freeze_panes(1, 0)
sheet.set_landscape()
sheet.data_validation('F2:F4', {'validate': 'list', 'source': ['甲', '乙']})
sheet.data_validation('G1:G1048576', {'validate': 'list', 'source': ['丙']})
sheet.data_validation('H2:H1048576', {'validate': 'list', 'source': ['丁']})
sheet.data_validation('I1', {'validate': 'list', 'source': '=A1:A9'})
book.close()
)",
                     folder.file("a.xlsx")),
              "");
    expectForeign(folder.file("a.xlsx"), {severalFonts, "1 条从单元格取项目的下拉列表没有引入"});
    Workbook workbook;
    loadWorkbook(workbook, folder.file("a.xlsx"));
    const Sheet& sheet = workbook.sheet(1);
    const auto offers = [&sheet](CellAddress at) {
        const bool isList = sheet.style(at).type == CellType::dropDown && sheet.dropDownEntries(at);
        return isList ? *sheet.dropDownEntries(at) : std::vector<std::string>();
    };
    EXPECT_EQ(offers({6, 4}), (std::vector<std::string>{"甲", "乙"}));
    EXPECT_EQ(offers({7, 400}), std::vector<std::string>{"丙"});
    EXPECT_EQ(offers({8, 500}), std::vector<std::string>{"丁"});
    EXPECT_TRUE(offers({8, 1}).empty() && offers({9, 1}).empty() && offers({6, 5}).empty());
    EXPECT_EQ(sheet.settings().rowCount, 500);
}

} // namespace
} // namespace spreadsheet
