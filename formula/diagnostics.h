#pragma once
#include "spreadsheet/engine/CustomFunction.h"

#include <string>

namespace selfreport {

/// Why a cell's fetch failed, found nothing or may be wider than asked for.
struct CellDiagnostic {
    spreadsheet::CallPlace place;
    std::string function; ///< "Acct" or "REF_F"
    std::string reason;   ///< one Chinese sentence for the user
    friend bool operator==(const CellDiagnostic&, const CellDiagnostic&) = default;
};

} // namespace selfreport
