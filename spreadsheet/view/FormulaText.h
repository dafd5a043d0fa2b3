#pragma once
#include "spreadsheet/values/CellAddress.h"

#include <QString>

#include <optional>
#include <vector>

namespace spreadsheet {

class Workbook;

/// Where a formula is being written.
struct FormulaContext {
    const Workbook* workbook = nullptr;
    int sheet = 1;         ///< index of the sheet of the cell
    CellAddress cell = {}; ///< that will hold it
    /// A text without "=" is a formula too, as in a box that shows only formulas.
    bool alwaysFormula = false;
};

enum class FormulaPart { number, text, error, reference, name, function, sign, mistake };

/// A piece of a formula; places count UTF-16 units as the toolkit's text edits do.
struct FormulaToken {
    FormulaPart part = FormulaPart::mistake;
    int begin = 0;
    int length = 0;
    // Of a reference that means cells:
    int sheet = 0; ///< index; 0: none that is there, or several
    CellRange range = {};
    int colour = -1; ///< number of the reference, equal ones alike; from 0

    int end() const { return begin + length; }
};

/// The function call that a place in a formula belongs to.
struct CallAtCursor {
    QString function; ///< as it is written
    int argument = 0; ///< from 0
    int begin = 0;    ///< of the argument's text, blanks included
};

/// A formula text while it is being written, however unfinished: what stands where, and what may come next.
class FormulaText {
public:
    FormulaText(const QString& text, const FormulaContext& context);

    const QString& text() const { return m_text; }
    /// It begins with "=", or with a call of a known function, or the context says so.
    bool isFormula() const { return m_isFormula; }
    const std::vector<FormulaToken>& tokens() const { return m_tokens; }

    /// True where a reference can stand: behind "=", an operator, "(" or ",", and before nothing that it
    /// would run into.
    bool takesReferenceAt(int cursor) const;
    std::optional<CallAtCursor> callAt(int cursor) const;

    /// The word that ends at the cursor and may be the beginning of a function's name.
    struct Word {
        int begin = 0;
        int length = 0;
    };
    std::optional<Word> wordBefore(int cursor) const;
    /// The references at the cursor or touched by the selection.
    std::vector<FormulaToken> referencesAt(int selectionBegin, int selectionEnd) const;

private:
    void numberReferences();
    QStringView textOf(const FormulaToken& token) const
    {
        return QStringView(m_text).mid(token.begin, token.length);
    }

    QString m_text;
    bool m_isFormula = false;
    int m_bodyBegin = 0;
    std::vector<FormulaToken> m_tokens;
};

} // namespace spreadsheet
