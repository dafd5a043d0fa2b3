#include "spreadsheet/files/content/content.h"
#include "spreadsheet/files/content/content_frame.h"
#include "spreadsheet/formula/FormulaPool.h"
#include "spreadsheet/workbook/Workbook.h"

#include <cstring>
#include <fstream>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iterator>
#include <limits>

using namespace spreadsheet;
using testing::HasSubstr;

namespace {

using Bytes = std::vector<std::byte>;

/// A workbook with one of everything that a file holds.
void fillEverything(Workbook& workbook)
{
    demand(workbook.renameSheet(1, "资产负债表"));
    demand(workbook.addSheet("2月 调整"));
    Sheet& sheet = workbook.sheet(1);
    sheet.setNumber({1, 1}, -0.1);
    sheet.setText({1, 2}, "货币资金\n第二行");
    sheet.setText({2, 2}, "货币资金\n第二行");
    sheet.setValue({1, 3}, Value::boolean(true));
    sheet.setValue({1, 4}, CellError::na);
    sheet.setValue({1, 5}, Value(Text::countedAs("1,234.50", 1234.5)));
    sheet.setNumber({1, 5000}, 7); // far below the rest
    sheet.setNumber({16'384, 1'048'576}, 1);
    demand(sheet.setFormula({3, 1}, "$A1 * 2 + 税率"));
    demand(sheet.fillDown({3, 1, 3, 40}));
    demand(sheet.setFormula({4, 1}, "sum(a$1:A1,'2月 调整'!B2)"));
    demand(sheet.setFormula({4, 2}, "Acct(\"1001\" ,\"1\" , \"RMB\", \"2009\",\"1\",\"3\")"));
    demand(sheet.setFormula({4, 3}, "D1048576+A1")); // points off the sheet when it is copied down
    demand(sheet.setArrayFormula({5, 1, 6, 3}, "IF(A1:A3>0,A1:A3,{1,2})"));
    sheet.setTag({3, 3}, "13");
    sheet.setShownText({3, 4}, "=$A4*2");
    CellStyle style;
    style.type = CellType::number;
    style.decimals = 4;
    style.font = {Text("宋体"), 10.5F, true, true, true, true};
    style.horizontal = HorizontalAlignment::centre;
    style.vertical = VerticalAlignment::top;
    style.wrap = style.locked = true;
    style.foreground = 0x123456;
    style.background = 0xFFFFEE;
    style.left = {LineStyle::fineDashDotDot, 0x80};
    style.bottom = {LineStyle::erase, 0};
    style.numberFormat = Text("#,##0.00");
    sheet.setStyle({1, 1}, style);
    sheet.restyle({2, 1, 2, maxRows}, [](CellStyle& s) { s.font.bold = true; });
    sheet.restyle({1, 9, maxColumns, 9}, [](CellStyle& s) { s.type = CellType::date; });
    sheet.setStyle({2, 9}, sheet.style({1, 9})); // where the row and the column cross
    sheet.addSpan({1, 20, 4, 21});
    sheet.changeSettings([](SheetSettings& settings) {
        settings.rowCount = 1'048'576;
        settings.columnCount = 16'384;
        settings.rows.sizes[3] = 600;
        settings.rows.hidden[4] = true;
        settings.columns.sizes[2] = 2000;
        settings.columns.defaultSize = 900;
        settings.frozenRows = 2;
        settings.frozenColumns = 1;
        settings.print.marginLeft = 1440;
        settings.print.landscape = true;
        settings.print.header = "/fn\"宋体\"/fz\"12\"/c利润表/n";
        settings.print.footer = "/r/p/n";
        settings.print.gridLines = settings.print.shadows = true;
        settings.print.colour = false;
        settings.print.titleTop = 1;
        settings.print.titleBottom = 3;
    });
    demand(workbook.defineName("税率", "='2月 调整'!$B$2"));
    workbook.sheet(2).setNumber({2, 2}, 0.17);
    workbook.setActiveSheet(2);
    workbook.recalculate();
}

/// What the stored sample of version 1 does not hold.
void fillLaterFields(Workbook& workbook)
{
    workbook.setCountsFrom1904(true);
    workbook.sheet(1).changeSettings([](SheetSettings& settings) {
        settings.print.usedAreaOnly = false;
        settings.print.fitAcross = 1;
        settings.print.centredDown = settings.print.stamp = true;
        settings.print.rowBreaks = {{4, true}, {9, true}};
        settings.print.columnBreaks = {{2, true}};
        const DropDownEntries kinds({"部门", "客户"});
        settings.dropDowns.insert_or_assign({3, 0}, kinds); // of the whole column
        settings.dropDowns.insert_or_assign({4, 7}, DropDownEntries({"是", "否"}));
        settings.dropDowns.insert_or_assign({9, 9}, kinds);
        settings.captions = {{{1, 7}, "计算"}, {{6, 0}, "选择…"}};
    });
    workbook.sheet(1).addSpan({8, 8, 8, 8});
}

/// The first difference that a user could see; empty if there is none.
std::string difference(const Workbook& a, const Workbook& b)
{
    if (a.sheetCount() != b.sheetCount() || a.activeSheet() != b.activeSheet())
        return "sheets";
    if (a.countsFrom1904() != b.countsFrom1904())
        return "count of days";
    for (int index = 1; index <= a.sheetCount(); ++index) {
        const Sheet& left = a.sheet(index);
        const Sheet& right = b.sheet(index);
        SheetSettings settings = left.settings();
        settings.rowStyles = right.settings().rowStyles; // numbers of the pools: compared by cell below
        settings.columnStyles = right.settings().columnStyles;
        if (settings != right.settings())
            return "settings of " + left.name();
        for (int column = 1; column <= left.storedColumns(); ++column) {
            for (const Column::Slot& slot : left.column(column)->slots()) {
                for (int row = slot.firstRow; row <= slot.lastRow(); ++row) {
                    const CellAddress cell{column, row};
                    if (!(left.value(cell) == right.value(cell)) ||
                        left.formula(cell) != right.formula(cell) ||
                        !(left.style(cell) == right.style(cell)) || !(left.tag(cell) == right.tag(cell)) ||
                        !(left.shownText(cell) == right.shownText(cell)) ||
                        left.arrayRange(cell) != right.arrayRange(cell))
                        return left.name() + cellName(cell);
                }
            }
        }
        for (const CellAddress fresh : {CellAddress{2, 777}, CellAddress{77, 9}, CellAddress{2, 9}}) {
            if (!(left.style(fresh) == right.style(fresh)))
                return "style of the fresh cell " + cellName(fresh);
        }
    }
    return {};
}

std::string refusal(Workbook& workbook, const Bytes& bytes)
{
    try {
        loadContent(workbook, bytes);
    } catch (const ContentError& error) {
        return error.what();
    }
    return {};
}

Bytes readFile(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    Bytes bytes(text.size());
    std::memcpy(bytes.data(), text.data(), text.size());
    return bytes;
}

} // namespace

TEST(Content, RoundTripKeepsEverything)
{
    Workbook workbook;
    fillEverything(workbook);
    fillLaterFields(workbook);
    Workbook loaded;
    loadContent(loaded, saveContent(workbook));
    EXPECT_EQ(difference(workbook, loaded), "");
    EXPECT_TRUE(loaded.sheet(1).value({1, 5}).text().countsAsNumber());
    // Stored once more, the bytes are the same.
    EXPECT_EQ(saveContent(loaded), saveContent(workbook));
    // The loaded formulas work: what is typed now reaches them.
    loaded.sheet(2).setNumber({2, 2}, 1);
    loaded.recalculateChanged();
    EXPECT_EQ(loaded.sheet(1).value({3, 2}), Value(CellError::value)); // a text times two
    EXPECT_EQ(loaded.sheet(1).value({3, 10}), Value(1.0));
}

TEST(Content, AnEmptyWorkbookIsAContent)
{
    Workbook loaded;
    demand(loaded.addSheet("more"));
    loadContent(loaded, saveContent(Workbook()));
    EXPECT_EQ(difference(Workbook(), loaded), "");
}

TEST(Content, TheMostSheetsComeBack)
{
    Workbook workbook, loaded;
    demand(workbook.setSheetCount(maxSheets));
    loadContent(loaded, saveContent(workbook));
    EXPECT_EQ(loaded.sheetCount(), maxSheets);
}

/// Programs may put any number into the settings; a report with it must be saved, and open again.
TEST(Content, PrintSetupsBeyondAllBoundsAreReadBack)
{
    int PrintSettings::*const numbers[]{&PrintSettings::marginTop,  &PrintSettings::marginLeft,
                                        &PrintSettings::titleTop,   &PrintSettings::titleRight,
                                        &PrintSettings::scale,      &PrintSettings::fitAcross,
                                        &PrintSettings::fitDown,    &PrintSettings::firstPage,
                                        &PrintSettings::paperWidth, &PrintSettings::paperHeight};
    for (const int wild : {-5, std::numeric_limits<int>::max()}) {
        for (std::size_t i = 0; i < std::size(numbers); ++i) {
            Workbook workbook, loaded;
            workbook.sheet(1).setNumber({1, 1}, 7);
            workbook.sheet(1).changeSettings(
                [&](SheetSettings& settings) { settings.print.*numbers[i] = wild; });
            EXPECT_NO_THROW(loadContent(loaded, saveContent(workbook))) << i << " " << wild;
            EXPECT_EQ(loaded.sheet(1).value({1, 1}), Value(7.0)) << i << " " << wild;
        }
    }
}

/// What was referred to may be gone, and its sheet later too: the text must still be read back.
TEST(Content, BrokenReferencesComeBackLetterByLetter)
{
    Workbook workbook;
    demand(workbook.addSheet("二月"));
    demand(workbook.addSheet("三月"));
    Sheet& sheet = workbook.sheet(1);
    demand(sheet.setFormula({1, 1}, "二月!B5+1"));
    demand(sheet.setFormula({1, 2}, "#REF!+1"));
    demand(sheet.setFormula({1, 3}, "SUM(二月:三月!A1)"));
    demand(workbook.sheet(2).deleteRows(5, 1));
    Workbook again; // reads the broken reference once before its sheet goes
    loadContent(again, saveContent(workbook));
    for (Workbook* book : {&workbook, &again}) {
        demand(book->removeSheet(2));
        demand(book->renameSheet(2, "四月"));
        EXPECT_EQ(book->sheet(1).formula({1, 1}), "二月!#REF!+1");
        EXPECT_EQ(book->sheet(1).formula({1, 2}), "#REF!+1");
        EXPECT_EQ(book->sheet(1).formula({1, 3}), "SUM(四月!A1)") << "the neighbour goes on";
        Workbook loaded;
        loadContent(loaded, saveContent(*book));
        EXPECT_EQ(difference(*book, loaded), "");
    }
}

TEST(Content, LoadingKeepsFunctionsHookAndUndoSetting)
{
    Workbook stored;
    demand(stored.sheet(1).setFormula({1, 1}, "twice(21)"));
    stored.sheet(1).setValue({1, 2}, Value(5.0));
    const Bytes bytes = saveContent(stored);

    Workbook workbook;
    int prepared = 0;
    workbook.registerFunction("Twice", 1, [](FunctionCall& call) {
        call.setResult(2.0 * static_cast<double>(call.parameterInteger(1)));
    });
    workbook.setPrepareHook(
        [&](std::span<PreparedCall> calls) { prepared += static_cast<int>(calls.size()); });
    workbook.setUndoEnabled(true);
    workbook.sheet(1).setNumber({3, 3}, 1);
    loadContent(workbook, bytes);
    EXPECT_FALSE(workbook.canUndo()) << "what was edited before is another workbook";
    EXPECT_TRUE(workbook.sheet(1).value({1, 1}).isEmpty()) << "loading computes nothing";
    workbook.recalculate();
    EXPECT_EQ(workbook.sheet(1).value({1, 1}), Value(42.0));
    EXPECT_EQ(prepared, 1);
    workbook.sheet(1).setNumber({1, 2}, 6);
    workbook.undo();
    EXPECT_EQ(workbook.sheet(1).value({1, 2}), Value(5.0));
}

TEST(Content, DamageIsRefusedAndTheWorkbookStays)
{
    Workbook stored;
    fillEverything(stored);
    const Bytes good = saveContent(stored);
    Workbook workbook;
    workbook.sheet(1).setText({1, 1}, "mine");
    const Bytes mine = saveContent(workbook);

    for (std::size_t size = 0; size < good.size(); ++size) {
        const Bytes cut(good.begin(), good.begin() + static_cast<std::ptrdiff_t>(size));
        ASSERT_NE(refusal(workbook, cut), "") << "cut to " << size;
    }
    for (std::size_t at = 0; at < good.size(); ++at) {
        Bytes damaged = good;
        damaged[at] ^= std::byte{0x40};
        Workbook target;
        if (refusal(target, damaged).empty()) {
            ASSERT_EQ(difference(stored, target), "") << "byte " << at << " changed unseen";
        } else {
            ASSERT_EQ(target.sheet(1).name(), "Sheet1");
        }
    }
    Bytes longer = good;
    longer.push_back(std::byte{0});
    EXPECT_NE(refusal(workbook, longer), "");
    EXPECT_EQ(saveContent(workbook), mine);
}

/// Damage that the checksum does not see, because somebody made it on purpose: each byte of the content
/// itself in turn. Whatever the loader accepts must be a workbook that can be computed and stored.
TEST(Content, HostileContentIsRefusedOrHarmless)
{
    Workbook stored;
    fillEverything(stored);
    fillLaterFields(stored);
    const ExpandedContent good = unpackContent(saveContent(stored));
    Bytes content(good.view().begin(), good.view().end());
    int refused = 0;
    for (std::size_t at = 0; at < content.size(); ++at) {
        for (const int mask : {0x01, 0x80, 0xFF}) {
            content[at] ^= static_cast<std::byte>(mask);
            Workbook workbook;
            if (!refusal(workbook, packContent(content, newestContentVersion)).empty()) {
                ++refused;
                ASSERT_EQ(workbook.sheet(1).name(), "Sheet1");
            } else if (at % 16 == 0) {
                workbook.recalculate();
                saveContent(workbook);
            }
            content[at] ^= static_cast<std::byte>(mask);
        }
    }
    EXPECT_GT(refused, 100);
}

TEST(Content, RefusalsNameTheReason)
{
    Bytes newer = saveContent(Workbook());
    newer[8] = std::byte{newestContentVersion + 1};
    Bytes expanding = saveContent(Workbook());
    expanding[12 + 4] = std::byte{0xFF}; // frame header: content size that nothing stands behind
    struct Case {
        const char* what;
        Bytes bytes;
        const char* reason;
    };
    const Case cases[] = {
        {"nothing", {}, "不是报表文件"},
        {"another format", Bytes(100, std::byte{'x'}), "不是报表文件"},
        {"a later version", newer, "更新的版本"},
        {"a false size", expanding, "已损坏"},
    };
    for (const Case& c : cases) {
        Workbook workbook;
        EXPECT_THAT(refusal(workbook, c.bytes), HasSubstr(c.reason)) << c.what;
    }
}

/// A file that version 1 of the format wrote opens for ever. It holds what fillEverything makes.
TEST(Content, TheStoredSampleOfVersion1Opens)
{
    const Bytes sample = readFile(TEST_DATA_FOLDER "/content-v1.ss7");
    ASSERT_FALSE(sample.empty());
    Workbook expected;
    fillEverything(expected);
    Workbook loaded;
    loadContent(loaded, sample);
    EXPECT_EQ(difference(expected, loaded), "");
}

/// What only version 2 holds.
static void fillVersion2(Workbook& workbook)
{
    CellStyle style;
    style.type = CellType::number;
    style.numberFormat = Text("[万元]#,##0.00_ ;[Red][万元]-#,##0.00_ ;_ ");
    style.left = {LineStyle::doubled, 0};
    style.top = {LineStyle::thick, 0};
    workbook.sheet(1).setStyle({7, 7}, style);
}

/// A print set-up that version 1 drops, one field a time and all together.
const std::vector<std::pair<const char*, std::function<void(PrintSettings&)>>> printSetups{
    {"repeated columns", [](PrintSettings& print) { print.titleLeft = 1, print.titleRight = 2; }},
    {"a print area",
     [](PrintSettings& print) {
         print.area = {{1, 2, 3, 40}, {2, 30, 5, 60}};
     }},
    {"a scale", [](PrintSettings& print) { print.scale = 70; }},
    {"pages across", [](PrintSettings& print) { print.fitAcross = 2; }},
    {"one page", [](PrintSettings& print) { print.fitAcross = print.fitDown = 1; }},
    {"pages down", [](PrintSettings& print) { print.fitDown = 3; }},
    {"an order", [](PrintSettings& print) { print.downFirst = true; }},
    {"a first page", [](PrintSettings& print) { print.firstPage = 12; }},
    {"a paper", [](PrintSettings& print) { print.paperWidth = 10431, print.paperHeight = 14740; }},
    {"a distance", [](PrintSettings& print) { print.textDistance = 0; }},
};

TEST(Content, PrintSetupsComeBackAndAskForVersion2)
{
    Workbook all;
    const auto check = [](const Workbook& workbook, const char* what) {
        const Bytes bytes = saveContent(workbook);
        EXPECT_EQ(std::to_integer<int>(bytes[8]), 2) << what;
        Workbook loaded;
        loadContent(loaded, bytes);
        EXPECT_EQ(loaded.sheet(1).settings().print, workbook.sheet(1).settings().print) << what;
    };
    for (const auto& [what, setUp] : printSetups) {
        const auto change = [&, &setUp = setUp](SheetSettings& settings) { setUp(settings.print); };
        Workbook workbook;
        workbook.sheet(1).changeSettings(change);
        all.sheet(1).changeSettings(change);
        check(workbook, what);
    }
    check(all, "all");
}

TEST(Content, TheStoredSampleOfVersion2Opens)
{
    const Bytes sample = readFile(TEST_DATA_FOLDER "/content-v2.ss7");
    ASSERT_GT(sample.size(), 12U);
    EXPECT_EQ(sample[8], std::byte{2});
    Workbook expected;
    fillEverything(expected);
    fillLaterFields(expected);
    fillVersion2(expected);
    Workbook loaded;
    loadContent(loaded, sample);
    EXPECT_EQ(difference(expected, loaded), "");
}

TEST(Content, AlignmentsLinesAndNamesOfOtherProgramsComeBack)
{
    Workbook made, loaded;
    CellStyle style;
    style.horizontal = HorizontalAlignment::centre;
    style.carried = {Spread::distributed, Spread::justified, 2, CarriedAlignment::stackedLetters};
    style.right = {LineStyle::medium, 0};
    style.bottom = {LineStyle::slantedDashDot, 0};
    made.sheet(1).setStyle({8, 8}, style);
    demand(made.defineName("只此表", "1", made.sheet(1).id()));
    loadContent(loaded, saveContent(made));
    EXPECT_EQ(loaded.sheet(1).style({8, 8}), style);
    EXPECT_EQ(loaded.names()[loaded.names().find("只此表")].sheet, loaded.sheet(1).id());
}

/// A formula that this program cannot read leaves its cell the value; the rest opens.
TEST(Content, AnUnreadableFormulaLeavesItsValue)
{
    Workbook stored;
    demand(stored.sheet(1).setFormula({2, 3}, "SUM(1+9,2)"));
    demand(stored.sheet(1).setFormula({2, 4}, "B3*2"));
    demand(stored.sheet(1).setArrayFormula({4, 1, 4, 2}, "{1;2}+9"));
    demand(stored.defineName("没用", "2+9"));
    stored.recalculate();
    const ExpandedContent good = unpackContent(saveContent(stored));
    std::string content(reinterpret_cast<const char*>(good.view().data()), good.view().size());
    for (const std::string_view damaged : {"1+9,2", "}+9", "2+9"}) {
        const std::size_t place = content.find(damaged);
        ASSERT_NE(place, std::string::npos) << damaged;
        content[place + damaged.find('9')] = ' ';
    }
    Workbook loaded;
    const auto unreadable = loadContent(loaded, packContent(std::as_bytes(std::span(content)), 1));
    EXPECT_THAT(unreadable,
                testing::UnorderedElementsAre(HasSubstr("B3"), HasSubstr("D1"), HasSubstr("没用")));
    const Sheet& sheet = loaded.sheet(1);
    EXPECT_FALSE(sheet.hasFormula({2, 3}));
    EXPECT_EQ(sheet.value({2, 3}), Value(12.0));
    EXPECT_EQ(sheet.value({4, 2}), Value(11.0));
    EXPECT_FALSE(sheet.arrayRange({4, 1}));
    EXPECT_EQ(sheet.formula({2, 4}), "B3*2");
    loaded.recalculate();
    EXPECT_EQ(sheet.value({2, 4}), Value(24.0));
}

/// A place with an older program goes on with all that it can keep, and refuses the rest.
TEST(Content, TheVersionIsTheSmallestThatHoldsAll)
{
    const struct {
        const char* what;
        std::function<void(Workbook&)> fill;
        int version;
    } cases[] = {
        {"nothing", [](Workbook&) {}, 1},
        {"all that version 1 has", [](Workbook& book) { fillEverything(book), fillLaterFields(book); }, 1},
        {"tens of thousands", fillVersion2, 2},
        {"the same in its second section",
         [](Workbook& book) {
             book.sheet(1).restyle({2, 1, 2, maxRows},
                                   [](CellStyle& style) { style.numberFormat = Text("0;[万元]0"); });
         },
         2},
        {"a double line below",
         [](Workbook& book) {
             book.sheet(1).restyle({2, 2, 2, 2}, [](CellStyle& style) {
                 style.bottom = {LineStyle::doubled, 0};
             });
         },
         2},
        {"strict printing",
         [](Workbook& book) {
             book.sheet(1).changeSettings([](SheetSettings& settings) { settings.print.strict = true; });
         },
         2},
        {"texts in place of nothings, one of them blank",
         [](Workbook& book) {
             book.sheet(1).changeSettings([](SheetSettings& settings) {
                 settings.nothingTexts = {{1, "–"}, {5, ""}};
             });
         },
         2},
        {"a very hidden sheet",
         [](Workbook& book) {
             book.sheet(1).changeSettings(
                 [](SheetSettings& settings) { settings.isHidden = settings.isVeryHidden = true; });
         },
         2},
        {"a medium line",
         [](Workbook& book) {
             book.sheet(1).restyle({2, 2, 2, 2}, [](CellStyle& style) {
                 style.right = {LineStyle::medium, 0};
             });
         },
         2},
        {"an indent",
         [](Workbook& book) {
             book.sheet(1).restyle({2, 2, 2, 2}, [](CellStyle& style) { style.carried.indent = 1; });
         },
         2},
        {"a name of one sheet", [](Workbook& book) { demand(book.defineName("x", "1", book.sheet(1).id())); },
         2},
        {"as a text only",
         [](Workbook& book) {
             book.sheet(1).restyle({2, 2, 2, 2},
                                   [](CellStyle& style) { style.numberFormat = Text("0\"[万元]\""); });
         },
         1},
        {"no longer in use",
         [](Workbook& book) {
             fillVersion2(book);
             book.sheet(1).setStyle({7, 7}, CellStyle());
         },
         1},
    };
    for (const auto& c : cases) {
        Workbook workbook;
        c.fill(workbook);
        const Bytes bytes = saveContent(workbook);
        EXPECT_EQ(std::to_integer<int>(bytes[8]), c.version) << c.what;
        Workbook loaded;
        loadContent(loaded, bytes);
        EXPECT_EQ(saveContent(loaded), bytes) << c.what;
        EXPECT_EQ(loaded.sheet(1).settings().print, workbook.sheet(1).settings().print) << c.what;
        EXPECT_EQ(loaded.sheet(1).settings().nothingTexts, workbook.sheet(1).settings().nothingTexts)
            << c.what;
    }
}
