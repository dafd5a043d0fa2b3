#pragma once
#include <QTimer>

#include <cstdint>
#include <filesystem>
#include <optional>

namespace spreadsheet {
class Workbook;
}

namespace selfreport {

/// Keeps an unsaved design in a file of the application folder: every minute and when the designer closes.
/// Saving the report removes the file. One that is there when a designer opens on the same report is what a
/// crash, or a closing without saving, left behind.
class Recovery {
public:
    /// @param report  id of the stored report; nothing for a new one
    Recovery(const spreadsheet::Workbook& workbook, std::optional<std::int32_t> report);

    /// Whether an earlier designer left a file.
    bool leftBehind() const;
    /// Loads that file in place of what the workbook holds; what it holds then is unsaved.
    /// @throws ContentError if it is damaged
    void restore(spreadsheet::Workbook& workbook);
    /// The workbook is as the database or the user's own file holds it: what changes from now on is unsaved.
    void saved(std::optional<std::int32_t> report);
    /// Removes the file.
    void forget();
    /// Writes the file if something changed since it was written last. Without an application folder, or one
    /// that cannot be written, nothing is kept.
    void keep();

private:
    std::filesystem::path file() const;

    const spreadsheet::Workbook& m_workbook;
    std::optional<std::int32_t> m_report;
    std::optional<std::uint64_t> m_savedRevision;
    std::uint64_t m_keptRevision = 0;
    QTimer m_timer;
};

} // namespace selfreport
