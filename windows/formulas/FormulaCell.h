#pragma once
#include "spreadsheet/values/Refusal.h"

#include <QString>

namespace selfreport {

struct ReportContext;

/// The cell of the grid that a formula dialog was opened for.
class FormulaCell {
public:
    explicit FormulaCell(ReportContext& reportContext)
        : context(reportContext)
    {
    }
    virtual ~FormulaCell() = default;

    /// Makes the cell the current one, sets its formula and shows the text in the formula box.
    /// Refused, the cell keeps what it had.
    virtual spreadsheet::Refusal writeFormula(const QString& formula) = 0;

    ReportContext& context; ///< whose database the dialog asks
};

} // namespace selfreport
