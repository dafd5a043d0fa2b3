#pragma once
#include <array>
#include <QDialog>
#include <string>

namespace selfreport {

class ArgumentBoxes;
class FormulaCell;

/// Writes a call of `REF_F` into a cell. Its boxes start empty.
class frmFunctionInput1 : public QDialog {
    Q_OBJECT

public:
    explicit frmFunctionInput1(FormulaCell& cell, QWidget* parent = nullptr);

    /// Puts the arguments of a call into the boxes.
    void setArguments(const std::array<std::string, 3>& arguments);

private:
    void cmdXPOK_Click();
    void cmdXPClose_Click();

    FormulaCell& m_cell;
    ArgumentBoxes* m_txt;
};

} // namespace selfreport
