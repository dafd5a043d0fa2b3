#pragma once
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace spreadsheet {

/// Larger contents are neither written nor read, in bytes before compression.
inline constexpr std::size_t maxExpandedContent = std::size_t(1) << 30;

/// The highest version that is written and read.
inline constexpr std::uint32_t newestContentVersion = 2;

/// An uncompressed content, aligned for direct reading.
struct ExpandedContent {
    std::unique_ptr<std::byte[]> bytes;
    std::size_t size = 0;
    std::span<const std::byte> view() const { return {bytes.get(), size}; }
};

/// The file around a content: eight bytes that name the format, the version as four bytes (lowest
/// first), and one zstd frame with its expanded size and a checksum.
/// @throws ContentError if the content is too large
std::vector<std::byte> packContent(std::span<const std::byte> expanded, std::uint32_t version);

/// Whether a file was written by a program with a later format, which this one must not replace.
bool isOfLaterVersion(std::span<const std::byte> file);

/// @throws ContentError if it is no such file, of a later version, damaged, or expands beyond the limit
ExpandedContent unpackContent(std::span<const std::byte> file);

} // namespace spreadsheet
