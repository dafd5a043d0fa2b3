#include "spreadsheet/formula/Lexer.h"

#include "spreadsheet/values/CellError.h"
#include "spreadsheet/values/folding.h"
#include "text/ascii.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace spreadsheet {

// A formula is shown letter by letter as it was typed, though it is kept relative to its cell: so every byte
// goes either into a piece of literal text or into a reference that can render itself again, blanks and
// lower-case letters included. The same word may be a cell, a name, a function or a sheet, and only what
// follows tells; a word is a reference where it can be one. Full-width signs are taken for the plain ones,
// since Chinese input methods produce them in the middle of a formula.

namespace {

bool isNameCharacter(char c)
{
    return ascii::isLetter(c) || ascii::isDigit(c) || c == '_' || c == '.' || c == '\\' || c == '?' ||
           static_cast<unsigned char>(c) >= 0x80;
}

bool isBlank(char c)
{
    return ascii::blanks.find(c) != ascii::blanks.npos;
}

/// Full-width signs that Chinese input methods produce, and what they stand for.
constexpr std::array<std::pair<std::string_view, char>, 4> wideSigns{
    {{"（", '('}, {"）", ')'}, {"，", ','}, {"；", ';'}}};

bool startsWideSign(std::string_view text)
{
    return text.starts_with("\u3000") ||
           std::ranges::any_of(wideSigns, [text](const auto& sign) { return text.starts_with(sign.first); });
}

bool continuesName(std::string_view text)
{
    return !text.empty() && isNameCharacter(text[0]) && !startsWideSign(text);
}

/// A column, a row or both, as read from the text.
struct Corner {
    int column = 0; ///< 0: rows only
    int row = 0;    ///< 0: columns only
    bool columnAbsolute = false;
    bool rowAbsolute = false;
    std::uint8_t lowerCase = 0;
    std::size_t length = 0;
};

/// Reads "$B$2", "B" or "2" at the start of the text; length 0 if there is none.
Corner readCorner(std::string_view text)
{
    Corner corner;
    std::size_t at = 0;
    const bool dollar = !text.empty() && text[0] == '$';
    at += dollar;
    const std::size_t letters = at;
    while (at < text.size() && ascii::isLetter(text[at]) && at - letters < 4)
        ++at;
    if (at > letters) {
        const auto column = parseColumnName(text.substr(letters, at - letters));
        if (!column)
            return {};
        corner.column = *column;
        corner.columnAbsolute = dollar;
        for (std::size_t i = letters; i < at; ++i)
            corner.lowerCase =
                static_cast<std::uint8_t>(corner.lowerCase | (text[i] >= 'a') << (i - letters));
    }
    std::size_t digits = at;
    const bool rowDollar = corner.column != 0 ? at < text.size() && text[at] == '$' : dollar;
    digits += corner.column != 0 && rowDollar;
    std::size_t end = digits;
    while (end < text.size() && ascii::isDigit(text[end]))
        ++end;
    if (end > digits && text[digits] != '0' && end - digits <= 7) {
        std::from_chars(text.data() + digits, text.data() + end, corner.row);
        if (corner.row > maxRows)
            return {};
        corner.rowAbsolute = rowDollar;
        at = end;
    } else if (end > digits || corner.column == 0) {
        return {};
    }
    const std::string_view after = text.substr(at);
    if (continuesName(after) || after.starts_with('(') || after.starts_with(wideSigns[0].first) ||
        after.starts_with('$') || after.starts_with('!'))
        return {};
    corner.length = at;
    return corner;
}

class Lexer {
public:
    Lexer(std::string_view text, CellAddress base, const SheetResolver& sheetId, LexedFormula& result)
        : m_text(text)
        , m_base(base)
        , m_sheetId(sheetId)
        , m_result(result)
    {
    }

    Refusal run()
    {
        while (!m_problem) {
            const bool blank = skipBlanks();
            if (m_at == m_text.size())
                break;
            m_blankBefore = blank;
            next();
        }
        m_result.pieces.emplace_back(m_text.substr(m_pieceStart));
        add(Token::Kind::end, 0);
        return m_problem;
    }

private:
    std::string_view rest() const { return m_text.substr(m_at); }

    bool skipBlanks()
    {
        static constexpr std::string_view wideBlank = "\u3000";
        const std::size_t start = m_at;
        while (m_at < m_text.size()) {
            if (isBlank(m_text[m_at]))
                ++m_at;
            else if (rest().starts_with(wideBlank))
                m_at += wideBlank.size();
            else
                break;
        }
        return m_at > start;
    }

    Token& add(Token::Kind kind, std::size_t length)
    {
        Token token;
        token.kind = kind;
        token.text = m_text.substr(m_at, length);
        token.position = m_at;
        token.blankBefore = m_blankBefore;
        m_result.tokens.push_back(token);
        m_at += length;
        return m_result.tokens.back();
    }

    void fail(std::string reason) { m_problem = Refusal(std::move(reason), m_at); }

    void next()
    {
        const char c = m_text[m_at];
        if (c == '"')
            return quotedText();
        if (c == '#')
            return errorValue();
        if (c == '\'')
            return quotedSheet();
        if (ascii::isDigit(c) || c == '.') {
            if (!rowsReference())
                number();
            return;
        }
        for (const auto& [wide, plain] : wideSigns) {
            if (rest().starts_with(wide))
                return sign(plain, wide.size());
        }
        if (c == '$' || isNameCharacter(c))
            return word();
        sign(c, 1);
    }

    void sign(char c, std::size_t length)
    {
        switch (c) {
        case '(':
            add(Token::Kind::open, length);
            return;
        case ')':
            add(Token::Kind::close, length);
            return;
        case ',':
            add(Token::Kind::comma, length);
            return;
        case ';':
            add(Token::Kind::semicolon, length);
            return;
        case '{':
            add(Token::Kind::openArray, length);
            return;
        case '}':
            add(Token::Kind::closeArray, length);
            return;
        default:
            break;
        }
        for (const std::string_view two : {"<=", ">=", "<>"}) {
            if (rest().starts_with(two)) {
                add(Token::Kind::operation, 2);
                return;
            }
        }
        if (std::string_view("+-*/^&=<>%:").find(c) == std::string_view::npos)
            return fail("此处的字符不能用在公式中");
        add(Token::Kind::operation, 1);
    }

    void quotedText()
    {
        std::size_t end = m_at + 1;
        for (;;) {
            end = m_text.find('"', end);
            if (end == std::string_view::npos)
                return fail("文本缺少右引号");
            if (end + 1 < m_text.size() && m_text[end + 1] == '"')
                end += 2;
            else
                break;
        }
        add(Token::Kind::text, end + 1 - m_at);
    }

    void errorValue()
    {
        for (const std::string_view error : cellErrorTexts) {
            if (rest().size() >= error.size() && parseErrorText(rest().substr(0, error.size()))) {
                add(Token::Kind::error, error.size());
                return;
            }
        }
        fail("不认识的错误值");
    }

    void number()
    {
        double value = 0;
        const char* const begin = m_text.data() + m_at;
        const auto [stop, failure] = std::from_chars(begin, m_text.data() + m_text.size(), value);
        if (failure == std::errc::result_out_of_range)
            return fail("数字超出范围");
        if (failure != std::errc())
            return fail("数字写法不对");
        add(Token::Kind::number, static_cast<std::size_t>(stop - begin)).number = value;
    }

    /// "2:9"; a single row number is a number.
    bool rowsReference()
    {
        const Corner first = readCorner(rest());
        if (first.length == 0 || first.column != 0)
            return false;
        return areaReference(m_at, "", 0, 0);
    }

    /// A word: function, reference (with sheet or without), name.
    void word()
    {
        const std::size_t start = m_at;
        if (areaReference(start, "", 0, 0))
            return;
        std::size_t end = m_at;
        while (continuesName(m_text.substr(end)))
            ++end;
        if (end == m_at)
            return fail("引用写法不对");
        if (end < m_text.size() && m_text[end] == '!')
            return sheetReference(start, end, {m_text.substr(start, end - start)});
        if (end < m_text.size() && m_text[end] == ':') { // Sheet1:Sheet3!A1
            std::size_t second = end + 1;
            while (second < m_text.size() && isNameCharacter(m_text[second]))
                ++second;
            if (second > end + 1 && second < m_text.size() && m_text[second] == '!')
                return sheetReference(
                    start, second,
                    {m_text.substr(start, end - start), m_text.substr(end + 1, second - end - 1)});
        }
        std::size_t bracket = end;
        while (bracket < m_text.size() && isBlank(m_text[bracket]))
            ++bracket;
        const std::size_t bracketLength = openingBracket(bracket);
        if (bracketLength > 0) {
            const std::size_t nameLength = end - start;
            Token& token = add(Token::Kind::function, bracket + bracketLength - start);
            token.text = token.text.substr(0, nameLength);
            return;
        }
        add(Token::Kind::name, end - start);
    }

    std::size_t openingBracket(std::size_t at) const
    {
        if (m_text.substr(at).starts_with('('))
            return 1;
        return m_text.substr(at).starts_with(wideSigns[0].first) ? wideSigns[0].first.size() : 0;
    }

    void quotedSheet()
    {
        const std::size_t start = m_at;
        std::string name;
        std::size_t at = m_at + 1;
        for (;; ++at) {
            if (at >= m_text.size())
                return fail("表名缺少右单引号");
            if (m_text[at] == '\'') {
                if (at + 1 < m_text.size() && m_text[at + 1] == '\'')
                    ++at;
                else
                    break;
            }
            name += m_text[at];
        }
        if (at + 1 >= m_text.size() || m_text[at + 1] != '!')
            return fail("表名后面缺少叹号");
        const std::size_t colon = name.find(':');
        if (colon == std::string::npos)
            return sheetReference(start, at + 1, {name});
        sheetReference(start, at + 1, {name.substr(0, colon), name.substr(colon + 1)});
    }

    void sheetReference(std::size_t start, std::size_t mark, const std::vector<std::string_view>& names)
    {
        const int first = m_sheetId(names.front());
        const int last = m_sheetId(names.back());
        const std::string sheetText(m_text.substr(start, mark + 1 - start));
        static constexpr std::string_view broken = "#REF!";
        if (m_text.substr(mark + 1).starts_with(broken)) { // its sheet may be gone as well
            ReferenceSlot slot;
            slot.shape = ReferenceSlot::Shape::broken;
            if (first != 0 && last != 0) {
                slot.firstSheet = first;
                slot.lastSheet = last;
            }
            slot.sheetText = sheetText;
            slot.sheetQuoted = sheetText.starts_with('\'');
            return addSlot(start, std::move(slot), mark + 1 + broken.size());
        }
        if (first == 0 || last == 0)
            return fail("没有名为“" + std::string(first == 0 ? names.front() : names.back()) + "”的表");
        m_at = mark + 1;
        if (areaReference(start, sheetText, first, last))
            return;
        fail("表名后面缺少单元格");
    }

    /// A cell, an area, columns or rows at m_at; false and nothing consumed if there is none.
    bool areaReference(std::size_t start, const std::string& sheetText, int firstSheet, int lastSheet)
    {
        const Corner first = readCorner(rest());
        if (first.length == 0)
            return false;
        Corner second;
        const std::string_view after = rest().substr(first.length);
        if (after.starts_with(':'))
            second = readCorner(after.substr(1));
        const bool pair = second.length > 0 && (first.column == 0) == (second.column == 0) &&
                          (first.row == 0) == (second.row == 0);
        if (!pair && (first.column == 0 || first.row == 0))
            return false; // a lone column or row is a name or a number
        ReferenceSlot slot;
        slot.sheetText = sheetText;
        slot.sheetQuoted = sheetText.starts_with('\'');
        slot.firstSheet = firstSheet;
        slot.lastSheet = lastSheet;
        slot.shape = !pair               ? ReferenceSlot::Shape::cell
                     : first.column == 0 ? ReferenceSlot::Shape::rows
                     : first.row == 0    ? ReferenceSlot::Shape::columns
                                         : ReferenceSlot::Shape::area;
        place(first, slot.left, slot.top, slot.lowerCaseLeft);
        if (pair)
            place(second, slot.right, slot.bottom, slot.lowerCaseRight);
        addSlot(start, std::move(slot), m_at + first.length + (pair ? 1 + second.length : 0));
        return true;
    }

    void place(const Corner& corner, AxisPoint& column, AxisPoint& row, std::uint8_t& lowerCase) const
    {
        if (corner.column != 0)
            column = {corner.columnAbsolute ? corner.column : corner.column - m_base.column,
                      corner.columnAbsolute};
        if (corner.row != 0)
            row = {corner.rowAbsolute ? corner.row : corner.row - m_base.row, corner.rowAbsolute};
        lowerCase = corner.lowerCase;
    }

    void addSlot(std::size_t start, ReferenceSlot slot, std::size_t end)
    {
        m_result.pieces.emplace_back(m_text.substr(m_pieceStart, start - m_pieceStart));
        m_at = start;
        add(Token::Kind::reference, end - start).index = static_cast<int>(m_result.slots.size());
        m_result.slots.push_back(std::move(slot));
        m_pieceStart = m_at;
    }

    std::string_view m_text;
    CellAddress m_base;
    const SheetResolver& m_sheetId;
    LexedFormula& m_result;
    Refusal m_problem;
    std::size_t m_at = 0;
    std::size_t m_pieceStart = 0;
    bool m_blankBefore = false;
};

} // namespace

Refusal lexFormula(std::string_view text, CellAddress base, const SheetResolver& sheetId,
                   LexedFormula& result)
{
    return Lexer(text, base, sheetId, result).run();
}

} // namespace spreadsheet
