#pragma once
#include <filesystem>
#include <stdexcept>

namespace spreadsheet {

/// A file cannot be written; what() names it and says why.
struct FileError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// A file on its way: written under another name in the folder of its final one, and gone at the end unless
/// it was put in place.
class PendingFile {
public:
    /// Makes the file, empty. @throws FileError if the folder does not take it
    explicit PendingFile(std::filesystem::path finalName);
    ~PendingFile();
    PendingFile(const PendingFile&) = delete;
    PendingFile& operator=(const PendingFile&) = delete;

    /// Where to write.
    const std::filesystem::path& path() const { return m_temporary; }

    /// Gives the file its final name, once its content is on the disk. @throws FileError
    /// @param replaces  whether a file of that name may be replaced
    void putInPlace(bool replaces = true);

private:
    std::filesystem::path m_final;
    std::filesystem::path m_temporary;
};

} // namespace spreadsheet
