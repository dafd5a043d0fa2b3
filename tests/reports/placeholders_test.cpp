#include "reports/placeholders.h"

#include "platform/services/SettingsStore.h"

#include <gtest/gtest.h>

namespace selfreport {
namespace {

TEST(Placeholders, OneAfterTheOtherWithoutRegardToCase)
{
    MemorySettings settings;
    settings.set("ParamValue", "Value1", "2026/12/31");
    settings.set("ParamValue", "Value2", "甲公司&operator");
    settings.set("ParamValue", "Value3", "王&enddate");
    settings.set("ParamValue", "Value4", "今天&Comp");
    settings.set("other", "Value1", "不对");
    struct Case {
        const char *text, *filled;
    };
    const Case cases[] = {
        {"", ""},
        {"没有", "没有"},
        {"&EndDate", "2026/12/31"},
        {"&PRINTDATE", "今天&Comp"}, // company is replaced before the print date
        {"&operator", "王2026/12/31"},
        {"&comp/r&Operator", "甲公司王2026/12/31/r王2026/12/31"},
        {"&&EndDate&", "&2026/12/31&"},
        {"& EndDate &En", "& EndDate &En"},
        {"&EndDate&EndDate", "2026/12/312026/12/31"},
        {"&Company", "甲公司王2026/12/31any"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(placeholdersFilled(c.text, settings), c.filled) << c.text;
    EXPECT_EQ(placeholdersFilled("a&Compb", MemorySettings()), "ab"); // a missing key reads as empty
}

} // namespace
} // namespace selfreport
