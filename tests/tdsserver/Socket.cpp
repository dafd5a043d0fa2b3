#include "tests/tdsserver/Socket.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <stdexcept>
#include <sys/socket.h>
#include <unistd.h>
#include <utility>

namespace selfreport::tds {

Socket::Socket(Socket&& other) noexcept
    : m_descriptor(std::exchange(other.m_descriptor, -1))
{
}

Socket& Socket::operator=(Socket&& other) noexcept
{
    close();
    m_descriptor = std::exchange(other.m_descriptor, -1);
    return *this;
}

Socket Socket::listen()
{
    Socket socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (::bind(socket.m_descriptor, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0 ||
        ::listen(socket.m_descriptor, SOMAXCONN) != 0)
        throw std::runtime_error("cannot listen on this machine");
    return socket;
}

int Socket::port() const
{
    sockaddr_in address{};
    socklen_t length = sizeof address;
    ::getsockname(m_descriptor, reinterpret_cast<sockaddr*>(&address), &length);
    return ntohs(address.sin_port);
}

/// Replies are short: waiting for more to send would only add latency.
void Socket::sendAtOnce() const
{
    const int on = 1;
    ::setsockopt(m_descriptor, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
}

Socket Socket::accept() const
{
    Socket accepted(::accept4(m_descriptor, nullptr, nullptr, SOCK_CLOEXEC));
    accepted.sendAtOnce();
    return accepted;
}

Socket Socket::connect(int port)
{
    Socket socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (::connect(socket.m_descriptor, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0)
        socket.close();
    socket.sendAtOnce();
    return socket;
}

std::size_t Socket::receive(char* buffer, std::size_t room) const
{
    const ssize_t count = ::recv(m_descriptor, buffer, room, 0);
    return count > 0 ? static_cast<std::size_t>(count) : 0;
}

bool Socket::send(std::string_view bytes) const
{
    while (!bytes.empty()) {
        const ssize_t count = ::send(m_descriptor, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (count <= 0)
            return false;
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
}

bool Socket::hasInput() const
{
    pollfd waiting{m_descriptor, POLLIN, 0};
    return ::poll(&waiting, 1, 0) > 0;
}

void Socket::stop() const
{
    ::shutdown(m_descriptor, SHUT_RDWR);
}

void Socket::reset() const
{
    sockaddr none{};
    none.sa_family = AF_UNSPEC; // connecting to nothing is how a connection is dropped
    ::connect(m_descriptor, &none, sizeof none);
}

void Socket::close()
{
    if (isValid())
        ::close(std::exchange(m_descriptor, -1));
}

} // namespace selfreport::tds
