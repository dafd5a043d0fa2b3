#include "windows/list/report_rows.h"

#include "reports/report_list.h"

#include <gtest/gtest.h>

namespace selfreport {
namespace {

TEST(ReportRows, TimesHaveOneFormAndNamesStayInTheirColumn)
{
    const struct {
        ListedReport report;
        const char* row;
    } cases[] = {
        {{7, "利润表", "王", "2026-03-05 08:05:09", true}, "7\t利润表\t王\t2026-03-05 08:05\t显示"},
        {{7, "利润表", "", "2026-03-05 08:05:09", false}, "7\t利润表\t\t2026-03-05 08:05\t不显示"},
        {{8, " 两\t列\n名 ", "王", "", true}, "8\t 两 列 名 \t王\t\t显示"},
        {{9, "表", "王", "2026-03-05 08:05:09.123", true}, "9\t表\t王\t2026-03-05 08:05\t显示"},
        {{9, "表", "王", "昨天", true}, "9\t表\t王\t昨天\t显示"},
    };
    for (const auto& [report, row] : cases)
        EXPECT_EQ(reportRow(report).toStdString(), row);
}

} // namespace
} // namespace selfreport
