#pragma once
#include "fetch/ledger_fetch.h"

namespace selfreport {

class LedgerQuestions;

// A year or period that a call leaves blank means what docs/ledger.md says; the ledger knows what that is.

/// Whether a call leaves a year or period to the procedure.
bool hasBlanks(const LedgerArguments& arguments);

/// Asks what the procedure takes the blanks of a call for.
void addBlanks(LedgerQuestions& questions, const LedgerArguments& arguments);

/// The arguments as the procedure takes them. What the ledger did not tell, or was not asked, stays blank.
LedgerArguments withBlanksFilled(const LedgerQuestions& answers, LedgerArguments arguments);

} // namespace selfreport
