#include "spreadsheet/cells/LiftedCells.h"

#include "spreadsheet/workbook/Workbook.h"

#include <gtest/gtest.h>

namespace spreadsheet {

namespace {

CellStyle bold()
{
    CellStyle style;
    style.font.bold = true;
    return style;
}

} // namespace

TEST(LiftedCells, StayAsTheyWereAndShiftTheirReferences)
{
    Workbook workbook;
    workbook.setUndoEnabled(true);
    Sheet& sheet = workbook.sheet(1);
    sheet.setNumber({1, 1}, 5);
    ASSERT_FALSE(sheet.setFormula({2, 1}, "A1*$A$1"));
    sheet.addSpan({1, 2, 2, 3});
    ASSERT_FALSE(sheet.setArrayFormula({1, 4, 2, 4}, "A1:B1*2"));
    const LiftedCells lifted = sheet.lift({1, 1, 2, 4});
    sheet.setNumber({1, 1}, 7);
    ASSERT_FALSE(sheet.put(lifted, {4, 11}));
    workbook.recalculateChanged();
    EXPECT_EQ(sheet.displayText({4, 11}), "5");
    EXPECT_EQ(sheet.formula({5, 11}), "D11*$A$1");
    EXPECT_EQ(sheet.displayText({5, 11}), "35");
    EXPECT_EQ(sheet.extent({5, 12}), (CellRange{4, 12, 5, 13}));
    EXPECT_EQ(sheet.arrayRange({5, 14}), (CellRange{4, 14, 5, 14}));
    EXPECT_EQ(sheet.displayText({4, 14}), "10");
    workbook.undo();
    EXPECT_EQ(sheet.lastDataRow(), 4);
    EXPECT_EQ(sheet.settings().spans.size(), 1U);
}

TEST(LiftedCells, LookTheSameUnderOtherRowsAndColumns)
{
    Workbook workbook;
    Sheet& sheet = workbook.sheet(1);
    sheet.restyle({2, 1, 2, sheet.settings().rowCount}, [](CellStyle& style) { style = bold(); });
    const LiftedCells lifted = sheet.lift({2, 1, 3, 1}); // bold by its column, and fresh
    ASSERT_FALSE(sheet.put(lifted, {1, 9}));
    EXPECT_TRUE(sheet.style({1, 9}).font.bold);
    EXPECT_FALSE(sheet.style({2, 9}).font.bold) << "the fresh look came along";
}

TEST(LiftedCells, AreRefusedWhereTheyWouldCutAnArrayFormulaOrLeaveTheSheet)
{
    Workbook workbook;
    Sheet& sheet = workbook.sheet(1);
    ASSERT_FALSE(sheet.setArrayFormula({5, 5, 6, 5}, "A1:B1"));
    const LiftedCells lifted = sheet.lift({1, 1, 2, 2});
    EXPECT_TRUE(sheet.put(lifted, {6, 5}));
    EXPECT_TRUE(sheet.put(lifted, {maxColumns, 1}));
    EXPECT_TRUE(sheet.put(lifted, {1, maxRows}));
    EXPECT_FALSE(sheet.put(lifted, {5, 4})) << "an array formula that lies wholly below gives way";
    EXPECT_TRUE(sheet.settings().arrays.empty());
}

} // namespace spreadsheet
