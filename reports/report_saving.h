#pragma once
#include "reports/page_setup.h"
#include "reports/report_version.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace selfreport {

class Connection;

// Writing reports into the database, each in one transaction: afterwards row and menu item are as before or
// both as wanted. All throw DatabaseError and tell in it what became of the report; RepeatableError if
// another session was in the way and the same can be tried again on another connection.

/// A stored report as its designer remembers it.
struct RememberedReport {
    std::int32_t id = 0;
    std::optional<ReportVersion> version; ///< that was loaded or saved last; nothing: none could be read
    StoredPageSetup pageSetup{};          ///< of the row then
    std::optional<ReportVersion>
        uncertain{};               ///< of a save since then of which nobody knows whether it was done
    bool isOfLaterProgram = false; ///< its content could not be read because a later program saved it
    std::vector<std::string>
        unreadable{}; ///< formulas that were left out of what was loaded, a sentence each
};

/// What a designer puts into a row.
struct ReportToSave {
    std::string name;    ///< as typed
    std::string savedBy; ///< id of the user
    std::span<const std::byte> content;
    /// Told what will stand in the database, before it is committed.
    std::function<void(const RememberedReport&)> beforeCommit{};
};

/// What stands under a report's id instead of what is remembered.
struct SaveConflict {
    enum class Kind {
        savedMeanwhile, ///< another version of it
        deleted,        ///< nothing
        otherReport     ///< a report of another name, or several rows
    };
    Kind kind;
    std::optional<ReportVersion> found{}; ///< not of a deleted one
    std::string savedBy{};                ///< name of the user who saved it, else the id
};

/// Stores a new report with its menu item, under the next free id.
/// @param remembered  is given what stands there then
/// @param pageSetup   nothing: the row's columns stay null
void storeReport(Connection& connection, RememberedReport& remembered, const ReportToSave& report,
                 const std::optional<StoredPageSetup>& pageSetup);

/// Replaces the remembered row, keeping the page set-up that it has now, and remembers what stands there
/// then. Nothing is changed if something else stands there: that is the result.
std::optional<SaveConflict> replaceReport(Connection& connection, RememberedReport& remembered,
                                          const ReportToSave& report);

/// Stores a deleted report under its id again, with the page set-up that is remembered, and with a menu item
/// if that is gone too. Nothing is changed if the id is in use: that is the result.
std::optional<SaveConflict> restoreReport(Connection& connection, RememberedReport& remembered,
                                          const ReportToSave& report);

/// Whether the remembered row is this report's still, saved by somebody else or not, or gone. Takes its lock
/// in the transaction under way.
bool isRowOf(Connection& connection, const RememberedReport& remembered);

/// Deletes a report's row and its menu item. Of a row that is gone the menu item goes all the same.
/// @throws std::runtime_error if the row is gone
void removeReport(Connection& connection, std::int32_t id);

} // namespace selfreport
