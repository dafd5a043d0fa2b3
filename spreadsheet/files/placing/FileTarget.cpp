#include "spreadsheet/files/placing/FileTarget.h"

#include "failures/failure_text.h"

#include <cerrno>
#include <fcntl.h>
#include <fstream>
#include <string_view>
#include <system_error>
#include <unistd.h>

namespace spreadsheet {

namespace {

constexpr int mostLinks = 40; // as many as the system itself follows
constexpr mode_t anyMayWrite = S_IWUSR | S_IWGRP | S_IWOTH;

/// The name that the last of a chain of links gives to a file that is not there.
std::filesystem::path behindLinks(const std::filesystem::path& named)
{
    std::filesystem::path file = named;
    for (int links = 0; links < mostLinks; ++links) {
        std::error_code noLink;
        const std::filesystem::path next = std::filesystem::read_symlink(file, noLink);
        if (noLink)
            return file;
        file = file.parent_path() / next; // an absolute one stands for itself
    }
    refuseToWrite(named, ELOOP);
}

void requireWritable(const FileTarget& target)
{
    if ((target.status.st_mode & anyMayWrite) == 0)
        refuseToWrite(target.named, "文件是只读的");
    if (faccessat(AT_FDCWD, target.file.c_str(), W_OK, AT_EACCESS) != 0)
        refuseToWrite(target.named, errno);
}

/// Databases of the embedded provider, whatever their names.
bool isDatabase(const std::filesystem::path& file)
{
    constexpr char text[] = "SQLite format 3";
    const std::string_view magic(text, sizeof text); // its zero included
    std::string head(magic.size(), ' ');
    std::ifstream stream(file, std::ios::binary);
    return stream.read(head.data(), static_cast<std::streamsize>(head.size())) && head == magic;
}

std::filesystem::path folderOf(const FileTarget& target)
{
    return target.file.has_parent_path() ? target.file.parent_path() : ".";
}

} // namespace

void refuseToWrite(const std::filesystem::path& file, const std::string& reason)
{
    throw FileError("无法写入文件 " + file.string() + ": " + reason);
}

void refuseToWrite(const std::filesystem::path& file, int error)
{
    refuseToWrite(file, failures::reasonOfErrno(error));
}

FileTarget fileTargetOf(const std::filesystem::path& named, Replacing replacing)
{
    FileTarget target;
    target.named = named;
    target.file = named;
    if (stat(named.c_str(), &target.status) != 0) {
        if (errno != ENOENT)
            refuseToWrite(named, errno);
        target.file = behindLinks(named);
        if (!target.file.has_filename())
            refuseToWrite(named, "没有给出文件名");
        return target;
    }
    if (S_ISDIR(target.status.st_mode))
        refuseToWrite(named, EISDIR);
    requireWritable(target);
    if (!S_ISREG(target.status.st_mode)) {
        target.kind = FileTarget::Kind::special;
        return target;
    }
    target.kind = FileTarget::Kind::regular;
    std::error_code error;
    target.file = std::filesystem::canonical(named, error);
    if (error)
        refuseToWrite(named, error.value());
    if (replacing == Replacing::documents && isDatabase(target.file))
        refuseToWrite(named, "这是账套数据库，不能替换");
    return target;
}

bool isSameTarget(const FileTarget& one, const FileTarget& other)
{
    if (one.kind == FileTarget::Kind::fresh && other.kind == FileTarget::Kind::fresh) {
        std::error_code error;
        return one.file.filename() == other.file.filename() &&
               std::filesystem::equivalent(folderOf(one), folderOf(other), error);
    }
    return one.kind == other.kind && one.status.st_dev == other.status.st_dev &&
           one.status.st_ino == other.status.st_ino;
}

} // namespace spreadsheet
