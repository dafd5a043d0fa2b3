#include "spreadsheet/display/display_text.h"
#include "spreadsheet/values/decimal.h"
#include "spreadsheet/values/number_text.h"
#include "spreadsheet/workbook/typed_text.h"
#include "spreadsheet/workbook/Workbook.h"

#include <gtest/gtest.h>

using namespace spreadsheet;

TEST(DisplayText, NumbersByTypeRoundHalfAwayFromZero)
{
    struct Case {
        double number;
        CellType type;
        int decimals;
        const char* shown;
    };
    using enum CellType;
    const Case cases[] = {
        {0.125, number, 2, "0.13"},
        {-0.125, number, 2, "-0.13"},
        {1.005, number, 2, "1.01"},
        {2.675, number, 2, "2.68"},
        {0.285 * 3 / 3, number, 2, "0.29"},
        {-0.5, number, 0, "-1"},
        {-0.004, number, 2, "0.00"},
        {999.995, number, 2, "1000.00"},
        {1e15, number, 2, "1000000000000000.00"},
        {9007199254740991.0, number, 0, "9007199254740990"},
        {0.1 + 0.2, number, 15, "0.300000000000000"},
        {1234567.891, currency, 0, "￥1,234,567.89"},
        {-999.995, currency, 0, "-￥1,000.00"},
        {-0.001, currency, 0, "￥0.00"},
        {0.12345, percent, 0, "12.35%"},
        {0.00005, percent, 0, "0.01%"},
        {-1.5, percent, 0, "-150.00%"},
        {12345, scientific, 0, "1.23E+04"},
        {9.995e-5, scientific, 0, "1.00E-04"},
        {0, scientific, 0, "0.00E+00"},
        {59, date, 0, "1900-02-28"},
        {60, date, 0, "1900-02-29"},
        {61, date, 0, "1900-03-01"},
        {46022.75, date, 0, "2025-12-31"},
        {2958465, date, 0, "9999-12-31"},
        {2958466, date, 0, "2958466"},
        {-1, date, 0, "-1"},
        {0.75, time, 0, "18:00:00"},
        {1.0 - 0.2 / 86400, time, 0, "00:00:00"},
        {0.1 + 0.2, edit, 0, "0.3"},
        {1.0 / 3, edit, 0, "0.333333333333333"},
        {1e-9, edit, 0, "0.000000001"},
        {1e-10, edit, 0, "0.0000000001"},
        {1.0 / 30000, edit, 0, "3.33333333333333E-05"},
        {123456789012345678.0, edit, 0, "123456789012346000"},
        {1e20, edit, 0, "1E+20"},
        {1e20 - 1e5, edit, 0, "99999999999999900000"},
        {1.5e21, edit, 0, "1.5E+21"},
        {-0.0, edit, 0, "0"},
    };
    for (const Case& c : cases) {
        CellStyle style;
        style.type = c.type;
        style.decimals = static_cast<std::uint8_t>(c.decimals);
        EXPECT_EQ(displayText(Value(c.number), style), c.shown)
            << c.number << " as " << static_cast<int>(c.type);
    }
}

TEST(DisplayText, WhatDoesNotFitTheTypeShowsAsItIs)
{
    for (const CellType type : {CellType::number, CellType::date, CellType::percent, CellType::checkBox}) {
        CellStyle style;
        style.type = type;
        EXPECT_EQ(displayText(Value::text("待定"), style), "待定");
        EXPECT_EQ(displayText(Value::boolean(true), style), "TRUE");
        EXPECT_EQ(displayText(CellError::div0, style), "#DIV/0!");
        EXPECT_EQ(displayText(Value(), style), "");
    }
}

TEST(NumberText, RoundingAndReading)
{
    struct Rounding {
        double number;
        int places;
        double rounded;
    };
    const Rounding roundings[] = {
        {2.5, 0, 3},      {-2.5, 0, -3},    {1250, -2, 1300},
        {1.005, 2, 1.01}, {5.015, 2, 5.02}, {49, -2, 0},
        {50, -2, 100},    {1e-20, 2, 0},    {123456789012345678.0, 2, 123456789012346000.0},
        {-0.0001, 2, 0}};
    for (const Rounding& r : roundings)
        EXPECT_EQ(roundDecimal(r.number, r.places), r.rounded) << r.number << " to " << r.places;

    struct Reading {
        const char* text;
        std::optional<double> plain, grouped;
    };
    const Reading readings[] = {
        {"12", 12, 12},
        {" -1.5e3　", -1500, -1500},
        {"+.5", .5, .5},
        {"", {}, {}},
        {"1,234.50", {}, 1234.5},
        {"1,23", {}, {}},
        {"12,345,678", {}, 12345678},
        {"1234,567", {}, {}},
        {"inf", {}, {}},
        {"nan", {}, {}},
        {"0x10", {}, {}},
        {"1 2", {}, {}},
        {",123", {}, {}},
        {"1.5,000", {}, {}},
        {"--1", {}, {}},
        {"1e999", {}, {}},
    };
    for (const Reading& r : readings) {
        EXPECT_EQ(parseNumber(r.text), r.plain) << r.text;
        EXPECT_EQ(numberOfGroupedText(r.text), r.grouped) << r.text;
    }
}

TEST(TypedText, MeansWhatItsWriterMeans)
{
    struct Case {
        const char* typed;
        TypedInto where;
        const char* shown;   ///< after a recalculation
        const char* formula; ///< empty: a constant
        CellType type = CellType::edit;
    };
    const auto cell = TypedInto::cell;
    const auto box = TypedInto::formulaBox;
    const Case cases[] = {
        {"12.50", cell, "12.5", ""},
        {"1,234.5", cell, "1234.5", ""},
        {"12.5%", cell, "12.50%", "", CellType::percent},
        {"￥1,234.5", cell, "￥1,234.50", "", CellType::currency},
        {"-￥-5", cell, "-￥-5", ""},
        {"2025-12-31", cell, "2025-12-31", "", CellType::date},
        {"2025年12月", cell, "2025年12月", ""},
        {"2025年12月31日", cell, "2025-12-31", "", CellType::date},
        {"8:30", cell, "08:30:00", "", CellType::time},
        {"25:30", cell, "25:30:00", "", CellType::time},
        {"24:00", cell, "24:00:00", "", CellType::time},
        {"26-11-27", cell, "2026-11-27", "", CellType::date},
        {"2026/11/27 8:05:09", cell, "2026-11-27 08:05:09", "", CellType::date},
        {"true", cell, "TRUE", ""},
        {"'007", cell, "007", ""},
        {"应收账款", cell, "应收账款", ""},
        {"(1,234.50)", cell, "-1234.5", ""},
        {"（12.50）", cell, "-12.5", ""},
        {"(1)", cell, "(1)", ""},
        {"1,234.50-", cell, "-1234.5", ""},
        {"5-", cell, "5-", ""},
        {"-5.00-", cell, "-5.00-", ""},
        {"\u00A0￥12.50 \u00A0", cell, "￥12.50", "", CellType::currency},
        {"\u00A0甲", cell, "\u00A0甲", ""},
        {"(1,23)", cell, "(1,23)", ""},
        {"(-1.5)", cell, "(-1.5)", ""},
        {"(1.5", cell, "(1.5", ""},
        {"(.)", cell, "(.)", ""},
        {"A1+1", cell, "A1+1", ""},
        {"=A1+1", cell, "6", "A1+1"},
        {" = A1+1", box, "6", " A1+1"},
        {"sum(A1,2)", cell, "7", "sum(A1,2)"},
        {"Acct(\"1\")", cell, "9", "Acct(\"1\")"},
        {"合计(不含税)", cell, "合计(不含税)", ""},
        {"=", cell, "=", ""},
        {"=IF(A1>1,“是”,“否”)", cell, "是", "IF(A1>1,\"是\",\"否\")"},
        {"=IF(A1>1,“是”", box, "是", "IF(A1>1,\"是\")"},
        {"=“甲”&\"“乙”\"&“”", cell, "甲“乙”", "\"甲\"&\"“乙”\"&\"\""},
        {"=“甲”", TypedInto::nothing, "#NAME?", "“甲”"},
        {"＝Ａ１＋１", cell, "6", "A1+1"},
        {"　＝ＩＦ（Ａ１＞１，“ＡＢ　是”，＂否＂）", box, "ＡＢ　是", "IF(A1>1,\"ＡＢ　是\",\"否\")"},
        {"＝", cell, "＝", ""},
        {"１２．５", cell, "12.5", ""},
        {"－１，２３４．５", cell, "-1234.5", ""},
        {"５０％", box, "50.00%", "", CellType::percent},
        {"２０２５年１２月３１日", cell, "2025-12-31", "", CellType::date},
        {"３００", TypedInto::nothing, "３００", ""},
        {"（１）", cell, "（１）", ""},
        {"第１号", cell, "第１号", ""},
    };
    for (const Case& c : cases) {
        Workbook workbook;
        workbook.registerFunction("Acct", 1, [](FunctionCall& call) { call.setResult(9.0); });
        Sheet& sheet = workbook.sheet(1);
        sheet.setNumber({1, 1}, 5);
        ASSERT_FALSE(enterText(workbook, sheet, {2, 2}, c.typed, c.where)) << c.typed;
        workbook.recalculateChanged();
        EXPECT_EQ(sheet.displayText({2, 2}), c.shown) << c.typed;
        EXPECT_EQ(sheet.formula({2, 2}), c.formula) << c.typed;
        EXPECT_EQ(sheet.style({2, 2}).type, c.type) << c.typed;
    }
}

TEST(TypedText, TheBoxKeepsAFormulaAFormulaAndARefusedOneKeepsTheCell)
{
    Workbook workbook;
    workbook.setUndoEnabled(true);
    Sheet& sheet = workbook.sheet(1);
    demand(enterText(workbook, sheet, {1, 1}, "=B1", TypedInto::cell));
    demand(enterText(workbook, sheet, {1, 1}, "B1+1", TypedInto::formulaBox));
    EXPECT_EQ(sheet.formula({1, 1}), "B1+1");
    const auto problem = enterText(workbook, sheet, {1, 1}, "=B1+(", TypedInto::cell);
    ASSERT_TRUE(problem);
    EXPECT_EQ(problem.position(), 4u);
    EXPECT_EQ(sheet.formula({1, 1}), "B1+1");
    demand(enterText(workbook, sheet, {1, 1}, "B1+1", TypedInto::cell));
    EXPECT_FALSE(sheet.hasFormula({1, 1}));
    workbook.undo();
    EXPECT_EQ(sheet.formula({1, 1}), "B1+1");
    demand(enterText(workbook, sheet, {1, 1}, "", TypedInto::cell));
    EXPECT_TRUE(sheet.value({1, 1}).isEmpty());
}

TEST(TypedText, BracketsLeftOpenAreClosedForTyping)
{
    const auto cell = TypedInto::cell, box = TypedInto::formulaBox, nothing = TypedInto::nothing;
    const struct {
        const char* typed;
        TypedInto where;
        const char* formula; ///< empty: refused
    } cases[] = {
        {"=SUM(A1:A3", cell, "SUM(A1:A3)"},
        {"=SUM(A1:A3", box, "SUM(A1:A3)"},
        {"=SUM(A1:A3", nothing, ""},
        {"sum(A1,2", cell, "sum(A1,2)"},
        {"=ABS(SUM(A1,(2+3", cell, "ABS(SUM(A1,(2+3)))"},
        {"=LEN(\"(\"", cell, "LEN(\"(\")"},
        {"=LEN(\")(\")+(1", cell, "LEN(\")(\")+(1)"},
        {"=SUM（A1", cell, "SUM（A1)"},
        {"=LEN(\"(", cell, ""}, // the text is not closed either
        {"=SUM(A1))", cell, ""},
        {"=SUM(A1,", cell, ""},
        {"=SUM(A1,2+ ", cell, ""},
        {"=PI(", cell, "PI()"},
        {"=1+(", cell, ""},
        {"=IF(1,2)*(3", cell, "IF(1,2)*(3)"},
    };
    for (const auto& c : cases) {
        Workbook workbook;
        Sheet& sheet = workbook.sheet(1);
        const bool isRefused = static_cast<bool>(enterText(workbook, sheet, {2, 2}, c.typed, c.where));
        EXPECT_EQ(isRefused, *c.formula == '\0') << c.typed;
        EXPECT_EQ(sheet.formula({2, 2}), c.formula) << c.typed;
    }
    Workbook workbook;
    EXPECT_TRUE(enterFormula(workbook, workbook.sheet(1), {1, 1}, "SUM(A2")) << "a dialog's";
    EXPECT_FALSE(enterArrayFormula(workbook, workbook.sheet(1), {1, 1, 1, 2}, "=ROW(C1:C2"));
    EXPECT_EQ(workbook.sheet(1).formula({1, 1}), "ROW(C1:C2)");
}

TEST(DisplayText, NumberFormatCodesGoBeforeTheType)
{
    const struct {
        Value value;
        const char* code;
        const char* shown;
    } cases[] = {
        {1234.565, "#,##0.00", "1,234.57"},
        {-1234.5, "#,##0.00_);(#,##0.00)", "(1,234.50)"},
        {0.125, "0%", "13%"},
        {46022.75, "yyyy-mm-dd hh:mm", "2025-12-31 18:00"},
        {46022.0, "yyyy\"年\"m\"月\"d\"日\"", "2025年12月31日"},
        {1.5, "# ?/?", "1 1/2"},
        {1204.0, "[DBNum2]General\"元整\"", "壹仟贰佰零肆元整"},
        {-1.0, "yyyy-mm-dd", "-1.0"},   // no day
        {12.5, "no such code", "12.5"}, // means nothing
        {0.1 + 0.2, "General", "0.3"},
        {0.0, "#,##0;-#,##0;\"-\"", "-"},
        {Value::text("12"), "0.00", "12"}, // a text stays a text
        {Value::text("甲"), "0;0;0;\"科目\"@", "科目甲"},
        {Value::boolean(true), "0.00", "TRUE"},
        {CellError::na, "0.00", "#N/A"},
        {Value(), "0.00", ""},
        {Value(Text::countedAs("-1234.50", -1234.5)), "#,##0.0", "-1,234.5"}, // of another report
        // Figures of a statement: a cell that shows nothing but zeros has none.
        {-0.004, "#,##0.00_ ;-#,##0.00_ ;_ ", " "},
        {-0.004, "0.00", "0.00"},
        {-0.00004, "0.00%", "0.00%"},
        {-4.0, "0.00,", "0.00"},
        {-0.004, "0.0 @", "-0.0 0.004"}, // which shows more than zeros
        {-0.004, "0.00E+00", "-4.00E-03"},
        // Tens of thousands: the decimal point goes four places to the left.
        {12345678.0, "[万元]#,##0.00", "1,234.57"},
        {-50.0, "[万元]0.00;([万元]0.00)", "(0.01)"},
        {-49.0, "[万元]0.00;([万元]0.00);\"–\"", "–"},
        {20000.0, "[万元]General", "2"},
        {1e9, "[万元]#,##0,", "100"},
        // Amounts in words, by the rules for cheques and vouchers.
        {1234.56, "[人民币大写]", "壹仟贰佰叁拾肆元伍角陆分"},
        {0.0, "[人民币大写]", "零元整"},
        {-0.001, "[人民币大写]", "零元整"},
        {-1680.3, "\"人民币\"[人民币大写]", "人民币负壹仟陆佰捌拾元叁角整"},
        {100200030.04, "[人民币大写]", "壹亿零贰拾万零叁拾元零肆分"},
        {0.05, "[人民币大写]", "伍分"},
        {1e15, "[人民币大写]", "1000000000000000.0"}, // too long for a cheque
    };
    for (const auto& c : cases) {
        CellStyle style;
        style.type = CellType::number;
        style.decimals = 1;
        style.numberFormat = Text(c.code);
        EXPECT_EQ(displayText(c.value, style), c.shown) << c.code;
    }
}

TEST(DisplayText, ACodeColoursTheNumbersThatItSaysSo)
{
    const struct {
        Value value;
        const char* code;
        Colour colour;
    } cases[] = {
        {1.0, "#,##0.00;[Red]-#,##0.00", 0x123456}, {-1.0, "#,##0.00;[Red]-#,##0.00", 0xFF0000},
        {-0.001, "0.00;[Red]-0.00", 0x123456},      {-1.0, "[红色]0", 0xFF0000},
        {5.0, "[Blue][>4]0;0", 0x0000FF},           {4.0, "[Blue][>4]0;0", 0x123456},
        {Value::text("甲"), "[Red]@", 0x123456},    {-1.0, "[DBNum1]0;[$-804]-0", 0x123456},
        {-1.0, "0;[Red]no such code", 0x123456},
    };
    for (const auto& c : cases) {
        CellStyle style;
        style.foreground = 0x123456;
        style.numberFormat = Text(c.code);
        EXPECT_EQ(textColour(c.value, style), c.colour) << c.code;
    }
}

TEST(DisplayText, DaysFrom1904)
{
    Workbook workbook;
    workbook.setCountsFrom1904(true);
    Sheet& sheet = workbook.sheet(1);
    CellStyle dated;
    dated.type = CellType::date;
    sheet.setStyle({1, 1}, dated);
    dated.numberFormat = Text("d/m/yyyy");
    sheet.setStyle({1, 2}, dated);
    sheet.setNumber({1, 1}, 0);
    sheet.setNumber({1, 2}, 60);
    ASSERT_FALSE(sheet.setFormula({1, 3}, "TEXT(A2,\"yyyy-mm-dd\")"));
    workbook.recalculate();
    EXPECT_EQ(sheet.displayText({1, 1}), "1904-01-01");
    EXPECT_EQ(sheet.displayText({1, 2}), "1/3/1904");
    EXPECT_EQ(sheet.displayText({1, 3}), "1904-03-01");
}
