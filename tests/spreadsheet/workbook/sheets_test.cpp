#include "spreadsheet/formula/ReferenceSlot.h"
#include "tests/spreadsheet/functions/FormulaSheet.h"

using namespace spreadsheet;

TEST(Sheets, StepThatAddsAndFillsASheetIsRedoneWhole)
{
    Workbook workbook;
    workbook.setUndoEnabled(true);
    {
        const UndoStep step(workbook, "导入");
        demand(workbook.addSheet("二月"));
        workbook.sheet(2).setNumber({1, 1}, 7);
        demand(workbook.renameSheet(2, "三月"));
    }
    workbook.undo();
    EXPECT_EQ(workbook.sheetCount(), 1);
    workbook.redo();
    EXPECT_EQ(workbook.sheet(2).name(), "三月");
    EXPECT_EQ(valueText(workbook.sheet(2).value({1, 1})), "7");
}

TEST(Sheets, StepThatEditsAndRemovesASheetIsUndoneTwice)
{
    Workbook workbook;
    demand(workbook.addSheet("二月"));
    workbook.sheet(2).setNumber({1, 1}, 1);
    workbook.setUndoEnabled(true);
    {
        const UndoStep step(workbook, "删除");
        workbook.sheet(2).setNumber({1, 1}, 2);
        demand(workbook.removeSheet(2));
    }
    for (int round = 0; round < 2; ++round) {
        workbook.undo();
        EXPECT_EQ(valueText(workbook.sheet(2).value({1, 1})), "1") << round;
        workbook.redo();
        EXPECT_EQ(workbook.sheetCount(), 1) << round;
    }
}

TEST(Sheets, SumsThroughSheetsFollowTheirOrder)
{
    Workbook workbook;
    for (const char* name : {"Sheet2", "Sheet3", "Sheet4"})
        demand(workbook.addSheet(name));
    for (int index = 1; index <= 4; ++index)
        workbook.sheet(index).setNumber({1, 1}, index == 1 ? 1 : index == 2 ? 10 : index == 3 ? 100 : 1000);
    ASSERT_FALSE(workbook.sheet(1).setFormula({2, 1}, "SUM(Sheet1:Sheet3!A1)"));
    workbook.setUndoEnabled(true);
    const auto sum = [&] {
        workbook.recalculateChanged();
        return valueText(workbook.sheet(1).value({2, 1}));
    };
    EXPECT_EQ(sum(), "111");
    demand(workbook.moveSheet(4, 2));
    EXPECT_EQ(sum(), "1111") << "a sheet moved in between";
    demand(workbook.removeSheet(3)); // Sheet2
    EXPECT_EQ(sum(), "1101") << "a sheet between the ends removed";
    workbook.undo();
    EXPECT_EQ(sum(), "1111");
    workbook.undo();
    EXPECT_EQ(sum(), "111");
}

TEST(Sheets, MoveToAnyPlaceThereIs)
{
    const struct {
        int from, to;
        const char* order; ///< of A, B and C; null: refused
    } cases[] = {{1, 3, "BCA"}, {3, 1, "CAB"}, {2, 2, "ABC"},   {1, 2, "BAC"},
                 {0, 1, {}},    {1, 0, {}},    {4, 1, nullptr}, {1, 4, nullptr}};
    for (const auto& [from, to, order] : cases) {
        Workbook workbook;
        demand(workbook.renameSheet(1, "A"));
        demand(workbook.addSheet("B"));
        demand(workbook.addSheet("C"));
        EXPECT_EQ(!workbook.moveSheet(from, to), order != nullptr) << from << " to " << to;
        std::string found;
        for (int index = 1; index <= 3; ++index)
            found += workbook.sheet(index).name();
        EXPECT_EQ(found, order ? order : "ABC") << from << " to " << to;
    }
}

/// What is written for a sheet's new name reads as the same reference again.
TEST(Sheets, NamesStayReadableInFormulas)
{
    const char* names[] = {"表（1）", "一，二", "五；六", "1月",  "2025", "A1",     "RC",    "TRUE", "a b",
                           "a!b",     "a'b",    "=a",     "SUM",  "-1",   "1.5",    ".",     "..",   ".5",
                           ".a",      "._",     ".月",    "#N/A", "a:b",  "三　四", "\"a\"", "😀"};
    for (const char* name : names) {
        Workbook workbook;
        demand(workbook.addSheet("二月"));
        workbook.sheet(2).setNumber({2, 2}, 7);
        Sheet& sheet = workbook.sheet(1);
        demand(sheet.setFormula({1, 1}, "二月!B2+SUM(二月!A:B)"));
        if (workbook.renameSheet(2, name))
            continue; // refused
        demand(sheet.setFormula({1, 2}, sheet.formula({1, 1})));
        workbook.recalculate();
        for (const int row : {1, 2})
            EXPECT_EQ(valueText(sheet.value({1, row})), "14") << sheet.formula({1, row});
    }
    for (const char* name :
         {"R", "c", "RC", "r1c1", "R12", "C3", "true"}) // cells or values, for other programs
        EXPECT_EQ(sheetPrefix(name), "'" + std::string(name) + "'!");
    for (const char* name : {"RCR", "R1C1x", "现金R1", "CR"})
        EXPECT_EQ(sheetPrefix(name), std::string(name) + "!");
}

TEST(Sheets, NameHas31CharactersAsOtherSpreadsheetsCount)
{
    const auto repeated = [](int times, const std::string& text) {
        std::string all;
        for (int i = 0; i < times; ++i)
            all += text;
        return all;
    };
    const std::string pair = "\xF0\xA0\x80\x80"; // one character that counts twice
    const struct {
        const char* what;
        std::string name;
        bool fits;
    } cases[] = {
        {"letters", repeated(31, "a"), true},
        {"a letter more", repeated(32, "a"), false},
        {"as many bytes as 31 Chinese ones", repeated(93, "a"), false},
        {"letters of two bytes", repeated(31, "é"), true},
        {"Chinese", repeated(31, "表"), true},
        {"a letter behind them", repeated(31, "表") + "a", false},
        {"pairs and one", repeated(15, pair) + "表", true},
        {"a pair over the end", repeated(15, pair) + "表表", false},
        {"one pair more", repeated(16, pair), false},
    };
    for (const auto& c : cases) {
        Workbook workbook;
        EXPECT_EQ(!workbook.addSheet(c.name), c.fits) << c.what;
        EXPECT_EQ(!workbook.renameSheet(1, c.name + (c.fits ? "b" : "")), false) << c.what;
        if (!c.fits)
            continue;
        EXPECT_FALSE(workbook.sheet(1).setFormula({1, 1}, "'" + c.name + "'!B2")) << c.what;
        demand(workbook.renameSheet(2, "短"));
        EXPECT_FALSE(workbook.renameSheet(1, c.name)) << c.what;
    }
}

TEST(Sheets, FunctionThatLooksLikeACellTakesWideBrackets)
{
    FormulaSheet sheet;
    sheet.expect({{"LOG10（100）", "2"}, {"LOG10(100)", "2"}});
}
