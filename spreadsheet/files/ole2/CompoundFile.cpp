#include "spreadsheet/files/ole2/CompoundFile.h"

#include "spreadsheet/files/placing/ContentError.h"
#include "text/ascii.h"

#include <algorithm>
#include <array>

namespace spreadsheet {

// Such a file is a small disk: sectors, chained by tables that are chained themselves. Any number in it may
// be wrong or made to do harm, so chains are followed no longer than there are sectors, and a file that ends
// early is refused with the reason instead of read as far as it goes.

namespace {

constexpr std::array<unsigned char, 8> signature{0xD0, 0xCF, 0x11, 0xE0, 0xA1, 0xB1, 0x1A, 0xE1};
constexpr std::size_t headerSize = 512;
constexpr std::size_t entrySize = 128;
constexpr std::size_t shortSectorSize = 64;
constexpr std::uint32_t lastRegular = 0xFFFFFFFA;
constexpr std::uint32_t noEntry = 0xFFFFFFFF;

enum HeaderField : std::size_t {
    sectorShift = 30,
    shortSectorShift = 32,
    directoryStart = 48,
    shortBelow = 56,
    shortTableStart = 60,
    furtherStart = 68,
    tableSectors = 76,
};

enum EntryField : std::size_t {
    nameLength = 64,
    kind = 66,
    leftEntry = 68,
    rightEntry = 72,
    childEntry = 76,
    startSector = 116,
    streamSize = 120,
};

std::string entryName(Bytes entry)
{
    const std::size_t bytes = std::min<std::size_t>(numberAt<std::uint16_t>(entry, nameLength), 64);
    std::string name;
    for (std::size_t at = 0; at + 2 < bytes; at += 2) { // the length counts the closing zero
        const auto unit = numberAt<std::uint16_t>(entry, at);
        name += unit < 0x80 ? ascii::lower(static_cast<char>(unit)) : '?';
    }
    return name;
}

} // namespace

bool CompoundFile::hasSignature(Bytes file)
{
    return file.size() >= signature.size() &&
           std::memcmp(file.data(), signature.data(), signature.size()) == 0;
}

CompoundFile::CompoundFile(Bytes file)
    : m_file(file)
{
    requireFile(hasSignature(file), "不是复合文档");
    requireFile(file.size() >= headerSize, "复合文档被截断");
    const auto shift = numberAt<std::uint16_t>(file, sectorShift);
    requireFile(shift == 9 || shift == 12, "复合文档的扇区大小不对");
    requireFile(numberAt<std::uint16_t>(file, shortSectorShift) == 6, "复合文档的小扇区大小不对");
    m_sectorSize = std::size_t(1) << shift;
    m_shortBelow = numberAt<std::uint32_t>(file, shortBelow);
    readSectorTable();
    readDirectory();
    readShortSectors();
}

/// The last sector may be cut short by programs that do not pad.
std::size_t CompoundFile::sectorCount() const
{
    return m_file.size() <= m_sectorSize ? 0 : (m_file.size() - 1) / m_sectorSize;
}

Bytes CompoundFile::sector(std::uint32_t number) const
{
    requireFile(number < sectorCount(), "复合文档的扇区超出文件末尾,文件可能被截断");
    const std::size_t start = (std::size_t(number) + 1) * m_sectorSize;
    return m_file.subspan(start, std::min(m_sectorSize, m_file.size() - start));
}

void CompoundFile::readSectorTable()
{
    const std::size_t perSector = m_sectorSize / sizeof(std::uint32_t);
    const auto addTableSector = [&](std::uint32_t number) {
        if (m_next.size() >= sectorCount()) // what goes beyond the file's end is room that nobody needs
            return;
        const Bytes bytes = sector(number);
        for (std::size_t at = 0; at + sizeof(std::uint32_t) <= bytes.size(); at += sizeof(std::uint32_t))
            m_next.push_back(numberAt<std::uint32_t>(bytes, at));
    };
    for (std::size_t i = 0; i < headerTableSectors; ++i) {
        const auto number = numberAt<std::uint32_t>(m_file, tableSectors + i * sizeof(std::uint32_t));
        if (number < lastRegular)
            addTableSector(number);
    }
    auto further = numberAt<std::uint32_t>(m_file, furtherStart);
    for (std::size_t steps = 0; further < lastRegular; ++steps) {
        requireFile(steps < sectorCount(), "复合文档的扇区表成环");
        const Bytes bytes = sector(further);
        requireFile(bytes.size() == m_sectorSize, "复合文档被截断");
        for (std::size_t i = 0; i + 1 < perSector; ++i) {
            const auto number = numberAt<std::uint32_t>(bytes, i * sizeof(std::uint32_t));
            if (number < lastRegular)
                addTableSector(number);
        }
        further = numberAt<std::uint32_t>(bytes, m_sectorSize - sizeof(std::uint32_t));
    }
}

std::vector<std::uint32_t> CompoundFile::chain(std::uint32_t first,
                                               const std::vector<std::uint32_t>& table) const
{
    std::vector<std::uint32_t> sectors;
    for (std::uint32_t number = first; number < lastRegular; number = table[number]) {
        requireFile(number < table.size(), "复合文档的扇区链指向文件之外");
        requireFile(sectors.size() < table.size(), "复合文档的扇区链成环");
        sectors.push_back(number);
    }
    return sectors;
}

StreamBytes CompoundFile::chained(std::uint32_t first, std::uint64_t size) const
{
    requireFile(size <= m_file.size(), "复合文档声明的长度超出文件");
    const std::vector<std::uint32_t> sectors = chain(first, m_next);
    requireFile(sectors.size() * m_sectorSize >= size, "复合文档的数据流被截断");
    const auto length = static_cast<std::size_t>(size);
    bool inOnePiece = true;
    for (std::size_t i = 1; i < sectors.size() && inOnePiece; ++i)
        inOnePiece = sectors[i] == sectors[i - 1] + 1;
    const std::size_t start = sectors.empty() ? 0 : (std::size_t(sectors[0]) + 1) * m_sectorSize;
    if (inOnePiece) {
        requireFile(start <= m_file.size() && length <= m_file.size() - start, "复合文档的数据流被截断");
        return StreamBytes(m_file.subspan(start, length));
    }
    std::vector<std::byte> copy;
    copy.reserve(length);
    for (std::size_t i = 0; copy.size() < length; ++i) {
        const Bytes bytes = sector(sectors[i]);
        const std::size_t part = std::min(length - copy.size(), m_sectorSize);
        requireFile(bytes.size() >= part, "复合文档的数据流被截断");
        copy.insert(copy.end(), bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(part));
    }
    return StreamBytes(std::move(copy));
}

StreamBytes CompoundFile::shortChained(std::uint32_t first, std::uint64_t size) const
{
    const Bytes all = m_shortSectors ? m_shortSectors->bytes() : Bytes();
    requireFile(size <= all.size(), "复合文档声明的长度超出文件");
    std::vector<std::byte> copy;
    for (const std::uint32_t number : chain(first, m_nextShort)) {
        if (copy.size() == size)
            break;
        const std::size_t start = number * shortSectorSize;
        const std::size_t part =
            std::min<std::size_t>(static_cast<std::size_t>(size) - copy.size(), shortSectorSize);
        requireFile(start <= all.size() && part <= all.size() - start, "复合文档的小数据流被截断");
        const auto from = all.begin() + static_cast<std::ptrdiff_t>(start);
        copy.insert(copy.end(), from, from + static_cast<std::ptrdiff_t>(part));
    }
    requireFile(copy.size() == size, "复合文档的小数据流被截断");
    return StreamBytes(std::move(copy));
}

void CompoundFile::readDirectory()
{
    for (const std::uint32_t number : chain(numberAt<std::uint32_t>(m_file, directoryStart), m_next)) {
        const Bytes bytes = sector(number);
        for (std::size_t at = 0; at + entrySize <= bytes.size(); at += entrySize) {
            const Bytes entry = bytes.subspan(at, entrySize);
            m_entries.push_back(
                {entryName(entry), static_cast<int>(entry[kind]), numberAt<std::uint32_t>(entry, leftEntry),
                 numberAt<std::uint32_t>(entry, rightEntry), numberAt<std::uint32_t>(entry, childEntry),
                 numberAt<std::uint32_t>(entry, startSector),
                 numberAt<std::uint32_t>(entry, streamSize)}); // the upper half is only for 4 KiB sectors
        }
    }
    requireFile(!m_entries.empty(), "复合文档没有目录");
}

void CompoundFile::readShortSectors()
{
    const auto start = numberAt<std::uint32_t>(m_file, shortTableStart);
    if (start >= lastRegular)
        return;
    for (const std::uint32_t number : chain(start, m_next)) {
        const Bytes bytes = sector(number);
        for (std::size_t at = 0; at + sizeof(std::uint32_t) <= bytes.size(); at += sizeof(std::uint32_t))
            m_nextShort.push_back(numberAt<std::uint32_t>(bytes, at));
    }
    m_shortSectors = chained(m_entries.front().firstSector, m_entries.front().size);
}

/// The root folder's entries form a tree; programs order it differently, so all of it is looked at.
std::optional<StreamBytes> CompoundFile::stream(std::string_view name) const
{
    std::string wanted;
    for (const char c : name)
        wanted += ascii::lower(c);
    std::vector<bool> seen(m_entries.size());
    std::vector<std::uint32_t> waiting{m_entries.front().child};
    while (!waiting.empty()) {
        const std::uint32_t number = waiting.back();
        waiting.pop_back();
        if (number == noEntry || number >= m_entries.size() || seen[number])
            continue;
        seen[number] = true;
        const Entry& entry = m_entries[number];
        if (entry.kind == 2 && entry.name == wanted)
            return entry.size < m_shortBelow ? shortChained(entry.firstSector, entry.size)
                                             : chained(entry.firstSector, entry.size);
        waiting.push_back(entry.left);
        waiting.push_back(entry.right);
    }
    return std::nullopt;
}

} // namespace spreadsheet
