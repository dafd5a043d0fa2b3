#pragma once
#include "spreadsheet/view/FormulaEntry.h"
#include "spreadsheet/view/function_hints.h"
#include "spreadsheet/view/TextPort.h"

#include <QObject>

#include <memory>
#include <optional>
#include <vector>

class QLabel;
class QLineEdit;
class QListWidget;
class QPlainTextEdit;

namespace spreadsheet {

/// Cells that a formula being written refers to, in the colour of the reference.
struct ColouredCells {
    int sheet = 1; ///< index
    CellRange range = {};
    QColor colour = {};
};

/// Helps with writing a formula in a text edit: colours references and marks the place of a mistake, offers
/// function names and what an argument may be ("formulaCompletions": arrow keys, Tab or a click take one) and
/// the arguments of the call
/// at the cursor ("formulaHint"), of which Esc closes the hint first and then the names, cycles "$" with F4,
/// and puts references that somebody points at. It lives with the edit. Texts that are no formulas are left
/// alone.
class FormulaAssistant : public QObject {
    Q_OBJECT

public:
    FormulaAssistant(QLineEdit& edit, const FunctionHints& hints);
    FormulaAssistant(QPlainTextEdit& edit, const FunctionHints& hints);
    ~FormulaAssistant() override;

    /// Where the formula that is written from now on stands.
    void setContext(const FormulaContext& context);

    bool isFormula() const;
    /// True if pointing at cells would put a reference, or move the one just put.
    bool canPoint() const;
    void point(const PointedCells& cells);
    std::optional<PointedCells> pointed() const;

    /// Cells to frame in the sheet.
    const std::vector<ColouredCells>& colouredCells() const { return m_coloured; }

    /// Marks the place of a mistake until the text changes. @param place  UTF-16 units
    void markMistake(int place);
    void hidePopups();

Q_SIGNALS:
    void colouredCellsChanged();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    FormulaAssistant(std::unique_ptr<TextPort> port, const FunctionHints& hints);
    void textChanged();
    void refresh();
    void colour(const FormulaText& formula);
    void showHint(const FormulaText& formula);
    void offer(const FormulaText& formula);
    bool offerChoices(const FormulaText& formula);
    void offerNames(const FormulaText& formula);
    void showOffer();
    void complete();
    bool popupKey(int key);
    bool closePopup();

    std::unique_ptr<TextPort> m_port;
    const FunctionHints& m_hints;
    FormulaEntry m_entry;
    std::vector<ColouredCells> m_coloured;
    std::optional<int> m_mistake;
    QListWidget* m_names;
    QLabel* m_hint;
    QString m_closedHint; ///< the function that the user wants no hint of while the cursor is in its call
    QString m_text;       ///< as it was last looked at
    bool m_busy = false;
    bool m_pointing = false;
    bool m_chosen = false; ///< a name was chosen with the arrow keys
};

/// The colour of a formula's reference number `number`, from 0; after eight they begin again.
QColor referenceColour(int number);

} // namespace spreadsheet
