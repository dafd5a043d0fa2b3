#pragma once
#include "fetch/inter_report_fetch.h"
#include "fetch/ledger_fetch.h"

namespace selfreport {

// One fetch over the shared connection, which it opens and closes. A step that fails is left out and its
// reason kept; nothing is shown but the box of a failed opening.

/// An empty account expression gives no amount and leaves the connection open.
LedgerAnswer changeAcctInfo(const LedgerArguments& arguments);

ReferenceAnswer changeREF_FInfo(const ReportReference& reference);

} // namespace selfreport
