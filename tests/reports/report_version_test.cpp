#include "reports/report_version.h"

#include <gtest/gtest.h>

namespace selfreport {
namespace {

const ReportVersion version{"2026-12-31 08:05:09.123", "利润\t'表'\n\\t", "wang", 4711};

TEST(ReportVersion, DiffersByEachOfItsFields)
{
    EXPECT_EQ(version, ReportVersion(version));
    void (*const changes[])(ReportVersion&) = {
        [](ReportVersion& changed) { changed.savedAt = "2026-12-31 08:05:09.127"; },
        [](ReportVersion& changed) { changed.name += " "; },
        [](ReportVersion& changed) { changed.savedBy.clear(); },
        [](ReportVersion& changed) { ++changed.contentLength; },
    };
    for (const auto& change : changes) {
        ReportVersion changed = version;
        change(changed);
        EXPECT_NE(changed, version);
    }
}

TEST(ReportVersion, StandsInOneLineOfText)
{
    for (const ReportVersion& kept : {version, ReportVersion{}, ReportVersion{"", "\\", "\r", 0}}) {
        const std::string text = versionText(kept);
        EXPECT_EQ(text.find_first_of("\r\n"), std::string::npos);
        EXPECT_EQ(versionOfText(text), kept) << text;
    }
    const std::string good = versionText(version);
    for (const std::string& bad : {std::string(), good + "\t", good + "\\", "x" + good, "-" + good,
                                   good.substr(good.find('\t') + 1), std::string("1\ta\tb\\q\tc")})
        EXPECT_FALSE(versionOfText(bad)) << bad;
}

} // namespace
} // namespace selfreport
