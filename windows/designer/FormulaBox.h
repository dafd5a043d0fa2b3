#pragma once
#include "spreadsheet/values/CellAddress.h"

#include <QObject>

#include <functional>
#include <string>

class QLineEdit;

namespace spreadsheet {
class FormulaAssistant;
class Sheet;
class SpreadsheetControl;
} // namespace spreadsheet

namespace selfreport {

/// The formula box beside a grid. It shows the formula of one cell, the grid's active one, and remembers the
/// cell, so that a text never reaches another. While the box has the focus it is the grid's open editor:
/// clicked cells become references of a formula, and moving on writes the text.
class FormulaBox : public QObject {
    Q_OBJECT

public:
    FormulaBox(QLineEdit& edit, spreadsheet::SpreadsheetControl& grid);

    /// Shows the active cell's formula; what was typed and not written is given up.
    void fill();
    /// Its cell is on the sheet that the grid shows.
    bool isOfShownSheet() const;

    /// Writes the text into the cell that it was shown for; a text equal to the cell's formula, or an empty
    /// one over a constant, does nothing. False if it was refused: it stays, its mistake marked.
    [[nodiscard]] bool commit();

    /// Told why a text was refused.
    std::function<void(const std::string& reason)> refused;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    class Editing;
    spreadsheet::Sheet* sheet() const;
    bool isUnchanged(const spreadsheet::Sheet& sheet) const;
    void begin();
    void leaveFor(bool committing);

    QLineEdit& m_edit;
    spreadsheet::SpreadsheetControl& m_grid;
    spreadsheet::FormulaAssistant* m_assistant = nullptr;
    int m_sheetId = 0;
    spreadsheet::CellAddress m_cell;
    Editing* m_editing = nullptr; ///< owned by the grid
};

} // namespace selfreport
