#include "spreadsheet/files/placing/TemporaryFile.h"

#include "spreadsheet/files/placing/placing_journal.h"

#include <cerrno>
#include <charconv>
#include <csignal>
#include <fcntl.h>
#include <functional>
#include <string>
#include <string_view>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>
#include <vector>

namespace spreadsheet {

namespace {

constexpr std::string_view prefix = ".selfreport-";
constexpr std::string_view ending = ".part";
constexpr std::size_t mostOfJournal = 65536; ///< bytes

/// Where the name of a temporary file ends, or that of a journal that a database has beside one; 0 for
/// others.
std::size_t lengthOfName(std::string_view name)
{
    const std::size_t found = name.starts_with(prefix) ? name.find(ending) : std::string_view::npos;
    return found == std::string_view::npos ? 0 : found + ending.size();
}

/// Whether the process that made a file of that name lives.
bool ownerLives(std::string_view name)
{
    pid_t owner = 0;
    const char* const digits = name.data() + prefix.size();
    const auto [end, error] = std::from_chars(digits, name.data() + name.size(), owner);
    return error != std::errc() || owner <= 0 || kill(owner, 0) == 0 || errno != ESRCH;
}

/// The beginning of a file of our own that nobody else may have written; "" for others.
std::string ownContent(int handle)
{
    struct stat status {};
    if (fstat(handle, &status) != 0 || !S_ISREG(status.st_mode) || status.st_uid != geteuid() ||
        (status.st_mode & (S_IWGRP | S_IWOTH)) != 0)
        return {};
    std::string content(mostOfJournal, '\0');
    const ssize_t size = pread(handle, content.data(), content.size(), 0);
    content.resize(size > 0 ? static_cast<std::size_t>(size) : 0);
    return content;
}

/// Does the work with a file that no process holds. One that is counted elsewhere, as in a container, has no
/// number here; one that cannot be asked counts as held. False if it was held.
bool withFree(const std::filesystem::path& file, const std::function<void(int handle)>& work)
{
    const int handle = open(file.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    if (handle < 0)
        return errno == ENOENT;
    const bool isFree = flock(handle, LOCK_EX | LOCK_NB) == 0;
    if (isFree)
        work(handle); // while the lock is held: its maker waits for it and then makes another
    close(handle);
    return isFree;
}

/// Names of what killed processes left in a folder.
std::vector<std::string> leftBehind(const std::filesystem::path& folder)
{
    std::vector<std::string> names;
    std::error_code error;
    for (std::filesystem::directory_iterator entry(folder, error), end; !error && entry != end;
         entry.increment(error))
        if (std::string name = entry->path().filename().string(); lengthOfName(name) > 0 && !ownerLives(name))
            names.push_back(std::move(name));
    return names;
}

/// What was begun is finished before what it needs is removed.
void removeLeftBehind(const std::filesystem::path& folder)
{
    const std::vector<std::string> names = leftBehind(folder);
    for (const std::string& name : names)
        withFree(folder / name, [](int handle) { finishPlacing(ownContent(handle)); });
    for (const std::string& name : names) {
        const std::filesystem::path file = folder / name.substr(0, lengthOfName(name));
        if (withFree(file, [&](int) { unlink(file.c_str()); }) && lengthOfName(name) < name.size())
            unlink((folder / name).c_str());
    }
}

/// Short, so that it fits wherever the final name does.
std::filesystem::path freshName(const std::filesystem::path& folder)
{
    static int number = 0; // files are written on one thread
    return folder / (std::string(prefix) + std::to_string(getpid()) + "-" + std::to_string(++number) +
                     std::string(ending));
}

/// Opens a fresh file and takes its lock; -1 if somebody cleaned it away before it was locked.
int lockedFile(const std::filesystem::path& file, unsigned mode)
{
    const int handle = open(file.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, static_cast<mode_t>(mode));
    if (handle < 0) {
        if (errno == EEXIST)
            return -1;
        throw std::filesystem::filesystem_error("open", file,
                                                std::error_code(errno, std::generic_category()));
    }
    struct stat status {};
    if (flock(handle, LOCK_EX) == 0 && fstat(handle, &status) == 0 && status.st_nlink == 0) {
        close(handle);
        return -1;
    }
    return handle; // on a file system without locks nobody else can take one either
}

} // namespace

TemporaryFile::TemporaryFile(const std::filesystem::path& folder, unsigned mode)
{
    removeLeftBehind(folder);
    while (m_handle < 0) {
        m_path = freshName(folder);
        m_handle = lockedFile(m_path, mode);
    }
}

TemporaryFile::TemporaryFile(const std::filesystem::path& folder, const std::filesystem::path& original)
    : m_path(freshName(folder))
{
    std::error_code error;
    std::filesystem::create_hard_link(original, m_path, error);
    if (error)
        std::filesystem::copy_file(original, m_path);
    m_handle = open(m_path.c_str(), O_RDONLY | O_CLOEXEC);
    flock(m_handle, LOCK_SH | LOCK_NB);
}

TemporaryFile::~TemporaryFile()
{
    if (!m_path.empty())
        unlink(m_path.c_str());
    if (m_handle >= 0)
        close(m_handle);
}

} // namespace spreadsheet
