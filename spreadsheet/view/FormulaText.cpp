#include "spreadsheet/view/FormulaText.h"

#include "spreadsheet/formula/FormulaPool.h"
#include "spreadsheet/functions/FunctionTable.h"
#include "spreadsheet/values/characters.h"
#include "spreadsheet/values/number_text.h"
#include "spreadsheet/workbook/Workbook.h"

#include <algorithm>

namespace spreadsheet {

// While it is written, a formula is wrong most of the time. The lexer that reads finished ones is asked
// again behind each mistake, so that colours and hints agree with what the formula will mean, and what it
// cannot read is a piece of its own. Places are UTF-16 units for the edits and bytes for the lexer; a table
// of both is made once a text.

namespace {

constexpr int unknownSheet = -1; ///< an id that no sheet has

FormulaPart partOf(Token::Kind kind)
{
    switch (kind) {
    case Token::Kind::number:
        return FormulaPart::number;
    case Token::Kind::text:
        return FormulaPart::text;
    case Token::Kind::error:
        return FormulaPart::error;
    case Token::Kind::reference:
        return FormulaPart::reference;
    case Token::Kind::name:
        return FormulaPart::name;
    case Token::Kind::function:
        return FormulaPart::function;
    default:
        return FormulaPart::sign;
    }
}

bool beginsWithKnownCall(const QString& text, const Workbook* workbook)
{
    const qsizetype bracket = text.indexOf('(');
    if (bracket < 1)
        return false;
    const std::string name = text.left(bracket).trimmed().toStdString();
    return findFunction(name) || (workbook && workbook->formulas().customs().isRegistered(name));
}

bool isOneOf(QStringView text, QStringView signs)
{
    return text.size() == 1 && signs.contains(text[0]);
}

bool isOpening(QStringView text)
{
    return isOneOf(text, u"(（");
}

/// Scans a body of UTF-8, as far as the lexer understands it and on behind what it does not.
class Scanner {
public:
    Scanner(QStringView body, int begin, const FormulaContext& context)
        : m_utf8(body.toUtf8().toStdString())
        , m_begin(begin)
        , m_context(context)
    {
        for (std::size_t at = 0; at < m_utf8.size();) {
            const std::size_t start = at;
            const int units = unitsOf(takeCharacter(m_utf8, at));
            m_units.resize(at, m_unitCount);
            m_units[start] = m_unitCount;
            m_unitCount += units;
        }
        m_units.push_back(m_unitCount);
    }

    std::vector<FormulaToken> run()
    {
        const SheetResolver sheetId = [this](std::string_view name) {
            const int index = m_context.workbook ? m_context.workbook->sheetIndex(name) : 0;
            return index == 0 ? unknownSheet : m_context.workbook->sheet(index).id();
        };
        for (std::size_t offset = 0; offset < m_utf8.size();) {
            LexedFormula lexed;
            const std::string_view rest = std::string_view(m_utf8).substr(offset);
            const auto problem = lexFormula(rest, m_context.cell, sheetId, lexed);
            for (const Token& token : lexed.tokens)
                take(token, offset, lexed);
            if (!problem)
                break;
            std::size_t end = offset + problem.position();
            if (end >= m_utf8.size())
                break;
            const std::size_t begin = end;
            takeCharacter(m_utf8, end);
            if (m_utf8[begin] == '"' || m_utf8[begin] == '\'')
                end = m_utf8.size(); // a text that is not closed yet
            add(FormulaPart::mistake, begin, end);
            offset = end;
        }
        return std::move(m_tokens);
    }

private:
    FormulaToken& add(FormulaPart part, std::size_t begin, std::size_t end)
    {
        FormulaToken token;
        token.part = part;
        token.begin = m_begin + m_units[begin];
        token.length = m_units[end] - m_units[begin];
        m_tokens.push_back(token);
        return m_tokens.back();
    }

    void take(const Token& token, std::size_t offset, const LexedFormula& lexed)
    {
        if (token.kind == Token::Kind::end)
            return;
        const std::size_t begin = offset + token.position;
        const std::size_t end = begin + token.text.size();
        FormulaToken& added = add(partOf(token.kind), begin, end);
        if (token.kind == Token::Kind::reference)
            place(added, lexed.slots[static_cast<std::size_t>(token.index)]);
        if (token.kind != Token::Kind::function)
            return;
        std::size_t bracket = end; // the lexer takes it along with the name
        while (bracket < m_utf8.size() && m_utf8[bracket] != '(' && m_utf8[bracket] != '\xEF')
            ++bracket;
        std::size_t bracketEnd = bracket;
        if (bracket < m_utf8.size())
            takeCharacter(m_utf8, bracketEnd);
        add(FormulaPart::sign, bracket, bracketEnd);
    }

    void place(FormulaToken& token, const ReferenceSlot& slot) const
    {
        const auto range = slot.range(m_context.cell);
        if (!range || slot.firstSheet == unknownSheet || slot.lastSheet == unknownSheet) {
            token.part = FormulaPart::mistake;
            return;
        }
        token.range = *range;
        if (slot.firstSheet == slot.lastSheet)
            token.sheet =
                slot.firstSheet == 0 ? m_context.sheet : m_context.workbook->sheetIndexOfId(slot.firstSheet);
    }

    std::string m_utf8;
    int m_begin;
    const FormulaContext& m_context;
    std::vector<int> m_units; ///< by byte: UTF-16 units before it
    int m_unitCount = 0;
    std::vector<FormulaToken> m_tokens;
};

} // namespace

FormulaText::FormulaText(const QString& text, const FormulaContext& context)
    : m_text(text)
{
    int begin = 0;
    while (begin < text.size() && text[begin].isSpace())
        ++begin;
    const bool equalsSign = begin < text.size() && text[begin] == '=';
    m_isFormula = equalsSign || context.alwaysFormula || beginsWithKnownCall(text, context.workbook);
    m_bodyBegin = begin + equalsSign;
    if (!m_isFormula)
        return;
    m_tokens = Scanner(QStringView(m_text).mid(m_bodyBegin), m_bodyBegin, context).run();
    numberReferences();
}

void FormulaText::numberReferences()
{
    std::vector<std::pair<int, CellRange>> known;
    for (FormulaToken& token : m_tokens) {
        if (token.part != FormulaPart::reference || token.sheet == 0)
            continue;
        const std::pair meaning(token.sheet, token.range);
        auto found = std::ranges::find(known, meaning);
        if (found == known.end())
            found = known.insert(found, meaning);
        token.colour = static_cast<int>(found - known.begin());
    }
}

bool FormulaText::takesReferenceAt(int cursor) const
{
    if (!m_isFormula || cursor < m_bodyBegin)
        return false;
    const FormulaToken* before = nullptr;
    const FormulaToken* after = nullptr;
    int braces = 0;
    for (const FormulaToken& token : m_tokens) {
        if (token.begin < cursor && token.end() > cursor)
            return false;
        if (token.end() <= cursor) {
            before = &token;
            braces += isOneOf(textOf(token), u"{") - isOneOf(textOf(token), u"}");
        } else if (!after) {
            after = &token;
        }
    }
    if (braces > 0)
        return false; // array constants hold no references
    if (before && (before->part != FormulaPart::sign || isOneOf(textOf(*before), u")）}%")))
        return false;
    return !after || (after->part == FormulaPart::sign && !isOpening(textOf(*after)));
}

std::optional<CallAtCursor> FormulaText::callAt(int cursor) const
{
    std::vector<std::optional<CallAtCursor>> open; // nothing for a bracket without a function
    int braces = 0;
    const FormulaToken* function = nullptr;
    for (const FormulaToken& token : m_tokens) {
        if (token.end() > cursor)
            break;
        const QStringView text = textOf(token);
        if (token.part == FormulaPart::sign && isOpening(text))
            open.push_back(function
                               ? std::optional(CallAtCursor{textOf(*function).toString(), 0, token.end()})
                               : std::nullopt);
        else if (token.part == FormulaPart::sign && isOneOf(text, u")）") && !open.empty())
            open.pop_back();
        else if (token.part == FormulaPart::sign && isOneOf(text, u"{}"))
            braces += text == u"{" ? 1 : -1;
        else if (token.part == FormulaPart::sign && isOneOf(text, u",，") && braces == 0 && !open.empty() &&
                 open.back())
            *open.back() = {open.back()->function, open.back()->argument + 1, token.end()};
        function = token.part == FormulaPart::function ? &token : nullptr;
    }
    const auto innermost =
        std::find_if(open.rbegin(), open.rend(), [](const auto& call) { return call.has_value(); });
    return innermost == open.rend() ? std::nullopt : *innermost;
}

std::optional<FormulaText::Word> FormulaText::wordBefore(int cursor) const
{
    for (const FormulaToken& token : m_tokens) {
        const bool isWord = token.part == FormulaPart::name || token.part == FormulaPart::function ||
                            token.part == FormulaPart::reference;
        if (token.end() != cursor || !isWord)
            continue;
        const QStringView text = textOf(token);
        const bool plain =
            std::ranges::all_of(text, [](QChar c) { return c.isLetterOrNumber() || c == '_' || c == '.'; });
        return plain && !text[0].isDigit() ? std::optional(Word{token.begin, token.length}) : std::nullopt;
    }
    return std::nullopt;
}

std::vector<FormulaToken> FormulaText::referencesAt(int selectionBegin, int selectionEnd) const
{
    std::vector<FormulaToken> found;
    for (const FormulaToken& token : m_tokens) {
        if (token.part == FormulaPart::reference && token.begin <= selectionEnd &&
            token.end() >= selectionBegin)
            found.push_back(token);
    }
    if (selectionBegin == selectionEnd && found.size() > 1)
        found.resize(1); // between two references, the first one counts
    return found;
}

} // namespace spreadsheet
