#include "tests/tdsserver/login.h"

#include "tests/tdsserver/bytes.h"
#include "tests/tdsserver/texts.h"

namespace selfreport::tds {

namespace {

constexpr std::size_t fixedPart = 36; // bytes before the places of the texts
enum Field : std::size_t {
    host,
    user,
    password,
    application,
    server,
    extension,
    library,
    language,
    database
};

/// Two bytes of offset, two of length in code units, in a table behind the fixed part.
std::string_view field(std::string_view message, Field which)
{
    ByteReader place(message);
    place.bytes(fixedPart + 4 * which);
    const auto offset = place.littleEndian<std::uint16_t>();
    const auto units = place.littleEndian<std::uint16_t>();
    ByteReader text(message);
    text.bytes(offset);
    return text.bytes(std::size_t{units} * 2);
}

/// Passwords travel with their half-bytes swapped after an exclusive or with 0xA5.
std::string uncovered(std::string_view covered)
{
    std::string bytes;
    for (const char letter : covered) {
        const unsigned byte = static_cast<unsigned char>(letter) ^ 0xA5U;
        bytes += static_cast<char>(byte >> 4U | byte << 4U);
    }
    return bytes;
}

} // namespace

Login readLogin(std::string_view message)
{
    ByteReader head(message);
    head.bytes(8); // length and version
    Login login;
    login.packetSize = head.littleEndian<std::uint32_t>();
    head.bytes(13); // client's version, process, connection, first flags
    login.isOdbc = (head.byte() & 0x02U) != 0;
    login.readOnly = (head.byte() & 0x20U) != 0;
    login.user = utf8OfUtf16(field(message, user));
    login.password = utf8OfUtf16(uncovered(field(message, password)));
    login.application = utf8OfUtf16(field(message, application));
    login.database = utf8OfUtf16(field(message, database));
    return login;
}

std::string preLoginReply()
{
    // Options: identifier, offset, length; then the values. 0 is the version, 1 the encryption (2: none).
    std::string reply;
    put<std::uint8_t>(reply, 0);
    putBigEndian16(reply, 11);
    putBigEndian16(reply, 6);
    put<std::uint8_t>(reply, 1);
    putBigEndian16(reply, 17);
    putBigEndian16(reply, 1);
    put<std::uint8_t>(reply, 0xFF);
    reply += std::string_view("\x0b\x00\x00\x00\x00\x00", 6);
    put<std::uint8_t>(reply, 2);
    return reply;
}

} // namespace selfreport::tds
