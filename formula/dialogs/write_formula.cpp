#include "formula/dialogs/write_formula.h"

#include "component/state/mdlMain.h"
#include "formula/dialogs/FormulaCell.h"

namespace selfreport {

bool writeFormula(FormulaCell& cell, const std::string& formula)
{
    const QString reason = cell.writeFormula(QString::fromStdString(formula));
    if (reason.isEmpty())
        return true;
    tellUser(Icon::critical, reason.toStdString());
    return false;
}

} // namespace selfreport
