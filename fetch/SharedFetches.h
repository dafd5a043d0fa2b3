#pragma once
#include "fetch/inter_report_fetch.h"
#include "fetch/ledger_fetch.h"
#include "spreadsheet/formula/CustomFunction.h"

#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <vector>

namespace selfreport {

/// The answers of one recalculation: equal ledger fetches are made once, referenced reports are loaded and
/// evaluated once, and what a wave of cells needs is fetched in batches before the wave is evaluated. The
/// values are the same as with one fetch for each call.
class SharedFetches {
public:
    /// @param tellsKinds  see ReportEvaluation::setKindsTold
    SharedFetches(DatabaseAccess& database, bool tellsKinds);
    ~SharedFetches();
    SharedFetches(const SharedFetches&) = delete;
    SharedFetches& operator=(const SharedFetches&) = delete;

    /// Fetches what the wave's `Acct` and `REF_F` calls need and tells each call's value. What cannot be
    /// fetched here is left to the calls themselves. @throws WorkCancelled
    void prepare(std::span<spreadsheet::PreparedCall> calls);
    /// The same for `Acct` calls only.
    void prepareLedger(std::span<spreadsheet::PreparedCall> calls);

    /// The open connection of the waves, for what follows them; null if there is none.
    std::unique_ptr<Connection> takeConnection();

    std::shared_ptr<const LedgerFetch> ledger(const LedgerArguments& arguments);
    std::shared_ptr<const ReferenceFetch> reference(const ReportReference& reference);

private:
    struct LoadedReport;

    void fetchLedgerAnswers(const std::set<LedgerArguments>& wanted);
    void loadReports(const std::set<std::string>& names, std::set<LedgerArguments> alsoWanted);
    std::map<std::string, std::optional<std::vector<std::byte>>>
    contentsOf(const std::set<std::string>& names);
    std::unique_ptr<Connection>& waveConnection();

    DatabaseAccess& m_database;
    bool m_tellsKinds;
    std::unique_ptr<Connection> m_connection; ///< of the waves; none before the first one
    std::map<LedgerArguments, std::shared_ptr<const LedgerFetch>> m_ledger;
    std::map<ReportReference, std::shared_ptr<const ReferenceFetch>> m_references;
    std::map<std::string, std::unique_ptr<LoadedReport>, std::less<>> m_reports;
};

} // namespace selfreport
