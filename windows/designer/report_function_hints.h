#pragma once

namespace spreadsheet {
class FunctionHints;
}

namespace selfreport {

struct ReportContext;

/// Tells the arguments of `Acct` and `REF_F` to whoever writes formulas, and what may be chosen for them:
/// fetch types and the names of stored reports. The database is asked when the first of them is wanted, once
/// for each kind, and nobody is told if it cannot answer.
/// @param context  must outlive the hints
void describeReportFunctions(spreadsheet::FunctionHints& hints, ReportContext& context);

} // namespace selfreport
