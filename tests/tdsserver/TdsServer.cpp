#include "tests/tdsserver/TdsServer.h"

#include "tests/tdsserver/ClientSession.h"

namespace selfreport::tds {

TdsServer::TdsServer(const std::string& file)
    : m_file(file)
    , m_listener(Socket::listen())
    , m_accepting([this] { acceptConnections(); })
{
}

TdsServer::~TdsServer()
{
    m_listener.stop();
    m_accepting.join();
    dropConnections();
    for (Served& served : m_served)
        served.thread.join();
}

std::string TdsServer::connectionString(const std::string& more) const
{
    return "Provider=SQLOLEDB.1;Data Source=127.0.0.1," + std::to_string(m_listener.port()) +
           ";Initial Catalog=cw;User ID=" + user + ";Password='" + password + "';" + more;
}

void TdsServer::dropConnections()
{
    const std::lock_guard lock(m_mutex);
    for (Served& served : m_served)
        served.session->drop();
}

void TdsServer::acceptConnections()
{
    for (int number = 1;; ++number) {
        Socket socket = m_listener.accept();
        if (!socket.isValid())
            return;
        const std::lock_guard lock(m_mutex);
        Served& served = m_served.emplace_back();
        served.session = std::make_unique<ClientSession>(*this, std::move(socket), number);
        served.thread = std::thread([session = served.session.get()] { session->serve(); });
    }
}

} // namespace selfreport::tds
