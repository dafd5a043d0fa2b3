#include "spreadsheet/files/placing/special_file.h"

#include "spreadsheet/files/placing/FileTarget.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <thread>
#include <unistd.h>

namespace spreadsheet {

namespace {

using namespace std::chrono_literals;

constexpr auto patience = 10s; // for a reader to come, and for each piece to be taken
constexpr auto pause = 50ms;

/// Closes what it holds.
struct Handle {
    explicit Handle(int opened)
        : number(opened)
    {
    }
    ~Handle() { close(number); }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;

    const int number;
};

/// While it lives, a reader that goes away is an error of the writing and no end of the process.
class BrokenPipesAreErrors {
public:
    BrokenPipesAreErrors()
    {
        sigemptyset(&m_signal);
        sigaddset(&m_signal, SIGPIPE);
        sigset_t pending;
        sigpending(&pending);
        m_wasPending = sigismember(&pending, SIGPIPE) == 1;
        pthread_sigmask(SIG_BLOCK, &m_signal, &m_former);
    }
    ~BrokenPipesAreErrors()
    {
        const timespec atOnce{};
        if (!m_wasPending)
            while (sigtimedwait(&m_signal, nullptr, &atOnce) < 0 && errno == EINTR) {
            }
        pthread_sigmask(SIG_SETMASK, &m_former, nullptr);
    }
    BrokenPipesAreErrors(const BrokenPipesAreErrors&) = delete;
    BrokenPipesAreErrors& operator=(const BrokenPipesAreErrors&) = delete;

private:
    sigset_t m_signal{}, m_former{};
    bool m_wasPending = false;
};

int connectedSocket(const FileTarget& target)
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const std::string name = target.file.string();
    if (name.size() >= sizeof address.sun_path)
        refuseToWrite(target.named, ENAMETOOLONG);
    std::memcpy(address.sun_path, name.c_str(), name.size() + 1);
    const int handle = socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    if (handle < 0)
        refuseToWrite(target.named, errno);
    if (connect(handle, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0)
        return handle;
    const int error = errno;
    close(handle);
    refuseToWrite(target.named, error);
}

/// Without a reader a pipe is waited for, so that it may be opened a little later.
int openedFile(const FileTarget& target)
{
    if (S_ISSOCK(target.status.st_mode))
        return connectedSocket(target);
    const auto end = std::chrono::steady_clock::now() + patience;
    for (;;) {
        const int handle = open(target.file.c_str(), O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
        if (handle >= 0)
            return handle;
        const bool lacksReader = errno == ENXIO && S_ISFIFO(target.status.st_mode);
        if (!lacksReader && errno != EINTR)
            refuseToWrite(target.named, errno);
        if (std::chrono::steady_clock::now() >= end)
            refuseToWrite(target.named, "没有程序在读这个管道");
        std::this_thread::sleep_for(pause);
    }
}

void waitUntilTaken(const FileTarget& target, int handle)
{
    pollfd wanted{handle, POLLOUT, 0};
    const int ready = poll(&wanted, 1, static_cast<int>(std::chrono::milliseconds(patience).count()));
    if (ready == 0)
        refuseToWrite(target.named, "接收的程序没有接收");
    if (ready < 0 && errno != EINTR)
        refuseToWrite(target.named, errno);
}

void writePiece(const FileTarget& target, int handle, const char* bytes, std::size_t size)
{
    while (size > 0) {
        const ssize_t written = ::write(handle, bytes, size);
        if (written >= 0) {
            bytes += written;
            size -= static_cast<std::size_t>(written);
        } else if (errno == EAGAIN) {
            waitUntilTaken(target, handle);
        } else if (errno != EINTR) {
            refuseToWrite(target.named, errno);
        }
    }
}

} // namespace

void writeToSpecialFile(const FileTarget& target, const std::filesystem::path& content)
{
    const int opened = open(content.c_str(), O_RDONLY | O_CLOEXEC);
    if (opened < 0)
        refuseToWrite(target.named, errno);
    const Handle source(opened);
    const BrokenPipesAreErrors brokenPipes;
    const Handle handle(openedFile(target));
    std::array<char, 65536> piece;
    for (;;) {
        const ssize_t size = read(source.number, piece.data(), piece.size());
        if (size == 0)
            return;
        if (size < 0)
            refuseToWrite(target.named, errno);
        writePiece(target, handle.number, piece.data(), static_cast<std::size_t>(size));
    }
}

} // namespace spreadsheet
