#pragma once
#include "windows/designer/RecoveryCopy.h"

#include <QTimer>

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace spreadsheet {
class Workbook;
}

namespace selfreport {

struct ReportContext;

/// Keeps an unsaved design in a copy of its own in the application folder: every minute and when its window
/// closes. Saving the report removes the copy. Those of the same report that windows left behind, by a crash
/// or by closing without saving, are offered until they are taken up or discarded.
class Recovery {
public:
    /// What is designed besides the workbook.
    struct Heading {
        std::string name;                      ///< of the report, as typed
        std::optional<ReportVersion> madeFrom; ///< the stored report that the design began with
    };
    /// The design as it is now counts as saved.
    /// @param report  id of the stored report; nothing for a new one
    Recovery(const ReportContext& context, const spreadsheet::Workbook& workbook,
             std::optional<std::int32_t> report, std::function<Heading()> heading);
    /// Copies that were offered here and are older than 30 days have been offered for the last time.
    ~Recovery();
    Recovery(const Recovery&) = delete;
    Recovery& operator=(const Recovery&) = delete;

    /// Told why the design cannot be kept, one Chinese sentence, and with an empty text that it can be again.
    std::function<void(const std::string& trouble)> tell;

    // What earlier windows left; the newest of it is offered.
    bool isOffering() const { return !m_offered.empty(); }
    bool isOfferAfterCrash() const;
    /// The user saw the question after a crash and has not decided.
    void putOff();
    /// Takes the copy up in place of what the workbook holds, which is kept in a copy of its own if it was
    /// unsaved. What the workbook holds then is unsaved. The other copies are offered by later windows.
    /// @throws FileError, ContentError: the copy is damaged, or the present design cannot be kept; nothing
    /// has
    ///         changed then
    Heading restore(spreadsheet::Workbook& workbook);
    /// Removes the copy. @throws FileError
    void discard();

    /// The design was saved as the report with this id, and counts as saved.
    void saved(std::int32_t report);
    /// The design is not the saved one.
    bool isChanged() const;
    /// Writes the copy if the design is not the saved one, and not the one that was kept last.
    /// @param closing  the window closes: it is no crash that leaves the copy behind
    /// @return  false if it could not be written, which was told
    bool keep(bool closing);

private:
    std::filesystem::path freshFile() const;
    void findLeftBehind();
    void noteSaved();
    void write(RecoveryNote::Left left);

    const spreadsheet::Workbook& m_workbook;
    std::function<Heading()> m_heading;
    std::filesystem::path m_folder; ///< empty: there is none to keep copies in
    std::string m_prefix;           ///< of this ledger's and user's files
    std::string m_report;
    std::unique_ptr<RecoveryCopy> m_own;
    std::vector<std::unique_ptr<RecoveryCopy>> m_offered; ///< the one on offer stands last
    std::optional<std::uint64_t> m_savedRevision;         ///< of the design; none: it was never stored
    std::string m_savedName;
    std::uint64_t m_keptRevision = 0;
    std::string m_keptName;
    std::string m_trouble; ///< as it was told last
    QTimer m_timer;
};

} // namespace selfreport
