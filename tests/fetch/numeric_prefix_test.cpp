#include "fetch/numeric_prefix.h"

#include <gtest/gtest.h>

namespace selfreport {
namespace {

TEST(NumericPrefix, ReadsUpToTheFirstOtherCharacter)
{
    struct Case {
        const char* text;
        double number;
    };
    const Case cases[] = {
        {"", 0},
        {"  12.5", 12.5},
        {"12.5abc", 12.5},
        {"-3", -3},
        {"+3", 3},
        {"--3", 0},
        {"+-3", 0},
        {"- 3", 0},
        {".5", .5},
        {"5.", 5},
        {".", 0},
        {"-.5x", -.5},
        {"1e3", 1000},
        {"1e", 1},
        {"1e+", 1},
        {"1E-2,", .01},
        {"1,234.5", 1},
        {"1.2.3", 1.2},
        {"inf", 0},
        {"nan", 0},
        {"0x10", 0},
        {"1e999", 0},
        {"abc", 0},
        {"１２", 0},
        {"\t7", 0},
        {"\xE3\x80\x80"
         "7",
         0},
        {"12 34", 12},
    };
    for (const Case& c : cases)
        EXPECT_EQ(numericPrefix(c.text), c.number) << '"' << c.text << '"';
}

} // namespace
} // namespace selfreport
