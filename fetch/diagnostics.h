#pragma once
#include "fetch/CallState.h"
#include "spreadsheet/formula/CustomFunction.h"

#include <optional>
#include <span>
#include <string>

namespace selfreport {

enum class FetchOutcome {
    doubtful, ///< there is nothing to find, no fetch could be asked for, or it may be wider than asked for
    failed,   ///< what there is to find is not known: the cell's figure means nothing
};

/// Why a cell's fetch failed, found nothing or may be wider than asked for.
struct CellDiagnostic {
    spreadsheet::CallPlace place;
    std::string function; ///< "Acct" or "REF_F"
    std::string reason;   ///< one Chinese sentence for the user
    FetchOutcome outcome = FetchOutcome::doubtful;
    CallState state = CallState::missing;

    bool hasFailed() const { return outcome == FetchOutcome::failed; }
    friend bool operator==(const CellDiagnostic&, const CellDiagnostic&) = default;
};

/// The first diagnostic of a failed fetch; nothing if none failed.
std::optional<CellDiagnostic> firstFailed(std::span<const CellDiagnostic> diagnostics);

/// "3 处取数失败，数字不可用" by the number of cells with a failed fetch; "" without any.
/// @param diagnostics  in the order of their places
std::string failedFetchesText(std::span<const CellDiagnostic> diagnostics);

/// "3 处未取到数据" by the number of cells that a strict run does not hand out; "" without any.
/// @param diagnostics  in the order of their places
std::string strictRefusalText(std::span<const CellDiagnostic> diagnostics);

} // namespace selfreport
