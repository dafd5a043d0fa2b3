#pragma once
#include <QStatusBar>

class QLabel;

namespace spreadsheet {
class SpreadsheetControl;
}

namespace selfreport {

/// The designer's status bar: the active cell, the mode, count, sum and average of what is selected, and
/// messages that go by themselves.
class EditorStatus : public QStatusBar {
    Q_OBJECT

public:
    explicit EditorStatus(QWidget* parent = nullptr);

    void showCell(const spreadsheet::SpreadsheetControl& grid, const QString& mode);

private:
    QLabel* m_cell;
    QLabel* m_mode;
    QLabel* m_figures;
};

} // namespace selfreport
