#include "windows/list/report_rows.h"

#include "reports/report_list.h"

#include <gtest/gtest.h>
#include <QLocale>

namespace selfreport {
namespace {

TEST(ReportRows, TimesFollowTheLocaleAndNamesStayInTheirColumn)
{
    const QLocale chinese(QLocale::Chinese, QLocale::China);
    const QLocale german(QLocale::German, QLocale::Germany);
    const struct {
        ListedReport report;
        QLocale locale;
        const char* row;
    } cases[] = {
        {{7, "利润表", "王", "2026-03-05 08:05:09", true}, chinese, "7\t利润表\t王\t2026/3/5 08:05\t显示"},
        {{7, "利润表", "", "2026-03-05 08:05:09", false}, german, "7\t利润表\t\t05.03.26 08:05\t不显示"},
        {{8, " 两\t列\n名 ", "王", "", true}, chinese, "8\t 两 列 名 \t王\t\t显示"},
        {{9, "表", "王", "2026-03-05 08:05:09.123", true}, chinese, "9\t表\t王\t2026/3/5 08:05\t显示"},
        {{9, "表", "王", "昨天", true}, chinese, "9\t表\t王\t昨天\t显示"},
    };
    for (const auto& [report, locale, row] : cases)
        EXPECT_EQ(reportRow(report, locale).toStdString(), row);
}

} // namespace
} // namespace selfreport
