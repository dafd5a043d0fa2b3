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

constexpr std::uint32_t free = 0xFFFFFFFF, end = 0xFFFFFFFE;

/// As other programs write small streams: one of 100 bytes in sectors of 64. Behind the header lie the table,
/// the directory, the table of short sectors and these.
std::vector<std::byte> fileOfShortSectors(const std::vector<std::byte>& content)
{
    std::vector<std::byte> file = compoundFile("Workbook", content); // its header, to begin with
    file.resize(512);
    for (const auto& [at, number] :
         {std::pair{44u, 1u}, {48u, 1u}, {60u, 2u}, {64u, 1u}, {68u, end}, {76u, 0u}})
        putNumber(file, at, number);
    for (std::size_t at = 80; at < 512; at += 4)
        putNumber(file, at, free);
    file.resize(512 * 5);
    for (std::size_t at = 512; at < 1024; at += 4) {
        putNumber(file, at, at < 528 ? (at == 512 ? 0xFFFFFFFD : end) : free);
        putNumber(file, at + 1024, at == 512 ? 1 : at == 516 ? end : free);
    }
    const auto entry = [&](std::size_t at, std::u16string_view name, int kind, std::uint32_t child,
                           std::uint32_t first, std::uint32_t size) {
        for (std::size_t i = 0; i < name.size(); ++i)
            putNumber(file, at + 2 * i, static_cast<std::uint16_t>(name[i]));
        putNumber(file, at + 64, static_cast<std::uint16_t>(2 * name.size() + 2));
        file[at + 66] = static_cast<std::byte>(kind);
        const std::uint32_t numbers[]{free, free, child};
        for (std::size_t i = 0; i < 3; ++i)
            putNumber(file, at + 68 + 4 * i, numbers[i]);
        putNumber(file, at + 116, first);
        putNumber(file, at + 120, size);
    };
    entry(1024, u"Root Entry", 5, 3, 3, 128);
    entry(1024 + 3 * 128, u"Workbook", 2, free, 0, static_cast<std::uint32_t>(content.size()));
    std::ranges::copy(content, file.begin() + 512 * 4);
    return file;
}

TEST(CompoundFile, ShortSectorsOfOtherPrograms)
{
    const std::vector<std::byte> content = pattern(100);
    const std::vector<std::byte> good = fileOfShortSectors(content);
    const auto stream = CompoundFile(good).stream("Workbook");
    ASSERT_TRUE(stream);
    EXPECT_TRUE(std::ranges::equal(stream->bytes(), content));
    const struct {
        const char* what;
        std::size_t at;
        std::uint32_t number;
    } cases[] = {
        {"a chain that ends early", 1536, end},
        {"a chain that loops", 1536, 0},
        {"a chain that leaves the sectors", 1536, 5},
        {"a stream longer than all of them", 1024 + 3 * 128 + 120, 129},
    };
    for (const auto& c : cases) {
        std::vector<std::byte> file = good;
        putNumber(file, c.at, c.number);
        EXPECT_TRUE(isRefused(file)) << c.what;
    }
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
