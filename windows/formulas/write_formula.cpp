#include "windows/formulas/write_formula.h"

#include "state/mdlMain.h"
#include "windows/formulas/FormulaCell.h"

namespace selfreport {

bool writeFormula(FormulaCell& cell, const std::string& formula)
{
    const spreadsheet::Refusal refused = cell.writeFormula(QString::fromStdString(formula));
    if (refused)
        tellUser(Icon::critical, refused.reason());
    return !refused;
}

} // namespace selfreport
