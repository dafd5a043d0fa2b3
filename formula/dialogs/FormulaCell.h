#pragma once
#include <QString>

namespace selfreport {

/// The cell (`gCellCol`, `gCellRow`) of the grid that a formula dialog was opened for.
class FormulaCell {
public:
    virtual ~FormulaCell() = default;

    /// Makes the cell the current one, sets its formula and shows the text in the formula box.
    /// Returns "", or why the text is refused; the cell then keeps what it had.
    virtual QString writeFormula(const QString& formula) = 0;
};

} // namespace selfreport
