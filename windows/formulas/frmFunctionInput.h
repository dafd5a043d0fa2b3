#pragma once
#include <array>
#include <QDialog>
#include <string>

namespace selfreport {

class ArgumentBoxes;
class FormulaCell;

/// Writes a call of `Acct` into a cell. Its boxes start empty.
class frmFunctionInput : public QDialog {
    Q_OBJECT

public:
    explicit frmFunctionInput(FormulaCell& cell, QWidget* parent = nullptr);

    /// Puts the arguments of a call into the boxes.
    void setArguments(const std::array<std::string, 6>& arguments);

private:
    /// Opens the picker of a box: account wizard, fetch types or currencies.
    void openPicker(int index);
    void cmdXPOK_Click();
    void cmdXPClose_Click();

    FormulaCell& m_cell;
    ArgumentBoxes* m_txt;
};

} // namespace selfreport
