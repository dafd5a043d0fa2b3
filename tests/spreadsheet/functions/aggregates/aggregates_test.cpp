#include "tests/spreadsheet/functions/FormulaSheet.h"

#include "spreadsheet/values/CompensatedSum.h"

#include <random>

using namespace spreadsheet;

TEST(Sums, WhatCountsInRangesAndAsArguments)
{
    FormulaSheet sheet{{"A1", "1"},    {"A2", "'2"}, {"A3", "TRUE"}, {"A5", "4"},    {"A6", "x"},
                       {"B1", "#N/A"}, {"C1", "-5"}, {"C2", "0.5"},  {"D1", "=\"\""}};
    sheet.expect({
        {"SUM(A1:A6)", "5"},
        {"SUM(A1:A6,\"2\",TRUE)", "8"}, // handed over directly, texts and truth values count
        {"SUM(1,,2)", "3"},
        {"SUM(\"x\")", "#VALUE!"},
        {"SUM(A1:B1)", "#N/A"},
        {"SUM({1,\"2\",TRUE;4,5,6})", "16"},
        {"SUM((A1:A2,A5))", "5"},
        {"SUM(A2)", "0"},
        {"A2+0", "2"},
        {"SUM(1E308,1E308)", "#NUM!"},
        {"SUM(A:A)", "5"},
        {"SUM(1:1)", "#N/A"},
        {"AVERAGE(A1:A6)", "2.5"},
        {"AVERAGE(1,,2)", "1"}, // an argument left empty is a 0 that counts
        {"AVERAGE(A2:A4)", "#DIV/0!"},
        {"AVERAGEA(A1:A6)", "1.2"}, // 1, "2" as 0, TRUE, 4, "x" as 0
        {"MIN(A1:A6,C1:C2)", "-5"},
        {"MAX(A4)", "0"},
        {"MAX(-3,-2)", "-2"},
        {"MAX(-1,TRUE)", "1"},
        {"MINA(A1:A6)", "0"},
        {"MAXA(A2:A3)", "1"},
        {"COUNT(A1:B6)", "2"},
        {"COUNT(1,\"2\",\"x\",TRUE,,NA())", "4"},
        {"COUNTA(A1:D6)", "9"},
        {"COUNTA(A4,,\"\")", "2"},
        {"COUNTBLANK(A1:D3)", "6"}, // five empty ones and an empty text
        {"COUNTBLANK(F:F)", "1048576"},
        {"PRODUCT(A1:A6,2)", "8"},
        {"PRODUCT(A4)", "0"},
        {"SUMSQ(A1:A6,3)", "26"},
        {"SUMPRODUCT(A1:A6,A1:A6)", "17"},
        {"SUMPRODUCT(A1:A6,C1:C2)", "#VALUE!"},
        {"SUMPRODUCT({1,2},{3,4})", "11"},
        {"SUMPRODUCT(A1:B1)", "#N/A"},
        {"SUMPRODUCT((A1:A6>1)*1)", "4"}, // texts and truth values are beyond every number
        {"SUMPRODUCT(--(C1:C2<0),C1:C2)", "-5"},
    });
}

TEST(Sums, CompensationKeepsWhatCancels)
{
    FormulaSheet sheet;
    sheet.expect({
        {"SUM(1E16,1,-1E16)", "1"},
        {"SUM(1E100,3,-1E100,2)", "5"},
        {"AVERAGE(1E16,1,-1E16,1)", "0.5"},
    });

    std::mt19937 random(7);
    std::uniform_real_distribution<double> amounts(-1e9, 1e9);
    std::vector<double> numbers;
    for (int i = 0; i < 1003; ++i) // no multiple of the lanes
        numbers.push_back(std::round(amounts(random)) / 100);
    const std::size_t half = numbers.size();
    for (std::size_t i = 0; i < half; ++i)
        numbers.push_back(-numbers[i]);
    std::shuffle(numbers.begin(), numbers.end(), random);
    numbers.push_back(0.25);
    EXPECT_EQ(compensatedSum(numbers), 0.25);
    CompensatedSum oneByOne;
    for (const double number : numbers)
        oneByOne.add(number);
    EXPECT_EQ(oneByOne.total(), 0.25);
}

TEST(Sums, TextsThatCountAsNumbersCount)
{
    FormulaSheet sheet{{"A2", "10"}, {"A3", "1,000"}};
    sheet.workbook().sheet(1).setValue({1, 1}, Value(Text::countedAs("1,234.50", 1234.5)));
    sheet.expect({
        {"SUM(A1:A3)", "1244.5"},
        {"AVERAGE(A1:A3)", "622.25"},
        {"MAX(A1:A3)", "1234.5"},
        {"COUNT(A1:A3)", "2"},
        {"SUMIF(A1:A3,\">5\")", "1244.5"},
        {"SUMPRODUCT(A1:A3,A1:A3)", "1524090.25"},
        {"SUBTOTAL(9,A1:A3)", "1244.5"},
        {"LEN(A1)", "8"},
        {"A1*2", "2469"},
        {"LARGE(A1:A3,1)", "1234.5"},
    });
}

TEST(Sums, SubtotalPassesOverItselfAndHiddenRows)
{
    FormulaSheet sheet{{"A1", "10"},
                       {"A2", "20"},
                       {"A3", "=SUBTOTAL(9,A1:A2)"},
                       {"A4", "5"},
                       {"A5", "=IF(TRUE,SUBTOTAL(1,A1:A4),0)"},
                       {"A6", "x"},
                       {"B1", "#N/A"}};
    sheet.workbook().sheet(1).changeSettings([](SheetSettings& settings) { settings.rows.hidden[2] = true; });
    sheet.expect({
        {"SUBTOTAL(9,A1:A6)", "35"},
        {"SUBTOTAL(109,A1:A6)", "15"},
        {"SUBTOTAL(101,A1:A6)", "7.5"},
        {"SUBTOTAL(2,A1:A6)", "3"},
        {"SUBTOTAL(103,A1:A6)", "3"},
        {"SUBTOTAL(4,A1:A2,A4)", "20"},
        {"SUBTOTAL(105,A1:A2,A4)", "5"},
        {"SUBTOTAL(6,A1:A4)", "1000"},
        {"SUBTOTAL(8,A1:A2)", "5"},
        {"SUBTOTAL(10,A1:A2)", "50"},
        {"SUBTOTAL(1,C1:C9)", "#DIV/0!"},
        {"SUBTOTAL(9,A1:B6)", "#N/A"},
        {"SUBTOTAL(12,A1:A2)", "#VALUE!"},
        {"SUBTOTAL(9,5)", "#VALUE!"},
    });
}

TEST(Sums, OverSeveralSheets)
{
    FormulaSheet sheet{{"A1", "1"}};
    for (const int number : {2, 3}) {
        ASSERT_FALSE(sheet.workbook().addSheet(number == 2 ? "二月" : "三月"));
        sheet.workbook().sheet(number).setNumber({1, 1}, number * 10);
    }
    sheet.expect({
        {"SUM(Sheet1:三月!A1)", "51"},
        {"COUNT(Sheet1:三月!A1:B2)", "3"},
        {"MAX(二月:三月!A1)", "30"},
        {"SUMPRODUCT(二月:三月!A1)", "#VALUE!"},
        {"COUNTIF(二月:三月!A1,20)", "#VALUE!"},
        {"ABS(二月:三月!A1)", "#VALUE!"},
    });
}
