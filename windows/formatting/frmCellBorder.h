#pragma once
#include <QDialog>

class QComboBox;

namespace spreadsheet {
class SpreadsheetControl;
}

namespace selfreport {

/// Draws or takes away the lines around every cell of the selected block, or of the cell (`gCellCol`,
/// `gCellRow`), in dark blue.
class frmCellBorder : public QDialog {
    Q_OBJECT

public:
    explicit frmCellBorder(spreadsheet::SpreadsheetControl& grid, QWidget* parent = nullptr);

private:
    void Form_Load();
    void cmdXPOK_Click();

    spreadsheet::SpreadsheetControl& m_grid;
    QComboBox* m_PC[2] = {}; ///< 0: line styles, 1: sides
};

} // namespace selfreport
