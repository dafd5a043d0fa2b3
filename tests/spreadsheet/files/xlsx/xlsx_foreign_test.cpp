#include "spreadsheet/files/exchange/CodePage.h"
#include "spreadsheet/files/xlsx/xlsx_read.h"
#include "spreadsheet/files/xlsx/xlsx_write.h"
#include "spreadsheet/files/xlsx/XlsxNames.h"
#include "tests/spreadsheet/files/xlsx/made_archive.h"

#include <algorithm>
#include <gmock/gmock.h>

namespace spreadsheet {
namespace {

const std::string relationKind = "http://schemas.openxmlformats.org/officeDocument/2006/relationships";

std::string relations(const std::vector<std::pair<std::string, std::string>>& targets)
{
    std::string xml = "<Relationships>";
    int number = 0;
    for (const auto& [kind, target] : targets)
        xml += "<Relationship Id=\"r" + std::to_string(++number) + "\" Type=\"" + relationKind + kind +
               "\" Target=\"" + target + "\"/>";
    return xml + "</Relationships>";
}

/// A workbook of sheets "甲", "乙", "丙", "表4" … with what stands behind the list of sheets.
Parts workbookOfSheets(const std::vector<std::string>& sheets, const std::string& behind = {})
{
    static constexpr const char* names[]{"甲", "乙", "丙"};
    std::string list;
    std::vector<std::pair<std::string, std::string>> targets;
    Parts parts{{"_rels/.rels", relations({{"/officeDocument", "/xl/workbook.xml"}})}};
    for (std::size_t i = 0; i < sheets.size(); ++i) {
        const std::string number = std::to_string(i + 1);
        list += "<sheet name=\"" + (i < std::size(names) ? names[i] : "表" + number) + "\" sheetId=\"" +
                number + "\" r:id=\"r" + number + "\"/>";
        targets.emplace_back("/worksheet", "worksheets/sheet" + number + ".xml");
        if (!sheets[i].empty())
            parts.emplace_back("xl/worksheets/sheet" + number + ".xml",
                               "<worksheet xmlns:r=\"r\">" + sheets[i] + "</worksheet>");
    }
    parts.emplace_back("xl/workbook.xml",
                       "<workbook xmlns:r=\"r\"><sheets>" + list + "</sheets>" + behind + "</workbook>");
    parts.emplace_back("xl/_rels/workbook.xml.rels", relations(targets));
    return parts;
}

std::string cellsOf(const std::vector<std::string>& formulas)
{
    std::string xml = "<sheetData>";
    for (std::size_t row = 1; row <= formulas.size(); ++row)
        xml += "<row r=\"" + std::to_string(row) + "\"><c r=\"F" + std::to_string(row) + "\"><f>" +
               formulas[row - 1] + "</f><v>7</v></c></row>";
    return xml + "</sheetData>";
}

TEST(XlsxNames, PartsOfTablesBecomeRanges)
{
    XlsxNames names;
    XlsxTable table;
    table.name = "销售表";
    table.sheet = "甲";
    table.range = {2, 3, 4, 9}; // headings in row 3, totals in row 9
    table.totalsRows = 1;
    table.columns = {"科目", "本期 [元]", "Qty#"};
    names.addTable(table);
    const struct {
        const char *formula, *onItsSheet, *elsewhere;
    } cases[] = {
        {"SUM(销售表[本期 '[元']])", "SUM($C$4:$C$8)", "SUM(甲!$C$4:$C$8)"},
        {"SUM(销售表[])", "SUM($B$4:$D$8)", "SUM(甲!$B$4:$D$8)"},
        {"ROWS(销售表[#All])", "ROWS($B$3:$D$9)", "ROWS(甲!$B$3:$D$9)"},
        {"销售表[[#Headers],[科目]]", "$B$3", "甲!$B$3"},
        {"销售表[[#Totals],[qty'#]]", "$D$9", "甲!$D$9"},
        {"SUM(销售表[[#Headers],[#Data],[科目]])", "SUM($B$3:$B$8)", "SUM(甲!$B$3:$B$8)"},
        {"SUM(销售表[[#Data],[#Totals]])", "SUM($B$4:$D$9)", "SUM(甲!$B$4:$D$9)"},
        {"SUM(销售表[[科目]:[本期 '[元']]])", "SUM($B$4:$C$8)", "SUM(甲!$B$4:$C$8)"},
        {"销售表[[#This Row],[科目]]", "$B5", "甲!$B5"},
        {"SUM(销售表[@[科目]:[Qty'#]])", "SUM($B5:$D5)", "SUM(甲!$B5:$D5)"},
        {"销售表[@科目]&\"销售表[科目]\"", "$B5&\"销售表[科目]\"", "甲!$B5&\"销售表[科目]\""},
        {"销售表[[#This Row],科目]", "$B5", "甲!$B5"},
        {"[@科目]", "$B5", "[@科目]"}, // without the table's name inside it
        {"销售表[没有]", "销售表[没有]", "销售表[没有]"},
        {"别表[科目]+[1]S!A1", "别表[科目]+[1]S!A1", "别表[科目]+[1]S!A1"},
        {"销售表[", "销售表[", "销售表["},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(names.plain(c.formula, "甲", {3, 5}), c.onItsSheet);
        EXPECT_EQ(names.plain(c.formula, "乙", {3, 5}), c.elsewhere);
    }
    EXPECT_EQ(names.plain("销售表[@科目]", "甲", {7, 20}), "#VALUE!") << "beside no row of it";
}

TEST(XlsxNames, ATableIsReadAsItsRange)
{
    const TestFolder folder;
    Parts parts = workbookOfSheets(
        {"<sheetData><row r=\"2\"><c r=\"A2\"><v>5</v></c></row><row r=\"3\"><c r=\"A3\"><v>6</v></c></row>"
         "</sheetData>",
         cellsOf({"SUM(表1[金额])"})});
    parts.emplace_back("xl/worksheets/_rels/sheet1.xml.rels", relations({{"/table", "../tables/t.xml"}}));
    parts.emplace_back("xl/tables/t.xml",
                       "<table name=\"x\" displayName=\"表1\" ref=\"A1:A3\"><tableColumns count=\"1\">"
                       "<tableColumn id=\"1\" name=\"金额\"/></tableColumns></table>");
    Workbook workbook;
    Warnings warnings;
    readXlsx(archive(folder, parts), workbook, warnings);
    EXPECT_EQ(workbook.sheet(2).formula({6, 1}), "SUM(甲!$A$2:$A$3)");
    workbook.recalculate();
    EXPECT_EQ(workbook.sheet(2).value({6, 1}), Value(11.0));
    EXPECT_THAT(warnings.texts(), testing::ElementsAre(testing::HasSubstr("表格“表1”")));
}

/// Formulas are read once for those filled down a column; each is what stands in the file all the same.
TEST(XlsxFormulas, BelowEachOtherAreWhatTheFileSays)
{
    const TestFolder folder;
    const std::vector<std::string> formulas{"SUM(A1:E1)*2",
                                            "SUM(A2:E2)*2",
                                            "SUM(A3:E3)*3",
                                            "SUM(A3:E3)*3",
                                            "SUM(A5:E5)*3",
                                            "LOG10(A1)",
                                            "LOG10(A2)",
                                            "LOG11(A2)",
                                            "a9+$A$1&\"A9\"",
                                            "a10+$A$1&\"A10\"",
                                            "a11+$A$1&\"A10\"",
                                            "A12+$A$1&\"A10\"",
                                            "乙!A1+A:A",
                                            "乙!A2+A:A",
                                            "A3+A:A",
                                            "1+1",
                                            "1+1",
                                            "2+2"};
    Workbook workbook;
    Warnings warnings;
    readXlsx(archive(folder, workbookOfSheets({cellsOf(formulas), ""})), workbook, warnings);
    for (int row = 1; row <= static_cast<int>(formulas.size()); ++row)
        EXPECT_EQ(workbook.sheet(1).formula({6, row}), formulas[static_cast<std::size_t>(row - 1)]);
    Workbook other;
    readXlsx(
        archive(folder, workbookOfSheets({"<sheetData><row r=\"2\"><c r=\"F2\"><f>F1</f></c></row>"
                                          "<row r=\"1\"><c r=\"F1\"><f>#REF!</f></c></row></sheetData>"})),
        other, warnings);
    demand(other.sheet(1).fillDown({6, 1, 6, 3}));
    EXPECT_EQ(other.sheet(1).formula({6, 3}), "#REF!")
        << "an error, not a reference that led out of the sheet";
}

/// One name means another thing on each sheet; each formula goes on with its own.
TEST(XlsxNames, NamesOfOneSheetStayApart)
{
    const TestFolder folder;
    const Parts parts = workbookOfSheets(
        {cellsOf({"税率*2", "乙!税率", "SUM(各列)"}), cellsOf({"税率*2", "甲!税率", "'丙'!税率"}),
         cellsOf({"税率*2", "\"税率\"", "只丙+1"})},
        "<definedNames><definedName name=\"税率\" localSheetId=\"1\">0.2</definedName>"
        "<definedName name=\"税率\">0.1</definedName>"
        "<definedName name=\"税率\" localSheetId=\"2\">0.3</definedName>"
        "<definedName name=\"只丙\" localSheetId=\"2\">5</definedName>"
        "<definedName name=\"各列\">甲!$A$1:$A$3,乙!$C$1</definedName></definedNames>");
    Workbook workbook;
    Warnings warnings;
    readXlsx(archive(folder, parts), workbook, warnings);
    const double expected[3][3]{{0.2, 0.2, 0}, {0.4, 0.1, 0.3}, {0.6, 0, 6}};
    const auto check = [&](Workbook& book) {
        book.recalculate();
        for (int sheet = 1; sheet <= 3; ++sheet) {
            for (int row = 1; row <= 3; ++row) {
                const Value value = book.sheet(sheet).value({6, row});
                if (sheet == 3 && row == 2)
                    EXPECT_EQ(value, Value::text("税率"));
                else
                    EXPECT_EQ(value, Value(expected[sheet - 1][row - 1])) << sheet << " " << row;
            }
        }
    };
    check(workbook);
    EXPECT_THAT(warnings.texts(), testing::SizeIs(2)) << "one for each that had to give way";
    Workbook again;
    Warnings none;
    readXlsx(writeXlsx(workbook, none), again, none);
    EXPECT_THAT(none.texts(), testing::IsEmpty());
    check(again);
    const NameTable& names = again.names();
    EXPECT_EQ(names[names.find("只丙")].sheet, again.sheet(3).id());
    EXPECT_EQ(names[names.find("税率")].sheet, 0);
    EXPECT_EQ(names[names.find("税率_2")].sheet, again.sheet(2).id());
}

TEST(XlsxLosses, AreNamedAndCounted)
{
    const TestFolder folder;
    Parts parts = workbookOfSheets(
        {"<sheetPr><tabColor rgb=\"FFFF0000\"/></sheetPr>"
         "<cols><col min=\"1\" max=\"2\" width=\"9\" outlineLevel=\"1\"/></cols>"
         "<sheetData><row r=\"1\" outlineLevel=\"1\"/><row r=\"2\" outlineLevel=\"2\"/></sheetData>"
         "<autoFilter ref=\"A1:B2\"/><conditionalFormatting><cfRule/><cfRule/></conditionalFormatting>"
         "<conditionalFormatting><cfRule/></conditionalFormatting>"
         "<dataValidations><dataValidation type=\"whole\"/><dataValidation type=\"list\"><formula1>$A$1:$A$9"
         "</formula1></dataValidation><dataValidation/></dataValidations>"
         "<hyperlinks><hyperlink/></hyperlinks><drawing r:id=\"r1\"/>",
         "<sheetData/><conditionalFormatting><cfRule/></conditionalFormatting>"},
        "<definedNames><definedName name=\"宏\" function=\"1\">1</definedName>"
        "<definedName name=\"_xlnm.Criteria\">甲!$A$1</definedName>"
        "<definedName name=\"过程\" vbProcedure=\"1\">1</definedName></definedNames>");
    parts.emplace_back("xl/worksheets/_rels/sheet1.xml.rels",
                       relations({{"/drawing", "../d.xml"}, {"/pivotTable", "../p.xml"}}));
    parts.emplace_back("xl/d.xml", "<wsDr><twoCellAnchor><from/><pic/></twoCellAnchor><oneCellAnchor><pic/>"
                                   "</oneCellAnchor><twoCellAnchor><graphicFrame/></twoCellAnchor></wsDr>");
    Workbook workbook;
    Warnings warnings;
    readXlsx(archive(folder, parts), workbook, warnings);
    EXPECT_THAT(warnings.texts(),
                testing::UnorderedElementsAre(
                    "1 张表的标签颜色没有引入", "1 处列的分级显示没有引入", "2 行的分级显示没有引入",
                    "1 处自动筛选没有引入", "4 条条件格式没有引入", "1 条数据有效性没有引入",
                    "1 条从单元格取项目的下拉列表没有引入", "1 处超链接没有引入,文字保留", "2 张图片没有引入",
                    "1 个图表没有引入", "1 个数据透视表只引入了单元格的值", "2 个宏的名称没有引入"));
    EXPECT_EQ(workbook.names().size(), 0);
}

TEST(XlsxArchive, PartsNeedNotBeCompressed)
{
    const TestFolder folder;
    Workbook workbook;
    Warnings warnings;
    std::vector<std::byte> file = archive(folder, workbookOfSheets({cellsOf({"1+1"})}), 0);
    readXlsx(file, workbook, warnings);
    EXPECT_EQ(workbook.sheet(1).formula({6, 1}), "1+1");
    const std::string_view sign = "<v>7</v>";
    const auto place = std::search(file.begin(), file.end(), sign.begin(), sign.end(),
                                   [](std::byte a, char b) { return std::to_integer<char>(a) == b; });
    ASSERT_NE(place, file.end());
    *(place + 3) = std::byte('8');
    EXPECT_THROW(readXlsx(file, workbook, warnings), ContentError) << "no longer what was summed up";
}

TEST(XlsxArchive, PathsMayHaveTheSeparatorOfAnotherSystem)
{
    const TestFolder folder;
    Parts parts = workbookOfSheets({cellsOf({"1+1"})});
    for (auto& [path, content] : parts)
        std::ranges::replace(path, '/', '\\');
    Workbook workbook;
    Warnings warnings;
    readXlsx(archive(folder, parts), workbook, warnings);
    EXPECT_EQ(workbook.sheet(1).formula({6, 1}), "1+1");
}

TEST(XlsxArchive, PartsAreReadInTheirEncoding)
{
    const std::string sheet =
        "<worksheet><sheetData><row><c t=\"str\"><v>科目</v></c></row></sheetData></worksheet>";
    const auto declared = [&](const char* encoding) {
        return "<?xml version='1.0' encoding='" + std::string(encoding) + "'?>" + sheet;
    };
    const std::string contents[] = {declared("UTF-8"), "\xEF\xBB\xBF" + declared("utf-8"),
                                    "\xFF\xFE" + CodePage("UTF-16LE").encoded(declared("UTF-16")),
                                    "\xFE\xFF" + CodePage("UTF-16BE").encoded(sheet),
                                    CodePage("GB18030").encoded(declared("GB2312"))};
    for (const std::string& content : contents) {
        const TestFolder folder;
        Workbook workbook;
        Warnings warnings;
        readXlsx(archive(folder, workbookOf(content)), workbook, warnings);
        EXPECT_EQ(workbook.sheet(1).displayText({1, 1}), "科目") << content;
        EXPECT_TRUE(warnings.texts().empty());
    }
}

TEST(XlsxColumns, UpToTheSheetsEndAreNotUsed)
{
    const TestFolder folder;
    const auto columns = [](const char* last) {
        return "<cols><col min=\"2\" max=\"" + std::string(last) + "\" width=\"20\"/></cols><sheetData/>";
    };
    Workbook workbook;
    Warnings warnings;
    readXlsx(archive(folder, workbookOfSheets({columns("255"), columns("256"), columns("16384")})), workbook,
             warnings);
    EXPECT_EQ(workbook.sheet(1).settings().columnCount, 255);
    EXPECT_LT(workbook.sheet(2).settings().columnCount, 255) << "where old sheets end";
    EXPECT_LT(workbook.sheet(3).settings().columnCount, 255);
}

TEST(XlsxLosses, SheetsBeyondTheMostAreLeftOut)
{
    std::vector<std::string> sheets(maxSheets + 1, "<sheetData/>");
    sheets.front() = cellsOf({"1+1"});
    sheets.back() = cellsOf({"2+2", "3+3"});
    const TestFolder folder;
    Workbook workbook;
    Warnings warnings;
    readXlsx(archive(folder, workbookOfSheets(sheets)), workbook, warnings);
    EXPECT_EQ(workbook.sheetCount(), maxSheets);
    EXPECT_EQ(workbook.sheet(1).formula({6, 1}), "1+1");
    EXPECT_EQ(workbook.sheet(1).lastDataRow(), 1);
    EXPECT_THAT(warnings.texts(), testing::ElementsAre("工作表超过 256 张,其余的没有引入"));
}

TEST(XlsxArchive, SheetsThatAreNoXmlAreRefused)
{
    const TestFolder folder;
    for (const char* cell : {"<c r=xF1x><v>1</v></c>", "<c r=\"F1><v>1</v></c>", "<c r=\"F1\"><v>1</c></v>",
                             "<c r \"F1\"><v>1</v></c>"}) {
        Workbook workbook;
        Warnings warnings;
        const std::string sheet = "<sheetData><row r=\"1\">" + std::string(cell) + "</row></sheetData>";
        EXPECT_THROW(readXlsx(archive(folder, workbookOfSheets({sheet})), workbook, warnings), ContentError)
            << cell;
    }
}

TEST(XlsxLosses, ASheetWithoutItsPartIsEmpty)
{
    const TestFolder folder;
    Workbook workbook;
    Warnings warnings;
    readXlsx(archive(folder, workbookOfSheets({cellsOf({"1+1"}), ""})), workbook, warnings);
    ASSERT_EQ(workbook.sheetCount(), 2);
    EXPECT_EQ(workbook.sheet(1).value({6, 1}), Value(7.0));
    EXPECT_EQ(workbook.sheet(2).name(), "乙");
    EXPECT_THAT(warnings.texts(), testing::ElementsAre(testing::HasSubstr("“乙”")));
}

} // namespace
} // namespace spreadsheet
