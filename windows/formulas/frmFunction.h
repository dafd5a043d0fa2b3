#pragma once
#include <QDialog>

namespace selfreport {

class FormulaCell;
class ListGrid;

/// Offers the two report functions and opens the dialog of the chosen one.
class frmFunction : public QDialog {
    Q_OBJECT

public:
    explicit frmFunction(FormulaCell& cell, QWidget* parent = nullptr);

private:
    void cmdXPOK_Click();
    void cmdXPClose_Click();
    void vsf1_DblClick();

    FormulaCell& m_cell;
    ListGrid* m_vsf1;
};

} // namespace selfreport
