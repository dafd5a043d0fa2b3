#include "tests/spreadsheet/calculation/CalledBook.h"

#include "spreadsheet/values/decimal_text.h"

#include <cmath>

using namespace spreadsheet;

namespace {

/// "A1*2 X9#1*-3? =5 ~0.01:0.004": terms with their factor, which call of the cell where it is not the first,
/// "?" by condition; the constant unless it is 0; roundings. "!SQRT A1" with what it is made of.
std::string inWords(const LinearForm& form)
{
    std::string words = form.isLinear ? "" : "!" + form.nonlinearFunction;
    const auto number = [](double value) { return generalNumberText(std::round(value * 1e9) / 1e9); };
    const auto add = [&](const std::string& word) { words += (words.empty() ? "" : " ") + word; };
    for (const LinearTerm& term : form.terms) {
        std::string word = cellName({term.cell.column, term.cell.row});
        if (term.call != 0)
            word += "#" + std::to_string(term.call);
        if (form.isLinear)
            word += "*" + number(term.coefficient);
        add(word + (term.isByCondition ? "?" : ""));
    }
    if (form.isLinear && form.constant != 0)
        add("=" + number(form.constant));
    if (form.isLinear)
        for (const LinearRounding& rounding : form.roundings)
            add("~" + number(rounding.step) + ":" + number(rounding.amount));
    return words;
}

/// A: calls and sums of them, B: plain values, C: keys, D: the calls once more, by reference.
void fill(CalledBook& book)
{
    book.type("A1", "Fetch(100)");
    book.type("A2", "-Fetch(40)");
    book.type("A3", "Fetch(7.256)");
    book.type("A4", "A1+A2");
    book.type("A5", "A1*A2");
    book.type("A6", "Label(\"1,234.50\")");
    book.type("A7", "Label(\"现金\")");
    book.type("A9", "Fetch(9)");
    book.type("G1", "A1/B4");
    book.type("J1", "Fetch(3)");
    book.type("F1", "SUBTOTAL(9,A1:A2)");
    book.sheet().changeSettings([](SheetSettings& settings) { settings.rows.hidden[9] = true; });
    book.sheet().setNumber({2, 1}, 5);
    book.sheet().setNumber({2, 2}, 2);
    book.sheet().setText({2, 3}, "x");
    for (int row = 1; row <= 3; ++row) {
        book.sheet().setText({3, row}, row == 2 ? "银行" : "现金");
        book.type("D" + std::to_string(row), "A" + std::to_string(row));
    }
    EXPECT_FALSE(book.workbook.defineName("净额", "Sheet1!$A$1-Sheet1!$A$3"));
    EXPECT_FALSE(book.sheet().setArrayFormula({5, 1, 5, 3}, "A1:A3*{2;3;4}"));
}

struct Case {
    const char *formula, *form;
};

void check(std::initializer_list<Case> cases)
{
    for (const Case& c : cases) {
        CalledBook book;
        fill(book);
        book.type("X2", c.formula);
        book.workbook.recalculate();
        EXPECT_EQ(inWords(book.form({1, 24, 2})), c.form) << c.formula;
    }
}

} // namespace

TEST(LinearForm, OperatorsKeepASum)
{
    check({
        {"B1*2", "=10"},
        {"A1+A2*2-B1", "A1*1 A2*-2 =-5"},
        {"(A1-A3)/4%", "A1*25 A3*-25"},
        {"-A1%+A4", "A1*0.99 A2*-1"},
        {"A1*B1/B2", "A1*2.5"},
        {"A4-A1+B1", "A1*0 A2*-1 =5"}, // a term that cancels is still there
        {"A6*2", "A6*2"},
        {"净额*2", "A1*2 A3*-2"},
        {"Fetch(10)+3*Fetch(20)", "X2*1 X2#1*3"},
        {"Fetch(A1)*2", "X2*2?"},
        {"A1*A2", "!* A1 A2"},
        {"B1/A1", "!/ A1"},
        {"A5+A3", "!* A1 A2 A3"},
        {"A1>0", "!> A1"},
        {"A1&\"\"", "!& A1"},
        {"A7", "! A7"},
        {"1/0+A1", "!+ A1"},
    });
}

TEST(LinearForm, FunctionsOfRanges)
{
    check({
        {"SUM(A1:A4,B1:B3,3)", "A1*2 A2*-2 A3*1 =10"},
        {"SUM(A1:A7)-A5", "!* A1 A2 A3 A6 A7"},
        {"SUM(A6:A7)", "A6*1 A7*0"},
        {"AVERAGE(A1:A3,B1)", "A1*0.25 A2*-0.25 A3*0.25 =1.25"},
        {"SUBTOTAL(9,A1:A3)", "A1*1 A2*-1 A3*1"},
        {"SUBTOTAL(9,A9,F1)", "A9*1"}, // hidden rows count, other subtotals do not
        {"SUBTOTAL(109,A9,A1)", "A1*1"},
        {"SUBTOTAL(1,A1:A3,B1)*4", "A1*1 A2*-1 A3*1 =5"},
        {"SUMPRODUCT(A1:A3,B1:B3)", "A1*5 A2*-2 A3*0"},
        {"SUMPRODUCT((C1:C3=\"现金\")*A1:A3)", "A1*1 A2*0 A3*1"},
        {"SUMPRODUCT(ROUND(A1:A3*2,1),B1:B3)", "A1*10 A2*-4 A3*0 ~0.1:0"},
        {"SUMIF(C1:C3,\"现金\",A1:A3)", "A1*1 A3*1"},
        {"SUMIFS(A1:A3,C1:C3,\"现金\",B1:B3,\">1\")", "A1*1"},
        {"SUMIF(A1:A3,\">0\")", "!SUMIF A1 A2 A3"},
        {"SUMIF(C1,C3,G1)", "!SUMIF A1"}, // an error is no sum
        {"INDEX(A1:B3,2,1)+INDEX(A1:A3*2,3)", "A2*-1 A3*2"},
        {"INDEX(A1:A3*2,1)-INDEX(B1:A2*1,1,1)", "A1*1"},
        {"INDEX(I1:J1*2,2)", "J1*2"},
        {"INDEX(A1:B3*1,2)", "!INDEX A1 A2 A3"}, // a whole row
        {"VLOOKUP(\"银行\",C1:D3,2,FALSE)", "A2*-1"},
        {"VLOOKUP(A1,A1:B3,2,FALSE)", "!VLOOKUP A1 A2 A3"},
        {"HLOOKUP(5,B1:B2,2,FALSE)*A1", "A1*2"},
        {"OFFSET(B1,0,-1)+SUM(OFFSET(A1,1,0,2,1))", "A1*1 A2*-1 A3*1"},
        {"INDIRECT(\"A\"&B2)", "A2*-1"},
        {"N(A1)+VALUE(A6)", "A1*1 A6*1"},
        {"SUM(E1:E3)", "A1*2 A2*-3 A3*4"},
        {"SUM(A1:A3*{1,2})", "A2*-3"}, // beside an array, a range gives the cell of the formula's row
        {"SUM({1;2;3}*(A1:A3))", "A2*-6"},
        {"SUM(ROUND(A1:A3,{1,0}))", "A2*-2 ~0.1:0 ~1:0"},
        {"SUM(IF({1;0;0},5,A1:A3))", "A2*-1 A3*1 =5"}, // chosen for each element
        {"A:A+A$1:A$3", "A2*-2"},
        {"COLUMNS(A1:C1)*A1+ROW(A2)", "A1*3 =2"},
    });
}

TEST(LinearForm, ConditionsAndRounding)
{
    check({
        {"IF(A1>0,A2,A3)", "A2*-1?"},
        {"IF(B1>0,A2,A3)+A1", "A1*1 A2*-1"},
        {"IF(A1<0,A2,7)", "=7"},
        {"SUM(IF(A1>0,A2:A3,A1))", "A2*-1? A3*1?"},
        {"SUM(IF(A1:A3>0,A1:A3,0))", ""},
        {"SUM(IF({1;0},5,A1:A2))", "A2*-1 =5"},
        {"SUM(IF({1;0}*A1>0,5,A1:A2))", "A2*-1? =5"},
        {"IFERROR(A1/B4,A2)", "A2*-1?"},
        {"IFERROR(A1/B1,A2)", "A1*0.2?"},
        {"CHOOSE(B2,A1,A3)", "A3*1"},
        {"SWITCH(B1,5,A1,A2)", "A1*1"},
        {"IFS(A1<0,A2,TRUE,A3)", "A3*1?"},
        {"MAX(A1:A3,3)-MIN(A1:A2)", "A1*1? A2*1?"},
        {"ABS(A2)", "A2*1?"},
        {"ROUND(A3,2)*B2", "A3*2 ~0.01:0.008"},
        {"ROUND(A3,2)+INT(A3)-CEILING(A3,0.5)", "A3*1 ~0.01:0.004 ~0.5:-0.244 ~1:-0.256"},
        {"SUMPRODUCT(ROUND(A1:A3*{1,2},1))", "A1*3 A2*-3 A3*3 ~0.1:0.032"}, // 7.3 and 14.5
        {"ROUND(A1,A2)", "!ROUND A1 A2"},
        {"SQRT(A1)+A2", "!SQRT A1 A2"},
        {"IF(SQRT(A1)>3,A2)", "A2*-1?"},
    });
}
