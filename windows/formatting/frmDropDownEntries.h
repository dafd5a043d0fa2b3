#pragma once
#include <QDialog>

class QPlainTextEdit;

namespace spreadsheet {
class SpreadsheetControl;
}

namespace selfreport {

/// Writes the entries, one a line, that the drop-downs of the selected block or of the active cell offer.
class frmDropDownEntries : public QDialog {
    Q_OBJECT

public:
    explicit frmDropDownEntries(spreadsheet::SpreadsheetControl& grid, QWidget* parent = nullptr);

private:
    void cmdXPOK_Click();

    spreadsheet::SpreadsheetControl& m_grid;
    QPlainTextEdit* m_entries;
};

} // namespace selfreport
