#pragma once
#include "platform/database/session/ProcedureCall.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace selfreport {

// What a call hands to a procedure that the embedded database runs itself.

/// @throws DatabaseError if the call lacks it
const std::string& parameter(const ProcedureCall& call, std::string_view name);

/// Blanks at the ends of a parameter mean nothing.
std::string_view trimmedParameter(const ProcedureCall& call, std::string_view name);

/// A year, period or page; nothing for a blank text. @throws DatabaseError if it is no whole number
std::optional<std::int64_t> wholeNumber(const ProcedureCall& call, std::string_view name);

} // namespace selfreport
