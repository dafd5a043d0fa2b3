#pragma once
#include <QDialog>

#include <map>

class QComboBox;

namespace spreadsheet {
class SpreadsheetControl;
}

namespace selfreport {

/// What the active sheet shows in place of figures that are nothing: the figure, a dash, nothing at all or a
/// text, for each kind. It is one undo step and is kept with the sheet.
class frmNothing : public QDialog {
    Q_OBJECT

public:
    explicit frmNothing(spreadsheet::SpreadsheetControl& grid, QWidget* parent = nullptr);

private:
    void cmdXPOK_Click();

    spreadsheet::SpreadsheetControl& m_grid;
    std::map<int, QComboBox*> m_shown; ///< by kind
};

} // namespace selfreport
