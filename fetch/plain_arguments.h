#pragma once
#include "fetch/ledger_fetch.h"

#include <string>
#include <string_view>

namespace selfreport {

// A call hands its texts on as they are, and the procedure leaves blanks around them and letter widths out of
// account (docs/ledger.md). Whatever takes a call apart or looks its names up reads it the same way.

/// The same call without blanks around its codes and keys.
LedgerArguments plainArguments(LedgerArguments arguments);

/// The key that a text is of; without blanks around it if it is none that is known.
std::string plainFetchType(std::string_view fetchType);

} // namespace selfreport
