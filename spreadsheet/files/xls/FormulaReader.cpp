#include "spreadsheet/files/xls/FormulaReader.h"

#include "spreadsheet/display/display_text.h"
#include "spreadsheet/files/exchange/function_numbers.h"
#include "spreadsheet/files/exchange/unicode_text.h"
#include "spreadsheet/files/xls/cell_codes.h"
#include "spreadsheet/files/xls/records.h"
#include "spreadsheet/files/xls/tokens.h"
#include "spreadsheet/formula/FormulaPool.h"
#include "spreadsheet/formula/operator_table.h"
#include "text/quotes.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace spreadsheet {

using namespace xls;

// Tokens become a formula's text, not code of ours: then there is one way into the sheet, which checks what
// a typed formula is checked for, and the user sees the formula as it will be stored. Tokens keep brackets
// and most blanks, so the text is put together from a stack of texts. What a token means that we do not know
// cannot be guessed: its formula gives way to the value that the file has beside it.

namespace {

std::string numberText(double number)
{
    std::array<char, 40> digits;
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
    std::replace(digits.data(), end, 'e', 'E');
    return {digits.data(), end};
}

std::string columnText(int column, bool isRelative)
{
    return (isRelative ? "" : "$") + columnName(column + 1);
}

std::string rowText(int row, bool isRelative)
{
    return (isRelative ? "" : "$") + std::to_string(row + 1);
}

} // namespace

std::optional<std::string> FormulaReader::read(Bytes tokens, Bytes extra, CellAddress base)
{
    m_tokens = tokens;
    m_extra = extra;
    m_base = base;
    m_stack.clear();
    m_problem.clear();
    m_blanks = m_blanksBeforeOpening = m_blanksBeforeClosing = 0;
    while (!m_tokens.empty()) {
        if (!token(take<std::uint8_t>(m_tokens)) || !m_problem.empty())
            return std::nullopt;
    }
    if (m_stack.size() != 1) {
        fail("公式记号不完整");
        return std::nullopt;
    }
    return std::move(m_stack.back());
}

bool FormulaReader::fail(const char* problem)
{
    if (m_problem.empty())
        m_problem = problem;
    return false;
}

bool FormulaReader::push(std::string operand)
{
    if (operand.size() > maxFormulaText)
        return fail("公式太长");
    m_stack.push_back(std::move(operand));
    return true;
}

std::string FormulaReader::blanksBefore()
{
    return std::string(std::exchange(m_blanks, 0), ' ');
}

bool FormulaReader::token(std::uint8_t token)
{
    if (token >= 0x80)
        return fail("公式记号不认识");
    return token < tokenArray ? basicToken(token) : operandToken(baseToken(token));
}

bool FormulaReader::basicToken(std::uint8_t token)
{
    if (const OperatorRow* const row = findOperator(token))
        return row->place == OperatorRow::Place::between ? binary(row->text) : unary(*row);
    switch (token) {
    case tokenBrackets:
        return brackets();
    case tokenMissing:
        return push(blanksBefore());
    case tokenText:
        return text();
    case tokenAttribute:
        return attribute();
    case tokenError:
        return error();
    case tokenBoolean:
        return push(blanksBefore() + (take<std::uint8_t>(m_tokens) ? "TRUE" : "FALSE"));
    case tokenInteger:
        return push(blanksBefore() + std::to_string(take<std::uint16_t>(m_tokens)));
    case tokenNumber:
        return push(blanksBefore() + numberText(take<double>(m_tokens)));
    case tokenTable:
        return fail("模拟运算表");
    case tokenExtended:
        return fail("自然语言引用");
    default: // tokenSheet and tokenEndSheet belong to older versions
        return fail("公式记号不认识");
    }
}

bool FormulaReader::operandToken(std::uint8_t token)
{
    switch (token) {
    case tokenArray:
        return arrayConstant();
    case tokenFunction: {
        const auto number = take<std::uint16_t>(m_tokens);
        const XlsFunction* known = xlsFunction(number);
        return known ? function(number, static_cast<std::size_t>(known->minArguments))
                     : fail("函数编号不认识");
    }
    case tokenVariableFunction: {
        const auto arguments = take<std::uint8_t>(m_tokens) & 0x7Fu;
        return function(take<std::uint16_t>(m_tokens) & 0x7FFF, arguments);
    }
    case tokenName:
        return name();
    case tokenExternName:
        return externName();
    case tokenReference:
    case tokenArea:
        return reference({}, token == tokenArea, false);
    case tokenRelativeReference:
    case tokenRelativeArea:
        return reference({}, token == tokenRelativeArea, true);
    case tokenBrokenReference:
    case tokenBrokenArea:
        return skip(token == tokenBrokenArea ? 8 : 4) && push(blanksBefore() + "#REF!");
    case tokenReference3d:
    case tokenArea3d:
        return reference3d(token == tokenArea3d, false);
    case tokenBrokenReference3d:
    case tokenBrokenArea3d:
        return reference3d(token == tokenBrokenArea3d, true);
    case tokenMemoryArea:
        return skipMemory(6);
    case tokenMemoryError:
    case tokenMemoryNone:
        return skip(6);
    case tokenMemoryFunction:
    case tokenMemoryAreaName:
    case tokenMemoryNoneName:
        return skip(2); // what it was computed from follows as tokens of its own
    default:
        return fail("公式记号不认识");
    }
}

bool FormulaReader::skip(std::size_t bytes)
{
    if (m_tokens.size() < bytes)
        return fail("公式记号被截断");
    m_tokens = m_tokens.subspan(bytes);
    return true;
}

/// Rectangles of a computed area stand behind the formula.
bool FormulaReader::skipMemory(std::size_t bytes)
{
    constexpr std::size_t rectangle = 8;
    const std::size_t count = take<std::uint16_t>(m_extra);
    if (m_extra.size() < count * rectangle)
        return fail("公式记号被截断");
    m_extra = m_extra.subspan(count * rectangle);
    return skip(bytes);
}

bool FormulaReader::binary(std::string_view operation)
{
    if (m_stack.size() < 2)
        return fail("公式记号缺少操作数");
    const std::string right = std::move(m_stack.back());
    m_stack.pop_back();
    std::string& left = m_stack.back();
    if (operation != " ")
        left += blanksBefore();
    m_blanks = 0;
    left += operation;
    left += right;
    return left.size() <= maxFormulaText || fail("公式太长");
}

bool FormulaReader::unary(const OperatorRow& row)
{
    if (m_stack.empty())
        return fail("公式记号缺少操作数");
    if (row.place == OperatorRow::Place::behind)
        m_stack.back() += row.text;
    else
        m_stack.back() = blanksBefore().append(row.text) + m_stack.back();
    return m_stack.back().size() <= maxFormulaText || fail("公式太长");
}

bool FormulaReader::brackets()
{
    if (m_stack.empty())
        return fail("公式记号缺少操作数");
    std::string& inside = m_stack.back();
    inside = std::string(std::exchange(m_blanksBeforeOpening, 0), ' ') + "(" + inside +
             std::string(std::exchange(m_blanksBeforeClosing, 0), ' ') + ")";
    return inside.size() <= maxFormulaText || fail("公式太长");
}

bool FormulaReader::attribute()
{
    const auto flags = take<std::uint8_t>(m_tokens);
    const auto data = take<std::uint16_t>(m_tokens);
    if (flags & attributeChoose)
        return skip((std::size_t(data) + 1) * 2);
    if (flags & attributeSum)
        return function(4, 1); // SUM of one argument
    if (flags & attributeSpace) {
        const std::size_t count = data >> 8;
        switch (data & 0xFF) {
        case 0:
        case 6:
            m_blanks = count;
            break;
        case 2:
            m_blanksBeforeOpening = count;
            break;
        case 4:
            m_blanksBeforeClosing = count;
            break;
        default: // line breaks
            break;
        }
    }
    return true;
}

std::string FormulaReader::takeCharacters(Bytes& from, std::size_t count)
{
    const bool isWide = take<std::uint8_t>(from) & 1;
    const std::size_t size = isWide ? 2 * count : count;
    if (from.size() < size) {
        fail("公式记号被截断");
        return {};
    }
    std::string text;
    std::u16string units;
    for (std::size_t i = 0; i < count; ++i)
        units += isWide ? static_cast<char16_t>(numberAt<std::uint16_t>(from, 2 * i))
                        : static_cast<char16_t>(from[i]);
    from = from.subspan(size);
    return utf8Of(units);
}

bool FormulaReader::text()
{
    const std::size_t count = take<std::uint8_t>(m_tokens);
    return push(blanksBefore() + quotes::around(takeCharacters(m_tokens, count), '"'));
}

bool FormulaReader::error()
{
    const auto known = errorOfCode(take<std::uint8_t>(m_tokens));
    return known ? push(blanksBefore() + std::string(errorText(*known))) : fail("错误值编号不认识");
}

bool FormulaReader::function(int number, std::size_t arguments)
{
    if (m_stack.size() < arguments || (number == functionByName && arguments == 0))
        return fail("公式记号缺少操作数");
    std::size_t first = m_stack.size() - arguments;
    std::string call = blanksBefore();
    if (number == functionByName) {
        call += withoutLaterPrefix(m_stack[first++]);
    } else {
        const XlsFunction* known = xlsFunction(number);
        if (!known)
            return fail("函数编号不认识");
        call += known->name;
    }
    call += '(';
    for (std::size_t i = first; i < m_stack.size(); ++i) {
        if (i > first)
            call += ',';
        call += m_stack[i];
    }
    call += std::string(std::exchange(m_blanksBeforeClosing, 0), ' ') + ")";
    m_stack.resize(m_stack.size() - arguments);
    return push(std::move(call));
}

bool FormulaReader::name()
{
    const auto number = take<std::uint16_t>(m_tokens);
    const std::string* known = m_links.name(number);
    return skip(2) && (known ? push(blanksBefore() + *known) : fail("名称编号不认识"));
}

bool FormulaReader::externName()
{
    const auto sheet = take<std::uint16_t>(m_tokens);
    const auto number = take<std::uint16_t>(m_tokens);
    const std::string* known = m_links.externName(sheet, number);
    return skip(2) && (known ? push(blanksBefore() + *known) : fail("引用其他文件"));
}

/// @param isRelative  rows and columns marked as relative are distances from the formula's cell
bool FormulaReader::reference(const std::string& prefix, bool isArea, bool isRelative)
{
    const auto row1 = take<std::uint16_t>(m_tokens);
    const auto row2 = isArea ? take<std::uint16_t>(m_tokens) : row1;
    const auto column1 = take<std::uint16_t>(m_tokens);
    const auto column2 = isArea ? take<std::uint16_t>(m_tokens) : column1;
    const auto rowOf = [&](std::uint16_t row, std::uint16_t flags) {
        const bool shifted = isRelative && (flags & relativeRow);
        return (shifted ? row + m_base.row - 1 : row) & (xls::maxRows - 1);
    };
    const auto columnOf = [&](std::uint16_t word) {
        const bool shifted = isRelative && (word & relativeColumn);
        return ((word & 0xFF) + (shifted ? m_base.column - 1 : 0)) & (xls::maxColumns - 1);
    };
    const int top = rowOf(row1, column1), bottom = rowOf(row2, column2);
    const int left = columnOf(column1), right = columnOf(column2);
    const bool allRows = isArea && top == 0 && bottom == xls::maxRows - 1;
    const bool allColumns = isArea && !allRows && left == 0 && right == xls::maxColumns - 1;
    const auto corner = [&](int column, int row, std::uint16_t flags) {
        return (allColumns ? std::string() : columnText(column, flags & relativeColumn)) +
               (allRows ? std::string() : rowText(row, flags & relativeRow));
    };
    std::string text = blanksBefore() + prefix + corner(left, top, column1);
    if (isArea)
        text += ":" + corner(right, bottom, column2);
    return push(std::move(text));
}

bool FormulaReader::reference3d(bool isArea, bool isBroken)
{
    const auto prefix = m_links.sheetPrefixOf(take<std::uint16_t>(m_tokens));
    if (!prefix)
        return fail("引用其他文件");
    if (!isBroken && !prefix->empty())
        return reference(*prefix, isArea, false);
    return skip(isArea ? 8 : 4) && push(blanksBefore() + *prefix + "#REF!");
}

std::optional<std::string> FormulaReader::arrayElement()
{
    constexpr std::size_t payload = 8;
    switch (take<std::uint8_t>(m_extra)) {
    case 0x00:
        take<std::uint64_t>(m_extra);
        return quotes::around({}, '"');
    case 0x01:
        return numberText(take<double>(m_extra));
    case 0x02: {
        const std::size_t count = take<std::uint16_t>(m_extra);
        return quotes::around(takeCharacters(m_extra, count), '"');
    }
    case 0x04:
        return take<std::uint64_t>(m_extra) & 1 ? "TRUE" : "FALSE";
    case 0x10: {
        static_assert(sizeof(std::uint64_t) == payload);
        const auto known = errorOfCode(static_cast<std::uint8_t>(take<std::uint64_t>(m_extra)));
        return known ? std::optional(std::string(errorText(*known))) : std::nullopt;
    }
    default:
        return std::nullopt;
    }
}

bool FormulaReader::arrayConstant()
{
    if (!skip(7))
        return false;
    const std::size_t columns = take<std::uint8_t>(m_extra) + std::size_t(1);
    const std::size_t rows = take<std::uint16_t>(m_extra) + std::size_t(1);
    std::string text = blanksBefore() + "{";
    for (std::size_t i = 0; i < rows * columns; ++i) {
        if (i > 0)
            text += i % columns == 0 ? ';' : ',';
        const auto element = arrayElement();
        if (!element || !m_problem.empty() || text.size() > maxFormulaText)
            return fail("数组常量不完整或太长");
        text += *element;
    }
    return push(text + "}");
}

} // namespace spreadsheet
