#include "spreadsheet/files/PendingFile.h"

#include <cerrno>
#include <fcntl.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace spreadsheet {

namespace {

std::string reasonOf(int error)
{
    switch (error) {
    case ENOENT:
    case ENOTDIR:
        return "文件夹不存在";
    case EACCES:
    case EPERM:
        return "没有写权限";
    case EROFS:
        return "只读";
    case EISDIR:
        return "同名的文件夹已存在";
    case EEXIST:
        return "文件已存在";
    case ENOSPC:
    case EDQUOT:
        return "磁盘已满";
    default:
        return std::generic_category().message(error);
    }
}

[[noreturn]] void refuse(const std::filesystem::path& file, int error)
{
    throw FileError("无法写入文件 " + file.string() + ": " + reasonOf(error));
}

/// Content and name must not reach the disk in the wrong order, or a power cut leaves an empty file.
void flushToDisk(const std::filesystem::path& temporary, const std::filesystem::path& final)
{
    const int file = open(temporary.c_str(), O_RDONLY | O_CLOEXEC);
    if (file < 0)
        refuse(final, errno);
    const int error = fsync(file) == 0 ? 0 : errno;
    close(file);
    if (error != 0 && error != EINVAL) // some file systems have nothing to flush
        refuse(final, error);
}

} // namespace

PendingFile::PendingFile(std::filesystem::path finalName)
    : m_final(std::move(finalName))
{
    std::error_code ignored;
    if (std::filesystem::is_directory(m_final, ignored))
        refuse(m_final, EISDIR);
    static int number = 0; // files are written on one thread
    const std::string name = "." + m_final.filename().string() + "." + std::to_string(getpid()) + "-" +
                             std::to_string(++number) + ".part";
    m_temporary = m_final.parent_path() / name;
    const int file = open(m_temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (file < 0)
        refuse(m_final, errno);
    close(file);
}

PendingFile::~PendingFile()
{
    unlink(m_temporary.c_str());
}

void PendingFile::putInPlace(bool replaces)
{
    flushToDisk(m_temporary, m_final);
    // link, unlike rename, never replaces; the temporary name goes at the end.
    const int result =
        replaces ? rename(m_temporary.c_str(), m_final.c_str()) : link(m_temporary.c_str(), m_final.c_str());
    if (result != 0)
        refuse(m_final, errno);
}

} // namespace spreadsheet
