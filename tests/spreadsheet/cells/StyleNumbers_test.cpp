#include "spreadsheet/cells/StyleNumbers.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

namespace spreadsheet {

/// Against plain numbers, over every way to store them: one, bytes, and more styles than a byte counts.
TEST(StyleNumbers, ReadAsWhatWasWritten)
{
    std::mt19937 random(5); // NOLINT: the same sequence every time
    for (const std::uint32_t styles : {2u, 30u, 255u, 256u, 700u}) {
        constexpr int capacity = 1024;
        StyleNumbers numbers;
        std::vector<std::uint32_t> plain(4);
        const auto below = [&](int limit) {
            return static_cast<int>(random() % static_cast<unsigned>(limit));
        };
        for (int step = 0; step < 4000; ++step) {
            const int count = static_cast<int>(plain.size());
            const std::uint32_t number = static_cast<std::uint32_t>(random() % styles) * 7919;
            const int first = below(count), cells = 1 + below(count - first);
            const auto from = plain.begin() + first;
            switch (below(12)) {
            case 0:
                numbers.fill(first, cells, number, count, capacity);
                std::fill_n(from, cells, number);
                break;
            case 1:
                numbers.fill(0, count, number, count, capacity);
                std::ranges::fill(plain, number);
                break;
            case 2: {
                const int added = std::min(1 + below(40), capacity - count);
                const int shift = random() % 3 == 0 ? added : 0;
                numbers.grow(count, capacity, shift);
                plain.insert(shift > 0 ? plain.begin() : plain.end(), static_cast<std::size_t>(added), 0);
                break;
            }
            case 3: { // a part of it, and back over another part
                StyleNumbers part;
                part.copy(0, numbers, first, cells, cells, cells);
                const int at = below(count - cells + 1);
                numbers.copy(at, part, 0, cells, count, capacity);
                const std::vector<std::uint32_t> copied(from, from + cells);
                std::ranges::copy(copied, plain.begin() + at);
                break;
            }
            default:
                numbers.set(first, number, count, capacity);
                *from = number;
            }
            for (std::size_t i = 0; i < plain.size() && (step % 20 == 0 || step > 3900); ++i)
                ASSERT_EQ(numbers[static_cast<int>(i)], plain[i]) << "step " << step << " cell " << i;
        }
    }
}

/// However cells come to their numbers, there is room for as many as the caller said.
TEST(StyleNumbers, CopiedOnesHaveRoomForWhatFollows)
{
    constexpr int count = 10, capacity = 64;
    StyleNumbers source, copied, set;
    source.set(1, 5, count, capacity);
    copied.copy(2, source, 0, 4, count, capacity);
    set.set(3, 5, count, capacity);
    EXPECT_EQ(copied.bytes(), set.bytes());
    for (int cell = 0; cell < count; ++cell)
        EXPECT_EQ(copied[cell], cell == 3 ? 5U : 0U) << cell;
}

} // namespace spreadsheet
