#pragma once
#include <string>

namespace selfreport {

class FormulaCell;

/// Writes a formula into the cell. False after telling the user why it is refused.
[[nodiscard]] bool writeFormula(FormulaCell& cell, const std::string& formula);

} // namespace selfreport
