#include "spreadsheet/view/AxisPositions.h"

#include <gtest/gtest.h>

#include <random>

namespace spreadsheet {

TEST(AxisPositions, AgreeWithAddingUpEverySize)
{
    std::mt19937 random(7);
    for (int round = 0; round < 40; ++round) {
        const int count = 1 + static_cast<int>(random() % 60);
        AxisSizes sizes;
        for (int i = 0; i < 15; ++i)
            sizes.sizes[1 + static_cast<int>(random() % 70)] = static_cast<int>(random() % 900);
        for (int i = 0; i < round % 12; ++i)
            sizes.hidden[1 + static_cast<int>(random() % 70)] = true;
        const AxisPositions positions(sizes, count, 1.0 / 15);
        std::int64_t start = 0;
        for (int index = 1; index <= count; ++index) {
            const int twips = sizes.size(index);
            const int size = twips == 0 ? 0 : std::max(static_cast<int>(std::lround(twips / 15.0)), 1);
            ASSERT_EQ(positions.size(index), size) << index;
            ASSERT_EQ(positions.start(index), start) << index;
            for (std::int64_t place = start; place < start + size; place += std::max(size - 1, 1))
                ASSERT_EQ(positions.indexAt(place), index) << place;
            start += size;
        }
        ASSERT_EQ(positions.start(count + 1), start);
    }
}

TEST(AxisPositions, PassHiddenRowsAndKeepToTheSheet)
{
    AxisSizes sizes;
    for (const int hidden : {1, 2, 5, 6, 10})
        sizes.hidden[hidden] = true;
    const AxisPositions positions(sizes, 10, 1.0 / 15);
    const struct {
        const char* what;
        int got, expected;
    } cases[] = {
        {"shown row stays", positions.shown(3, 1), 3},
        {"down over hidden", positions.shown(5, 1), 7},
        {"up over hidden", positions.shown(6, -1), 4},
        {"none above", positions.shown(2, -1), 0},
        {"none below", positions.shown(10, 1), 0},
        {"two down", positions.moved(4, 2), 8},
        {"stops at the last shown", positions.moved(8, 5), 9},
        {"stops at the first shown", positions.moved(4, -9), 3},
        {"before the first", positions.indexAt(-5), 3},
        {"behind the last", positions.indexAt(100'000), 9},
    };
    for (const auto& c : cases)
        EXPECT_EQ(c.got, c.expected) << c.what;
}

TEST(AxisPositions, ReachTheLastOfTheTallestSheet)
{
    AxisSizes sizes;
    sizes.defaultSize = 31'680;
    const AxisPositions positions(sizes, maxRows, 4.0 / 15);
    const std::int64_t height = 8448; // 31,680 twips at 400 %
    EXPECT_EQ(positions.start(maxRows), height * (maxRows - 1));
    EXPECT_EQ(positions.indexAt(height * maxRows - 1), maxRows);
    sizes.defaultSize = 0;
    EXPECT_EQ(AxisPositions(sizes, maxRows, 1).shown(1, 1), 0);
}

} // namespace spreadsheet
