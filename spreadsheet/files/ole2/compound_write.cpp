#include "spreadsheet/files/ole2/CompoundFile.h"
#include "spreadsheet/files/placing/ContentError.h"

#include <algorithm>

namespace spreadsheet {

namespace {

constexpr std::size_t sectorSize = 512;
constexpr std::size_t perSector = sectorSize / sizeof(std::uint32_t);
constexpr std::size_t leastStream = 4096; ///< shorter streams would have to be packed
constexpr std::size_t mostBytes = std::size_t(1) << 31;

constexpr std::uint32_t endOfChain = 0xFFFFFFFE;
constexpr std::uint32_t freeSector = 0xFFFFFFFF;
constexpr std::uint32_t tableSector = 0xFFFFFFFD;
constexpr std::uint32_t furtherSector = 0xFFFFFFFC;

constexpr std::size_t divided(std::size_t count, std::size_t by)
{
    return (count + by - 1) / by;
}

/// Sectors in the order of the file: stream, directory, table, further places of the table.
struct Layout {
    std::size_t stream;
    std::size_t directory = 1;
    std::size_t table = 0;
    std::size_t further = 0;

    explicit Layout(std::size_t streamBytes)
        : stream(divided(streamBytes, sectorSize))
    {
        for (std::size_t before = 1; table != before;) { // the table has entries for itself
            before = table;
            table = divided(stream + directory + table + further, perSector);
            further = table <= headerTableSectors ? 0 : divided(table - headerTableSectors, perSector - 1);
        }
    }
    std::uint32_t directoryStart() const { return static_cast<std::uint32_t>(stream); }
    std::uint32_t tableStart() const { return directoryStart() + 1; }
    std::uint32_t furtherStart() const { return tableStart() + static_cast<std::uint32_t>(table); }
};

std::vector<std::byte> header(const Layout& layout)
{
    std::vector<std::byte> bytes(sectorSize);
    putNumber<std::uint64_t>(bytes, 0, 0xE11AB1A1E011CFD0);
    putNumber<std::uint16_t>(bytes, 24, 0x3E); // version of the format: 3.62
    putNumber<std::uint16_t>(bytes, 26, 3);
    putNumber<std::uint16_t>(bytes, 28, 0xFFFE);
    putNumber<std::uint16_t>(bytes, 30, 9); // sectors of 2^9 bytes, short ones of 2^6
    putNumber<std::uint16_t>(bytes, 32, 6);
    putNumber<std::uint32_t>(bytes, 44, static_cast<std::uint32_t>(layout.table));
    putNumber<std::uint32_t>(bytes, 48, layout.directoryStart());
    putNumber<std::uint32_t>(bytes, 56, leastStream);
    putNumber<std::uint32_t>(bytes, 60, endOfChain);
    putNumber<std::uint32_t>(bytes, 68, layout.further == 0 ? endOfChain : layout.furtherStart());
    putNumber<std::uint32_t>(bytes, 72, static_cast<std::uint32_t>(layout.further));
    for (std::size_t i = 0; i < headerTableSectors; ++i)
        putNumber<std::uint32_t>(bytes, 76 + i * sizeof(std::uint32_t),
                                 i < layout.table ? layout.tableStart() + static_cast<std::uint32_t>(i)
                                                  : freeSector);
    return bytes;
}

struct DirectoryEntry {
    std::string_view name;
    std::byte kind;
    std::uint32_t child;
    std::uint32_t firstSector;
    std::size_t size;
};

void appendEntry(std::vector<std::byte>& bytes, const DirectoryEntry& entry)
{
    const std::size_t start = bytes.size();
    bytes.resize(start + 128);
    for (std::size_t i = 0; i < entry.name.size(); ++i)
        putNumber<std::uint16_t>(bytes, start + 2 * i, static_cast<unsigned char>(entry.name[i]));
    const std::size_t nameBytes = entry.name.empty() ? 0 : 2 * (entry.name.size() + 1);
    putNumber<std::uint16_t>(bytes, start + 64, static_cast<std::uint16_t>(nameBytes));
    bytes[start + 66] = entry.kind;
    bytes[start + 67] = std::byte(1); // black
    putNumber<std::uint32_t>(bytes, start + 68, freeSector);
    putNumber<std::uint32_t>(bytes, start + 72, freeSector);
    putNumber<std::uint32_t>(bytes, start + 76, entry.child);
    putNumber<std::uint32_t>(bytes, start + 116, entry.firstSector);
    putNumber<std::uint32_t>(bytes, start + 120, static_cast<std::uint32_t>(entry.size));
}

void appendDirectory(std::vector<std::byte>& file, std::string_view streamName, std::size_t streamBytes)
{
    appendEntry(file, {"Root Entry", std::byte(5), 1, endOfChain, 0});
    appendEntry(file, {streamName, std::byte(2), freeSector, 0, streamBytes});
    appendEntry(file, {"", std::byte(0), freeSector, 0, 0});
    appendEntry(file, {"", std::byte(0), freeSector, 0, 0});
}

void appendTable(std::vector<std::byte>& file, const Layout& layout)
{
    const std::size_t end = file.size() + layout.table * sectorSize;
    for (std::size_t i = 1; i < layout.stream; ++i)
        appendNumber(file, static_cast<std::uint32_t>(i));
    appendNumber(file, endOfChain);
    appendNumber(file, endOfChain); // the directory
    for (std::size_t i = 0; i < layout.table; ++i)
        appendNumber(file, tableSector);
    for (std::size_t i = 0; i < layout.further; ++i)
        appendNumber(file, furtherSector);
    while (file.size() < end)
        appendNumber(file, freeSector);
}

void appendFurtherPlaces(std::vector<std::byte>& file, const Layout& layout)
{
    std::size_t next = headerTableSectors;
    for (std::size_t sector = 0; sector < layout.further; ++sector) {
        for (std::size_t i = 0; i + 1 < perSector; ++i, ++next)
            appendNumber(file, next < layout.table ? layout.tableStart() + static_cast<std::uint32_t>(next)
                                                   : freeSector);
        appendNumber(file, sector + 1 < layout.further
                               ? layout.furtherStart() + static_cast<std::uint32_t>(sector) + 1
                               : endOfChain);
    }
}

} // namespace

std::vector<std::byte> compoundFile(std::string_view streamName, std::vector<std::byte> stream)
{
    if (stream.size() > mostBytes - mostBytes / 64)
        throw ContentError("内容太大,复合文档放不下");
    const std::size_t size = std::max(stream.size(), leastStream);
    const Layout layout(size);
    std::vector<std::byte> file = header(layout);
    file.reserve(sectorSize * (1 + layout.stream + layout.directory + layout.table + layout.further));
    file.insert(file.end(), stream.begin(), stream.end());
    stream = {}; // two copies of a large workbook are enough
    file.resize(sectorSize * (1 + layout.stream));
    appendDirectory(file, streamName, size);
    appendTable(file, layout);
    appendFurtherPlaces(file, layout);
    return file;
}

} // namespace spreadsheet
