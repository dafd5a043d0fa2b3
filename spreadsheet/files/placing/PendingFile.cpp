#include "spreadsheet/files/placing/PendingFile.h"

#include "spreadsheet/files/placing/placing_journal.h"
#include "spreadsheet/files/placing/special_file.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <string>
#include <system_error>
#include <unistd.h>
#include <vector>

namespace spreadsheet {

// A user's file must be the old one or the new one, whatever ends the program in between: content is written
// beside it, brought to the disk, and takes its name in one step. Several files have no such step, so the
// order of their renames is written down first, and whoever comes next finishes it.

namespace {

constexpr unsigned ownerOnly = 0600; // until the file has the permissions of the one that it replaces
constexpr unsigned everybody = 0666; // less what the process takes off
constexpr mode_t permissions = 07777;

std::filesystem::path folderFor(const FileTarget& target)
{
    std::error_code error;
    if (target.kind != FileTarget::Kind::special)
        return target.file.has_parent_path() ? target.file.parent_path() : ".";
    const std::filesystem::path temporary = std::filesystem::temp_directory_path(error);
    return error ? std::filesystem::path("/tmp") : temporary;
}

/// @param how  what the file's making takes beside the folder
template <class How>
std::unique_ptr<TemporaryFile> temporaryFor(const FileTarget& target, const How& how)
{
    try {
        return std::make_unique<TemporaryFile>(folderFor(target), how);
    } catch (const std::filesystem::filesystem_error& error) {
        refuseToWrite(target.named, error.code().value());
    }
}

/// Owner and permissions as they were. Only the superuser may give files away; who may not keeps the
/// permissions at least.
void takeOver(const FileTarget& target, int file)
{
    const struct stat& former = target.status;
    mode_t mode = former.st_mode & permissions;
    if (fchown(file, former.st_uid, former.st_gid) != 0) {
        mode &= ~static_cast<mode_t>(S_ISUID);
        if (fchown(file, static_cast<uid_t>(-1), former.st_gid) != 0)
            mode &= ~static_cast<mode_t>(S_ISGID);
    }
    if (fchmod(file, mode) != 0)
        refuseToWrite(target.named, errno);
}

} // namespace

PendingFile::PendingFile(const std::filesystem::path& finalName, Replacing replacing)
    : m_target(fileTargetOf(finalName, replacing))
    , m_temporary(temporaryFor(m_target, m_target.kind == FileTarget::Kind::fresh ? everybody : ownerOnly))
{
}

PendingFile::~PendingFile() = default;

void PendingFile::write(std::span<const std::byte> bytes)
{
    while (!bytes.empty()) {
        const ssize_t written = ::write(m_temporary->handle(), bytes.data(), bytes.size());
        if (written >= 0)
            bytes = bytes.subspan(static_cast<std::size_t>(written));
        else if (errno != EINTR)
            refuseToWrite(m_target.named, errno);
    }
}

void PendingFile::writeAt(std::size_t place, std::span<const std::byte> bytes)
{
    while (!bytes.empty()) {
        const ssize_t written =
            ::pwrite(m_temporary->handle(), bytes.data(), bytes.size(), static_cast<off_t>(place));
        if (written < 0 && errno != EINTR)
            refuseToWrite(m_target.named, errno);
        const std::size_t done = written < 0 ? 0 : static_cast<std::size_t>(written);
        bytes = bytes.subspan(done);
        place += done;
    }
}

/// Content and name must not reach the disk in the wrong order, or a power cut leaves an empty file. What was
/// written by name may be another file than the one that was made here.
void PendingFile::finish()
{
    const int file = open(path().c_str(), O_RDONLY | O_CLOEXEC);
    if (file < 0)
        refuseToWrite(m_target.named, errno);
    int error = fsync(file) == 0 ? 0 : errno;
    if (error == EINVAL) // some file systems have nothing to flush
        error = 0;
    try {
        if (error == 0 && m_target.kind == FileTarget::Kind::regular)
            takeOver(m_target, file);
    } catch (const FileError&) {
        close(file);
        throw;
    }
    if (close(file) != 0 && error == 0)
        error = errno;
    if (error != 0)
        refuseToWrite(m_target.named, error);
}

void PendingFile::keepFormer()
{
    if (m_target.kind == FileTarget::Kind::regular)
        m_former = temporaryFor(m_target, m_target.file);
}

/// Gives the name where the former file is left if it cannot be put back.
std::string PendingFile::putBack()
{
    if (m_target.kind == FileTarget::Kind::fresh)
        unlink(m_target.file.c_str());
    if (!m_former || std::rename(m_former->path().c_str(), m_target.file.c_str()) == 0)
        return {};
    const std::string left = m_former->path().string();
    m_former->release();
    return left;
}

void PendingFile::rename()
{
    if (m_target.kind == FileTarget::Kind::special)
        writeToSpecialFile(m_target, path());
    else if (std::rename(path().c_str(), m_target.file.c_str()) != 0)
        refuseToWrite(m_target.named, errno);
}

/// Unlike renaming, linking never replaces.
void PendingFile::linkAsNew()
{
    if (link(path().c_str(), m_target.file.c_str()) != 0)
        refuseToWrite(m_target.named, errno);
}

void PendingFile::putInPlace(bool replaces)
{
    finish();
    if (replaces)
        rename();
    else
        linkAsNew();
}

PendingFile& PendingFiles::add(const std::filesystem::path& finalName)
{
    PendingFile& file = m_files.emplace_back(finalName);
    for (const PendingFile& other : m_files)
        if (&other != &file && isSameTarget(other.m_target, file.m_target))
            refuseToWrite(finalName, "同一个文件不能写两种内容");
    return file;
}

/// A process that is killed between two files leaves the rest to the next one. Null where there is no rest.
std::unique_ptr<TemporaryFile> PendingFiles::journalOf(std::span<PendingFile* const> order)
{
    std::vector<Placing> placings;
    for (const PendingFile* file : order)
        if (file->m_target.kind != FileTarget::Kind::special)
            placings.push_back({file->path(), file->m_target.file, fileState(file->m_target.file)});
    if (placings.size() < 2)
        return nullptr;
    const FileTarget& target = order.front()->m_target;
    auto journal = temporaryFor(target, ownerOnly);
    const std::string text = journalText(placings);
    if (::write(journal->handle(), text.data(), text.size()) != static_cast<ssize_t>(text.size()) ||
        fsync(journal->handle()) != 0)
        refuseToWrite(target.named, errno);
    return journal;
}

void PendingFiles::putInPlace()
{
    for (PendingFile& file : m_files)
        file.finish();
    // What was written to a pipe cannot be taken back: pipes come last.
    std::vector<PendingFile*> order;
    for (PendingFile& file : m_files)
        order.push_back(&file);
    std::ranges::stable_partition(
        order, [](const PendingFile* file) { return file->m_target.kind != FileTarget::Kind::special; });
    for (std::size_t at = 0; at + 1 < order.size(); ++at)
        order[at]->keepFormer();
    const std::unique_ptr<TemporaryFile> journal = journalOf(order);
    std::size_t placed = 0;
    try {
        for (; placed < order.size(); ++placed)
            order[placed]->rename();
    } catch (const FileError& error) {
        std::string left;
        while (placed > 0)
            if (const std::string file = order[--placed]->putBack(); !file.empty())
                left += "；原来的文件没有能换回来，留在 " + file;
        throw FileError(error.what() + left);
    }
}

} // namespace spreadsheet
