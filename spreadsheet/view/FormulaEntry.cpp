#include "spreadsheet/view/FormulaEntry.h"

#include "spreadsheet/view/reference_text.h"

#include <algorithm>

namespace spreadsheet {

CellRange PointedCells::range() const
{
    return {std::min(anchor.column, head.column), std::min(anchor.row, head.row),
            std::max(anchor.column, head.column), std::max(anchor.row, head.row)};
}

bool FormulaEntry::standsAtCursor(const EditedText& edited) const
{
    return m_pointed && edited.cursor == edited.anchor &&
           edited.cursor == m_pointed->begin + m_pointed->reference.size() &&
           QStringView(edited.text).mid(m_pointed->begin).startsWith(m_pointed->reference);
}

bool FormulaEntry::canPoint(const EditedText& edited) const
{
    if (standsAtCursor(edited))
        return true;
    EditedText without = edited; // a reference takes the place of what is selected
    const int begin = std::min(edited.cursor, edited.anchor);
    without.text.remove(begin, std::abs(edited.cursor - edited.anchor));
    return FormulaText(without.text, m_context).takesReferenceAt(begin);
}

EditedText FormulaEntry::point(const EditedText& edited, const PointedCells& cells)
{
    const QString reference = referenceText(*m_context.workbook, m_context.sheet, cells.sheet, cells.range());
    int begin = std::min(edited.cursor, edited.anchor);
    auto length = static_cast<int>(std::abs(edited.cursor - edited.anchor));
    if (standsAtCursor(edited)) {
        begin = m_pointed->begin;
        length = static_cast<int>(m_pointed->reference.size());
    }
    m_pointed = Put{begin, reference, cells};
    EditedText result = edited;
    result.text.replace(begin, length, reference);
    result.cursor = result.anchor = begin + static_cast<int>(reference.size());
    return result;
}

std::optional<PointedCells> FormulaEntry::pointed(const EditedText& edited) const
{
    return standsAtCursor(edited) ? std::optional(m_pointed->cells) : std::nullopt;
}

EditedText FormulaEntry::cycle(const EditedText& edited) const
{
    const FormulaText formula(edited.text, m_context);
    const auto [begin, end] = std::minmax(edited.cursor, edited.anchor);
    const auto references = formula.referencesAt(begin, end);
    if (references.empty())
        return edited;
    EditedText result = edited;
    for (auto reference = references.rbegin(); reference != references.rend(); ++reference) {
        const QString former = edited.text.mid(reference->begin, reference->length);
        result.text.replace(reference->begin, reference->length, cycledReference(former));
    }
    const auto grown = static_cast<int>(result.text.size() - edited.text.size());
    const bool selected = begin != end;
    result.cursor = selected ? end + grown : references[0].end() + grown;
    result.anchor = selected ? begin : result.cursor;
    return result;
}

EditedText FormulaEntry::complete(const EditedText& edited, const QString& function) const
{
    const auto word = FormulaText(edited.text, m_context).wordBefore(edited.cursor);
    if (!word)
        return edited;
    EditedText result = edited;
    const bool bracketThere = edited.text.mid(edited.cursor).startsWith('(');
    result.text.replace(word->begin, word->length, bracketThere ? function : function + '(');
    result.cursor = result.anchor = word->begin + static_cast<int>(function.size()) + 1;
    return result;
}

EditedText FormulaEntry::completeArgument(const EditedText& edited, const QString& argument) const
{
    const auto call = FormulaText(edited.text, m_context).callAt(edited.cursor);
    if (!call)
        return edited;
    int begin = call->begin;
    while (begin < edited.cursor && edited.text[begin].isSpace())
        ++begin;
    const bool quoteThere = edited.text.mid(edited.cursor).startsWith('"');
    const QString quoted = '"' + QString(argument).replace('"', QStringLiteral("\"\"")) + '"';
    EditedText result = edited;
    result.text.replace(begin, edited.cursor - begin + quoteThere, quoted);
    result.cursor = result.anchor = begin + static_cast<int>(quoted.size());
    return result;
}

} // namespace spreadsheet
