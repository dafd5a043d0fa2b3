#pragma once
#include <QDialog>

class QLineEdit;

namespace spreadsheet {
class SpreadsheetControl;
}

namespace selfreport {

/// Writes what the buttons of the selected block or of the active cell show instead of their values.
class frmButtonCaption : public QDialog {
    Q_OBJECT

public:
    explicit frmButtonCaption(spreadsheet::SpreadsheetControl& grid, QWidget* parent = nullptr);

private:
    void cmdXPOK_Click();

    spreadsheet::SpreadsheetControl& m_grid;
    QLineEdit* m_caption;
};

} // namespace selfreport
