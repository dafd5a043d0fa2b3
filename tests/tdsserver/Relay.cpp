#include "tests/tdsserver/Relay.h"

#include "platform/database/dialect/connection_string.h"

#include <array>
#include <chrono>
#include <utility>

namespace selfreport::tds {

namespace {

constexpr std::size_t headerSize = 8;
constexpr char attention = 6;
constexpr char lastPacket = 1;

int portOf(const std::string& connectionString)
{
    const std::string server = parseConnectionString(connectionString).value("Data Source");
    return std::stoi(server.substr(server.find(',') + 1));
}

std::size_t lengthOf(const std::string& packet)
{
    return static_cast<std::size_t>(static_cast<unsigned char>(packet[2])) << 8U |
           static_cast<unsigned char>(packet[3]);
}

} // namespace

Relay::Relay(const std::string& connectionString)
    : m_given(connectionString)
    , m_listener(Socket::listen())
    , m_accepting([this] { acceptConnections(); })
{
}

Relay::~Relay()
{
    m_ends = true;
    m_listener.stop();
    m_accepting.join();
    for (Passed& passed : m_passed) {
        passed.client.stop();
        passed.server.stop();
        passed.up.join();
        passed.down.join();
    }
}

std::string Relay::connectionString() const
{
    return m_given + ";Data Source=127.0.0.1," + std::to_string(m_listener.port());
}

void Relay::actAt(int request, Moment moment, std::function<void()> act)
{
    const std::lock_guard lock(m_mutex);
    m_requests = 0;
    m_actsAt = request;
    m_moment = moment;
    m_act = std::move(act);
}

void Relay::acceptConnections()
{
    for (;;) {
        Socket client = m_listener.accept();
        if (!client.isValid())
            return;
        Socket server = Socket::connect(portOf(m_given));
        if (!server.isValid())
            continue; // the client finds itself closed
        const std::lock_guard lock(m_mutex);
        Passed& passed = m_passed.emplace_back();
        passed.client = std::move(client);
        passed.server = std::move(server);
        passed.up = std::thread([this, &passed] { passUp(passed); });
        passed.down = std::thread([this, &passed] { passDown(passed); });
    }
}

void Relay::reach(int request, Moment moment)
{
    std::function<void()> act;
    {
        const std::lock_guard lock(m_mutex);
        if (request == m_actsAt && moment == m_moment)
            act = std::exchange(m_act, {});
    }
    if (act)
        act();
}

void Relay::seePacket(Passed& passed, const std::string& packet)
{
    if (packet[0] == attention) {
        ++m_cancellations;
    } else {
        passed.request = ++m_requests;
        reach(passed.request, Moment::asked);
    }
}

/// Packet by packet, as a request may come in many and several in one piece.
void Relay::passUp(Passed& passed)
{
    std::array<char, 65536> piece;
    std::string packet;
    bool begins = true;
    while (const std::size_t read = passed.client.receive(piece.data(), piece.size())) {
        packet.append(piece.data(), read);
        while (packet.size() >= headerSize && packet.size() >= lengthOf(packet)) {
            if (std::exchange(begins, (packet[1] & lastPacket) != 0))
                seePacket(passed, packet);
            if (!passed.server.send(std::string_view(packet).substr(0, lengthOf(packet))))
                break;
            packet.erase(0, lengthOf(packet));
        }
    }
    passed.server.stop();
}

void Relay::passDown(Passed& passed)
{
    std::array<char, 65536> piece;
    while (const std::size_t read = passed.server.receive(piece.data(), piece.size())) {
        reach(passed.request, Moment::answered);
        while (isSilent && !m_ends)
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
        if (!passed.client.send({piece.data(), read}))
            break;
    }
    passed.client.stop();
}

} // namespace selfreport::tds
