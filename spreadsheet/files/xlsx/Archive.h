#pragma once
#include "spreadsheet/files/ole2/little_endian.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

struct libdeflate_decompressor;

namespace spreadsheet {

/// A zipped file in memory. What all its parts expand to, taken together, is bounded by the file's size.
class Archive {
public:
    /// The bytes must outlive the object. @throws ContentError if it is no archive or is damaged
    explicit Archive(Bytes file);
    ~Archive();
    Archive(const Archive&) = delete;
    Archive& operator=(const Archive&) = delete;

    /// A part by its path, letter case ignored; nothing if there is none.
    /// @throws ContentError if it is damaged, or expands beyond all measure
    std::optional<std::vector<char>> part(std::string_view path);

private:
    bool goesTo(std::string path);
    Bytes currentPart(std::uint64_t size);

    struct Source;
    std::unique_ptr<Source> m_source;
    std::unique_ptr<libdeflate_decompressor, void (*)(libdeflate_decompressor*)> m_unpacker;
    void* m_archive = nullptr;
    std::size_t m_room; ///< bytes that may still be expanded
};

} // namespace spreadsheet
