#pragma once
#include "explain/call_parts.h"
#include "fetch/inter_report_fetch.h"
#include "fetch/RunRecord.h"
#include "spreadsheet/formula/CustomFunction.h"

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace spreadsheet {
class Workbook;
}

namespace selfreport {

class DatabaseAccess;

/// A row of what a figure is made of. It adds factor × amount to the row above it.
struct DrillNode {
    std::string item;  ///< "1002 银行存款"; as the ledger has it: long, with line breaks, or empty
    std::string basis; ///< what it comes from: "Sheet1!C7", "期末余额，2025 年 1–3 期"
    double factor = 1;
    std::optional<double> amount{}; ///< nothing: there is none, the remark says why
    std::string remark{};           ///< what is to be known of it; "" mostly
    bool isFault = false;           ///< a difference, or an amount that is not known: shown in red

    // What it opens into; none of them: a leaf.
    std::optional<LedgerArguments> call{};
    std::optional<ReportReference> reference{};

    std::optional<spreadsheet::CallPlace> cell{}; ///< where it is written
    RunRecord::FollowedPlace place{};             ///< where that cell has come to lie since
    std::string report{};                         ///< of the cell; "": the one that was asked for
    bool isUnknown = false;                       ///< the call named what there was not when it was made

    bool isOpen = false;          ///< not if that failed, though a part says why
    std::vector<PartsWay> ways{}; ///< that the call offers, once it was opened
    std::size_t way = 0;          ///< the one that it was opened by
    std::int64_t page = 1;        ///< of vouchers
    std::int64_t pages = 1;
    std::map<std::int64_t, double> balances{}; ///< behind the pages that were seen
    std::vector<DrillNode> parts{};

    // The foot of the parts; nothing if they are no sum.
    std::optional<double> sum{}, whole{};

    bool canOpen() const { return call.has_value() || reference.has_value(); }
    /// Whole less sum; 0 without them.
    double difference() const;
    bool isWhole() const; ///< the difference is below half a fen
};

/// What the window and the command line say above the tree.
struct DrillHead {
    std::string report, cell, formula;
    std::string shown;           ///< as the sheet shows it
    std::optional<double> value; ///< exact; nothing if it is no number
    std::string remark;          ///< why there is no sum; "" if there is
    bool ledgerHasChanged = false;
};

/// What a figure is made of, level by level. Opening a row asks the database; what fails of that stands in
/// the row, and the tree stays.
class DrillTree {
public:
    /// @param record  of the workbook's last calculation; neither is used any more behind the constructor
    DrillTree(const std::string& report, const spreadsheet::Workbook& workbook, const RunRecord& record,
              const spreadsheet::CallPlace& cell);

    const DrillHead& head() const { return m_head; }
    DrillNode& root() { return m_root; }
    const DrillNode& root() const { return m_root; }

    /// Writes the names of accounts behind their codes. Where the chart cannot be read these stay alone.
    /// @throws WorkCancelled
    void nameAccounts(DatabaseAccess& database);

    /// Opens a row by one of its ways, or turns to a page of its vouchers. @throws WorkCancelled
    void open(DrillNode& node, DatabaseAccess& database, std::size_t way = 0, std::int64_t page = 1);

private:
    void openCall(DrillNode& node, DatabaseAccess& database, std::size_t way, std::int64_t page);
    void openReference(DrillNode& node, DatabaseAccess& database);
    void nameParts(DrillNode& node) const;

    DrillHead m_head;
    DrillNode m_root;
    std::shared_ptr<const AccountChart> m_chart; ///< once it was read
};

} // namespace selfreport
