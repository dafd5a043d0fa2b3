#include "tests/spreadsheet/functions/FormulaSheet.h"

using namespace spreadsheet;

TEST(ConditionalSums, Criteria)
{
    FormulaSheet sheet{{"A1", "5"},    {"A2", "'5"},     {"A3", "Apple"},  {"A4", "apple pie"},
                       {"A5", "TRUE"}, {"A6", "#N/A"},   {"A7", "=\"\""},  {"A9", "a*b"},
                       {"A10", "-3"},  {"A11", "40179"}, {"A12", "ＡＢＣ"}};
    sheet.expect({
        {"COUNTIF(A1:A12,5)", "2"}, // the number and the text that reads as it
        {"COUNTIF(A1:A12,\"5\")", "2"},
        {"COUNTIF(A1:A12,\"=5\")", "2"},
        {"COUNTIF(A1:A12,\">=5\")", "2"},  // numbers only
        {"COUNTIF(A1:A12,\"<>5\")", "11"}, // all but the number
        {"COUNTIF(A1:A12,\"<>-3\")", "11"},
        {"COUNTIF(A1:A12,\"APPLE\")", "1"},
        {"COUNTIF(A1:A12,\"app*\")", "2"},
        {"COUNTIF(A1:A12,\"?????\")", "1"},
        {"COUNTIF(A1:A12,\"a~*b\")", "1"},
        {"COUNTIF(A1:A12,\"<>app*\")", "10"},
        {"COUNTIF(A1:A12,\"*\")", "6"}, // every text, the empty one too
        {"COUNTIF(A1:A12,\"abc\")", "1"},
        {"COUNTIF(A1:A12,TRUE)", "1"},
        {"COUNTIF(A1:A12,\"true\")", "1"},
        {"COUNTIF(A1:A12,\"#N/A\")", "1"},
        {"COUNTIF(A1:A12,NA())", "1"},
        {"COUNTIF(A1:A12,\"=\")", "1"},
        {"COUNTIF(A1:A12,\"<>\")", "11"},
        {"COUNTIF(A1:A12,\"\")", "2"},
        {"COUNTIF(A1:A12,B1)", "0"}, // an empty criterion is 0
        {"COUNTIF(A1:A12,\">apple\")", "1"},
        {"COUNTIF(A1:A12,\"<=apple\")", "5"}, // "", "5", "a*b", "ＡＢＣ", "Apple"
        {"COUNTIF(A1:A12,\"2010-1-1\")", "1"},
        {"COUNTIF(A1:A12,\">2009/12/31\")", "1"},
        {"COUNTIF(A1:A12,\">-300%\")", "2"},
        {"COUNTIF(A:A,\"\")", "1048566"},
        {"COUNTIF(A1:A12,{5,\"app*\"})", "2"},
        {"SUMPRODUCT(COUNTIF(A1:A12,{5,\"app*\"}))", "4"},
        {"COUNTIF(5,5)", "#VALUE!"},
    });
}

TEST(ConditionalSums, SumsBesideTheCondition)
{
    FormulaSheet sheet{{"A1", "东"}, {"B1", "1"}, {"C1", "10"}, {"A2", "西"}, {"B2", "2"},       {"C2", "20"},
                       {"A3", "东"}, {"B3", "3"}, {"C3", "x"},  {"A5", "东"}, {"C5", "#DIV/0!"}, {"E4", "7"}};
    sheet.expect({
        {"SUMIF(A1:A3,\"东\",B1:B3)", "4"},
        {"SUMIF(A1:A3,\"东\",B1)", "4"}, // the first cell is enough
        {"SUMIF(A1:A5,\"东\",C1:C5)", "#DIV/0!"},
        {"SUMIF(A1:A4,\"东\",C1:C4)", "10"},
        {"SUMIF(A1:A4,\"\",E1:E4)", "7"}, // beside an empty cell beyond the used part of column A
        {"SUMIF(B1:B3,\">1\")", "5"},
        {"SUMIF(A1:B2,\"西\",B1:C2)", "2"},
        {"AVERAGEIF(A1:A3,\"东\",B1:B3)", "2"},
        {"AVERAGEIF(A1:A3,\"南\",B1:B3)", "#DIV/0!"},
        {"SUMIFS(B1:B3,A1:A3,\"东\",B1:B3,\">1\")", "3"},
        {"SUMIFS(B1:B3,A1:A2,\"东\")", "#VALUE!"},
        {"AVERAGEIFS(B1:B3,A1:A3,\"<>西\")", "2"},
        {"COUNTIFS(A1:A3,\"东\",C1:C3,\">0\")", "1"},
        {"COUNTIFS(A1:A9,\"=\",B1:B9,\"=\")", "5"},
        {"COUNTIFS(A1:A3,\"东\",C1:C2,10)", "#VALUE!"},
        {"MAXIFS(B1:B3,A1:A3,\"东\")", "3"},
        {"MINIFS(B1:B3,A1:A3,\"北\")", "0"},
    });
}

/// Long columns are answered from indexes from the second use on; both ways must agree.
TEST(ConditionalSums, IndexesAgreeWithReadingCellByCell)
{
    FormulaSheet sheet;
    Sheet& cells = sheet.workbook().sheet(1);
    constexpr int rows = 300;
    for (int row = 1; row <= rows; ++row) {
        const int key = row * 7 % 13;
        if (row % 5 == 0)
            cells.setText({1, row}, std::to_string(key)); // texts that read as numbers
        else if (row % 7 == 0)
            cells.setText({1, row}, key % 2 ? "Key" : "kEY");
        else if (row % 11 != 0)
            cells.setNumber({1, row}, key);
        cells.setNumber({2, row}, row);
    }
    // Columns D to G ask again and again; H to K ask for one row less than an index takes, piece by piece.
    for (int row = 1; row <= rows; ++row) {
        const std::string n = std::to_string(row);
        const auto both = [&](int column, const std::string& whole, const std::string& pieces) {
            ASSERT_FALSE(cells.setFormula({column, row}, whole));
            ASSERT_FALSE(cells.setFormula({column + 1, row}, pieces));
        };
        both(4, "COUNTIF(A$1:A" + n + ",A" + n + ")", "SUMPRODUCT(--(A$1:A" + n + "&\"\"=A" + n + "&\"\"))");
        both(6, "SUMIF(A$1:A" + n + ",A" + n + ",B$1:B" + n + ")",
             "SUMPRODUCT((A$1:A" + n + "&\"\"=A" + n + "&\"\")*B$1:B" + n + ")");
        both(8, "SUM(B$1:B" + n + ")", n + "*(" + n + "+1)/2");
        both(10, "MATCH(A" + n + ",A$1:A$300,0)",
             "IF(A" + n + "=\"\",J" + n + ",IFNA(MATCH(A" + n + ",A$1:A$63,0),63+MATCH(A" + n +
                 ",A$64:A$126,0)))");
        both(16, "SUMIFS(B$1:B" + n + ",A$1:A" + n + ",5,B$1:B" + n + ",\">20\")",
             "SUMPRODUCT((A$1:A" + n + "&\"\"=\"5\")*(B$1:B" + n + ">20)*B$1:B" + n + ")");
        both(18, "COUNTIFS(B$1:B" + n + ",\"<100\",A$1:A" + n + ",\"KEY\")",
             "SUMPRODUCT((A$1:A" + n + "=\"key\")*(B$1:B" + n + "<100))");
        both(12, "MAX(B$1:B" + n + ")", n);
        both(14, "COUNT(A$1:A" + n + ")", "SUMPRODUCT(--ISNUMBER(A$1:A" + n + "))");
    }
    sheet.workbook().recalculate();
    for (int row = 1; row <= rows; ++row) {
        for (int column = 4; column <= 18; column += 2) {
            if (column < 8 && cells.value({1, row}).isEmpty())
                continue; // an empty criterion is 0, an empty cell beside & is ""
            EXPECT_EQ(valueText(cells.value({column, row})), valueText(cells.value({column + 1, row})))
                << columnName(column) << row;
        }
    }
}
