#pragma once
#include "fetch/ledger_fetch.h"

#include <span>
#include <vector>

namespace selfreport {

class LedgerQuestions;

// A year or period that a call leaves blank means what docs/ledger.md says; the ledger knows what that is.

/// Whether a call leaves a year or period to the procedure.
bool hasBlanks(const LedgerArguments& arguments);

/// Asks what the procedure takes the blanks of the calls for.
void addBlanks(LedgerQuestions& questions, std::span<const LedgerArguments> calls);

/// The arguments as the procedure takes them. What the ledger did not tell, or was not asked, stays blank.
std::vector<LedgerArguments> withBlanksFilled(const LedgerQuestions& answers,
                                              std::vector<LedgerArguments> calls);

} // namespace selfreport
