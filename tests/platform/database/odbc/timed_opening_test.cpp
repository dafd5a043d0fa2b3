// Opening by the name of an instance, and within its time, against servers of our own.
#include "platform/database/Connection.h"
#include "tests/platform/database/database_folder.h"
#include "tests/tdsserver/TdsServer.h"

#include <arpa/inet.h>
#include <array>
#include <chrono>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <string>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>

namespace selfreport {
namespace {

using testing::DatabaseFolder;
using namespace std::chrono_literals;

/// Answers, on the port on which servers are asked for their instances, that FIN listens on a port; with port
/// 0 it answers nothing.
class FakeResolver {
public:
    explicit FakeResolver(int port)
        : m_socket(::socket(AF_INET, SOCK_DGRAM, 0))
    {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(1434);
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        EXPECT_EQ(::bind(m_socket, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
        m_thread = std::thread([this, port] { answer(port); });
    }
    ~FakeResolver()
    {
        ::shutdown(m_socket, SHUT_RDWR);
        m_thread.join();
        ::close(m_socket);
    }

private:
    void answer(int port) const
    {
        std::array<char, 512> asked{};
        sockaddr_in from{};
        socklen_t length = sizeof from;
        for (;;) {
            const auto size = ::recvfrom(m_socket, asked.data(), asked.size(), 0,
                                         reinterpret_cast<sockaddr*>(&from), &length);
            if (size <= 0)
                return;
            const std::string_view name(asked.data(), static_cast<std::size_t>(size));
            if (port == 0 || name != std::string_view("\4FIN\0", 5))
                continue;
            const std::string text = "ServerName;H;InstanceName;FIN;IsClustered;No;Version;15.0.2000.5;tcp;" +
                                     std::to_string(port) + ";;";
            const std::string reply = '\5' + std::string(1, static_cast<char>(text.size())) + '\0' + text;
            ::sendto(m_socket, reply.data(), reply.size(), 0, reinterpret_cast<sockaddr*>(&from), length);
        }
    }

    int m_socket;
    std::thread m_thread;
};

/// The string of a test server with another server's name and more keys.
std::string withServer(const std::string& usual, const std::string& server, const std::string& more = {})
{
    return usual + ";Data Source=" + server + ";" + more;
}

TEST(TimedOpening, AsksForTheInstance)
{
    const DatabaseFolder folder;
    folder.create();
    tds::TdsServer server(folder.file());
    const FakeResolver resolver(server.port());
    for (const char* name : {".\\FIN", "(local)\\FIN", "127.0.0.1\\FIN"}) {
        const auto connection = openConnection(withServer(server.connectionString(), name));
        EXPECT_EQ(connection->query("select count(*) as n from tblAccount").integer(0, "n"), 0) << name;
    }
}

TEST(TimedOpening, CountsTheWholeOpening)
{
    const DatabaseFolder folder;
    folder.create();
    tds::TdsServer server(folder.file());
    const FakeResolver resolver(0);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_THROW(openConnection(withServer(server.connectionString(), ".\\FIN", "Connect Timeout=1")),
                 DatabaseError);
    const auto taken = std::chrono::steady_clock::now() - start;
    EXPECT_GE(taken, 900ms);
    EXPECT_LT(taken, 4s) << "the driver asks for an instance sixteen times, a second each";
}

} // namespace
} // namespace selfreport
