#include "fetch/inter_report_fetch.h"

#include "tests/golden_texts.h"

#include <gtest/gtest.h>

namespace selfreport {
namespace {

TEST(ReferencedCell, SortsCharactersIntoColumnAndRow)
{
    struct Case {
        const char* name;
        int column;
        std::optional<std::int64_t> row;
        bool columnIsNamed;
    };
    const Case cases[] = {
        {"B12", 2, 12, true},
        {"b12", 2, 12, true},
        {"12B", 2, 12, true},
        {"1B2", 2, 12, true},
        {"AA3", 27, 3, true},
        {"az3", 52, 3, true},
        {"ZZ1", 702, 1, true},
        {"ABC5", 1, 5, false},   // three letters name no column
        {"$B$12", 1, 12, false}, // "$" counts as a letter
        {"?5", 1, 5, false},
        {"A?5", 1, 5, false},
        {"12", 1, 12, false},
        {"B", 2, std::nullopt, true},
        {"", 1, std::nullopt, false},
        {"B0", 2, 0, true},
        {"B99999999999999999999", 2, std::nullopt, true},
        {"Ｂ12", 1, 12, false},            // full width: no letter of the table
        {"B１２", 1, std::nullopt, false}, // full-width digits are no digits
    };
    for (const Case& c : cases) {
        const ReferencedCell cell = parseReferencedCell(c.name);
        EXPECT_EQ(cell.column, c.column) << c.name;
        EXPECT_EQ(cell.row, c.row) << c.name;
        EXPECT_EQ(cell.columnIsNamed, c.columnIsNamed) << c.name;
    }
}

TEST(ReferencedReport, IsFoundByItsName)
{
    const test::GoldenTexts golden("sql_texts.golden");
    EXPECT_EQ(reportByNameStatement("资产负债表"), golden["report by name"]);
    EXPECT_EQ(reportByNameStatement("甲'表’＇"), "select * from tblCWSelfReport where fname='甲''表’＇'");
}

} // namespace
} // namespace selfreport
