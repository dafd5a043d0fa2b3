#include "spreadsheet/calculation/Call.h"
#include "spreadsheet/display/number_format.h"
#include "spreadsheet/functions/function_families.h"
#include "spreadsheet/functions/text/double_bytes.h"
#include "spreadsheet/functions/text/text_parts.h"
#include "spreadsheet/values/characters.h"
#include "spreadsheet/values/decimal.h"
#include "spreadsheet/values/folding.h"
#include "text/ascii.h"

#include <algorithm>

namespace spreadsheet {

// Positions count UTF-16 units, as formulas from other programs expect, while texts are UTF-8: every function
// that takes a position converts it and never cuts a character in two. Results grow with repeated calls, so
// length is checked before a text is put together, not after.

namespace {

/// Characters that a cell can hold; longer results are #VALUE!.
constexpr std::size_t longestText = 32767;
/// More bytes than so many characters take: nothing is put together beyond it.
constexpr std::size_t mostBytes = 3 * longestText;

Operand textResult(const std::string& text)
{
    if (text.size() > longestText && unitCount(text) > longestText)
        return CellError::value;
    return Value::text(text);
}

/// A function of one text.
template <auto function>
Operand ofText(Call& call)
{
    const std::string text = call.text(0);
    return call.failed() ? call.error() : Operand(function(text));
}

/// Part of a text by UTF-16 units, from 0.
std::string_view unitsOf(std::string_view text, std::size_t first, std::size_t count)
{
    const std::size_t begin = byteOfUnit(text, first);
    return text.substr(begin, byteOfUnit(text.substr(begin), count));
}

struct Units {
    static std::size_t count(std::string_view text) { return unitCount(text); }
    static std::string_view part(std::string_view text, std::size_t first, std::size_t count)
    {
        return unitsOf(text, first, count);
    }
};

/// FIND and SEARCH.
template <bool withWildcards>
Operand position(Call& call)
{
    const std::string wanted = call.text(0);
    const std::string text = call.text(1);
    const int first = call.integer(2, 1);
    if (call.failed())
        return call.error();
    const std::size_t last = withWildcards ? unitCount(text) + 1 : std::max<std::size_t>(unitCount(text), 1);
    if (first < 1 || static_cast<std::size_t>(first) > last)
        return CellError::value;
    const std::size_t from = byteOfUnit(text, static_cast<std::size_t>(first - 1));
    const std::optional<std::size_t> found = placeOf(wanted, text, from, withWildcards);
    return found ? Operand(static_cast<double>(unitOfByte(text, *found)) + 1) : Operand(CellError::value);
}

Operand replaced(Call& call)
{
    const std::string text = call.text(0);
    const int first = call.integer(1);
    const int count = call.integer(2);
    const std::string inserted = call.text(3);
    if (call.failed())
        return call.error();
    if (first < 1 || count < 0)
        return CellError::value;
    const std::string_view before = unitsOf(text, 0, static_cast<std::size_t>(first - 1));
    const std::string_view after = std::string_view(text).substr(
        before.size() +
        unitsOf(std::string_view(text).substr(before.size()), 0, static_cast<std::size_t>(count)).size());
    return textResult(std::string(before) + inserted + std::string(after));
}

Operand substituted(Call& call)
{
    const std::string text = call.text(0);
    const std::string old = call.text(1);
    const std::string inserted = call.text(2);
    const int which = call.integer(3, 0); // 0: all of them
    if (call.failed())
        return call.error();
    if (call.count() > 3 && which < 1)
        return CellError::value;
    if (old.empty())
        return Value::text(text);
    std::string result;
    std::size_t at = 0;
    for (int occurrence = 1;; ++occurrence) {
        const std::size_t found = text.find(old, at);
        if (found == text.npos)
            break;
        result.append(text, at, found - at);
        result += which == 0 || which == occurrence ? inserted : old;
        if (result.size() > mostBytes)
            return CellError::value;
        at = found + old.size();
    }
    return textResult(result.append(text, at));
}

/// Takes blanks off both ends and leaves one between words.
Value trimmed(std::string_view text)
{
    std::string result;
    for (const char c : text) {
        if (c != ' ' || (!result.empty() && result.back() != ' '))
            result += c;
    }
    if (result.ends_with(' '))
        result.pop_back();
    return Value::text(result);
}

Value withoutControls(std::string_view text)
{
    std::string result;
    for (const char c : text) {
        if (static_cast<unsigned char>(c) >= ' ')
            result += c;
    }
    return Value::text(result);
}

template <auto convert>
Value converted(std::string_view text)
{
    std::string result;
    for (std::size_t at = 0; at < text.size();)
        appendCharacter(result, convert(takeCharacter(text, at)));
    return Value::text(result);
}

/// A capital at the beginning of every word.
Value proper(std::string_view text)
{
    std::string result;
    bool inWord = false;
    for (std::size_t at = 0; at < text.size();) {
        const char32_t c = takeCharacter(text, at);
        appendCharacter(result, inWord ? lowerCharacter(c) : upperCharacter(c));
        inWord = isLetter(c);
    }
    return Value::text(result);
}

Operand repeated(Call& call)
{
    const std::string text = call.text(0);
    const double times = std::trunc(call.number(1));
    if (call.failed())
        return call.error();
    if (times < 0 || times * static_cast<double>(unitCount(text)) > static_cast<double>(longestText))
        return CellError::value;
    std::string result;
    for (int i = 0; !text.empty() && i < times; ++i)
        result += text;
    return Value::text(result);
}

Operand exact(Call& call)
{
    const std::string a = call.text(0);
    const std::string b = call.text(1);
    return call.failed() ? call.error() : truth(a == b);
}

Operand concatenated(Call& call)
{
    std::string result;
    for (std::size_t argument = 0; argument < call.count(); ++argument)
        result += call.text(argument);
    return call.failed() ? call.error() : textResult(result);
}

/// Elements of an array that are made while a value is turned into a text.
double workOfPiece(const Value& value)
{
    return value.isEmpty() ? 4 : 64;
}

/// Every value of the arguments as a piece; the call fails if they are too long together.
std::vector<std::string> pieces(Call& call)
{
    std::vector<std::string> all;
    std::size_t bytes = 0;
    for (std::size_t argument = 0; argument < call.count(); ++argument) {
        call.eachValue(argument, [&](const Value& value) {
            call.pay(workOfPiece(value));
            if (call.failed())
                return;
            const Value text = toText(value);
            if (text.isError())
                call.fail(text.error());
            else if ((bytes += text.textView().size()) > mostBytes)
                call.fail(CellError::value);
            else
                all.emplace_back(text.textView());
        });
    }
    return all;
}

Operand concatenatedAll(Call& call)
{
    std::string result;
    for (const std::string& piece : pieces(call))
        result += piece;
    return call.failed() ? call.error() : textResult(result);
}

/// Pieces with separators between them.
class JoinedText {
public:
    JoinedText(Call& call, std::vector<std::string> separators)
        : m_call(call)
        , m_separators(std::move(separators))
    {
    }

    /// True if a separator has letters, so that empty pieces show.
    bool separates() const
    {
        return std::ranges::any_of(m_separators, [](const std::string& text) { return !text.empty(); });
    }
    /// The call fails if the text gets too long.
    void add(std::string_view piece)
    {
        if (m_count > 0 && !m_separators.empty())
            m_text += m_separators[(m_count - 1) % m_separators.size()]; // several take turns
        m_text += piece;
        ++m_count;
        if (m_text.size() > mostBytes)
            m_call.fail(CellError::value);
    }
    const std::string& text() const { return m_text; }

private:
    Call& m_call;
    std::vector<std::string> m_separators;
    std::string m_text;
    std::size_t m_count = 0;
};

/// Calls `use(const Value&)` for every cell of a reference row by row, beyond the sheet's used part too, and
/// for every other value, until the call fails.
template <typename Use>
void eachPlace(Call& call, std::size_t argument, Use&& use)
{
    if (!call[argument].isReference())
        return call.eachValue(argument, use);
    for (const Area& area : call[argument].areas()) {
        const CellRange& cells = area.cells;
        for (int row = cells.top; row <= cells.bottom; ++row) {
            for (int column = cells.left; column <= cells.right && !call.failed(); ++column)
                use(cellValue(call.place().book, area.sheet, {column, row}));
        }
    }
}

std::vector<std::string> separatorsOf(Call& call)
{
    std::vector<std::string> separators;
    eachPlace(call, 0, [&](const Value& value) {
        call.pay(workOfPiece(value));
        if (value.isError())
            call.fail(value.error());
        else if (!call.failed() && separators.size() <= longestText) // more come never to their turn
            separators.emplace_back(toText(value).textView());
    });
    return separators;
}

Operand joined(Call& call)
{
    JoinedText text(call, separatorsOf(call));
    const bool withoutEmpty = call.logical(1);
    const auto take = [&](const Value& value) {
        call.pay(workOfPiece(value));
        const Value piece = toText(value);
        if (piece.isError())
            call.fail(piece.error());
        else if (!call.failed() && !(withoutEmpty && piece.textView().empty()))
            text.add(piece.textView());
    };
    const bool gapsShow = !withoutEmpty && text.separates();
    for (std::size_t argument = 2; argument < call.count() && !call.failed(); ++argument) {
        if (gapsShow)
            eachPlace(call, argument, take);
        else
            call.eachValue(argument, take);
    }
    return call.failed() ? call.error() : textResult(text.text());
}

Operand formatted(Call& call)
{
    const Value value = call.value(0);
    const std::string code = call.text(1);
    if (value.isError())
        return value;
    if (call.failed())
        return call.error();
    const auto text = formattedText(value, code, call.place().book.countsFrom1904);
    return text ? textResult(*text) : Operand(CellError::value);
}

Operand numberValue(Call& call)
{
    const double number = call.number(0);
    if (!call.failed() && call.value(0).isBoolean())
        return CellError::value;
    return call.failed() ? call.error() : Operand(number);
}

Operand fixed(Call& call)
{
    const double number = call.number(0);
    const int decimals = call.integer(1, 2);
    const bool ungrouped = call.logical(2, false);
    if (call.failed())
        return call.error();
    if (decimals > 127)
        return CellError::value;
    std::string code = ungrouped ? "0" : "#,##0";
    if (decimals > 0)
        code += "." + std::string(static_cast<std::size_t>(decimals), '0');
    const double rounded = decimals < 0 ? roundDecimal(number, decimals) : number;
    return Value::text(*formattedText(rounded, code));
}

/// The text itself if it is one, else the empty text; of a range the first cell counts.
Operand asText(Call& call)
{
    const Value value = call[0].isReference() || call[0].isArray() ? call.element(0, 0, 0) : call.value(0);
    return value.isText() || value.isError() ? Operand(value) : Operand(Value::text(""));
}

Operand characterOfCode(Call& call)
{
    const int code = call.integer(0);
    if (call.failed())
        return call.error();
    const auto wide = characterOfDoubleByte(code);
    if (code < 1 || (code > 255 && !wide))
        return CellError::value;
    std::string text;
    appendCharacter(text, wide.value_or(characterOfByte(static_cast<unsigned char>(code))));
    return Value::text(text);
}

Operand codeOfCharacter(Call& call)
{
    const std::string text = call.text(0);
    if (call.failed())
        return call.error();
    if (text.empty())
        return CellError::value;
    std::size_t at = 0;
    const char32_t c = takeCharacter(text, at);
    const unsigned char byte = byteOfCharacter(c);
    const auto wide = byte == '?' && c != '?' ? doubleByteOfCharacter(c) : std::nullopt;
    return static_cast<double>(wide.value_or(byte));
}

Operand characterOfUnicode(Call& call)
{
    const int code = call.integer(0);
    if (call.failed())
        return call.error();
    if (code < 1 || code > 0x10FFFF || (code >= 0xD800 && code < 0xE000))
        return CellError::value;
    std::string text;
    appendCharacter(text, static_cast<char32_t>(code));
    return Value::text(text);
}

Operand unicodeOfCharacter(Call& call)
{
    const std::string text = call.text(0);
    if (call.failed())
        return call.error();
    if (text.empty())
        return CellError::value;
    std::size_t at = 0;
    return static_cast<double>(takeCharacter(text, at));
}

/// The reading of a text in kana; cells keep none here, so it is the text itself.
Operand reading(Call& call)
{
    if (!call[0].isReference() && !call[0].isArray())
        return call.value(0).isError() ? call.value(0) : Operand(CellError::value);
    const Value text = toText(call.element(0, 0, 0));
    return text;
}

/// Bytes that may not stand in an address as "%" and two digits.
Operand encodedAddress(Call& call)
{
    const std::string text = call.text(0);
    if (call.failed())
        return call.error();
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string encoded;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        const bool plain = ascii::isLetter(c) || ascii::isDigit(c) ||
                           std::string_view("-_.~").find(c) != std::string_view::npos;
        if (plain)
            encoded += c;
        else
            ((encoded += '%') += digits[byte >> 4]) += digits[byte & 15];
    }
    return textResult(encoded);
}

constexpr auto textFamily = FunctionFamily::text;

const FunctionDescriptor textTable[] = {
    {"LEN", 1, 1, "v", textFamily, "文本", "返回文本的字符个数",
     ofText<[](std::string_view text) { return static_cast<double>(unitCount(text)); }>},
    {"LEFT", 1, 2, "vv", textFamily, "文本,[字符数]", "返回文本开头的若干字符", leftPart<Units>},
    {"RIGHT", 1, 2, "vv", textFamily, "文本,[字符数]", "返回文本末尾的若干字符", rightPart<Units>},
    {"MID", 3, 3, "vvv", textFamily, "文本,开始位置,字符数", "返回文本中从指定位置开始的若干字符",
     middlePart<Units>},
    {"FIND", 2, 3, "vvv", textFamily, "要找的文本,文本,[开始位置]",
     "返回一段文本在另一段文本中的位置，区分大小写", position<false>},
    {"SEARCH", 2, 3, "vvv", textFamily, "要找的文本,文本,[开始位置]",
     "返回一段文本在另一段文本中的位置，不区分大小写，可用通配符", position<true>},
    {"REPLACE", 4, 4, "vvvv", textFamily, "文本,开始位置,字符数,新文本", "将文本中指定位置的字符替换为新文本",
     replaced},
    {"SUBSTITUTE", 3, 4, "vvvv", textFamily, "文本,旧文本,新文本,[第几个]", "将文本中的旧文本替换为新文本",
     substituted},
    {"TRIM", 1, 1, "v", textFamily, "文本", "删除文本首尾的空格，词间只留一个空格", ofText<trimmed>},
    {"CLEAN", 1, 1, "v", textFamily, "文本", "删除文本中不能打印的字符", ofText<withoutControls>},
    {"UPPER", 1, 1, "v", textFamily, "文本", "将文本转换为大写", ofText<converted<upperCharacter>>},
    {"LOWER", 1, 1, "v", textFamily, "文本", "将文本转换为小写", ofText<converted<lowerCharacter>>},
    {"PROPER", 1, 1, "v", textFamily, "文本", "将每个单词的首字母转换为大写", ofText<proper>},
    {"REPT", 2, 2, "vv", textFamily, "文本,次数", "将文本重复若干次", repeated},
    {"EXACT", 2, 2, "vv", textFamily, "文本1,文本2", "比较两段文本是否完全相同，区分大小写", exact},
    {"CONCATENATE", 1, manyArguments, "v", textFamily, "文本1,[文本2,…]", "将若干段文本连接起来",
     concatenated},
    {"CONCAT", 1, manyArguments, "r", textFamily, "文本1,[文本2,…]", "将若干文本或区域中的文本连接起来",
     concatenatedAll},
    {"TEXTJOIN", 3, manyArguments, "rvr", textFamily, "分隔符,忽略空值,文本1,[文本2,…]",
     "用分隔符将若干文本或区域中的文本连接起来", joined},
    {"TEXT", 2, 2, "vv", textFamily, "值,格式", "按指定的数字格式将值转换为文本", formatted},
    {"VALUE", 1, 1, "v", textFamily, "文本", "将表示数字的文本转换为数字", numberValue},
    {"FIXED", 1, 3, "vvv", textFamily, "数值,[小数位数],[不分节]", "将数值舍入到指定位数并返回文本", fixed},
    {"T", 1, 1, "c", textFamily, "值", "值为文本时返回该文本，否则返回空文本", asText},
    {"CHAR", 1, 1, "v", textFamily, "代码", "返回代码所对应的字符", characterOfCode},
    {"CODE", 1, 1, "v", textFamily, "文本", "返回文本首字符的代码", codeOfCharacter},
    {"PHONETIC", 1, 1, "r", textFamily, "引用", "返回文本的拼音字符；单元格没有拼音时返回文本本身", reading},
    {"ENCODEURL", 1, 1, "v", textFamily, "文本", "返回按网址规则编码的文本", encodedAddress},
    {"UNICHAR", 1, 1, "v", textFamily, "代码", "返回 Unicode 代码所对应的字符", characterOfUnicode},
    {"UNICODE", 1, 1, "v", textFamily, "文本", "返回文本首字符的 Unicode 代码", unicodeOfCharacter},
};

} // namespace

std::span<const FunctionDescriptor> textFunctions()
{
    return textTable;
}

} // namespace spreadsheet
