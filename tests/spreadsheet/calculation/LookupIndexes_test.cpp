#include "tests/spreadsheet/functions/FormulaSheet.h"

#include "spreadsheet/calculation/LookupIndexes.h"

using namespace spreadsheet;

namespace {

/// 100 rows: A holds 1 to 100, B the row's remainder by 10 as a number or as a text.
void fill(Workbook& workbook)
{
    Sheet& sheet = workbook.sheet(1);
    for (int row = 1; row <= 100; ++row) {
        sheet.setNumber({1, row}, row);
        if (row % 2 == 0)
            sheet.setNumber({2, row}, row % 10);
        else
            sheet.setText({2, row}, std::to_string(row % 10));
    }
}

std::vector<int> rowsOf(const Places* places)
{
    return places ? std::vector<int>(places->all.begin(), places->all.end()) : std::vector<int>();
}

} // namespace

TEST(LookupIndexes, ColumnsAreReadDownAsFarAsAsked)
{
    Workbook workbook;
    fill(workbook);
    LineIndex index(workbook.book(), 1, {2, 11});
    index.extend(40);
    ASSERT_NE(index.number(4), nullptr);
    EXPECT_EQ(rowsOf(index.number(4)), (std::vector<int>{14, 24, 34}));
    EXPECT_EQ(index.number(3), nullptr);
    EXPECT_EQ(rowsOf(index.text("3")), (std::vector<int>{13, 23, 33}));
    EXPECT_EQ(rowsOf(index.numericText(3)), rowsOf(index.text("3")));

    workbook.sheet(1).setNumber({2, 45}, 4); // final by the time that it is asked for
    index.extend(30);
    index.extend(50);
    EXPECT_EQ(rowsOf(index.number(4)), (std::vector<int>{14, 24, 34, 44, 45}));
    EXPECT_EQ(index.number(-0.0), index.number(0));
}

TEST(LookupIndexes, TotalsBesideGrowAndStartAnewForAShorterRange)
{
    Workbook workbook;
    fill(workbook);
    LineIndex index(workbook.book(), 1, {2, 1});
    index.extend(100);
    const Places& fours = *index.number(4);
    EXPECT_EQ(index.totalBeside(fours, 30, 1, 1, 0).sum.total(), 4 + 14 + 24);
    EXPECT_EQ(index.totalBeside(fours, 60, 1, 1, 0).sum.total(), 4 + 14 + 24 + 34 + 44 + 54);
    EXPECT_EQ(index.totalBeside(fours, 20, 1, 1, 0).count, 2u);
    EXPECT_EQ(index.totalBeside(fours, 20, 1, 1, 1).sum.total(), 5 + 15);
}

TEST(LookupIndexes, ShortRangesAndFirstQuestionsHaveNone)
{
    Workbook workbook;
    fill(workbook);
    LookupIndexes indexes(workbook.book());
    EXPECT_EQ(indexes.index({1, {2, 1, 2, 63}}), nullptr);
    EXPECT_EQ(indexes.index({1, {2, 1, 2, 63}}), nullptr);
    EXPECT_EQ(indexes.index({1, {2, 1, 2, 64}}), nullptr);
    EXPECT_NE(indexes.index({1, {2, 1, 2, 99}}), nullptr);
    EXPECT_EQ(indexes.index({1, {2, 2, 2, 99}}), nullptr);
}

TEST(LookupIndexes, GrowingTotalsFollowRangesOfAnyOrder)
{
    Workbook workbook;
    fill(workbook);
    LookupIndexes indexes(workbook.book());
    for (const int bottom : {64, 65, 100, 70, 70, 99}) {
        EXPECT_EQ(indexes.over<Total>({1, {1, 1, 2, bottom}}).count,
                  static_cast<std::size_t>(bottom * 3 / 2));
        EXPECT_EQ(indexes.over<Extremes>({1, {1, 1, 1, bottom}}).largest, bottom);
        EXPECT_EQ(indexes.over<Total>({1, {1, 2, 1, bottom}}).sum.total(), bottom * (bottom + 1) / 2 - 1);
    }
}

/// A formula that finds its range by text may be computed before the range's cells: what it saw then
/// must reach nobody else.
TEST(LookupIndexes, RangesFoundByTextLeaveNoStaleTotals)
{
    FormulaSheet sheet;
    Sheet& cells = sheet.workbook().sheet(1);
    sheet.put("A1", "=SUM(INDIRECT(\"D1:D100\"))");
    sheet.put("B1", "=SUM(D1:D100)");
    sheet.put("E1", "=SUM(D1:D100)+0");
    for (int row = 1; row <= 100; ++row)
        cells.setNumber({4, row}, 1);
    sheet.put("D50", "=INDIRECT(\"F1\")");
    sheet.put("F1", "=G1*2");
    sheet.put("G1", "=INDIRECT(\"H1\")+1");
    sheet.put("H1", "4");
    for (const int input : {4, 9}) {
        cells.setNumber({8, 1}, input);
        sheet.workbook().recalculateChanged();
        for (const char* name : {"A1", "B1", "E1"})
            EXPECT_EQ(cells.value(*parseCellName(name)).number(), 99 + 2 * (input + 1)) << name;
    }
}
