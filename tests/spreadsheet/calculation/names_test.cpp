#include "tests/spreadsheet/functions/FormulaSheet.h"

using namespace spreadsheet;

TEST(Names, CirclesAndDoublingChainsAreRefused)
{
    Workbook workbook;
    ASSERT_FALSE(workbook.defineName("n0", "=1"));
    EXPECT_TRUE(workbook.defineName("x", "=x+x"));
    ASSERT_FALSE(workbook.defineName("a", "=b+1"));
    EXPECT_TRUE(workbook.defineName("b", "=a*2"));
    ASSERT_FALSE(workbook.defineName("b", "=5"));
    Sheet& sheet = workbook.sheet(1);
    ASSERT_FALSE(sheet.setFormula({1, 1}, "a"));
    EXPECT_TRUE(workbook.defineName("b", "=a*2")) << "a refused meaning leaves the former one";
    workbook.recalculate();
    EXPECT_EQ(valueText(sheet.value({1, 1})), "6");
    bool refused = false;
    for (int i = 1; i < 40; ++i)
        if (workbook.defineName("名" + std::to_string(i),
                                "=名" + std::to_string(i - 1) + "+名" + std::to_string(i - 1)))
            refused = true;
    EXPECT_TRUE(refused);
}

TEST(Names, WhatANameStandsForFollowsItsInputs)
{
    FormulaSheet sheet{{"A1", "1"}, {"B2", "2"}, {"D1", "=SUM((A1):(C3))"}, {"D2", "=间接*1"}};
    Workbook& workbook = sheet.workbook();
    ASSERT_FALSE(workbook.defineName("间接", "=OFFSET(Sheet1!$A$1,1,1)"));
    const auto values = [&] {
        workbook.recalculateChanged();
        return valueText(workbook.sheet(1).value({4, 1})) + " " + valueText(workbook.sheet(1).value({4, 2}));
    };
    EXPECT_EQ(values(), "3 2");
    sheet.put("B2", "5");
    EXPECT_EQ(values(), "6 5");
}
