#include "spreadsheet/files/xls/xls_read.h"
#include "spreadsheet/files/xls/xls_write.h"
#include "spreadsheet/files/xlsx/xlsx_read.h"
#include "spreadsheet/files/xlsx/xlsx_write.h"
#include "tests/spreadsheet/files/FilesTest.h"
#include "tests/spreadsheet/files/python.h"

#include <functional>
#include <gmock/gmock.h>
#include <random>

namespace spreadsheet {
namespace {

/// Something that a cell's look has, with a draw of its values.
struct Attribute {
    const char* name;
    std::function<void(CellStyle&, unsigned drawn)> set;
    std::function<std::string(const CellStyle&)> shown;
};

std::string shownLine(const BorderLine& line)
{
    return std::to_string(static_cast<int>(line.style)) + " " + std::to_string(line.colour);
}

/// A line of a style that files know, none of which has a colour.
BorderLine lineOf(unsigned drawn)
{
    const auto style = static_cast<LineStyle>(drawn % (static_cast<unsigned>(lastLineStyle) + 1));
    if (style == LineStyle::none || style == LineStyle::erase || style == LineStyle::dot)
        return {};
    return {style, drawn / 16 % 3 * 0x112233U};
}

const std::vector<Attribute>& attributes()
{
    constexpr HorizontalAlignment shownAcross[]{HorizontalAlignment::general, HorizontalAlignment::left,
                                                HorizontalAlignment::left, HorizontalAlignment::centre,
                                                HorizontalAlignment::centre};
    static const std::vector<Attribute> all{
        {"alignment across",
         [=](CellStyle& style, unsigned drawn) {
             style.carried.across = static_cast<Spread>(drawn % 5);
             style.horizontal = shownAcross[drawn % 5];
             if (drawn % 5 == 0)
                 style.horizontal = static_cast<HorizontalAlignment>(drawn / 5 % 4);
         },
         [](const CellStyle& style) {
             return std::to_string(static_cast<int>(style.carried.across)) + " " +
                    std::to_string(static_cast<int>(style.horizontal));
         }},
        {"alignment down",
         [](CellStyle& style, unsigned drawn) {
             style.vertical = static_cast<VerticalAlignment>(drawn % 3);
             if (drawn % 2 && style.vertical != VerticalAlignment::bottom)
                 style.carried.down =
                     style.vertical == VerticalAlignment::top ? Spread::justified : Spread::distributed;
         },
         [](const CellStyle& style) {
             return std::to_string(static_cast<int>(style.carried.down)) + " " +
                    std::to_string(static_cast<int>(style.vertical));
         }},
        {"indent",
         [](CellStyle& style, unsigned drawn) {
             const bool takesIndent =
                 style.horizontal == HorizontalAlignment::right ||
                 style.carried.across == Spread::distributed ||
                 (style.horizontal == HorizontalAlignment::left && style.carried.across == Spread::none);
             style.carried.indent = static_cast<std::uint8_t>(takesIndent ? drawn % 16 : 0);
         },
         [](const CellStyle& style) { return std::to_string(style.carried.indent); }},
        {"rotation",
         [](CellStyle& style, unsigned drawn) {
             style.carried.rotation = static_cast<std::uint8_t>(drawn % 7 == 0 ? 255 : drawn % 181);
         },
         [](const CellStyle& style) { return std::to_string(style.carried.rotation); }},
        {"wrap", [](CellStyle& style, unsigned drawn) { style.wrap = drawn % 2; },
         [](const CellStyle& style) { return std::to_string(style.wrap); }},
        {"left line", [](CellStyle& style, unsigned drawn) { style.left = lineOf(drawn); },
         [](const CellStyle& style) { return shownLine(style.left); }},
        {"right line", [](CellStyle& style, unsigned drawn) { style.right = lineOf(drawn); },
         [](const CellStyle& style) { return shownLine(style.right); }},
        {"top line", [](CellStyle& style, unsigned drawn) { style.top = lineOf(drawn); },
         [](const CellStyle& style) { return shownLine(style.top); }},
        {"bottom line", [](CellStyle& style, unsigned drawn) { style.bottom = lineOf(drawn); },
         [](const CellStyle& style) { return shownLine(style.bottom); }},
    };
    return all;
}

void checkAttributes(const char* format, const std::function<void(const Workbook&, Workbook&)>& roundTrip)
{
    std::mt19937 random(26); // NOLINT: the same looks every time
    Workbook workbook;
    constexpr int rows = 400;
    for (int row = 1; row <= rows; ++row) {
        CellStyle style;
        for (const Attribute& attribute : attributes())
            attribute.set(style, static_cast<unsigned>(random()));
        workbook.sheet(1).setNumber({2, row * 2}, row); // lines of neighbours do not meet
        workbook.sheet(1).setStyle({2, row * 2}, style);
    }
    Workbook found;
    roundTrip(workbook, found);
    for (const Attribute& attribute : attributes()) {
        for (int row = 1; row <= rows; ++row)
            ASSERT_EQ(attribute.shown(found.sheet(1).style({2, row * 2})),
                      attribute.shown(workbook.sheet(1).style({2, row * 2})))
                << format << " " << attribute.name << " " << row;
    }
}

TEST(KeptAttributes, ComeBackFromEachFormat)
{
    checkAttributes(".xlsx", [](const Workbook& from, Workbook& to) {
        Warnings warnings;
        readXlsx(writeXlsx(from, warnings), to, warnings);
        EXPECT_THAT(warnings.texts(), testing::IsEmpty());
    });
    checkAttributes(".xls", [](const Workbook& from, Workbook& to) {
        Warnings warnings;
        readXls(writeXls(from, warnings), to, warnings);
        EXPECT_THAT(warnings.texts(), testing::IsEmpty());
    });
    checkAttributes(".ss7", [](const Workbook& from, Workbook& to) {
        const TestFolder folder;
        saveWorkbook(from, folder.file("a.ss7"), fileFormat(".ss7"));
        loadWorkbook(to, folder.file("a.ss7"));
    });
}

/// What is aligned anew here is written as it is shown, not as it came; an indent is shown.
TEST(KeptAttributes, AnAlignmentThatWasChangedIsNoLongerCarried)
{
    Workbook workbook, found;
    CellStyle style;
    style.carried = {Spread::distributed, Spread::distributed, 3, 0};
    style.horizontal = HorizontalAlignment::general;
    style.vertical = VerticalAlignment::bottom;
    style.wrap = true;
    workbook.sheet(1).setNumber({1, 1}, 1);
    workbook.sheet(1).setStyle({1, 1}, style);
    Warnings warnings;
    readXlsx(writeXlsx(workbook, warnings), found, warnings);
    EXPECT_EQ(found.sheet(1).style({1, 1}).carried, (CarriedAlignment{Spread::none, Spread::none, 3, 0}));
    EXPECT_EQ(found.sheet(1).style({1, 1}).horizontal, HorizontalAlignment::general);
}

/// Alignments and lines as another program names them.
void fillNamed(Workbook& workbook)
{
    using enum LineStyle;
    const struct {
        Spread across, down;
        HorizontalAlignment shown;
        VerticalAlignment shownDown;
        std::uint8_t indent, rotation;
        LineStyle line;
    } cells[]{
        {Spread::none, Spread::none, HorizontalAlignment::left, VerticalAlignment::top, 2, 0, medium},
        {Spread::none, Spread::none, HorizontalAlignment::right, VerticalAlignment::bottom, 15, 45,
         slantedDashDot},
        {Spread::filled, Spread::justified, HorizontalAlignment::left, VerticalAlignment::top, 0, 135, solid},
        {Spread::justified, Spread::none, HorizontalAlignment::left, VerticalAlignment::centre, 0, 255,
         thick},
        {Spread::acrossCells, Spread::none, HorizontalAlignment::centre, VerticalAlignment::centre, 0, 0,
         doubled},
        {Spread::distributed, Spread::distributed, HorizontalAlignment::centre, VerticalAlignment::centre, 1,
         90, fineSolid},
    };
    int row = 0;
    for (const auto& cell : cells) {
        CellStyle style;
        style.carried = {cell.across, cell.down, cell.indent, cell.rotation};
        style.horizontal = cell.shown;
        style.vertical = cell.shownDown;
        style.bottom = {cell.line, 0};
        row += 2;
        workbook.sheet(1).setText({1, row}, "文");
        workbook.sheet(1).setStyle({1, row}, style);
    }
}

TEST(KeptAttributes, OtherProgramsReadThem)
{
    const TestFolder folder;
    Workbook workbook;
    fillNamed(workbook);
    demand(workbook.sheet(1).setFormula({2, 1}, "IFERROR(1/0,7)"));
    demand(workbook.sheet(1).setFormula({4, 1}, "SUM(SORT(B1:B2))"));
    workbook.sheet(1).setValue({3, 1}, Value::text(""));
    demand(workbook.defineName("一列", "Sheet1!$A$1:$A$3,Sheet1!$C$1", workbook.sheet(1).id()));
    workbook.recalculate();
    saveWorkbook(workbook, folder.file("a.xlsx"), fileFormat(".xlsx"));
    saveWorkbook(workbook, folder.file("a.xls"), fileFormat(".xls"));
    EXPECT_EQ(python(folder, R"(
import sys, openpyxl
book = openpyxl.load_workbook(sys.argv[1])
sheet = book.active
for row in range(2, 14, 2):
    look = sheet.cell(row, 1).alignment
    print(look.horizontal, look.vertical, int(look.indent), look.textRotation, sheet.cell(row, 1).border.bottom.style)
print(sheet['B1'].value, [(name, value.attr_text) for name, value in sheet.defined_names.items()]
      if hasattr(sheet, 'defined_names') else
      [(name.name, name.attr_text) for name in book.defined_names.definedName if name.localSheetId == 0])
)",
                     folder.file("a.xlsx")),
              "left top 2 0 medium\n"
              "right None 15 45 slantDashDot\n"
              "fill justify 0 135 thin\n"
              "justify center 0 255 thick\n"
              "centerContinuous center 0 0 double\n"
              "distributed distributed 1 90 hair\n"
              "=IFERROR(1/0,7) [('一列', 'Sheet1!$A$1:$A$3,Sheet1!$C$1')]\n");
    EXPECT_EQ(python(folder, R"(
import sys, xlrd
book = xlrd.open_workbook(sys.argv[1], formatting_info=True)
sheet = book.sheet_by_index(0)
for row in range(1, 13, 2):
    xf = book.xf_list[sheet.cell_xf_index(row, 0)]
    look = xf.alignment
    print(look.hor_align, look.vert_align, look.indent_level, look.rotation, xf.border.bottom_line_style)
print(sheet.cell(0, 1).value, [(name.name, name.scope) for name in book.name_obj_list])
)",
                     folder.file("a.xls")),
              "1 0 2 0 2\n"
              "3 2 15 45 13\n"
              "4 3 0 135 1\n"
              "5 1 0 255 5\n"
              "6 1 0 0 6\n"
              "7 4 1 90 7\n"
              "7.0 [('一列', 0), ('_xlfn.IFERROR', -1), ('_xlfn._xlws.SORT', -1)]\n");
    for (const char* file : {"a.xlsx", "a.xls"}) {
        Workbook again;
        loadWorkbook(again, folder.file(file));
        EXPECT_EQ(again.sheet(1).value({3, 1}), Value::text("")) << file << ": a text, if an empty one";
        EXPECT_EQ(again.sheet(1).formula({2, 1}), "IFERROR(1/0,7)") << file;
        EXPECT_EQ(again.sheet(1).formula({4, 1}), "SUM(SORT(B1:B2))") << file;
        const NameTable& names = again.names();
        ASSERT_GE(names.find("一列"), 0);
        EXPECT_EQ(again.formulas().text(names[names.find("一列")].formula, {1, 1}),
                  "Sheet1!$A$1:$A$3,Sheet1!$C$1");
        EXPECT_EQ(names[names.find("一列")].sheet, again.sheet(1).id());
    }
}

/// Buttons and check boxes are cells like others elsewhere; how many there are is told.
TEST(KeptAttributes, LostControlsAreCounted)
{
    Workbook workbook;
    for (int row = 1; row <= 5; ++row) {
        CellStyle style;
        style.type = row <= 3 ? CellType::button : CellType::checkBox;
        workbook.sheet(1).setStyle({1, row}, style);
    }
    Warnings xlsx, xls;
    writeXlsx(workbook, xlsx);
    writeXls(workbook, xls);
    for (const Warnings* warnings : {&xlsx, &xls})
        EXPECT_THAT(warnings->texts(),
                    testing::ElementsAre(testing::StartsWith("3 个"), testing::StartsWith("2 个")));
}

/// Formats that a file names by number only.
TEST(KeptAttributes, NumbersOfFormatsFollowTheFilesCountry)
{
    const TestFolder folder;
    const auto shown = [&](const char* font) {
        EXPECT_EQ(python(folder,
                         std::string("import sys, xlsxwriter\n"
                                     "book = xlsxwriter.Workbook(sys.argv[1])\n"
                                     "book.formats[0].set_font_name('") +
                             font + R"(')
sheet = book.add_worksheet()
sheet.write(0, 0, 46387, book.add_format({'num_format': 14}))
for row, number in enumerate((37, 38, 39, 40)):
    sheet.write(row + 1, 0, -1234.5, book.add_format({'num_format': number}))
book.close()
)",
                         folder.file("a.xlsx")),
                  "");
        Workbook workbook;
        loadWorkbook(workbook, folder.file("a.xlsx"));
        std::string texts;
        for (int row = 1; row <= 5; ++row)
            texts += workbook.sheet(1).displayText({1, row}) + "|";
        return texts;
    };
    EXPECT_EQ(shown("Calibri"), "12/31/2026|(1,235)|(1,235)|(1,234.50)|(1,234.50)|");
    EXPECT_EQ(shown("宋体"), "2026/12/31|-1,235 |-1,235 |-1,234.50 |-1,234.50 |");
}

} // namespace
} // namespace spreadsheet
