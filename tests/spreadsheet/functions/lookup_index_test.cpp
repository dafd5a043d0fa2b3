#include "tests/spreadsheet/functions/FormulaSheet.h"

#include <random>

using namespace spreadsheet;

namespace {

constexpr int dataRows = 150; // long enough to be indexed
constexpr int wantedRows = 40;

/// Column A holds values of every kind, many of them equal; column B numbers and a few texts.
class RandomTable {
public:
    explicit RandomTable(unsigned seed)
        : m_random(seed)
    {
        for (int row = 1; row <= dataRows; ++row)
            changeRow(row);
        for (int row = 1; row <= wantedRows; ++row)
            m_sheet.put("C" + std::to_string(row), wanted[below(wanted.size())]);
    }

    FormulaSheet& sheet() { return m_sheet; }

    void changeSome()
    {
        for (int i = 0; i < 5; ++i)
            changeRow(1 + static_cast<int>(below(dataRows)));
        m_sheet.put("C" + std::to_string(1 + below(wantedRows)), wanted[below(wanted.size())]);
    }

private:
    std::size_t below(std::size_t limit) { return m_random() % limit; }

    void changeRow(int row)
    {
        m_sheet.put("A" + std::to_string(row), values[below(values.size())]);
        m_sheet.put("B" + std::to_string(row), below(9) == 0 ? "x" : std::to_string(below(100)));
    }

    inline static const std::vector<std::string> values{
        "0",  "1",     "2", "2.5", "7",    "'1",   "'2",    "'2.50", "a",      "A",  "ａ",   "ab",
        "a*", "what?", "~", "'",   "科目", "TRUE", "FALSE", "=B1",   "=1/4*4", "x1", "=0-0", "40607"};
    inline static const std::vector<std::string> wanted{
        "0",   "1",        "2.5",  "99",    "'1",   "'2.5", "a",     "ａ",  "AB",   "a~*", "what~?",
        "~",   "a*",       "?",    "'",     "科目", "TRUE", "FALSE", "'>1", "'<>a", "'=",  "'<>",
        "'=2", "2011-3-5", "'>=2", "'<2.5", "'<=7", "'>0",  "'a?",   "'*",  "'?*"};
    std::mt19937 m_random;
    FormulaSheet m_sheet;
};

/// The same question put to the whole column and to three parts too short for an index.
struct Pair {
    std::string whole;
    std::string parts;
};

std::vector<Pair> pairs(const std::string& wanted)
{
    return {
        {"IFERROR(MATCH(" + wanted + ",A$1:A$150,0),0)",
         "IFERROR(MATCH(" + wanted + ",A$1:A$50,0),IFERROR(50+MATCH(" + wanted +
             ",A$51:A$100,0),IFERROR(100+MATCH(" + wanted + ",A$101:A$150,0),0)))"},
        {"IFERROR(VLOOKUP(" + wanted + ",A$1:B$150,2,FALSE),0)",
         "IFERROR(VLOOKUP(" + wanted + ",A$1:B$50,2,FALSE),IFERROR(VLOOKUP(" + wanted +
             ",A$51:B$100,2,FALSE),IFERROR(VLOOKUP(" + wanted + ",A$101:B$150,2,FALSE),0)))"},
        {"COUNTIF(A$1:A$150," + wanted + ")", "COUNTIF(A$1:A$50," + wanted + ")+COUNTIF(A$51:A$100," +
                                                  wanted + ")+COUNTIF(A$101:A$150," + wanted + ")"},
        {"SUMIF(A$1:A$150," + wanted + ",B$1:B$150)",
         "SUMIF(A$1:A$50," + wanted + ",B$1:B$50)+SUMIF(A$51:A$100," + wanted +
             ",B$51:B$100)+SUMIF(A$101:A$150," + wanted + ",B$101:B$150)"},
    };
}

} // namespace

TEST(LookupIndex, AgreesWithReadingCellByCell)
{
    for (const unsigned seed : {1U, 2U, 3U}) {
        RandomTable table(seed);
        Sheet& cells = table.sheet().workbook().sheet(1);
        for (int row = 1; row <= wantedRows; ++row) {
            int column = 5;
            for (const Pair& pair : pairs("$C" + std::to_string(row))) {
                ASSERT_FALSE(cells.setFormula({column++, row}, pair.whole));
                ASSERT_FALSE(cells.setFormula({column++, row}, pair.parts));
            }
        }
        for (int round = 0; round < 25; ++round) {
            table.sheet().workbook().recalculate();
            for (int row = 1; row <= wantedRows; ++row) {
                for (int column = 5; column < 13; column += 2)
                    ASSERT_EQ(valueText(cells.value({column, row})),
                              valueText(cells.value({column + 1, row})))
                        << "seed " << seed << ", round " << round << ", wanted "
                        << valueText(cells.value({3, row})) << ", column " << column;
            }
            table.changeSome();
        }
    }
}

/// The same row searched whole and in parts too short for an index.
TEST(LookupIndex, RowsAgreeWithReadingCellByCell)
{
    FormulaSheet sheet;
    std::mt19937 random(7);
    const std::vector<std::string> values{"1", "2", "'1", "a", "A", "TRUE", "'", "科目"};
    for (int column = 1; column <= dataRows; ++column) {
        if (random() % 4 != 0)
            sheet.put(cellName({column, 1}), values[random() % values.size()]);
        sheet.put(cellName({column, 2}), std::to_string(column));
    }
    for (const char* wanted : {"1", "2", "3", "\"1\"", "\"a\"", "TRUE", "\"科目\"", "\"x\"", "\"?\""}) {
        const std::string of = std::string("(") + wanted;
        const std::string whole = "IFERROR(HLOOKUP" + of + ",$A$1:$ET$2,2,FALSE),0)";
        const std::string parts = "IFERROR(HLOOKUP" + of + ",$A$1:$AX$2,2,FALSE),IFERROR(HLOOKUP" + of +
                                  ",$AY$1:$CV$2,2,FALSE),IFERROR(HLOOKUP" + of + ",$CW$1:$ET$2,2,FALSE),0)))";
        // Asked several times: only the second question builds the index.
        EXPECT_EQ(sheet.evaluate(whole + "-" + parts + "+" + whole + "-" + parts), "0") << wanted;
    }
}
