#include "spreadsheet/view/commands/find_replace.h"

#include "spreadsheet/workbook/Workbook.h"

#include <gtest/gtest.h>

namespace spreadsheet {

TEST(TextSearch, FitsWhatIsAskedFor)
{
    const SearchOptions loose, exact{true, false, false}, whole{false, true, false}, wild{false, false, true},
        wholeWild{false, true, true};
    struct Case {
        const char *what, *text;
        SearchOptions options;
        const char* replaced; ///< with "_"; null: not found
    };
    const Case cases[] = {
        {"ab", "xAbaB", loose, "x__"},
        {"ab", "xAbab", exact, "xAb_"},
        {"合计", "应收合计", loose, "应收_"},
        {"a", "Ａ公司ａ", loose, "_公司_"},
        {"Ａ", "ab", loose, "_b"},
        {"é", "CAFÉ", loose, "CAF_"},
        {"合计", "应收合计", whole, nullptr},
        {"ABC", "abc", whole, "_"},
        {"a*c", "xabcabc", wild, "x__"},
        {"a?c", "aXc abbc", wild, "_ abbc"},
        {"~*", "a*b", wild, "a_b"},
        {"a*", "abc", wholeWild, "_"},
        {"b*", "abc", wholeWild, nullptr},
        {"*", "ab", wild, "_ab"},
        {"aa", "aaa", loose, "_a"},
        {"x", "", loose, nullptr},
    };
    for (const Case& c : cases) {
        const TextSearch search(c.what, c.options);
        EXPECT_EQ(search.finds(c.text), c.replaced != nullptr) << c.what << " in " << c.text;
        EXPECT_EQ(search.replaced(c.text, "_").value_or("none"), c.replaced ? c.replaced : "none") << c.what;
    }
}

namespace {

struct FindReplace : testing::Test {
    FindReplace()
    {
        workbook.setUndoEnabled(true);
        sheet.setText({2, 1}, "应收");
        sheet.setNumber({1, 2}, 1001);
        demand(sheet.setFormula({3, 2}, "A2*2"));
        sheet.setText({1, 3000}, "应收 1001");
        workbook.recalculateChanged();
    }
    std::string all(const Search& search) const
    {
        std::string names;
        for (const CellAddress cell : findAll(sheet, search))
            names += cellName(cell) + " ";
        return names;
    }

    Workbook workbook;
    Sheet& sheet = workbook.sheet(1);
};

} // namespace

TEST_F(FindReplace, FindsInReadingOrderAndGoesRound)
{
    EXPECT_EQ(all({"应收"}), "B1 A3000 ");
    EXPECT_EQ(all({"2002", {}, SearchIn::values}), "C2 ");
    EXPECT_EQ(all({"2002"}), "");
    EXPECT_EQ(all({"=a2"}), "C2 ");
    EXPECT_EQ(all({"1001", {}, SearchIn::values, {1, 1, 5, 10}}), "A2 ");
    EXPECT_EQ(findAll(sheet, {"1"}, 1).size(), 1U);
    const Search search{"应收"};
    EXPECT_EQ(findNext(sheet, search, {1, 1}), (CellAddress{2, 1}));
    EXPECT_EQ(findNext(sheet, search, {2, 1}), (CellAddress{1, 3000}));
    EXPECT_EQ(findNext(sheet, search, {1, 3000}), (CellAddress{2, 1}));
    EXPECT_EQ(findNext(sheet, search, {2, 1}, true), (CellAddress{1, 3000}));
    EXPECT_EQ(findNext(sheet, search, {1, 3000}, true), (CellAddress{2, 1}));
    EXPECT_EQ(findNext(sheet, {"2002", {}, SearchIn::values}, {3, 2}), (CellAddress{3, 2})) << "itself, last";
    EXPECT_FALSE(findNext(sheet, {"无"}, {1, 1}));
}

TEST_F(FindReplace, ReplacesInOneStepAndKeepsWhatWouldBreak)
{
    const Search numbers{"1001"}, formulas{"2"};
    const Replacement done = replaceIn(workbook, sheet, findAll(sheet, numbers), numbers, "1002");
    EXPECT_EQ(done.replaced, 2);
    EXPECT_EQ(sheet.value({1, 2}).number(), 1002);
    EXPECT_EQ(sheet.displayText({1, 3000}), "应收 1002");
    workbook.undo();
    EXPECT_EQ(sheet.value({1, 2}).number(), 1001);
    EXPECT_EQ(sheet.displayText({1, 3000}), "应收 1001");
    EXPECT_EQ(replaceIn(workbook, sheet, {{3, 2}}, {"*2"}, "*(").kept.size(), 1U);
    EXPECT_EQ(sheet.formula({3, 2}), "A2*2");
    EXPECT_EQ(replaceIn(workbook, sheet, {{3, 2}}, formulas, "3").replaced, 1);
    EXPECT_EQ(sheet.formula({3, 2}), "A3*3");
}

/// A text becomes a figure where what hindered it is taken away; a date that somebody wrote as a text stays
/// one, and so do digits of which a figure would lose some.
TEST_F(FindReplace, TextsOfDatesAndCodesStayAsTheyAreWritten)
{
    const struct {
        const char *text, *what, *by;
        std::string becomes;
        bool isText;
    } cases[] = {
        {"2025年12月31日", "2025", "2024", "2024年12月31日", true},
        {"9:30", "9", "10", "10:30", true},
        {"12元", "元", "", "12", false},
        {"'12", "2", "3", "13", false},
        {"2025/12/31止", "止", "", "2025-12-31", false},
        {"'001002", "1002", "1003", "001003", true},
        {"'0099 ", "99", "98", "0098 ", true},
        {"'6222020200112233445", "445", "446", "6222020200112233446", true},
    };
    for (const auto& [text, what, by, becomes, isText] : cases) {
        const CellAddress cell{5, 1};
        sheet.setStyle(cell, {});
        sheet.setText(cell, *text == '\'' ? text + 1 : text);
        EXPECT_EQ(replaceIn(workbook, sheet, {cell}, {what}, by).replaced, 1);
        EXPECT_EQ(sheet.displayText(cell), becomes);
        EXPECT_EQ(sheet.value(cell).isText(), isText) << text;
    }
}

TEST_F(FindReplace, NumbersKeepTheDigitsThatTheirCellsDoNotShow)
{
    CellStyle thousands, rounded, percent;
    thousands.numberFormat = Text("0.00,");
    rounded.type = CellType::number;
    rounded.decimals = 2;
    percent.type = CellType::percent;
    const struct {
        CellStyle style;
        double number;
        const char *what, *by;
        double becomes; ///< the same: it is kept
    } cases[] = {
        {thousands, 1234567, "4567", "8", 1238},
        {thousands, 1234567, "4.57", "8", 1234567},
        {rounded, 1234.5678, "12", "9", 934.5678},
        {percent, 0.03125, "3.1", "9.", 0.0925}, // shows 3.13%
    };
    for (const auto& c : cases) {
        sheet.setStyle({4, 1}, c.style);
        sheet.setNumber({4, 1}, c.number);
        const Replacement done = replaceIn(workbook, sheet, {{4, 1}}, {c.what}, c.by);
        EXPECT_DOUBLE_EQ(sheet.value({4, 1}).number(), c.becomes) << c.what;
        EXPECT_EQ(done.kept.size(), c.becomes == c.number ? 1U : 0U) << c.what;
    }
}

} // namespace spreadsheet
