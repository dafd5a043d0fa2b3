#pragma once
#include <QDialog>

class QDoubleSpinBox;

namespace spreadsheet {
class SpreadsheetControl;
}

namespace selfreport {

/// Sets the height of the selected rows, or the width of the selected columns, in points.
class frmLineSize : public QDialog {
    Q_OBJECT

public:
    enum class Lines { rows, columns };
    frmLineSize(spreadsheet::SpreadsheetControl& grid, Lines lines, QWidget* parent = nullptr);

private:
    void cmdXPOK_Click();

    spreadsheet::SpreadsheetControl& m_grid;
    Lines m_lines;
    QDoubleSpinBox* m_size;
};

} // namespace selfreport
