#pragma once
#include "explain/ledger_proof.h"

#include <string>

namespace selfreport {

/// A line for each identity, below a broken one its first rows and the statement that shows them all.
std::string proofText(const LedgerProof& proof);

/// Why it was not asked, its first rows and the statement that shows all.
std::string identityDetails(const ProvedIdentity& one);

/// The same for programs: one object.
std::string proofJson(const LedgerProof& proof);

/// "31 项中 29 项通过，1 项不符，1 项未查"
std::string proofSummary(const LedgerProof& proof);

} // namespace selfreport
