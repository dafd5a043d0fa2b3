#pragma once
#include "spreadsheet/files/placing/FileTarget.h"
#include "spreadsheet/files/placing/TemporaryFile.h"

#include <cstddef>
#include <deque>
#include <memory>
#include <span>
#include <string>
#include <string_view>

namespace spreadsheet {

/// A file on its way: written under another name and gone at the end unless it was put in place. What stands
/// under the final name stays until then and is replaced by a file of the same owner and permissions; a pipe,
/// device or socket is never replaced but written to.
class PendingFile {
public:
    /// Makes the file, empty. @throws FileError if there is something that may not be written, or the folder
    /// does not take it
    explicit PendingFile(const std::filesystem::path& finalName, Replacing replacing = Replacing::documents);
    ~PendingFile();
    PendingFile(const PendingFile&) = delete;
    PendingFile& operator=(const PendingFile&) = delete;

    /// Where to write, for those who need a name.
    const std::filesystem::path& path() const { return m_temporary->path(); }
    /// Appends to the content. @throws FileError
    void write(std::span<const std::byte> bytes);
    void write(std::string_view text) { write(std::as_bytes(std::span(text))); }
    /// Writes at a place, over what stands there or behind the end. @throws FileError
    void writeAt(std::size_t place, std::span<const std::byte> bytes);

    /// Gives the file its final name, once its content is on the disk. @throws FileError, and what stood
    /// there is as it was
    /// @param replaces  whether a file of that name may be replaced
    void putInPlace(bool replaces = true);

private:
    friend class PendingFiles;

    void finish();
    void keepFormer();
    std::string putBack();
    void rename();
    void linkAsNew();

    FileTarget m_target;
    std::unique_ptr<TemporaryFile> m_temporary;
    std::unique_ptr<TemporaryFile> m_former; ///< what stood under the final name
};

/// Files that belong together: they are put in place together or not at all.
class PendingFiles {
public:
    /// One more. @throws FileError as PendingFile, and if one of the others leads to the same file
    PendingFile& add(const std::filesystem::path& finalName);

    /// Puts all in place once all are on the disk. If one cannot be, those before it are put back; if the
    /// process is killed in between, the next one that writes into the folder of the first finishes it.
    /// @throws FileError
    void putInPlace();

private:
    static std::unique_ptr<TemporaryFile> journalOf(std::span<PendingFile* const> order);

    std::deque<PendingFile> m_files;
};

} // namespace spreadsheet
