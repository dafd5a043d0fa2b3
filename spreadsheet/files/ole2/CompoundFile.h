#pragma once
#include "spreadsheet/files/ole2/little_endian.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace spreadsheet {

/// Places of the sector table that the header of a compound file names itself.
inline constexpr std::size_t headerTableSectors = 109;

/// A stream of a compound file: a view into the file if it lies in one piece there, else a copy.
class StreamBytes {
public:
    explicit StreamBytes(Bytes view)
        : m_view(view)
    {
    }
    explicit StreamBytes(std::vector<std::byte> copy)
        : m_copy(std::move(copy))
        , m_view(m_copy)
    {
    }
    StreamBytes(StreamBytes&&) = default; // a vector's bytes stay where they are
    StreamBytes& operator=(StreamBytes&&) = default;

    Bytes bytes() const { return m_view; }

private:
    std::vector<std::byte> m_copy;
    Bytes m_view;
};

/// Reads a compound file (OLE2): sectors chained by a table, a directory, and short streams packed
/// into one. Every chain is followed for at most as many steps as the file has sectors, and no stream
/// may be longer than the file.
class CompoundFile {
public:
    /// The file's bytes must outlive this object and the streams taken from it.
    /// @throws ContentError if the tables are damaged
    explicit CompoundFile(Bytes file);

    static bool hasSignature(Bytes file);
    /// A stream of the root folder, letter case ignored (ASCII); nothing if there is none.
    /// @throws ContentError if its chain is damaged
    std::optional<StreamBytes> stream(std::string_view name) const;

private:
    struct Entry {
        std::string name; ///< small letters; signs beyond ASCII as "?"
        int kind = 0;     ///< 1 folder, 2 stream, 5 root
        std::uint32_t left = 0, right = 0, child = 0;
        std::uint32_t firstSector = 0;
        std::uint64_t size = 0;
    };

    void readSectorTable();
    void readDirectory();
    void readShortSectors();
    std::size_t sectorCount() const;
    Bytes sector(std::uint32_t number) const;
    std::vector<std::uint32_t> chain(std::uint32_t first, const std::vector<std::uint32_t>& table) const;
    StreamBytes chained(std::uint32_t first, std::uint64_t size) const;
    StreamBytes shortChained(std::uint32_t first, std::uint64_t size) const;

    Bytes m_file;
    std::size_t m_sectorSize = 512;
    std::uint64_t m_shortBelow = 4096; ///< streams below this size are packed
    std::vector<std::uint32_t> m_next; ///< the sector that follows each sector
    std::vector<std::uint32_t> m_nextShort;
    std::vector<Entry> m_entries;
    std::optional<StreamBytes> m_shortSectors;
};

/// A compound file that holds one stream in its root folder.
/// @throws ContentError if it would pass 2 GiB
std::vector<std::byte> compoundFile(std::string_view streamName, std::vector<std::byte> stream);

} // namespace spreadsheet
