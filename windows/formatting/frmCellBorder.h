#pragma once
#include "spreadsheet/values/CellAddress.h"

#include <QDialog>

class QComboBox;

namespace spreadsheet {
class SpreadsheetControl;
}

namespace selfreport {

/// Draws or takes away the lines around every cell of the selected block or, without one, of a cell, in dark
/// blue.
class frmCellBorder : public QDialog {
    Q_OBJECT

public:
    frmCellBorder(spreadsheet::SpreadsheetControl& grid, spreadsheet::CellAddress cell,
                  QWidget* parent = nullptr);

private:
    void Form_Load();
    void cmdXPOK_Click();

    spreadsheet::SpreadsheetControl& m_grid;
    spreadsheet::CellAddress m_cell;
    QComboBox* m_PC[2] = {}; ///< 0: line styles, 1: sides
};

} // namespace selfreport
