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

/// From so many calls on it is quicker than the calls one by one …
inline constexpr std::size_t fewestCallsTogether = 32;

/// … once a session has used it. Some servers make a procedure ready for each session anew, which takes as
/// long as so many calls.
inline constexpr std::size_t callsBeforeCompanion = 300;

/// More of them go to it in several pieces.
inline constexpr std::size_t mostCallsTogether = 400;

/// Whether the companion could take the calls: many, all of the ledger's procedure.
bool areForCompanion(std::span<const ProcedureCall> calls);

/// Gives one row with the ledger's procedure's own number, f, if the server has the companion and both are of
/// the same version.
std::string companionQuestion();

/// One statement text for the calls. It gives one row set, or none if another procedure has taken the place
/// of the one with the number.
std::string companionBatch(std::span<const ProcedureCall> calls, const std::string& procedureNumber);

/// One for each call; nothing for those that the companion leaves to be called alone.
std::vector<std::optional<ProcedureResult>> companionAnswers(const Recordset& rows, std::size_t calls);

} // namespace selfreport
