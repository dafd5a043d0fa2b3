#include "spreadsheet/files/ole2/CompoundFile.h"

#include "spreadsheet/files/placing/ContentError.h"

#include <gtest/gtest.h>

namespace spreadsheet {
namespace {

std::vector<std::byte> pattern(std::size_t size)
{
    std::vector<std::byte> bytes(size);
    for (std::size_t i = 0; i < size; ++i)
        bytes[i] = static_cast<std::byte>(i * 7 + i / 251);
    return bytes;
}

bool isRefused(Bytes file)
{
    try {
        CompoundFile(file).stream("Workbook");
    } catch (const ContentError&) {
        return true;
    }
    return false;
}

TEST(CompoundFile, RoundTripOfAllSizes)
{
    // Around a sector, around the least stream, and where the table outgrows the header (109 sectors).
    for (const std::size_t size :
         {std::size_t(0), std::size_t(1), std::size_t(4095), std::size_t(4096), std::size_t(4097),
          std::size_t(512 * 125), std::size_t(512 * 127), std::size_t(7'100'000), std::size_t(16'000'000)}) {
        const std::vector<std::byte> content = pattern(size);
        const std::vector<std::byte> file = compoundFile("Workbook", content);
        const auto stream = CompoundFile(file).stream("WORKBOOK");
        ASSERT_TRUE(stream);
        ASSERT_GE(stream->bytes().size(), size);
        EXPECT_TRUE(std::ranges::equal(stream->bytes().first(size), content)) << size;
        EXPECT_FALSE(CompoundFile(file).stream("Book"));
        const std::size_t directory = 512 * (1 + numberAt<std::uint32_t>(file, 48));
        const auto sizeOf = [&](std::size_t entry) {
            return numberAt<std::uint32_t>(file, directory + 128 * entry + 120);
        };
        EXPECT_EQ(sizeOf(0), 0u) << "the root has no short streams";
        EXPECT_EQ(sizeOf(2) + sizeOf(3), 0u) << "of nothing";
    }
}

TEST(CompoundFile, TruncatedAtEverySectorIsRefused)
{
    const std::vector<std::byte> file = compoundFile("Workbook", pattern(70'000));
    for (std::size_t size = 0; size < file.size(); size += 512)
        EXPECT_TRUE(isRefused(Bytes(file).first(size))) << size;
}

TEST(CompoundFile, LiesAreRefused)
{
    const std::vector<std::byte> good =
        compoundFile("Workbook", pattern(70'000)); // 137 sectors, then the directory
    const std::size_t directory = 512 * 138, table = 512 * 139;
    const struct {
        const char* what;
        std::size_t at;
        std::uint32_t number;
    } cases[] = {
        {"a stream that loops", table + 4 * 50, 3},
        {"a directory that loops", table + 4 * 137, 137},
        {"a chain that leaves the file", table + 4 * 50, 100'000},
        {"a chain that ends early", table + 4 * 50, 0xFFFFFFFE},
        {"a stream of gigabytes", directory + 128 + 120, 0x7FFFFFFF},
        {"a directory beyond the end", 48, 1'000'000},
        {"a table beyond the end", 76, 1'000'000},
        {"sectors of 2 GiB", 28, 0x001FFFFE},
        {"further table places that loop", 68, 50},
        {"short sectors beyond the end", 60, 1'000'000},
    };
    for (const auto& c : cases) {
        std::vector<std::byte> file = good;
        putNumber(file, c.at, c.number);
        EXPECT_TRUE(isRefused(file)) << c.what;
    }
    EXPECT_FALSE(isRefused(good));
}

/// Some programs leave room in the table for sectors that the file does not have.
TEST(CompoundFile, ATableLongerThanTheFileIsTaken)
{
    constexpr std::size_t tablePlaces = 76;
    const std::vector<std::byte> content = pattern(70'000);
    std::vector<std::byte> file = compoundFile("Workbook", content);
    const auto last = numberAt<std::uint32_t>(file, tablePlaces + 4); // two hold all of it
    for (std::size_t place = 2; place < 6; ++place)
        putNumber(file, tablePlaces + 4 * place, last);
    const auto stream = CompoundFile(file).stream("Workbook");
    ASSERT_TRUE(stream);
    EXPECT_TRUE(std::ranges::equal(stream->bytes().first(content.size()), content));
}

} // namespace
} // namespace spreadsheet
