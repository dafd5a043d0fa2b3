#pragma once
#include "spreadsheet/view/FormulaText.h"

#include <optional>

namespace spreadsheet {

/// A text with a cursor, and a selection before it if the anchor lies elsewhere.
struct EditedText {
    QString text;
    int cursor = 0;
    int anchor = 0;
    friend bool operator==(const EditedText&, const EditedText&) = default;
};

/// Cells on a sheet that are being pointed at: from a cell that stays to one that moves.
struct PointedCells {
    int sheet = 1; ///< index
    CellAddress anchor = {};
    CellAddress head = {};

    CellRange range() const;
    friend bool operator==(const PointedCells&, const PointedCells&) = default;
};

/// Formula entry on the text alone, for any kind of text edit: puts references by pointing, replaces the one
/// just put while pointing goes on, cycles "$", puts function names in.
class FormulaEntry {
public:
    explicit FormulaEntry(FormulaContext context = {})
        : m_context(context)
    {
    }
    const FormulaContext& context() const { return m_context; }
    void setContext(const FormulaContext& context)
    {
        m_context = context;
        m_pointed.reset();
    }

    /// True if pointing would put a reference at the cursor, or would replace the one just put there.
    bool canPoint(const EditedText& edited) const;
    /// Puts a reference to the cells, or replaces the one just put. Only where canPoint says so.
    EditedText point(const EditedText& edited, const PointedCells& cells);
    /// What was pointed at last, if its reference still ends at the cursor.
    std::optional<PointedCells> pointed(const EditedText& edited) const;
    /// The next reference is another one: called for whatever is typed.
    void stopPointing() { m_pointed.reset(); }

    /// F4: cycles the references at the cursor or in the selection. The same text if there are none.
    EditedText cycle(const EditedText& edited) const;
    /// Puts a function's name with its bracket in place of the word before the cursor.
    EditedText complete(const EditedText& edited, const QString& function) const;
    /// Puts a text in quotation marks in place of what stands of the argument before the cursor.
    EditedText completeArgument(const EditedText& edited, const QString& argument) const;

private:
    struct Put {
        int begin;
        QString reference;
        PointedCells cells;
    };
    bool standsAtCursor(const EditedText& edited) const;

    FormulaContext m_context;
    std::optional<Put> m_pointed;
};

} // namespace spreadsheet
