#pragma once
#include <string>
#include <vector>

namespace selfreport {

/// A figure of a demo report beside the same figure by a query of its own.
struct DemoFigure {
    std::string report; ///< name of the stored report
    std::string figure; ///< "资产总计"
    double shown = 0;   ///< as the report computes it
    double queried = 0; ///< by a query over the ledger's tables or vouchers, not through the ledger procedure

    /// Equal to half a hundredth.
    bool agrees() const;
};

/// Runs every demo report and sets its figures beside separate queries.
/// @throws ReportRunError if a report is missing or cannot be run, DatabaseError if a query fails
std::vector<DemoFigure> demoFigures(const std::string& connectionString);

} // namespace selfreport
