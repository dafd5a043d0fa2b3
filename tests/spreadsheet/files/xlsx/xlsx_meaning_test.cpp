#include "spreadsheet/files/exchange/alignments.h"
#include "spreadsheet/files/xlsx/xlsx_formula.h"
#include "spreadsheet/files/xlsx/xlsx_read.h"
#include "spreadsheet/files/xlsx/XlsxNames.h"
#include "spreadsheet/files/xlsx/XmlWriter.h"
#include "tests/spreadsheet/files/xlsx/made_archive.h"

#include <gmock/gmock.h>

namespace spreadsheet {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

std::string sheetOf(const std::string& content)
{
    return "<worksheet>" + content + "</worksheet>";
}

std::vector<std::string> read(const Parts& parts, Workbook& workbook)
{
    const TestFolder folder;
    Warnings warnings;
    readXlsx(archive(folder, parts), workbook, warnings);
    return warnings.texts();
}

/// A cell by itself: what it holds, and what is told.
TEST(XlsxMeaning, OfCells)
{
    const struct {
        const char *cell, *formula;
        Value value;
        const char* warning = "";
    } cases[] = {
        {"<c r=\"A1\" t=\"inlineStr\"><is><t>a\r\nb\rc</t></is></c>", "", Value::text("a\nb\nc")},
        {"<c r=\"A1\" t=\"inlineStr\"><is><t>漢</t><rPh sb=\"0\"><t>かん</t></rPh></is></c>", "",
         Value::text("漢")},
        {"<c r=\"A1\" t=\"str\"><f>\"_xlfn.A\"&amp;_xlfn.CSC(1)</f><v>x</v></c>", "\"_xlfn.A\"&CSC(1)",
         Value::text("x")},
        {"<c r=\"A1\"><v>1<!-- 9 -->2<![CDATA[.]]>5</v></c>", "", Value(12.5)},
        {"<c r=\"A1\" t=\"s\"><v>9</v></c>", "", Value(), "文本编号"},
        {"<c r=\"A1\"><f t=\"dataTable\" ref=\"A1:A2\" r1=\"B1\">B1</f><v>3</v></c>", "", Value(3.0),
         "模拟运算表"},
        {"<c r=\"A1\"><f t=\"array\" ref=\"A1:A2\">1+1</f><v>3</v></c><c r=\"A2\"><f t=\"array\" "
         "ref=\"A2:A3\">2</f><v>4</v></c>",
         "", Value(3.0), "重叠"},
        {"<c r=\"A1\" t=\"e\"><f>#N/A</f><v>#N/A</v></c>", "#N/A", Value(CellError::na)},
        {"<c r=\"A1\"><f>=1+1</f><v>2</v></c>", "1+1", Value(2.0)},
    };
    for (const auto& c : cases) {
        Workbook workbook;
        const auto warnings = read(
            workbookOf(sheetOf("<sheetData><row>" + std::string(c.cell) + "</row></sheetData>")), workbook);
        EXPECT_EQ(workbook.sheet(1).formula({1, 1}), c.formula) << c.cell;
        EXPECT_EQ(workbook.sheet(1).value({1, 1}), c.value) << c.cell;
        if (*c.warning)
            EXPECT_THAT(warnings, ElementsAre(HasSubstr(c.warning))) << c.cell;
        else
            EXPECT_THAT(warnings, IsEmpty()) << c.cell;
    }
}

/// Where all computing is left to the reader, a constant error can only be written as a formula.
TEST(XlsxMeaning, OfConstantsThatHadToBeFormulas)
{
    Parts parts = workbookOf(
        sheetOf("<sheetData><row><c r=\"A1\" t=\"e\"><f>#N/A</f><v>#N/A</v></c></row></sheetData>"));
    parts[1].second.insert(parts[1].second.find("</x:workbook>"), "<x:calcPr fullCalcOnLoad=\"1\"/>");
    Workbook workbook;
    EXPECT_THAT(read(parts, workbook), IsEmpty());
    EXPECT_EQ(workbook.sheet(1).formula({1, 1}), "");
    EXPECT_EQ(workbook.sheet(1).value({1, 1}), Value(CellError::na));
}

/// Libraries that cannot compute write no results, or 0, and ask for computing.
TEST(XlsxMeaning, OfFormulasWithoutTheirResults)
{
    const std::string asks = "<x:calcPr fullCalcOnLoad=\"1\"/>", none;
    const struct {
        std::string book, formula, value;
        Value shown;
    } cases[] = {
        {none, "B1+1", "", Value(6.0)},
        {none, "B1+1", "<v></v>", Value(6.0)},
        {none, "B1+1", "<v>99</v>", Value(99.0)}, // as it was
        {none, "Acct(1)", "", Value()},           // is computed by whoever has it
        {none, "Acct(1)", "<v>99</v>", Value(99.0)},
        {asks, "B1+1", "<v>0</v>", Value(6.0)},
        {asks, "B1+1", "<v>99</v>", Value(6.0)},
        {asks, "Acct(1)", "<v>99</v>", Value(99.0)},
        {asks, "Acct(1)", "<v>0</v>", Value(CellError::name)},
        {asks, "B1/0", "<v>0</v>", Value(CellError::div0)},
        {asks, "INDIRECT(\"没有!A1\")", "<v>99</v>", Value(99.0)},
        {asks, "INDIRECT(\"没有!A1\")", "<v>0</v>", Value(CellError::ref)},
    };
    for (const auto& c : cases) {
        for (const bool another : {false, true}) { // formula that has no result
            if (another && c.shown == Value(99.0) && c.formula == "B1+1")
                continue;
            Parts parts =
                workbookOf(sheetOf("<sheetData><row><c r=\"A1\"><f>" + c.formula + "</f>" + c.value +
                                   "</c><c r=\"B1\"><v>5</v></c>" +
                                   (another ? "<c r=\"C1\"><f>B1*2</f></c>" : "") + "</row></sheetData>"));
            parts[1].second.insert(parts[1].second.find("</x:workbook>"), c.book);
            Workbook workbook;
            EXPECT_THAT(read(parts, workbook), IsEmpty());
            EXPECT_EQ(workbook.sheet(1).value({1, 1}), c.shown) << c.book << c.formula << c.value << another;
            EXPECT_EQ(workbook.sheet(1).value({3, 1}), another ? Value(10.0) : Value());
        }
    }
}

/// A formula that cannot be computed here is a constant for the others.
TEST(XlsxMeaning, OfWhatReadsFormulasThatKeepTheirResults)
{
    struct Cell {
        std::string formula, told;
        Value shown;
    };
    const std::string let = "_xlfn.LET(_xlpm.x,5,_xlpm.x)";
    const std::vector<Cell> books[] = {
        {{let, "5", 5.0},
         {"IFERROR(A1,0)", "5", 5.0},
         {"SUMIF(A1:A1,\">0\")", "5", 5.0},
         {"COUNT(A1)", "1", 1.0},
         {"A1*2", "10", 10.0},
         {"B1+100", "105", 105.0},
         {"1+2", "", 3.0},
         {"IFERROR(NOPE(1),1)+1", "8", 8.0},
         {"IF(G1>2,H1,NOPE(1))", "", 8.0}},
        {{"NOPE(1)", "", CellError::name},
         {"A1+1", "", CellError::name},
         {"SUM(A1,10)", "", CellError::name},
         {"Acct(1)", "", Value()},
         {"ref_f(1,2,3)", "", Value()},
         {"SUM(D1,10)", "", 10.0},
         {"IF(F1>9,7,Acct(1))", "", 7.0}},
        {{"nosuch+1", "8", 8.0}, {"A1*2", "", 16.0}, {"INDIRECT(\"没有!A1\")", "9", 9.0}, {"C1+1", "", 10.0}},
    };
    for (const std::vector<Cell>& cells : books) {
        std::string row;
        for (const Cell& cell : cells) {
            row += "<c><f>";
            appendXml(row, cell.formula);
            row += "</f>" + (cell.told.empty() ? "" : "<v>" + cell.told + "</v>") + "</c>";
        }
        Workbook workbook;
        EXPECT_THAT(read(workbookOf(sheetOf("<sheetData><row>" + row + "</row></sheetData>")), workbook),
                    IsEmpty());
        const Sheet& sheet = workbook.sheet(1);
        for (int column = 1; column <= static_cast<int>(cells.size()); ++column) {
            const Cell& cell = cells[static_cast<std::size_t>(column) - 1];
            EXPECT_EQ(sheet.value({column, 1}), cell.shown) << cell.formula << sheet.displayText({column, 1});
            EXPECT_NE(sheet.formula({column, 1}), "");
        }
        EXPECT_FALSE(workbook.formulas().customs().isRegistered("NOPE"));
        workbook.recalculate();
        EXPECT_EQ(sheet.value({1, 1}), Value(CellError::name));
    }

    Workbook workbook; // an array
    read(workbookOf(sheetOf("<sheetData><row><c r=\"A1\"><f t=\"array\" ref=\"A1:A2\">" + let +
                            "</f><v>3</v></c><c r=\"B1\"><f>SUM(A1:A2)</f></c></row>"
                            "<row><c r=\"A2\"><v>4</v></c></row></sheetData>")),
         workbook);
    EXPECT_EQ(workbook.sheet(1).value({2, 1}), Value(7.0));
}

TEST(XlsxMeaning, OfMergedCellsThatOverlap)
{
    Workbook workbook;
    const auto warnings =
        read(workbookOf(sheetOf("<sheetData/><mergeCells><mergeCell ref=\"B4:C5\"/><mergeCell "
                                "ref=\"A1:F1\"/><mergeCell ref=\"A3:B4\"/><mergeCell ref=\"C5:D6\"/>"
                                "<mergeCell ref=\"F1:G2\"/></mergeCells>")),
             workbook);
    EXPECT_EQ(workbook.sheet(1).settings().spans,
              (std::vector<CellRange>{{1, 1, 6, 1}, {1, 3, 2, 4}, {3, 5, 4, 6}}));
    EXPECT_THAT(warnings, ElementsAre(HasSubstr(" B4:C5、F1:G2 ")));
}

/// A cell may come before the one whose formula it shares, or share one that the file lacks.
TEST(XlsxMeaning, OfSharedFormulas)
{
    const auto shared = [](const char* name, const char* group, const char* text) {
        return "<c r=\"" + std::string(name) + "\"><f t=\"shared\" si=\"" + group + "\">" + text +
               "</f><v>9</v></c>";
    };
    Workbook workbook;
    const auto warnings =
        read(workbookOf(sheetOf("<sheetData><row>" + shared("B1", "0", "") + shared("C1", "1", "") +
                                "</row><row>" + shared("B2", "0", "A2+1") + shared("C2", "1", "") +
                                "</row><row>" + shared("B3", "0", "") + "</row></sheetData>")),
             workbook);
    const Sheet& sheet = workbook.sheet(1);
    EXPECT_EQ(sheet.formula({2, 1}) + sheet.formula({2, 2}) + sheet.formula({2, 3}), "A1+1A2+1A3+1");
    EXPECT_EQ(sheet.formula({3, 1}) + sheet.formula({3, 2}), "");
    EXPECT_EQ(sheet.value({3, 2}), Value(9.0));
    EXPECT_THAT(warnings, ElementsAre(HasSubstr("C1 等单元格保留了上次算出的值: 共用的公式不在文件中")));
}

TEST(XlsxMeaning, OfPathsWithStepsUp)
{
    for (const std::string path :
         {"worksheets/a/../sheet1.xml", "../xl/./worksheets/sheet1.xml", "./worksheets/./sheet1.xml",
          "/xl/a/b/../../worksheets/sheet1.xml", "../../../xl/worksheets/sheet1.xml"}) {
        Parts parts = workbookOf(sheetOf("<sheetData><row><c><v>5</v></c></row></sheetData>"));
        std::string& relations = parts[2].second;
        const std::string plain = "worksheets/sheet1.xml";
        relations.replace(relations.find(plain), plain.size(), path);
        Workbook workbook;
        EXPECT_THAT(read(parts, workbook), IsEmpty()) << path;
        EXPECT_EQ(workbook.sheet(1).value({1, 1}), Value(5.0)) << path;
    }
}

TEST(XlsxMeaning, BinaryWorkbooksAreRefusedByTheirName)
{
    Parts parts = workbookOf("");
    std::string& relations = parts[0].second;
    relations.replace(relations.find("workbook.xml"), 12, "workbook.bin");
    parts[1] = {"xl/workbook.bin", std::string("\x83\x01\0\x80", 4)};
    Workbook workbook;
    try {
        read(parts, workbook);
        FAIL();
    } catch (const ContentError& error) {
        EXPECT_THAT(error.what(), HasSubstr(".xlsb"));
    }
}

TEST(XlsxMeaning, RowsThatAreNoXmlAreRefused)
{
    std::string deep, behind;
    for (int i = 0; i < 100; ++i) {
        deep += "<a>";
        behind += "</a>";
    }
    for (const std::string& content :
         {std::string("<row><c r=\"A1\"></row></c>"), std::string("<row><c r=\"A1\"><v>1</f></c></row>"),
          "<row>" + deep + behind + "</row>"}) {
        Workbook workbook;
        EXPECT_THROW(read(workbookOf(sheetOf("<sheetData>" + content + "</sheetData>")), workbook),
                     ContentError)
            << content.substr(0, 40);
    }
}

TEST(XlsxMeaning, OfPanesAndColumns)
{
    Workbook workbook;
    read(workbookOf(sheetOf(
             "<sheetViews><sheetView><pane xSplit=\"2\" ySplit=\"3\" state=\"frozenSplit\"/></sheetView>"
             "</sheetViews><cols><col min=\"4\" max=\"4\" width=\"0\"/></cols><sheetData/>")),
         workbook);
    const SheetSettings& settings = workbook.sheet(1).settings();
    EXPECT_EQ(settings.frozenColumns, 2);
    EXPECT_EQ(settings.frozenRows, 3);
    EXPECT_TRUE(settings.columns.hidden.contains(4));
}

/// A break stands behind the row or column that the file names; there is none before the first and behind the
/// last.
TEST(XlsxMeaning, OfBreaks)
{
    Workbook workbook;
    read(workbookOf(sheetOf("<sheetData/><rowBreaks><brk id=\"0\"/><brk id=\"1\"/><brk id=\"1048575\"/>"
                            "<brk id=\"1048576\"/></rowBreaks>"
                            "<colBreaks><brk id=\"-1\"/><brk id=\"16383\"/><brk id=\"16384\"/></colBreaks>")),
         workbook);
    const PrintSettings& print = workbook.sheet(1).settings().print;
    EXPECT_EQ(print.rowBreaks, (std::map<int, bool>{{2, true}, {1'048'576, true}}));
    EXPECT_EQ(print.columnBreaks, (std::map<int, bool>{{16'384, true}}));
}

TEST(XlsxMeaning, OfLooks)
{
    Parts parts =
        workbookOf(sheetOf("<sheetData><row><c r=\"A1\" s=\"1\"/><c r=\"B1\" s=\"2\"/></row></sheetData>"));
    const std::string relation =
        "Type=\"http://schemas.openxmlformats.org/officeDocument/2006/relationships/";
    parts[2].second.insert(parts[2].second.find("</Relationships>"),
                           "<Relationship Id=\"r2\" " + relation + "styles\" Target=\"styles.xml\"/>" +
                               "<Relationship Id=\"r3\" " + relation + "theme\" Target=\"theme.xml\"/>");
    parts.emplace_back("xl/theme.xml",
                       "<theme><themeElements><clrScheme><dk1><srgbClr val=\"010203\"/></dk1>"
                       "<lt1><srgbClr val=\"FFFFFF\"/></lt1></clrScheme></themeElements></theme>");
    parts.emplace_back(
        "xl/styles.xml",
        "<styleSheet><fonts><font><sz val=\"9\"/></font><font><color "
        "theme=\"1\"/></font></fonts><fills><fill/><fill>"
        "<gradientFill><stop position=\"0\"><color "
        "rgb=\"FF00FF00\"/></stop></gradientFill></fill></fills><borders>"
        "<border/><border><start style=\"thin\"/><end style=\"double\"/></border></borders><cellXfs><xf/>"
        "<xf fontId=\"1\" fillId=\"1\" borderId=\"1\"><alignment horizontal=\"left\" indent=\"300\" "
        "textRotation=\"200\"/>"
        "</xf><xf><alignment horizontal=\"center\" indent=\"3\" "
        "textRotation=\"255\"/></xf></cellXfs></styleSheet>");
    Workbook workbook;
    EXPECT_THAT(read(parts, workbook), ElementsAre(HasSubstr("渐变填充")));
    const CellStyle &first = workbook.sheet(1).style({1, 1}), &second = workbook.sheet(1).style({2, 1});
    EXPECT_EQ(first.foreground, automaticColour) << "nobody coloured it";
    EXPECT_EQ(first.background, 0x00FF00u);
    EXPECT_EQ(first.left.style, LineStyle::solid);
    EXPECT_EQ(first.right.style, LineStyle::doubled);
    EXPECT_EQ(first.carried.indent, 250) << "the most that there is";
    EXPECT_EQ(first.carried.rotation, 0) << "no such turn";
    EXPECT_EQ(second.carried.rotation, CarriedAlignment::stackedLetters);
    EXPECT_EQ(indentSteps(second), 0u) << "of a centred text";
}

TEST(XlsxMeaning, OfNamesAndParts)
{
    XlsxNames names;
    names.addName("", "RATE", "RATE");
    names.addName("甲", "RATE", "RATE_2");
    EXPECT_EQ(names.plain("RATE(1)+RATE", "甲", {1, 1}), "RATE(1)+RATE_2") << "a function is none";
    XlsxTable table;
    table.name = "表";
    table.sheet = "甲";
    table.range = {2, 3, 4, 9};
    table.columns = {"一", "二", "三"};
    names.addTable(table);
    EXPECT_EQ(names.plain("表[[三]:[二]]", "甲", {1, 1}), "$C$4:$D$9");
    EXPECT_EQ(names.plain("表[[#Totals],[一]]", "甲", {1, 1}), "#REF!") << "it has none";
}

/// What stands behind a name of one sheet means the names of that sheet.
TEST(XlsxMeaning, OfNamesInNames)
{
    Parts parts =
        workbookOf(sheetOf("<sheetData><row><c r=\"A1\"><f>双倍</f><v>1</v></c></row></sheetData>"));
    parts[1].second.insert(
        parts[1].second.find("</x:workbook>"),
        "<x:definedNames><x:definedName name=\"税率\">1</x:definedName>"
        "<x:definedName name=\"税率\" localSheetId=\"0\">5</x:definedName>"
        "<x:definedName name=\"双倍\" localSheetId=\"0\">税率*2</x:definedName></x:definedNames>");
    Workbook workbook;
    read(parts, workbook);
    workbook.recalculate();
    EXPECT_EQ(workbook.sheet(1).value({1, 1}), Value(10.0));
}

TEST(XlsxMeaning, OfWhatIsWritten)
{
    const SheetResolver none = [](std::string_view) { return 0; };
    EXPECT_EQ(portableFormula("A1　+　2", {1, 1}, none), "A1 + 2") << "blanks that others know";
    EXPECT_EQ(portableFormula("sort(FILTER(A1:A9,UNIQUE(A1:A9)<SUM(1)))", {1, 1}, none),
              "_xlfn._xlws.sort(_xlfn._xlws.FILTER(A1:A9,_xlfn.UNIQUE(A1:A9)<SUM(1)))");
    std::string attribute, text;
    appendXml(attribute, "a\tb\nc\"", true);
    appendXml(text, "a\tb\nc\"", false);
    EXPECT_EQ(attribute, "a&#9;b&#10;c&quot;") << "readers make blanks of them";
    EXPECT_EQ(text, "a\tb\nc\"");
}

} // namespace
} // namespace spreadsheet
