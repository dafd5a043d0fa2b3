#pragma once
#include "reports/report_saving.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>

namespace spreadsheet {
class Workbook;
}

namespace selfreport {

class DatabaseAccess;

/// What became of a report that could not be handled as wanted; what() is the sentence for the user. A failed
/// opening is DatabaseNotOpened, a commit whose outcome is told is CommitFailed.
struct ReportError : std::runtime_error {
    using std::runtime_error::runtime_error;
};
struct ReportMissing : ReportError {
    ReportMissing()
        : ReportError("报表不存在!")
    {
    }
};
struct ReportNotSaved : ReportError {
    using ReportError::ReportError;
};
struct ReportNotDeleted : ReportError {
    using ReportError::ReportError;
};

/// Reports as rows of tblCWSelfReport. Each operation opens the database and closes it, whatever ends it; it
/// throws what its kind above says, DatabaseError if reading fails, and tells nobody. The waiting user can
/// cancel each: WorkCancelled where it reads; a save or deletion says what became of the report.
class ReportStore {
public:
    /// @param user  id of the one who saves
    ReportStore(DatabaseAccess& database, std::string user);

    /// Stores a new report and its menu item, both or neither.
    /// @param name        as typed; the menu item takes it without blanks at its ends
    /// @param remembered  is given what stands in the database then
    /// @param pageSetup   of the new row; without it margins, orientation, header and footer stay null
    void insert(const std::string& name, const spreadsheet::Workbook& workbook, RememberedReport& remembered,
                const std::optional<StoredPageSetup>& pageSetup = std::nullopt);

    /// Loads a report: content, and on every sheet margins, orientation, header and footer with their
    /// placeholders filled from the settings. Returns its name. The workbook stays as it was if it fails.
    /// @param remembered  is given what was read, of a row with content that cannot be read too
    std::string load(std::int32_t id, spreadsheet::Workbook& workbook, RememberedReport& remembered);

    /// Replaces the remembered row by the name and content given, keeping its page set-up. A row that is no
    /// longer what is remembered is left alone: that is the result.
    std::optional<SaveConflict> replace(const std::string& name, const spreadsheet::Workbook& workbook,
                                        RememberedReport& remembered);

    /// Stores a report that was deleted meanwhile under its id again, with its menu item and page set-up.
    std::optional<SaveConflict> restore(const std::string& name, const spreadsheet::Workbook& workbook,
                                        RememberedReport& remembered);

    /// Whether a stored report has that name.
    bool hasName(const std::string& name);

    /// Deletes a row and its menu item, both or neither.
    void remove(std::int32_t id);

private:
    using Write = std::function<std::optional<SaveConflict>(Connection&, RememberedReport&,
                                                            const ReportToSave&)>; ///< owns what it uses
    std::optional<SaveConflict> save(const std::string& name, const spreadsheet::Workbook& workbook,
                                     RememberedReport& remembered, const Write& write);
    std::optional<SaveConflict> attempt(int number, const ReportToSave& report, RememberedReport& remembered,
                                        const Write& write);

    DatabaseAccess& m_database;
    std::string m_user;
};

} // namespace selfreport
