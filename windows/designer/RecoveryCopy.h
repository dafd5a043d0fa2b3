#pragma once
#include "reports/report_version.h"

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace selfreport {

/// What a recovery copy is a copy of.
struct RecoveryNote {
    enum class Left {
        open,      ///< its window was open when it was written: a crash, if that window is gone
        closed,    ///< its window was closed
        lastOffer, ///< it is old, and was offered once more
    };
    Left left = Left::open;
    std::string name;                      ///< of the report, as typed
    std::optional<ReportVersion> madeFrom; ///< the stored report that the design began with
};

/// An unsaved design in a file that only its owner may read. While this object lives no other window, of
/// whatever process, takes the file for left behind; the lock ends with the process.
class RecoveryCopy {
public:
    /// One that is still to be written.
    explicit RecoveryCopy(std::filesystem::path file)
        : m_file(std::move(file))
    {
    }
    /// Takes over a file that nobody holds; null if its owner lives, or it is no copy of this user's.
    static std::unique_ptr<RecoveryCopy> takeOver(const std::filesystem::path& file);
    /// Lets the file go; it stays.
    ~RecoveryCopy();
    RecoveryCopy(const RecoveryCopy&) = delete;
    RecoveryCopy& operator=(const RecoveryCopy&) = delete;

    bool isWritten() const { return m_isWritten; }
    const RecoveryNote& note() const { return m_note; }
    /// When the design was written.
    std::filesystem::file_time_type writtenAt() const { return m_writtenAt; }
    /// The workbook. @throws FileError if the file cannot be read
    std::vector<std::byte> content() const;

    /// Writes the file, or replaces it by one that is whole. @throws FileError; a former file stays then
    void write(const RecoveryNote& note, std::span<const std::byte> content);
    /// Notes how it was left; when it was written stays. @throws FileError
    void setLeft(RecoveryNote::Left left);
    /// @throws FileError
    void remove();

private:
    void readNote();

    std::filesystem::path m_file;
    int m_held = -1; ///< descriptor of the locked file
    bool m_isWritten = false;
    RecoveryNote m_note;
    std::filesystem::file_time_type m_writtenAt;
};

} // namespace selfreport
