#pragma once
#include <filesystem>

namespace spreadsheet {

/// A file with a name of its own in a folder, gone at the end. A lock tells other processes
/// that its owner lives; what a killed process left behind in the folder is finished or goes when another one
/// is made there.
class TemporaryFile {
public:
    /// @param mode  permissions, less what the process takes off
    /// @throws std::filesystem::filesystem_error  the folder does not take it
    TemporaryFile(const std::filesystem::path& folder, unsigned mode);
    /// A second name for a file that is there; a copy of it where the file system has no second names.
    /// @throws std::filesystem::filesystem_error
    TemporaryFile(const std::filesystem::path& folder, const std::filesystem::path& original);
    ~TemporaryFile();
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    const std::filesystem::path& path() const { return m_path; }
    int handle() const { return m_handle; } ///< open for reading and writing, if it was made empty
    /// The file stays under its name.
    void release() { m_path.clear(); }

private:
    std::filesystem::path m_path;
    int m_handle = -1;
};

} // namespace spreadsheet
