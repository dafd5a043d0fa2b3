#include "windows/designer/RecoveryCopy.h"

#include "failures/failure_text.h"
#include "spreadsheet/files/placing/FileTarget.h"
#include "spreadsheet/files/placing/TemporaryFile.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <string_view>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace selfreport {

// Whose copy is it? Windows may crash, run twice or work in one folder from several machines, and none may
// take the other's design away. The lock on the open file answers that: it ends with its process, however
// that ends, where a mark inside the file would stay. What is known of the design stands before the workbook,
// so that a copy can be offered without loading it.

namespace {

using spreadsheet::FileError;
using Left = RecoveryNote::Left;

// A copy begins with lines "key=value" and an empty one; the workbook follows. Those of earlier programs are
// the workbook alone.
constexpr std::string_view firstLine = "selfreport-recovery 1\n";
constexpr std::string_view endOfNote = "\n\n";
constexpr std::size_t longestNote = 1 << 20;

constexpr std::array<std::pair<Left, std::string_view>, 3> leftNames{
    {{Left::open, "open"}, {Left::closed, "closed"}, {Left::lastOffer, "last-offer"}}};

FileError failure(const char* what, const std::filesystem::path& file, int error)
{
    return FileError(what + file.string() + ": " + failures::reasonOfErrno(error));
}

std::string noteText(const RecoveryNote& note)
{
    std::string name = note.name;
    std::ranges::replace_if(
        name, [](char c) { return c == '\n' || c == '\r'; }, ' ');
    std::string text(firstLine);
    text += "left=";
    text += std::ranges::find(leftNames, note.left, &std::pair<Left, std::string_view>::first)->second;
    text += "\nname=" + name;
    if (note.madeFrom)
        text += "\nfrom=" + versionText(*note.madeFrom);
    text += endOfNote;
    return text;
}

void readLine(std::string_view line, RecoveryNote& note)
{
    const std::string_view key = line.substr(0, line.find('='));
    const std::string_view value = line.substr(std::min(key.size() + 1, line.size()));
    if (key == "name")
        note.name = value;
    else if (key == "from")
        note.madeFrom = versionOfText(value);
    else if (key == "left")
        for (const auto& [left, name] : leftNames)
            if (value == name)
                note.left = left;
}

/// Bytes of the note at the beginning of a copy; 0 if there is none.
std::size_t noteSize(std::string_view copy)
{
    const std::size_t end = copy.starts_with(firstLine) ? copy.find(endOfNote) : std::string_view::npos;
    return end == std::string_view::npos ? 0 : end + endOfNote.size();
}

void writeAll(int file, const void* data, std::size_t size, const std::filesystem::path& name)
{
    const char* rest = static_cast<const char*>(data);
    while (size > 0) {
        const ssize_t written = ::write(file, rest, size);
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            throw failure("无法写入文件 ", name, written < 0 ? errno : ENOSPC);
        rest += written;
        size -= static_cast<std::size_t>(written);
    }
}

spreadsheet::TemporaryFile temporaryBeside(const std::filesystem::path& file)
{
    try {
        return {file.parent_path(), S_IRUSR | S_IWUSR};
    } catch (const std::filesystem::filesystem_error& error) {
        throw failure("无法写入文件 ", file, error.code().value());
    }
}

/// From the beginning, at most so many bytes.
std::string readAll(int file, std::size_t most, const std::filesystem::path& name)
{
    std::string bytes;
    std::array<char, 1 << 16> piece;
    while (bytes.size() < most) {
        const ssize_t got =
            ::pread(file, piece.data(), std::min(piece.size(), most - bytes.size()), std::ssize(bytes));
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0)
            throw failure("无法读取文件 ", name, errno);
        if (got == 0)
            break;
        bytes.append(piece.data(), static_cast<std::size_t>(got));
    }
    return bytes;
}

/// Holds an open file; false if somebody else does. File systems without locks let everybody.
bool hold(int file)
{
    return ::flock(file, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK;
}

/// A file of that name that is the descriptor's: it was not replaced or removed since it was opened.
bool stillNames(const std::filesystem::path& name, const struct stat& opened)
{
    struct stat now {};
    return ::lstat(name.c_str(), &now) == 0 && now.st_ino == opened.st_ino && now.st_dev == opened.st_dev;
}

} // namespace

std::unique_ptr<RecoveryCopy> RecoveryCopy::takeOver(const std::filesystem::path& file)
{
    struct stat found {};
    if (::lstat(file.c_str(), &found) != 0 || !S_ISREG(found.st_mode) || found.st_uid != ::geteuid())
        return nullptr;
    auto copy = std::make_unique<RecoveryCopy>(file);
    copy->m_isWritten = true;
    copy->m_held = ::open(file.c_str(), O_RDWR | O_CLOEXEC | O_NOFOLLOW);
    if (copy->m_held < 0)
        copy->m_held = ::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW);
    if (copy->m_held < 0)
        return errno == ENOENT ? nullptr : std::move(copy); // why is told when it is to be read
    if (!hold(copy->m_held) || ::fstat(copy->m_held, &found) != 0 || !stillNames(file, found))
        return nullptr;
    std::error_code ignored;
    copy->m_writtenAt = std::filesystem::last_write_time(file, ignored);
    copy->readNote();
    return copy;
}

RecoveryCopy::~RecoveryCopy()
{
    if (m_held >= 0)
        ::close(m_held);
}

void RecoveryCopy::readNote()
{
    try {
        const std::string beginning = readAll(m_held, longestNote, m_file);
        std::string_view lines = std::string_view(beginning).substr(0, noteSize(beginning));
        while (!lines.empty()) {
            const std::size_t end = lines.find('\n');
            readLine(lines.substr(0, end), m_note);
            lines.remove_prefix(end + 1);
        }
    } catch (const FileError&) {
        // why is told when the content is to be read
    }
}

std::vector<std::byte> RecoveryCopy::content() const
{
    if (m_held < 0)
        throw failure("无法读取文件 ", m_file, EACCES);
    const std::string bytes = readAll(m_held, std::string::npos, m_file);
    const auto* begin = reinterpret_cast<const std::byte*>(bytes.data());
    return {begin + noteSize(bytes), begin + bytes.size()};
}

void RecoveryCopy::write(const RecoveryNote& note, std::span<const std::byte> content)
{
    spreadsheet::TemporaryFile temporary = temporaryBeside(m_file);
    const std::string beginning = noteText(note);
    writeAll(temporary.handle(), beginning.data(), beginning.size(), m_file);
    writeAll(temporary.handle(), content.data(), content.size(), m_file);
    // Its lock goes with the file, and stays with the descriptor that is kept here.
    const int file = ::fcntl(temporary.handle(), F_DUPFD_CLOEXEC, 0);
    const bool isWhole = file >= 0 && ::fchmod(file, S_IRUSR | S_IWUSR) == 0 &&
                         (::fsync(file) == 0 || errno == EINVAL) && // some file systems have nothing to flush
                         ::rename(temporary.path().c_str(), m_file.c_str()) == 0;
    if (!isWhole) {
        const int error = errno;
        if (file >= 0)
            ::close(file);
        throw failure("无法写入文件 ", m_file, error);
    }
    temporary.release();
    if (const int former = std::exchange(m_held, file); former >= 0)
        ::close(former);
    m_isWritten = true;
    m_note = note;
    m_writtenAt = std::filesystem::file_time_type::clock::now();
}

void RecoveryCopy::setLeft(RecoveryNote::Left left)
{
    if (m_note.left == left)
        return;
    RecoveryNote note = m_note;
    note.left = left;
    const auto writtenAt = m_writtenAt;
    write(note, content());
    m_writtenAt = writtenAt;
    std::error_code ignored;
    std::filesystem::last_write_time(m_file, writtenAt, ignored);
}

void RecoveryCopy::remove()
{
    if (m_isWritten && ::unlink(m_file.c_str()) != 0 && errno != ENOENT)
        throw failure("无法删除文件 ", m_file, errno);
    m_isWritten = false;
    if (const int former = std::exchange(m_held, -1); former >= 0)
        ::close(former);
}

} // namespace selfreport
