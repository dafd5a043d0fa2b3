#include "spreadsheet/workbook/TallCells.h"

#include "spreadsheet/cells/Book.h"
#include "spreadsheet/workbook/Workbook.h"

#include <gtest/gtest.h>

namespace spreadsheet {
namespace {

/// A line takes its points and 20 twips; rows have 285.
TEST(TallCells, AreThoseWhoseTextMayNotFit)
{
    const struct {
        const char* text;
        float points;
        bool wraps, isTall;
    } cases[] = {
        {"文", 13, false, false}, {"文", 14, false, true},    {"文", 9, true, true},
        {"文", 9, false, false},  {"一\n二", 9, false, true}, {"文", 40, false, true},
    };
    for (const auto& c : cases) {
        Workbook workbook;
        Sheet& sheet = workbook.sheet(1);
        ASSERT_EQ(sheet.settings().rows.defaultSize, 285);
        sheet.setText({1, 1}, c.text);
        sheet.restyle({1, 1, 1, 1}, [&](CellStyle& style) {
            style.font.points = c.points;
            style.wrap = c.wraps;
        });
        const Column::Slot& slot = workbook.book().sheet(1).column(1)->slots().front();
        EXPECT_EQ(TallCells(sheet).mayBeTall(*slot.block, 1 - slot.firstRow, {1, 1}), c.isTall)
            << c.text << " " << c.points;
    }
}

} // namespace
} // namespace spreadsheet
