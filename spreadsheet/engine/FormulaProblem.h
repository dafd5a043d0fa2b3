#pragma once
#include <cstddef>
#include <string>

namespace spreadsheet {

/// Why a formula text was refused. The cell keeps what it had.
struct FormulaProblem {
    std::size_t position = 0; ///< byte offset in the text as it was handed over
    std::string reason;       ///< one Chinese sentence for the user
};

} // namespace spreadsheet
