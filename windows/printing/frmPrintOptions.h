#pragma once
#include <QDialog>

class QCheckBox;
class QComboBox;
class QDoubleSpinBox;
class QFormLayout;
class QGridLayout;
class QLineEdit;
class QRadioButton;
class QSpinBox;

namespace spreadsheet {
struct PrintSettings;
}

namespace selfreport {

class PrintedGrid;

/// How the active sheet is laid out on paper beyond margins and orientation: scale or fitted pages, print
/// area, repeated rows and columns, order and numbers of pages, cells in the middle, a print stamp; and the
/// paper, which is the report's. It is one undo step and is kept with the report.
class frmPrintOptions : public QDialog {
    Q_OBJECT

public:
    explicit frmPrintOptions(PrintedGrid& grid, QWidget* parent = nullptr);

private:
    void buildScale(const spreadsheet::PrintSettings& print, QGridLayout& places);
    void buildArea(const spreadsheet::PrintSettings& print, int rowCount, QGridLayout& places);
    void buildPaper(const spreadsheet::PrintSettings& print, QGridLayout& places);
    void buildPages(const spreadsheet::PrintSettings& print, QGridLayout& places);
    void buildButtons(QGridLayout& places);
    void cboPaper_Change();
    void cmdArea_Click();
    void cmdXPOK_Click();
    /// False after telling what is wrong and leaving the focus there.
    [[nodiscard]] bool take(spreadsheet::PrintSettings& print);
    [[nodiscard]] bool takeTitles(spreadsheet::PrintSettings& print);
    [[nodiscard]] bool refuse(const char* reason, QWidget& field);

    PrintedGrid& m_grid;
    QRadioButton *optScale = nullptr, *optFit = nullptr;
    QSpinBox *txtScale = nullptr, *txtFitAcross = nullptr, *txtFitDown = nullptr;
    QLineEdit *txtPrintArea = nullptr, *txtTitleColumns = nullptr;
    QSpinBox *txtTitleTop = nullptr, *txtTitleBottom = nullptr;
    QComboBox *cboPaper = nullptr, *cboOrder = nullptr;
    QDoubleSpinBox *txtPaperWidth = nullptr, *txtPaperHeight = nullptr, *txtTextDistance = nullptr;
    QSpinBox* txtFirstPage = nullptr;
    QCheckBox *chkCentredAcross = nullptr, *chkCentredDown = nullptr, *chkStamp = nullptr,
              *chkStrict = nullptr;
};

/// Makes a page begin at a cell's row and column, those of the sheet's first row and column aside; a second
/// call takes the marks away. Works on the active sheet.
void togglePageBreaks(PrintedGrid& grid, int column, int row);
/// … of the first cell that is selected in the designer.
void togglePageBreaksAtSelection(PrintedGrid& grid);

} // namespace selfreport
