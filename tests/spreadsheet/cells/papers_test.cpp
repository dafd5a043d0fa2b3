#include "spreadsheet/cells/papers.h"

#include <gtest/gtest.h>

namespace spreadsheet {
namespace {

TEST(Papers, AreWhatMeasuresThemUpToAMillimetre)
{
    const int width = twipsOfMillimetres(210), height = twipsOfMillimetres(297);
    const struct {
        int width, height;
        const char* caption; ///< null: a size of its own
    } cases[] = {
        {width, height, "A4"},         {width - 56, height + 56, "A4"}, // 0.99 mm
        {width, height + 57, nullptr},                                  // 1.01 mm
        {width, height - 57, nullptr}, {width + 57, height, nullptr},
        {height, width, nullptr},      {twipsOfMillimetres(215.9), twipsOfMillimetres(279.4), "信纸"},
    };
    for (const auto& c : cases) {
        const Paper* const paper = paperOfSize(c.width, c.height);
        EXPECT_STREQ(paper ? paper->caption : nullptr, c.caption) << c.width << " x " << c.height;
    }
}

} // namespace
} // namespace spreadsheet
