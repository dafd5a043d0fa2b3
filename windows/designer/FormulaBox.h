#pragma once
#include "spreadsheet/values/CellAddress.h"

#include <QObject>

#include <functional>
#include <string>

class QKeyEvent;
class QLineEdit;
class QWidget;

namespace spreadsheet {
class FormulaAssistant;
class Sheet;
class SpreadsheetControl;
} // namespace spreadsheet

namespace selfreport {

/// The formula box beside a grid. It shows the formula of one cell, the grid's active one, and remembers the
/// cell, so that a text never reaches another. While the box has the focus it is the grid's open editor:
/// clicked cells become references of a formula, and moving on writes the text. While something is typed into
/// the cell itself, it shows that. Its text stands without the "=" of a formula, which a label shows.
class FormulaBox : public QObject {
    Q_OBJECT

public:
    /// @param equalsSign  shown while the box holds a formula that does not begin with "=" itself
    FormulaBox(QLineEdit& edit, QWidget& equalsSign, spreadsheet::SpreadsheetControl& grid);

    /// Shows the active cell's formula; what was typed and not written is given up.
    void fill();
    /// Its cell is on the sheet that the grid shows.
    bool isOfShownSheet() const;

    /// Writes the text into the cell that it was shown for; a text equal to the cell's formula, or an empty
    /// one over a constant, does nothing. False if it was refused: it stays, its mistake marked.
    [[nodiscard]] bool commit();

    /// From the grid to the box or back; what is being typed goes along.
    void switchOver();

    /// Told why a text was refused.
    std::function<void(const std::string& reason)> refused;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    class Editing;
    spreadsheet::Sheet* sheet() const;
    QString entered() const;
    bool isUnchanged(const spreadsheet::Sheet& sheet) const;
    void begin();
    bool isInCell() const;
    void followCell();
    void mirrorCell();
    void takeFrom(const QString& entry);
    void showSign();
    void helpWithFormula();
    bool refuseKey(const QKeyEvent& key);
    void leaveFor(bool committing);

    QLineEdit& m_edit;
    QWidget& m_sign;
    spreadsheet::SpreadsheetControl& m_grid;
    spreadsheet::FormulaAssistant* m_assistant = nullptr;
    int m_sheetId = 0;
    spreadsheet::CellAddress m_cell;
    Editing* m_editing = nullptr; ///< owned by the grid
    bool m_mirrors = false;       ///< it shows what is typed into the cell
    bool m_helps = false;         ///< the text counts as a formula even without "="
    bool m_signTaken = false;     ///< the "=" of what was typed into the cell stands in the label
};

} // namespace selfreport
