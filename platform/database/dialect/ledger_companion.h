#pragma once
#include "platform/database/session/ProcedureCall.h"
#include "platform/database/session/Recordset.h"

#include <optional>
#include <span>
#include <string>
#include <vector>

namespace selfreport {

// The ledger's procedure may have a companion that takes many calls at once: sql/sqlserver installs one. A
// suite's own procedure has none, and one of another version does not count.

/// From so many calls on it is quicker than the calls one by one.
inline constexpr std::size_t fewestCallsTogether = 32;

/// Whether the companion could take the calls: many, all of the ledger's procedure.
bool areForCompanion(std::span<const ProcedureCall> calls);

/// Gives one row if the server has the companion, and the procedure beside it is of the same version.
std::string companionQuestion();

/// One statement text for the calls. It gives one row set.
std::string companionBatch(std::span<const ProcedureCall> calls);

/// One for each call; nothing for those that the companion leaves to be called alone.
std::vector<std::optional<ProcedureResult>> companionAnswers(const Recordset& rows, std::size_t calls);

} // namespace selfreport
