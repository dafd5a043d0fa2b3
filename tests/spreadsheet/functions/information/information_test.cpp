#include "tests/spreadsheet/functions/FormulaSheet.h"

using namespace spreadsheet;

TEST(Information, QuestionsAboutEveryKind)
{
    // A4 is empty, A7 an empty text, A8 the 0 that an empty cell gives.
    FormulaSheet sheet{{"A1", "5"},    {"A2", "x"}, {"A3", "TRUE"}, {"A5", "#DIV/0!"},
                       {"A6", "#N/A"}, {"A7", "'"}, {"A8", "=A4"}};
    const std::vector<std::pair<std::string, std::string>> answersByRow{
        {"ISBLANK", "...+...."},   {"ISNUMBER", "+......+"},  {"ISTEXT", ".+....+."},
        {"ISNONTEXT", "+.++++.+"}, {"ISLOGICAL", "..+....."}, {"ISERROR", "....++.."},
        {"ISERR", "....+..."},     {"ISNA", ".....+.."},
    };
    for (const auto& [name, answers] : answersByRow) {
        for (std::size_t row = 1; row <= answers.size(); ++row) {
            const std::string formula = name + "(A" + std::to_string(row) + ")";
            EXPECT_EQ(sheet.evaluate(formula), answers[row - 1] == '+' ? "TRUE" : "FALSE") << formula;
        }
    }
}

TEST(Information, KindsAsNumbers)
{
    FormulaSheet sheet{{"A1", "5"}, {"A2", "x"}, {"A3", "TRUE"}, {"A5", "#DIV/0!"}};
    sheet.expect({
        {"ISEVEN(2.9)", "TRUE"},
        {"ISODD(-3)", "TRUE"},
        {"ISEVEN(-3)", "FALSE"},
        {"ISEVEN(A4)", "TRUE"},
        {"ISEVEN(\"4\")", "TRUE"},
        {"ISEVEN(TRUE)", "#VALUE!"},
        {"ISODD(\"x\")", "#VALUE!"},
        {"ISODD(A5)", "#DIV/0!"},
        {"ISREF(A1)", "TRUE"},
        {"ISREF((A1,B2))", "TRUE"},
        {"ISREF(OFFSET(A1,1,0))", "TRUE"},
        {"ISREF(5)", "FALSE"},
        {"ISREF({1,2})", "FALSE"},
        {"ISREF(INDIRECT(\"?\"))", "FALSE"},
        {"ERROR.TYPE(A1:A2 C1:C2)", "1"}, // ranges that do not meet
        {"ERROR.TYPE(A5)", "2"},
        {"ERROR.TYPE(\"x\"+1)", "3"},
        {"ERROR.TYPE(OFFSET(A1,-1,0))", "4"},
        {"ERROR.TYPE(NOSUCHFUNCTION())", "5"},
        {"ERROR.TYPE(SQRT(-1))", "6"},
        {"ERROR.TYPE(NA())", "7"},
        {"ERROR.TYPE(A1)", "#N/A"},
        {"TYPE(A1)", "1"},
        {"TYPE(A4)", "1"},
        {"TYPE(A2)", "2"},
        {"TYPE(A3)", "4"},
        {"TYPE(A5)", "16"},
        {"TYPE({1,2})", "64"},
        {"TYPE(A1:A2)", "64"},
        {"TYPE(AAA:DDZ)", "64"}, // more cells than 32 bits count
        {"N(A1:A3)", "5"},
        {"N(\"5\")", "0"},
        {"N(A4)", "0"},
        {"N(A5)", "#DIV/0!"},
    });
}
