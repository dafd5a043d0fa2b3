#pragma once
#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

namespace selfreport::tds {

/// A message that breaks the protocol; the session ends.
struct ProtocolError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// Reads the fields of a message in order. Beyond its end it throws ProtocolError.
class ByteReader {
public:
    explicit ByteReader(std::string_view bytes)
        : m_rest(bytes)
    {
    }

    template <typename Integer>
    Integer littleEndian()
    {
        return static_cast<Integer>(unsignedNumber(sizeof(Integer), false));
    }
    std::uint16_t bigEndian16() { return static_cast<std::uint16_t>(unsignedNumber(2, true)); }
    std::uint8_t byte() { return littleEndian<std::uint8_t>(); }

    std::string_view bytes(std::size_t count);
    std::string_view rest() const { return m_rest; }
    bool atEnd() const { return m_rest.empty(); }

private:
    std::uint64_t unsignedNumber(std::size_t size, bool isBigEndian);

    std::string_view m_rest;
};

void putBytes(std::string& bytes, std::uint64_t number, std::size_t size);
void putBigEndian16(std::string& bytes, std::uint16_t number);

template <typename Integer>
void put(std::string& bytes, Integer number)
{
    putBytes(bytes, static_cast<std::uint64_t>(number), sizeof(Integer));
}

} // namespace selfreport::tds
