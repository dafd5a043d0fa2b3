#pragma once
#include "state/report_procedures.h"
#include "tests/fetch/TestLedger.h"

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace selfreport::torture {

/// A ledger with a report of somebody else, on which one way of saving is tried.
struct SavedReports {
    SavedReports();

    /// Goes on through a server: the report is remembered as that gives it.
    void goThrough(const std::string& connectionString);
    /// The same, and the session lies in the pool.
    void loadThrough(const std::string& connectionString);

    /// Every row with its first cell and its menu item: "1甲表:旧=RSelf1甲表 2…".
    std::string stored() const;
    /// What the embedded database finds wrong with its file; "" if it is whole.
    std::string damage() const;

    const test::TestLedger& ledger() const { return m_ledger; }
    test::TestLedger& ledger() { return m_ledger; }

    RememberedReport remembered; ///< of report 1, "甲表"

private:
    test::TestLedger m_ledger;
};

/// One way of saving, with what stands in the database before and after it.
struct WayOfSaving {
    const char* name;
    std::function<void(SavedReports&)> prepare;
    std::function<bool(SavedReports&)> save; ///< whether the user is told that it worked
    const char* before;
    const char* after;
};

const std::vector<WayOfSaving>& waysOfSaving();

/// That the database is as before or as after, row and item together, and that the boxes told the truth.
void expectWholeAndTold(const WayOfSaving& way, SavedReports& reports, bool done);

} // namespace selfreport::torture
