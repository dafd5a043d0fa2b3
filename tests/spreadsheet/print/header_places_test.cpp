#include "spreadsheet/print/header_places.h"

#include <gtest/gtest.h>

namespace spreadsheet {
namespace {

TEST(HeaderPlaces, NoPartCoversAnotherAndNoneIsCut)
{
    const struct {
        const char* what;
        std::array<double, 3> widths;
        double centre, right, scale;
    } cases[] = {
        {"room for all", {100, 200, 100}, 400, 900, 1},
        {"a long left part pushes the centre", {500, 200, 100}, 520, 900, 1},
        {"a long right part too", {100, 200, 500}, 280, 500, 1},
        {"between two long ones", {420, 140, 400}, 440, 600, 1},
        {"no centre", {700, 0, 280}, 500, 720, 1},
        {"one part wider than the paper", {0, 2000, 0}, 0, 2000, 0.5},
        {"all together are", {1000, 460, 500}, 1020, 1500, 0.5},
    };
    for (const auto& c : cases) {
        const HeaderPlaces places = placeHeaderParts(c.widths, 1000, 20);
        EXPECT_EQ(places.left[0], 0) << c.what;
        EXPECT_DOUBLE_EQ(places.left[1], c.centre) << c.what;
        EXPECT_DOUBLE_EQ(places.left[2], c.right) << c.what;
        EXPECT_DOUBLE_EQ(places.scale, c.scale) << c.what;
    }
}

} // namespace
} // namespace spreadsheet
