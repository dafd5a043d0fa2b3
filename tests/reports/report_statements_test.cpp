#include "reports/report_statements.h"

#include "tests/golden_texts.h"

#include <gtest/gtest.h>

namespace selfreport {
namespace {

TEST(ReportStatements, LetterByLetter)
{
    const test::GoldenTexts golden("sql_texts.golden");
    const struct {
        const char* name;
        std::string text;
    } statements[] = {
        {"last report", std::string(lastReportIdStatement)},
        {"last menu item", std::string(lastMenuItemStatement)},
        {"insert menu item", insertMenuItemStatement(30, 7, "  利润表 ")},
        {"report by id", reportStatement(7)},
        {"page setup", pageSetupStatement(7)},
        {"delete report", deleteReportStatement(7)},
        {"delete menu item", deleteMenuItemStatement(7)},
        {"report list", std::string(reportListStatement)},
    };
    for (const auto& statement : statements)
        EXPECT_EQ(statement.text, golden[statement.name]) << statement.name;
    EXPECT_EQ(insertMenuItemStatement(10, 1, "甲'乙’丙＇"),
              "insert into tblsystemprivillenge(fitemid,fnumber,fname,fisdetail,fparentid) "
              "values(10,'RSelf1','甲''乙’丙＇',1,521)");
}

} // namespace
} // namespace selfreport
