#include "windows/formulas/write_formula.h"

#include "reports/ReportContext.h"
#include "windows/formulas/FormulaCell.h"

namespace selfreport {

bool writeFormula(FormulaCell& cell, const std::string& formula, const std::string& otherwise)
{
    spreadsheet::Refusal refused = cell.writeFormula(QString::fromStdString(formula));
    if (refused && otherwise != formula)
        refused = cell.writeFormula(QString::fromStdString(otherwise));
    if (refused)
        cell.context.database.tell(Icon::critical, refused.reason());
    return !refused;
}

} // namespace selfreport
