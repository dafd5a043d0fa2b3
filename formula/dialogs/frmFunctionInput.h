#pragma once
#include <QDialog>

namespace selfreport {

class ArgumentBoxes;
class FormulaCell;

/// Writes a call of `Acct` into a cell. Its boxes start empty.
class frmFunctionInput : public QDialog {
    Q_OBJECT

public:
    explicit frmFunctionInput(FormulaCell& cell, QWidget* parent = nullptr);

private:
    /// Opens the picker of a box: account wizard, fetch types or currencies.
    void openPicker(int index);
    void cmdXPOK_Click();
    void cmdXPClose_Click();

    FormulaCell& m_cell;
    ArgumentBoxes* m_txt;
};

} // namespace selfreport
