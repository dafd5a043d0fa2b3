#include "tests/tdsserver/packets.h"

#include "tests/tdsserver/bytes.h"

#include <algorithm>
#include <cstring>

namespace selfreport::tds {

namespace {

constexpr std::uint8_t lastPacket = 1;
constexpr std::size_t largestMessage = 256U << 20U;

} // namespace

bool MessageReader::read(char* bytes, std::size_t count)
{
    while (count > 0) {
        if (m_begin == m_end) {
            m_begin = 0;
            m_end = m_socket.receive(m_buffer.data(), m_buffer.size());
            if (m_end == 0)
                return false;
        }
        const std::size_t taken = std::min(count, m_end - m_begin);
        std::memcpy(bytes, m_buffer.data() + m_begin, taken);
        m_begin += taken;
        bytes += taken;
        count -= taken;
    }
    return true;
}

std::optional<Message> MessageReader::next()
{
    Message message{};
    for (;;) {
        std::array<char, packetHeaderSize> header;
        if (!read(header.data(), header.size()))
            return std::nullopt;
        ByteReader fields(std::string_view(header.data(), header.size()));
        message.type = static_cast<PacketType>(fields.byte());
        const std::uint8_t status = fields.byte();
        const std::size_t length = fields.bigEndian16();
        if (length < packetHeaderSize || message.body.size() + length > largestMessage)
            throw ProtocolError("packet length out of range");
        const std::size_t before = message.body.size();
        message.body.resize(before + length - packetHeaderSize);
        if (!read(message.body.data() + before, length - packetHeaderSize))
            return std::nullopt;
        if ((status & lastPacket) != 0)
            return message;
    }
}

std::string framedReply(std::string_view body, std::size_t packetSize)
{
    const std::size_t room = packetSize - packetHeaderSize;
    std::string framed;
    framed.reserve(body.size() + (body.size() / room + 1) * packetHeaderSize);
    std::uint8_t number = 1;
    do {
        const std::string_view part = body.substr(0, room);
        body.remove_prefix(part.size());
        put(framed, PacketType::reply);
        put<std::uint8_t>(framed, body.empty() ? lastPacket : 0);
        putBigEndian16(framed, static_cast<std::uint16_t>(part.size() + packetHeaderSize));
        putBigEndian16(framed, 0); // process id
        put(framed, number++);
        put<std::uint8_t>(framed, 0); // window, not used
        framed += part;
    } while (!body.empty());
    return framed;
}

} // namespace selfreport::tds
