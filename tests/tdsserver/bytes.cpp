#include "tests/tdsserver/bytes.h"

namespace selfreport::tds {

std::string_view ByteReader::bytes(std::size_t count)
{
    if (count > m_rest.size())
        throw ProtocolError("message ends early");
    const std::string_view taken = m_rest.substr(0, count);
    m_rest.remove_prefix(count);
    return taken;
}

std::uint64_t ByteReader::unsignedNumber(std::size_t size, bool isBigEndian)
{
    const std::string_view field = bytes(size);
    std::uint64_t number = 0;
    for (std::size_t at = 0; at < size; ++at) {
        const char byte = field[isBigEndian ? at : size - 1 - at];
        number = number << 8U | static_cast<unsigned char>(byte);
    }
    return number;
}

void putBytes(std::string& bytes, std::uint64_t number, std::size_t size)
{
    for (std::size_t at = 0; at < size; ++at)
        bytes += static_cast<char>(number >> (8 * at) & 0xFFU);
}

void putBigEndian16(std::string& bytes, std::uint16_t number)
{
    bytes += static_cast<char>(number >> 8U);
    bytes += static_cast<char>(number & 0xFFU);
}

} // namespace selfreport::tds
