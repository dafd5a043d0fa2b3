#pragma once
#include <QDialog>

class QLabel;
class QLineEdit;

namespace spreadsheet {
class SpreadsheetControl;
}

namespace selfreport {

/// Asks for a place and goes there: a cell, a range, with or without a sheet, or a defined name.
class frmGoTo : public QDialog {
    Q_OBJECT

public:
    explicit frmGoTo(spreadsheet::SpreadsheetControl& grid, QWidget* parent = nullptr);

private:
    void cmdXPOK_Click();

    spreadsheet::SpreadsheetControl& m_grid;
    QLineEdit* m_txtPlace;
    QLabel* m_hint;
};

} // namespace selfreport
