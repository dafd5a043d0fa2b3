#pragma once
#include <cstddef>
#include <string_view>

namespace selfreport::tds {

/// One TCP connection, or with listen() the port on which they come in.
class Socket {
public:
    Socket() = default;
    explicit Socket(int descriptor)
        : m_descriptor(descriptor)
    {
    }
    ~Socket() { close(); }
    Socket(Socket&& other) noexcept;
    Socket& operator=(Socket&& other) noexcept;

    /// Listens on a free port of this machine only.
    static Socket listen();
    int port() const;
    /// Reaches a port of this machine; an invalid socket if nobody listens there.
    static Socket connect(int port);
    /// Waits for a connection; an invalid socket once stop() was called.
    Socket accept() const;
    bool isValid() const { return m_descriptor >= 0; }

    /// Bytes read into the buffer; 0 when the other side has closed or stop() was called.
    std::size_t receive(char* buffer, std::size_t room) const;
    /// False if the other side is gone.
    bool send(std::string_view bytes) const;
    /// Whether something can be read now.
    bool hasInput() const;

    /// Wakes all who wait on it, from any thread.
    void stop() const;
    /// Drops the connection at once instead of ending it in order.
    void reset() const;

private:
    void sendAtOnce() const;
    void close();

    int m_descriptor = -1;
};

} // namespace selfreport::tds
