#pragma once
#include "tests/tdsserver/Socket.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace selfreport::tds {

enum class PacketType : std::uint8_t {
    batch = 0x01,
    procedure = 0x03,
    reply = 0x04,
    attention = 0x06,
    transaction = 0x0E,
    login = 0x10,
    preLogin = 0x12,
};

inline constexpr std::size_t packetHeaderSize = 8;

struct Message {
    PacketType type;
    std::string body;
};

/// Puts the client's packets together to messages.
class MessageReader {
public:
    explicit MessageReader(const Socket& socket)
        : m_socket(socket)
    {
    }

    /// Waits for the next message; nothing once the client is gone. @throws ProtocolError
    std::optional<Message> next();

private:
    /// False if the client is gone.
    bool read(char* bytes, std::size_t count);

    const Socket& m_socket;
    std::array<char, 65536> m_buffer;
    std::size_t m_begin = 0, m_end = 0; // what of the buffer is still to be read
};

/// A reply as it goes out, cut into packets of at most `packetSize` bytes.
std::string framedReply(std::string_view body, std::size_t packetSize);

} // namespace selfreport::tds
