#pragma once
#include <QDialog>

class QCheckBox;
class QComboBox;
class QGridLayout;
class QLabel;
class QLineEdit;
class QPushButton;

namespace spreadsheet {
class SpreadsheetControl;
struct Search;
} // namespace spreadsheet

namespace selfreport {

/// Finds and replaces texts of the sheet that is shown. Stays open beside the designer. In run mode it only
/// finds.
class frmFind : public QDialog {
    Q_OBJECT

public:
    explicit frmFind(spreadsheet::SpreadsheetControl& grid, QWidget* parent = nullptr);

    /// Shows itself with the cursor in the box of what is looked for, or of what takes its place.
    void begin(bool replacing);

private:
    void buildOptions(QGridLayout& rows);
    void buildButtons(QGridLayout& rows);
    spreadsheet::Search search() const;
    void find(bool backwards);
    void cmdReplace_Click();
    void cmdReplaceAll_Click();

    spreadsheet::SpreadsheetControl& m_grid;
    QLineEdit* m_txt[2] = {}; ///< what is looked for, what takes its place
    QCheckBox* m_chkCase;
    QCheckBox* m_chkWhole;
    QCheckBox* m_chkWildcards;
    QComboBox* m_cboIn;
    QLabel* m_result;
};

} // namespace selfreport
