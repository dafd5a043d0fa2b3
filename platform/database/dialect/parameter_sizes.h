#pragma once
#include "platform/database/session/DatabaseError.h"

#include <optional>

namespace selfreport {

struct ProcedureCall;

/// Why the call cannot be sent: the name of the first parameter whose text is longer than its size, and both
/// lengths. Drivers cut such a text without a word, and a cut query yields wrong amounts.
std::optional<DatabaseError> oversizedParameter(const ProcedureCall& call);

} // namespace selfreport
