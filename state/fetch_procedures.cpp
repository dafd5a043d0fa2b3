#include "state/fetch_procedures.h"

#include "state/shared_state.h"

namespace selfreport {

LedgerAnswer changeAcctInfo(const LedgerArguments& arguments)
{
    return fetchFromLedger(sharedContext.database, arguments);
}

ReferenceAnswer changeREF_FInfo(const ReportReference& reference)
{
    return fetchFromReport(sharedContext.database, reference);
}

} // namespace selfreport
