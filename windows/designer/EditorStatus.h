#pragma once
#include <QStatusBar>

class QAction;
class QLabel;
class QMenu;
class QToolButton;
class QWidget;

namespace spreadsheet {
class SpreadsheetControl;
}

namespace selfreport {

/// The designer's status bar: the active cell, the mode, those figures of what is selected that the user has
/// chosen, and messages that go by themselves. Beside them stands what waits for the user: an unsaved design
/// that an earlier window left, that the present one cannot be kept, and how many fetches are in doubt.
class EditorStatus : public QStatusBar {
    Q_OBJECT

public:
    explicit EditorStatus(QWidget* parent = nullptr);

    void showCell(const spreadsheet::SpreadsheetControl& grid, const QString& mode);
    void offerDesign(bool offered);
    /// Why the design cannot be kept, until an empty text.
    void showTrouble(const QString& why);
    void showDiagnostics(int count);
    /// Adds the choice of figures, which right clicks on them offer too.
    void addFigureChoices(QMenu& menu);

Q_SIGNALS:
    void diagnosticsWanted();
    void restoreWanted();
    void discardWanted();

private:
    QWidget* offerLine();
    void buildChoices();
    void showFigures();

    QWidget* m_offer;
    QLabel* m_trouble;
    QLabel* m_cell;
    QLabel* m_mode;
    QLabel* m_figures;
    QToolButton* m_diagnostics;
    const spreadsheet::SpreadsheetControl* m_grid = nullptr; ///< whose selection is told
};

} // namespace selfreport
