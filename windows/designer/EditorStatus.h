#pragma once
#include <QStatusBar>

class QLabel;
class QWidget;

namespace spreadsheet {
class SpreadsheetControl;
}

namespace selfreport {

/// The designer's status bar: the active cell, the mode, count, sum and average of what is selected, and
/// messages that go by themselves. Beside them stands what waits for the user: an unsaved design that an
/// earlier window left, and that the present one cannot be kept.
class EditorStatus : public QStatusBar {
    Q_OBJECT

public:
    explicit EditorStatus(QWidget* parent = nullptr);

    void showCell(const spreadsheet::SpreadsheetControl& grid, const QString& mode);
    void offerDesign(bool offered);
    /// Why the design cannot be kept, until an empty text.
    void showTrouble(const QString& why);

Q_SIGNALS:
    void restoreWanted();
    void discardWanted();

private:
    QWidget* offerLine();

    QWidget* m_offer;
    QLabel* m_trouble;
    QLabel* m_cell;
    QLabel* m_mode;
    QLabel* m_figures;
};

} // namespace selfreport
