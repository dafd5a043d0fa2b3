#pragma once
#include "platform/database/session/DatabaseError.h"

#include <optional>

namespace selfreport {

struct ProcedureCall;

/// Why the call cannot be sent: a parameter's text is longer than its size, which drivers cut without a word,
/// or holds a character that the server would replace. Either yields wrong amounts.
/// @param codePage  of the database; 0 if it is not known
std::optional<DatabaseError> unfitParameter(const ProcedureCall& call, int codePage);

/// Whether no code page can lack anything of the call's texts.
bool hasOnlyAscii(const ProcedureCall& call);

} // namespace selfreport
