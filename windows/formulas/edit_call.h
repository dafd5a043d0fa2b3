#pragma once
#include <string>

class QWidget;

namespace selfreport {

class FormulaCell;

/// Opens the dialog of a cell's `Acct` or `REF_F` call with its arguments in the boxes, and returns once it
/// is closed. False if the formula is no such call and nothing else.
[[nodiscard]] bool editCall(FormulaCell& cell, const std::string& formula, QWidget* parent);

} // namespace selfreport
