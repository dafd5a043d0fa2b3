#include "spreadsheet/files/xlsx/xlsx_read.h"
#include "spreadsheet/files/xlsx/xlsx_write.h"
#include "tests/spreadsheet/files/FilesTest.h"
#include "tests/spreadsheet/files/python.h"

#include <gmock/gmock.h>
#include <limits>
#include <sstream>

namespace spreadsheet {
namespace {

using testing::IsEmpty;

/// Prints what stands in the file, once every part of it is found to be XML: cells, names, notes, headers and
/// lists, one a line; texts in hexadecimal, with the format's escapes undone.
constexpr const char* dump = R"(
import re, sys, zipfile
import xml.etree.ElementTree as tree
ns = '{http://schemas.openxmlformats.org/spreadsheetml/2006/main}'
def plain(text):
    units = re.sub(r'_x([0-9A-Fa-f]{4})_', lambda m: chr(int(m[1], 16)), text or '')
    return units.encode('utf-16-le', 'surrogatepass').decode('utf-16-le').encode().hex()
parts = {}
with zipfile.ZipFile(sys.argv[1]) as archive:
    assert archive.testzip() is None
    for name in archive.namelist():
        assert name not in parts
        parts[name] = tree.fromstring(archive.read(name))
named = {'/' + name for name in parts} - {'/[Content_Types].xml'}
for kind in parts['[Content_Types].xml']:
    assert kind.tag.endswith('Default') or kind.get('PartName') in named, kind.attrib
for name, part in parts.items(): # what strict readers miss
    assert all(view.get('workbookViewId') == '0' for view in part.iter(ns + 'sheetView')), name
shared = [''.join(t.text or '' for t in si.iter(ns + 't')) for si in parts['xl/sharedStrings.xml']]
for cell in parts['xl/worksheets/sheet1.xml'].iter(ns + 'c'):
    f, v = cell.find(ns + 'f'), cell.find(ns + 'v')
    text = None if v is None else shared[int(v.text)] if cell.get('t') == 's' else v.text or ''
    print(cell.get('r'), cell.get('t', 'n'), '-' if f is None else f.get('ref', '') + '=' + plain(f.text),
          '-' if text is None else plain(text))
for name in parts['xl/workbook.xml'].iter(ns + 'definedName'):
    print('name', plain(name.get('name')), plain(name.text))
for part in parts.values():
    for kind in ('oddHeader', 'formula1'):
        for found in part.iter(ns + kind):
            print(kind, plain(found.text))
    for note in part.iter(ns + 'comment'):
        print('note', note.get('ref'), plain(''.join(t.text for t in note.iter(ns + 't'))))
)";

std::string hex(std::string_view text)
{
    std::string digits;
    for (const char c : text) {
        for (const int shift : {4, 0})
            digits += "0123456789abcdef"[static_cast<unsigned char>(c) >> shift & 0xF];
    }
    return digits;
}

/// A workbook's file as another program and as our own reader find it.
struct Travelled {
    explicit Travelled(const Workbook& workbook)
    {
        const TestFolder folder;
        const std::vector<std::byte> file = writeXlsx(workbook, warnings);
        std::ofstream(folder.file("a.xlsx"), std::ios::binary)
            .write(reinterpret_cast<const char*>(file.data()), static_cast<std::streamsize>(file.size()));
        std::istringstream lines(python(folder, dump, folder.file("a.xlsx")));
        for (std::string line; std::getline(lines, line);)
            seen.push_back(line);
        readXlsx(file, found, warnings);
    }
    const Sheet& sheet() { return found.sheet(1); }

    Warnings warnings;
    std::vector<std::string> seen;
    Workbook found;
};

/// Texts that XML, or the format's way around it, could take for something else.
const std::vector<std::string> awkwardTexts{"\x03x",
                                            "a\x01\x1F\x7F",
                                            "\r",
                                            "a\r\nb",
                                            "\ta\n",
                                            " front",
                                            "back ",
                                            "  ",
                                            "\n",
                                            "<&>\"']]>",
                                            "_x0003_",
                                            "_x0003",
                                            "__x00aF_",
                                            "_x0003_x0004_",
                                            "_x0003\x04",
                                            "_x005F_",
                                            "_X0003_",
                                            "\xEF\xBF\xBE",
                                            "a\xEF\xBF\xBF",
                                            "_x0041\xEF\xBF\xBF",
                                            "\xF0\x9F\x98\x80",
                                            "中\x0B文",
                                            "TRUE",
                                            "#N/A",
                                            "12",
                                            "=1"};

TEST(XlsxResults, EveryKindIsWrittenAsItIs)
{
    const struct {
        const char* formula;
        const char* kind;
        std::string value;
        CellRange array{0, 0, 0, 0}; ///< of an array formula
    } cases[] = {
        {"1.5", "n", "1.5"},
        {"1/0", "e", "#DIV/0!"},
        {"NA()", "e", "#N/A"},
        {"#REF!+1", "e", "#REF!"},
        {"NoSuchFunction(1)", "e", "#NAME?"},
        {"SQRT(-1)", "e", "#NUM!"},
        {"\"a\"+1", "e", "#VALUE!"},
        {"A1:A2 B1:B2", "e", "#NULL!"},
        {"1=1", "b", "1"},
        {"1=2", "b", "0"},
        {"\"TRUE\"", "str", "TRUE"},
        {"\"#DIV/0!\"", "str", "#DIV/0!"},
        {"\"12\"", "str", "12"},
        {"\"\"", "str", ""},
        {"CHAR(3)&\"x\"", "str", "\x03x"},
        {"\"\xEF\xBF\xBE\"&\"\"", "str", "\xEF\xBF\xBE"},
        {"REPT(\"中\",3)", "str", "中中中"},
        {"1+{1,2}", "n", "2", {3, 30, 3, 30}},
        {"{1,2}", "n", "1", {3, 31, 3, 31}},
        {"\"a\"&{\"b\",\"}\"}", "str", "ab", {3, 32, 3, 32}},
        {"1/{0,1}", "e", "#DIV/0!", {3, 33, 3, 33}},
        {"{1,2}>1", "b", "0", {3, 34, 3, 34}},
        {"CHAR({3,4})", "str", "\x03", {3, 35, 3, 35}},
    };
    Workbook workbook;
    Sheet& sheet = workbook.sheet(1);
    std::vector<std::string> expected;
    int row = 0;
    for (const auto& c : cases) {
        const bool isArray = c.array.left != 0;
        const CellAddress at = isArray ? CellAddress{c.array.left, c.array.top} : CellAddress{3, ++row};
        if (isArray)
            ASSERT_FALSE(sheet.setArrayFormula(c.array, c.formula)) << c.formula;
        else
            ASSERT_FALSE(sheet.setFormula(at, c.formula)) << c.formula;
        expected.push_back(cellName(at) + " " + c.kind + " " +
                           (isArray ? cellName(at) + ":" + cellName(at) : "") + "=" + hex(c.formula) + " " +
                           hex(c.value));
    }
    workbook.recalculate();
    Travelled travelled(workbook);
    EXPECT_EQ(travelled.seen, expected);
    EXPECT_THAT(travelled.warnings.texts(), IsEmpty());
    for (int line = 1; line <= 35; ++line) {
        SCOPED_TRACE(sheet.formula({3, line}));
        EXPECT_EQ(travelled.sheet().value({3, line}), sheet.value({3, line}));
        EXPECT_EQ(travelled.sheet().formula({3, line}), sheet.formula({3, line}));
        EXPECT_EQ(travelled.sheet().arrayRange({3, line}), sheet.arrayRange({3, line}));
    }
}

TEST(XlsxResults, ArraysHaveTheirResultsInEveryCell)
{
    Workbook workbook;
    Sheet& sheet = workbook.sheet(1);
    ASSERT_FALSE(sheet.setArrayFormula({1, 1, 3, 2}, "{1,\"a_x0001_\",TRUE;#N/A,\"\",-0.5}"));
    workbook.recalculate();
    Travelled travelled(workbook);
    EXPECT_EQ(travelled.seen,
              (std::vector<std::string>{"A1 n A1:C2=" + hex("{1,\"a_x0001_\",TRUE;#N/A,\"\",-0.5}") + " 31",
                                        "B1 str - " + hex("a_x0001_"), "C1 b - 31", "A2 e - " + hex("#N/A"),
                                        "B2 str - ", "C2 n - " + hex("-0.5")}));
    for (const CellAddress at : {CellAddress{1, 1}, {2, 1}, {3, 1}, {1, 2}, {2, 2}, {3, 2}}) {
        EXPECT_EQ(travelled.sheet().value(at), sheet.value(at)) << cellName(at);
        EXPECT_EQ(travelled.sheet().arrayRange(at), (CellRange{1, 1, 3, 2})) << cellName(at);
    }
}

TEST(XlsxResults, ConstantsOfEveryKindComeBack)
{
    Workbook workbook;
    Sheet& sheet = workbook.sheet(1);
    std::vector<Value> values{Value::boolean(true),
                              Value::boolean(false),
                              0.1 + 0.2,
                              -std::numeric_limits<double>::max(),
                              5e-324,
                              1e15,
                              123456789012345.0};
    for (const CellError error : {CellError::null, CellError::div0, CellError::value, CellError::ref,
                                  CellError::name, CellError::num, CellError::na})
        values.emplace_back(error);
    int row = 0;
    for (const Value& value : values)
        sheet.setValue({1, ++row}, value);
    demand(sheet.setFormula({2, 1}, "#N/A"));
    workbook.recalculate();
    Travelled travelled(workbook);
    for (row = 1; row <= static_cast<int>(values.size()); ++row) {
        EXPECT_EQ(travelled.sheet().value({1, row}), sheet.value({1, row})) << row; // bit for bit
        EXPECT_FALSE(travelled.sheet().hasFormula({1, row})) << row;
    }
    EXPECT_EQ(travelled.sheet().formula({2, 1}), "#N/A");
}

TEST(XlsxResults, AwkwardTextsComeBackFromEverywhere)
{
    Workbook workbook;
    Sheet& sheet = workbook.sheet(1);
    std::vector<std::string> expected, notes;
    int row = 0;
    for (const std::string& text : awkwardTexts) {
        SCOPED_TRACE(hex(text));
        sheet.setText({1, ++row}, text);
        std::string quoted = "\"";
        for (const char c : text)
            quoted.append(c == '"' ? 2 : 1, c);
        quoted += '"';
        ASSERT_FALSE(sheet.setFormula({2, row}, quoted));
        const std::string cell = cellName({3, row});
        ASSERT_FALSE(sheet.setArrayFormula({3, row, 3, row}, quoted));
        sheet.changeSettings([&](SheetSettings& settings) { settings.notes[{1, row}] = text; });
        expected.push_back("A" + std::to_string(row) + " s - " + hex(text));
        expected.push_back("B" + std::to_string(row) + " str =" + hex(quoted) + " " + hex(text));
        expected.push_back(cell + " str " + cell + ":" + cell + "=" + hex(quoted) + " " + hex(text));
        notes.push_back("note A" + std::to_string(row) + " " + hex(text));
    }
    expected.insert(expected.end(), notes.begin(), notes.end());
    workbook.recalculate();
    Travelled travelled(workbook);
    EXPECT_EQ(travelled.seen, expected);
    for (row = 1; row <= static_cast<int>(awkwardTexts.size()); ++row) {
        SCOPED_TRACE(hex(awkwardTexts[static_cast<std::size_t>(row) - 1]));
        for (int column = 1; column <= 3; ++column) {
            EXPECT_EQ(travelled.sheet().value({column, row}), sheet.value({column, row})) << column;
            EXPECT_EQ(travelled.sheet().formula({column, row}), sheet.formula({column, row})) << column;
        }
    }
    EXPECT_EQ(travelled.sheet().settings().notes, sheet.settings().notes);
}

TEST(XlsxResults, NamesHeadersAndListsAreEscapedToo)
{
    Workbook workbook;
    Sheet& sheet = workbook.sheet(1);
    ASSERT_FALSE(workbook.defineName("_x0041_", "\"\x02_x0041_\""));
    CellStyle style;
    style.type = CellType::dropDown;
    style.numberFormat = Text("0.00\"_x0041_<\"");
    sheet.setStyle({1, 1}, style);
    ASSERT_FALSE(sheet.setFormula({1, 1}, "_x0041_"));
    sheet.changeSettings([](SheetSettings& settings) {
        settings.dropDowns = {{{1, 1}, DropDownEntries({"_x0041_", "\x05", "<"})}};
        settings.print.header = "/c_x0041_ & \x04/n";
    });
    workbook.recalculate();
    Travelled travelled(workbook);
    EXPECT_THAT(travelled.seen,
                testing::IsSupersetOf({"A1 str =" + hex("_x0041_") + " " + hex("\x02_x0041_"),
                                       "name " + hex("_x0041_") + " " + hex("\"\x02_x0041_\""),
                                       "formula1 " + hex("\"_x0041_,\x05,<\"")}));
    EXPECT_EQ(travelled.sheet().value({1, 1}), Value::text("\x02_x0041_"));
    EXPECT_EQ(travelled.sheet().style({1, 1}).numberFormat.view(), style.numberFormat.view());
    EXPECT_EQ(travelled.sheet().settings().dropDowns, sheet.settings().dropDowns);
    EXPECT_THAT(travelled.sheet().settings().print.header, testing::HasSubstr("_x0041_ & \x04"));
}

TEST(XlsxResults, AFormulaThatOthersWouldRefuseGivesWayToItsValue)
{
    Workbook workbook;
    Sheet& sheet = workbook.sheet(1);
    const std::string longText(8'300, 'x');
    std::string longSum = "1", longAnd = "AND(TRUE";
    for (int i = 0; i < 5'000; ++i)
        longSum += "+1";
    for (int i = 0; i < 250; ++i)
        longAnd += ",\"" + std::string(30, ' ') + "\"=\"\"";
    ASSERT_FALSE(sheet.setFormula({1, 1}, longSum));
    ASSERT_FALSE(sheet.setFormula({2, 1}, longSum + "&\"a\""));
    ASSERT_FALSE(sheet.setFormula({3, 1}, longAnd + ")"));
    ASSERT_FALSE(sheet.setArrayFormula({4, 1, 5, 1}, longSum + "+{1,2}/{0,1}"));
    ASSERT_FALSE(sheet.setFormula({6, 1}, "REPT(\"x\",32767)"));
    sheet.setText({7, 1}, std::string(32'766, 'x') + "\xF0\x9F\x98\x80");
    workbook.recalculate();
    Travelled travelled(workbook);
    EXPECT_THAT(travelled.warnings.texts(), testing::IsSupersetOf({testing::HasSubstr("A1 写为上次算出的值"),
                                                                   testing::HasSubstr("D1 写为上次算出的值"),
                                                                   testing::HasSubstr("32,767")}));
    for (int column = 1; column <= 6; ++column) {
        EXPECT_EQ(travelled.sheet().hasFormula({column, 1}), column == 6) << column;
        EXPECT_EQ(travelled.sheet().value({column, 1}), sheet.value({column, 1})) << column;
    }
    EXPECT_EQ(travelled.sheet().value({7, 1}), Value::text(std::string(32'766, 'x')));
}

} // namespace
} // namespace spreadsheet
