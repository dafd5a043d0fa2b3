#pragma once
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <vector>

namespace spreadsheet {

using Bytes = std::span<const std::byte>;

static_assert(std::endian::native == std::endian::little, "numbers of files are read as they lie");

/// A number at a byte offset; the caller has checked that it lies inside.
template <typename Number>
Number numberAt(Bytes bytes, std::size_t offset)
{
    Number number;
    std::memcpy(&number, bytes.data() + offset, sizeof number);
    return number;
}

template <typename Number>
void putNumber(std::vector<std::byte>& bytes, std::size_t offset, Number number)
{
    std::memcpy(bytes.data() + offset, &number, sizeof number);
}

template <typename Number>
void appendNumber(std::vector<std::byte>& bytes, Number number)
{
    const auto* raw = reinterpret_cast<const std::byte*>(&number);
    bytes.insert(bytes.end(), raw, raw + sizeof number);
}

} // namespace spreadsheet
