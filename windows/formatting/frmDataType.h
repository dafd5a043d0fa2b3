#pragma once
#include "spreadsheet/values/CellAddress.h"

#include <QDialog>

#include <cstdint>

class QComboBox;

namespace spreadsheet {
class SpreadsheetControl;
enum class CellType : std::uint8_t;
} // namespace spreadsheet

namespace selfreport {

/// Sets the cell type of the selected block or, without one, of a cell, and the decimals of number cells.
/// Contents stay; a tag that keeps a cell's type while formulas are shown follows.
class frmDataType : public QDialog {
    Q_OBJECT

public:
    frmDataType(spreadsheet::SpreadsheetControl& grid, spreadsheet::CellAddress cell,
                QWidget* parent = nullptr);

private:
    void Form_Load();
    void PC_SelChange(int element);
    spreadsheet::CellType chosenType() const;
    void cmdXPOK_Click();

    spreadsheet::SpreadsheetControl& m_grid;
    spreadsheet::CellAddress m_cell;
    QComboBox* m_PC[2] = {}; ///< 0: decimals, 1: types
};

} // namespace selfreport
