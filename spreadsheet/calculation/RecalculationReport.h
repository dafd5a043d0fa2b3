#pragma once
#include "spreadsheet/formula/CustomFunction.h"

#include <cstddef>
#include <vector>

namespace spreadsheet {

/// What a recalculation did.
struct RecalculationReport {
    std::size_t evaluatedCells = 0;
    std::vector<CallPlace> circular; ///< cells that depend on themselves; they show #REF!
    bool stopped = false;            ///< by the pause hook
};

} // namespace spreadsheet
