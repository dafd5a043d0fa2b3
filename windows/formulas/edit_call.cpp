#include "windows/formulas/edit_call.h"

#include "fetch/formula_text.h"
#include "windows/formulas/frmFunctionInput.h"
#include "windows/formulas/frmFunctionInput1.h"

namespace selfreport {

bool editCall(FormulaCell& cell, const std::string& formula, QWidget* parent)
{
    if (const auto acct = acctArguments(formula)) {
        frmFunctionInput dialog(cell, parent);
        dialog.setArguments(*acct);
        dialog.exec();
        return true;
    }
    if (const auto reference = refArguments(formula)) {
        frmFunctionInput1 dialog(cell, parent);
        dialog.setArguments(*reference);
        dialog.exec();
        return true;
    }
    return false;
}

} // namespace selfreport
