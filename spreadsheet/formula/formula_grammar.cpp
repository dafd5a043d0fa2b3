#include "spreadsheet/formula/formula_grammar.h"

#include "spreadsheet/formula/FunctionDescriptor.h"
#include "spreadsheet/formula/operator_table.h"
#include "spreadsheet/values/Array.h"
#include "spreadsheet/values/case_fold.h"
#include "text/quotes.h"

#include <optional>
#include <utility>

namespace spreadsheet {

// Formulas come from files and from the clipboard, so nesting must not use up the program's stack: operators
// and brackets wait on stacks of our own. What reads formulas, the compiler and other programs' notations,
// listens to the one who knows how they are written.

namespace {

/// An open bracket or call; the first one is the whole formula.
struct OpenBracket {
    bool isCall = false;
    std::size_t at = 0;        ///< its opening token
    std::size_t operators = 0; ///< size of the operator stack when it opened
    int arguments = 0;         ///< finished ones
};

struct WaitingOperator {
    const OperatorRow* row;
    std::size_t at;
};

/// TRUE or FALSE as a formula spells them; nothing for other names.
std::optional<Value> truthValue(const Token& token)
{
    const std::string folded = token.kind == Token::Kind::name ? foldedName(token.text) : std::string();
    return folded == "TRUE" || folded == "FALSE" ? std::optional(Value::boolean(folded == "TRUE"))
                                                 : std::nullopt;
}

/// The value of a token that is a constant.
std::optional<Value> constantValue(const Token& token)
{
    switch (token.kind) {
    case Token::Kind::number:
        return Value(token.number);
    case Token::Kind::text:
        return Value::text(quotes::within(token.text));
    case Token::Kind::error:
        return Value(*parseErrorText(token.text));
    default:
        return truthValue(token);
    }
}

class FormulaParser {
public:
    FormulaParser(const std::vector<Token>& tokens, FormulaListener& listener, Unions unions)
        : m_tokens(tokens)
        , m_listener(listener)
        , m_unions(unions)
        , m_open(1)
    {
    }

    Refusal run()
    {
        for (m_at = 0; !m_problem && token().kind != Token::Kind::end; ++m_at) {
            if (m_expectOperand)
                operand();
            else
                afterOperand();
        }
        if (!m_problem && m_open.size() > 1)
            m_problem = Refusal("缺少右括号", m_tokens[bracket().at].position);
        if (!m_problem && m_expectOperand)
            fail(m_tokens.size() == 1 ? "公式是空的" : "公式不完整");
        if (!m_problem)
            reduce(-1);
        return std::move(m_problem);
    }

private:
    const Token& token() const { return m_tokens[m_at]; }
    OpenBracket& bracket() { return m_open.back(); }
    void fail(const char* reason) { m_problem = Refusal(reason, token().position); }

    void reduce(int downTo)
    {
        while (m_operators.size() > bracket().operators && m_operators.back().row->precedence >= downTo) {
            const WaitingOperator waiting = m_operators.back();
            m_operators.pop_back();
            m_listener.operation(*waiting.row, waiting.at);
        }
    }

    // Where an operand may stand.

    void operand()
    {
        switch (token().kind) {
        case Token::Kind::number:
        case Token::Kind::text:
        case Token::Kind::error:
        case Token::Kind::reference:
        case Token::Kind::name:
            return plainOperand();
        case Token::Kind::function:
        case Token::Kind::open:
            return open();
        case Token::Kind::close:
            return closeEmpty();
        case Token::Kind::comma:
            return leftOut();
        case Token::Kind::openArray:
            return array();
        case Token::Kind::operation:
            return sign();
        default:
            return fail("此处缺少数值或引用");
        }
    }

    void plainOperand()
    {
        m_expectOperand = false;
        if (token().kind == Token::Kind::reference)
            m_listener.reference(m_at);
        else if (const std::optional<Value> value = constantValue(token()))
            m_listener.constant(m_at, *value);
        else
            m_problem = m_listener.name(m_at);
    }

    void sign()
    {
        if (const OperatorRow* const sign = findOperator(token().text, OperatorRow::Place::before))
            m_operators.push_back({sign, m_at});
        else
            return fail("此处缺少数值或引用");
        if (m_operators.size() > bracket().operators + 4 * maxNesting)
            fail("符号太多");
    }

    void array()
    {
        const std::size_t start = m_at;
        std::vector<std::vector<Value>> rows(1);
        for (++m_at;; ++m_at) {
            rows.back().push_back(arrayElement());
            if (m_problem)
                return;
            const Token::Kind kind = token().kind;
            if (kind == Token::Kind::closeArray)
                break;
            if (kind == Token::Kind::semicolon)
                rows.emplace_back();
            else if (kind != Token::Kind::comma)
                return fail("数组常量写法不对");
        }
        auto array = std::make_shared<Array>(static_cast<int>(rows.size()), static_cast<int>(rows[0].size()));
        for (std::size_t row = 0; row < rows.size(); ++row) {
            if (rows[row].size() != rows[0].size())
                return fail("数组常量各行的个数不同");
            for (std::size_t column = 0; column < rows[row].size(); ++column)
                array->at(static_cast<int>(row), static_cast<int>(column)) = std::move(rows[row][column]);
        }
        m_listener.array(start, std::move(array));
        m_expectOperand = false;
    }

    /// One element of an array constant; m_at is left behind it.
    Value arrayElement()
    {
        double factor = 1;
        while (token().kind == Token::Kind::operation && (token().text == "-" || token().text == "+")) {
            factor = token().text == "-" ? -factor : factor;
            ++m_at;
        }
        const std::optional<Value> value = constantValue(token());
        if (!value) {
            fail("数组常量只能包含常量");
            return {};
        }
        ++m_at;
        return value->isNumber() ? Value(factor * value->number()) : *value;
    }

    // Brackets and calls.

    void open()
    {
        if (m_open.size() > maxNesting)
            return fail("括号嵌套太深");
        const bool isCall = token().kind == Token::Kind::function;
        const bool isCorner =
            m_operators.size() > bracket().operators && m_operators.back().row->op == Op::range;
        m_open.push_back({.isCall = isCall, .at = m_at, .operators = m_operators.size()});
        if (isCall)
            m_listener.openCall(m_at, isCorner);
        m_expectOperand = true;
    }

    /// An operator waits for its operand, so what is left out is not an argument.
    bool isOperandDue() const { return m_operators.size() > m_open.back().operators; }

    void leftOut()
    {
        if (!bracket().isCall || isOperandDue())
            return fail("此处缺少数值或引用");
        m_listener.missing();
        finishArgument();
        m_expectOperand = true;
    }

    void closeEmpty()
    {
        if (!bracket().isCall)
            return fail(m_open.size() > 1 ? "括号里是空的" : "多了一个右括号");
        if (isOperandDue())
            return fail("此处缺少数值或引用");
        if (bracket().arguments > 0) {
            m_listener.missing();
            finishArgument();
        }
        closeCall();
    }

    void finishArgument()
    {
        reduce(-1);
        ++bracket().arguments;
        m_listener.argument();
    }

    void closeCall()
    {
        const OpenBracket closed = bracket();
        m_open.pop_back();
        m_problem = m_listener.closeCall(closed.at, closed.arguments);
        m_expectOperand = false;
    }

    // Behind an operand.

    void afterOperand()
    {
        switch (token().kind) {
        case Token::Kind::operation:
            return binary();
        case Token::Kind::comma:
            return comma();
        case Token::Kind::close:
            return close();
        case Token::Kind::reference:
        case Token::Kind::name:
        case Token::Kind::function:
        case Token::Kind::open:
            if (!token().blankBefore)
                return fail("此处缺少运算符");
            between(" ");
            return operand();
        default:
            return fail("此处缺少运算符");
        }
    }

    void binary()
    {
        if (const OperatorRow* const behind = findOperator(token().text, OperatorRow::Place::behind)) {
            reduce(behind->precedence);
            m_listener.operation(*behind, m_at);
        } else {
            between(token().text);
        }
    }

    /// An operator whose second operand is to come.
    void between(std::string_view text)
    {
        const OperatorRow* const row = findOperator(text, OperatorRow::Place::between);
        if (!row)
            return fail("此处缺少数值或引用");
        reduce(row->precedence);
        m_operators.push_back({row, m_at});
        m_expectOperand = true;
    }

    void comma()
    {
        if (bracket().isCall) {
            finishArgument();
            if (bracket().arguments > manyArguments)
                return fail("参数太多");
        } else if (m_open.size() > 1 || m_unions == Unions::everywhere) {
            between(",");
        } else {
            return fail("此处不能用逗号");
        }
        m_expectOperand = true;
    }

    void close()
    {
        if (m_open.size() == 1)
            return fail("多了一个右括号");
        if (bracket().isCall) {
            finishArgument();
            return closeCall();
        }
        reduce(-1);
        m_listener.brackets(bracket().at);
        m_open.pop_back();
    }

    const std::vector<Token>& m_tokens;
    FormulaListener& m_listener;
    Unions m_unions;
    std::vector<OpenBracket> m_open;
    std::vector<WaitingOperator> m_operators;
    Refusal m_problem;
    std::size_t m_at = 0;
    bool m_expectOperand = true;
};

} // namespace

Refusal parseFormula(const std::vector<Token>& tokens, FormulaListener& listener, Unions unions)
{
    return FormulaParser(tokens, listener, unions).run();
}

} // namespace spreadsheet
