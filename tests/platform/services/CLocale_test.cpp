#include "platform/services/CLocale.h"

#include "tests/CommaLocale.h"

#include <gtest/gtest.h>
#include <thread>

namespace selfreport {
namespace {

TEST(CLocale, CountsWithPointsForItsThreadAndItsTimeOnly)
{
    for (const CommaLocale::Reach reach : {CommaLocale::Reach::process, CommaLocale::Reach::thread}) {
        const CommaLocale host(reach);
        {
            const CLocale outer;
            EXPECT_FALSE(countsWithComma());
            {
                const CLocale inner;
                EXPECT_FALSE(countsWithComma());
            }
            EXPECT_FALSE(countsWithComma());
            std::thread([&] {
                EXPECT_EQ(countsWithComma(),
                          reach == CommaLocale::Reach::process); // as the host has it there
                const CLocale helper;
                EXPECT_FALSE(countsWithComma());
            }).join();
        }
        EXPECT_TRUE(countsWithComma());
    }
    EXPECT_FALSE(countsWithComma());
}

} // namespace
} // namespace selfreport
