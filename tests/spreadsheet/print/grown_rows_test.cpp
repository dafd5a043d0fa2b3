#include "spreadsheet/print/grown_rows.h"

#include "spreadsheet/print/PageLayout.h"
#include "spreadsheet/print/PageText.h"
#include "spreadsheet/workbook/Workbook.h"

#include <gtest/gtest.h>

#include <array>
#include <random>

namespace spreadsheet {
namespace {

/// Columns of 1,080 twips, of which 1,000 are for texts: five characters of 9 points.
struct GrownRows : testing::Test {
    Workbook workbook;
    Sheet& sheet = workbook.sheet(1);
    PageText text;

    void wrap(const CellRange& cells)
    {
        sheet.restyle(cells, [](CellStyle& style) { style.wrap = true; });
    }
};

/// A line takes 1.2 of the font's size, the air above the first one may be cut, 50 twips are left over where
/// a row grows.
TEST_F(GrownRows, FontsAndWrappedLinesSayHowHigh)
{
    const struct {
        const char* what;
        Value value;
        float points;
        bool wraps;
        int height; ///< 0: the usual one does
    } cases[] = {
        {"a line", Value::text("货币资金"), 9, true, 0},
        {"five characters fill it", Value::text("交易性金融"), 9, true, 0},
        {"six are two lines", Value::text("交易性金融资"), 9, true, 482}, // 2 × 216 + 50
        {"eleven are three", Value::text("交易性金融资产和其他"), 9, false, 0},
        {"wrapped", Value::text("交易性金融资产和其他项"), 9, true, 698},
        {"12 points fit as they do elsewhere", Value::text("合计"), 12, false, 0},
        {"14 points do not", Value::text("合计"), 14, false, 386},
        {"line feeds", Value::text("甲\n乙"), 9, false, 482},
        {"a figure never wraps", Value(123456789012345.0), 9, true, 0},
        {"nothing", Value(), 36, true, 0},
    };
    int row = 0;
    for (const auto& c : cases) {
        sheet.setValue({1, ++row}, c.value);
        sheet.restyle({1, row, 1, row}, [&](CellStyle& style) {
            style.wrap = c.wraps;
            style.font.points = c.points;
            style.font.family = Text("宋体");
        });
    }
    const std::map<int, int> grown = grownRows(sheet, 1, row, text);
    row = 0;
    for (const auto& c : cases) {
        const auto found = grown.find(++row);
        EXPECT_EQ(found == grown.end() ? 0 : found->second, c.height) << c.what;
    }
    EXPECT_TRUE(grownRows(sheet, row + 1, 500, text).empty());
    EXPECT_EQ(grownRows(sheet, 5, 5, text), (std::map<int, int>{{5, 698}})) << "alone as with others";
    sheet.changeSettings([](SheetSettings& settings) { settings.print.textDistance = 100; });
    EXPECT_EQ(grownRows(sheet, 2, 2, text), (std::map<int, int>{{2, 482}})) << "880 twips hold four";
}

/// A pass over many rows passes over what it has found plain before; each row by itself has found nothing
/// yet.
TEST_F(GrownRows, ManyTogetherAreAsHighAsEachAlone)
{
    std::mt19937 random(7);
    const auto one = [&](auto... choices) {
        const std::array all{choices...};
        return all[random() % all.size()];
    };
    for (int column = 1; column <= 3; ++column)
        for (int row = 1; row <= 300; ++row) {
            if (one(0, 1, 1, 1))
                sheet.setText({column, row}, one("甲", "甲\n乙", "一二三四五六七八九十", "丙"));
            if (one(0, 0, 0, 1))
                sheet.setNumber({column, row}, row);
            if (one(0, 0, 0, 1))
                sheet.restyle({column, row, column, row}, [&](CellStyle& style) {
                    style.wrap = one(false, false, true);
                    style.font.points = one(9.0F, 9.0F, 18.0F);
                });
            if (one(0, 0, 0, 0, 0, 0, 0, 1))
                sheet.setShownText({column, row}, one("=SUM(1,\n2)", "=1"));
        }
    sheet.changeSettings([](SheetSettings& settings) { settings.rows.sizes[9] = 285; });
    std::map<int, int> alone;
    for (int row = 1; row <= 300; ++row)
        alone.merge(grownRows(sheet, row, row, text));
    EXPECT_GT(alone.size(), 100U);
    EXPECT_LT(alone.size(), 280U);
    EXPECT_EQ(grownRows(sheet, 1, 300, text), alone);
}

/// An indent of a step leaves 730 of the 1,000 twips, four characters.
TEST_F(GrownRows, AnIndentTakesFromTheRoom)
{
    for (int row = 1; row <= 4; ++row) {
        sheet.setText({1, row}, row % 2 ? "货币资金" : "交易性金融");
        sheet.restyle({1, row, 1, row}, [&](CellStyle& style) {
            style.wrap = true;
            style.font.family = Text("宋体");
            style.horizontal = row > 2 ? HorizontalAlignment::right : HorizontalAlignment::left;
            style.carried.indent = 1;
        });
    }
    EXPECT_EQ(grownRows(sheet, 1, 4, text), (std::map<int, int>{{2, 482}, {4, 482}}));
}

/// Ten characters of 9 points are 1,800 twips long and 216 high.
TEST_F(GrownRows, TurnedTextsTakeTheirLength)
{
    const struct {
        std::uint8_t rotation;
        bool wraps;
        int height;
    } cases[] = {{90, false, 1850},
                 {180, false, 1850}, // downwards
                 {45, false, 1476},  // (1,800 + 216) / √2 + 50
                 {120, false, 1138}, // 30 degrees down: 1,800 / 2 + 216 · cos 30° + 50
                 {CarriedAlignment::stackedLetters, false, 2210},
                 {90, true, 0}}; // wraps in the height that there is
    int row = 0;
    std::map<int, int> expected;
    for (const auto& c : cases) {
        sheet.setText({1, ++row}, "一二三四五六七八九十");
        sheet.restyle({1, row, 1, row}, [&](CellStyle& style) {
            style.carried.rotation = c.rotation;
            style.wrap = c.wraps;
            style.font.family = Text("宋体");
        });
        if (c.height > 0)
            expected[row] = c.height;
    }
    EXPECT_EQ(grownRows(sheet, 1, row, text), expected);
}

TEST_F(GrownRows, OwnHeightsHiddenRowsAndMergedOnesStay)
{
    const char* const longText = "一二三四五六七八九十甲乙丙丁"; // 14: three lines of a column
    for (int row = 1; row <= 5; ++row)
        sheet.setText({1, row}, longText);
    wrap({1, 1, 3, 6});
    sheet.changeSettings([](SheetSettings& settings) {
        settings.rows.sizes[1] = 285; // as high as the others, but by somebody's will
        settings.rows.hidden[2] = true;
    });
    sheet.addSpan({1, 3, 2, 3}); // 2,080 for texts: eleven characters
    sheet.addSpan({1, 4, 1, 5});
    sheet.setText({3, 6}, longText);
    EXPECT_EQ(grownRows(sheet, 1, 6, text), (std::map<int, int>{{3, 482}, {6, 698}}));
}

/// Body of 1,500 twips: five usual rows. The wrapped one takes the room of more than two.
TEST_F(GrownRows, PagesBreakByTheHeightsThatArePrinted)
{
    sheet.setNumber({1, 8}, 1);
    sheet.changeSettings([](SheetSettings& settings) {
        settings.print.marginTop = settings.print.marginBottom = settings.print.marginLeft =
            settings.print.marginRight = 0;
        settings.print.titleTop = settings.print.titleBottom = 1;
    });
    const PageRequest paper{5000, 1500, {}, {}, {}, {}, {}, {}, {}};
    const auto firstRows = [&] {
        const PageLayout layout(sheet, paper);
        std::vector<int> first;
        for (int page = 1; page <= layout.pageCount(); ++page)
            first.push_back(layout.page(page).rows.first);
        return first;
    };
    EXPECT_EQ(firstRows(), (std::vector{1, 6})); // 5 × 285, then the title and three more
    sheet.setText({1, 3}, "一二三四五六七八九十甲");
    wrap({1, 3, 1, 3});
    EXPECT_EQ(firstRows(), (std::vector{1, 4, 8})); // 2 × 285 + 698; the title and four rows; the rest
    sheet.setText({1, 1}, "一二三四五六");
    wrap({1, 1, 1, 1});
    EXPECT_EQ(firstRows(), (std::vector{1, 4, 7})) << "482 + 285 + 698; the title and three rows";
    EXPECT_EQ(PageLayout(sheet, paper).rowSize(3), 698);
}

} // namespace
} // namespace spreadsheet
