#pragma once
#include <QDialog>

class QCheckBox;
class QSpinBox;

namespace selfreport {

class PrintedGrid;

/// How the active sheet is laid out on paper beyond margins and orientation: repeated rows, columns fitted to
/// a page, cells in its middle, a print stamp. It is one undo step and is kept with the sheet.
class frmPrintOptions : public QDialog {
    Q_OBJECT

public:
    explicit frmPrintOptions(PrintedGrid& grid, QWidget* parent = nullptr);

private:
    void cmdXPOK_Click();

    PrintedGrid& m_grid;
    QSpinBox *txtTitleTop, *txtTitleBottom;
    QCheckBox *chkFitWidth, *chkCentredAcross, *chkCentredDown, *chkStamp;
};

/// Makes a page begin at a cell's row and column, those of the sheet's first row and column aside; a second
/// call takes the marks away. Works on the active sheet.
void togglePageBreaks(PrintedGrid& grid, int column, int row);
/// … of the first cell that is selected in the designer.
void togglePageBreaksAtSelection(PrintedGrid& grid);

} // namespace selfreport
