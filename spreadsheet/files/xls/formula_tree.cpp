#include "spreadsheet/files/xls/formula_tree.h"

#include "spreadsheet/formula/operator_table.h"
#include "spreadsheet/values/CellError.h"
#include "text/ascii.h"
#include "text/quotes.h"

namespace spreadsheet {

namespace {

using Kind = Token::Kind;

constexpr int deepest = 2000; ///< calls of the parser inside each other; formulas nest at most 256 brackets

using Place = OperatorRow::Place;

class TreeBuilder {
public:
    explicit TreeBuilder(const LexedFormula& lexed)
        : m_tokens(lexed.tokens)
    {
    }

    std::optional<FormulaTree> build()
    {
        m_tree.root = expression(0);
        if (m_failed || token().kind != Kind::end)
            return std::nullopt;
        return std::move(m_tree);
    }

private:
    const Token& token() const { return m_tokens[m_at]; }
    bool isOperation(std::string_view text) const
    {
        return token().kind == Kind::operation && token().text == text;
    }

    int add(FormulaNode node)
    {
        m_tree.nodes.push_back(std::move(node));
        return static_cast<int>(m_tree.nodes.size()) - 1;
    }
    int fail()
    {
        m_failed = true;
        return add({});
    }

    /// Signs between the token before and this one.
    int blanksBefore() const
    {
        if (!token().blankBefore || m_at == 0)
            return 0;
        const Token& before = m_tokens[m_at - 1];
        std::size_t end = before.position + before.text.size();
        if (before.kind == Kind::function) // its text leaves the bracket out
            ++end;
        return token().position > end ? static_cast<int>(std::min<std::size_t>(token().position - end, 255))
                                      : 1;
    }

    int binary(std::string operation, int left, int right)
    {
        FormulaNode node;
        node.kind = FormulaNode::Kind::binary;
        node.text = std::move(operation);
        node.children = {left, right};
        return add(std::move(node));
    }

    /// Operators between values, of this precedence and tighter ones.
    int expression(int precedence)
    {
        if (++m_depth > deepest || m_failed) {
            --m_depth;
            return fail();
        }
        int left = precedence > powerPrecedence ? percent() : expression(precedence + 1);
        while (!m_failed && precedence <= powerPrecedence && binds(precedence)) {
            std::string operation(token().text);
            ++m_at;
            left = binary(std::move(operation), left, expression(precedence + 1));
        }
        --m_depth;
        return left;
    }

    /// Whether an operator of this precedence stands here.
    bool binds(int precedence) const
    {
        const OperatorRow* const row =
            token().kind == Kind::operation ? findOperator(token().text, Place::between) : nullptr;
        return row && row->precedence == precedence;
    }

    int percent()
    {
        int node = sign();
        while (isOperation("%")) {
            ++m_at;
            FormulaNode percent;
            percent.kind = FormulaNode::Kind::percent;
            percent.children = {node};
            node = add(std::move(percent));
        }
        return node;
    }

    int sign()
    {
        std::vector<std::pair<char, int>> signs;
        while (isOperation("-") || isOperation("+")) {
            signs.emplace_back(token().text[0], blanksBefore());
            ++m_at;
        }
        int node = intersection();
        for (; !signs.empty(); signs.pop_back()) {
            FormulaNode prefix;
            prefix.kind = FormulaNode::Kind::prefix;
            prefix.text = signs.back().first;
            prefix.blanks = signs.back().second;
            prefix.children = {node};
            node = add(std::move(prefix));
        }
        return node;
    }

    bool startsOperand() const
    {
        return token().kind == Kind::reference || token().kind == Kind::name ||
               token().kind == Kind::function || token().kind == Kind::open;
    }

    int intersection()
    {
        int left = range();
        while (!m_failed && token().blankBefore && startsOperand()) {
            const int right = range();
            m_tree.nodes[static_cast<std::size_t>(right)].blanks = 0;
            left = binary(" ", left, right);
        }
        return left;
    }

    int range()
    {
        int left = operand();
        while (!m_failed && isOperation(":")) {
            ++m_at;
            left = binary(":", left, operand());
        }
        return left;
    }

    int operand()
    {
        const Token& token = this->token();
        FormulaNode node;
        node.blanks = blanksBefore();
        node.text = token.text;
        node.number = token.number;
        switch (token.kind) {
        case Kind::number:
            node.kind = FormulaNode::Kind::number;
            break;
        case Kind::text:
            node.kind = FormulaNode::Kind::text;
            node.text = quotes::within(token.text);
            break;
        case Kind::error:
            node.kind = FormulaNode::Kind::error;
            node.number = static_cast<double>(parseErrorText(token.text).value_or(CellError::ref));
            break;
        case Kind::reference:
            node.kind = FormulaNode::Kind::reference;
            node.slot = token.index;
            break;
        case Kind::name:
            nameOrTruth(token.text, node);
            break;
        case Kind::function:
            return call(std::move(node));
        case Kind::open:
            return brackets(std::move(node));
        case Kind::openArray:
            return array(std::move(node));
        default:
            return fail();
        }
        ++m_at;
        return add(std::move(node));
    }

    static void nameOrTruth(std::string_view text, FormulaNode& node)
    {
        const std::string folded = ascii::upper(text);
        node.kind =
            folded == "TRUE" || folded == "FALSE" ? FormulaNode::Kind::boolean : FormulaNode::Kind::name;
        node.number = folded == "TRUE";
    }

    int call(FormulaNode node)
    {
        node.kind = FormulaNode::Kind::call;
        ++m_at;
        if (token().kind == Kind::close) {
            ++m_at;
            return add(std::move(node));
        }
        for (;;) {
            const bool isMissing = token().kind == Kind::comma || token().kind == Kind::close;
            node.children.push_back(isMissing ? add({}) : expression(0));
            if (m_failed || token().kind == Kind::close)
                break;
            if (token().kind != Kind::comma)
                return fail();
            ++m_at;
        }
        ++m_at;
        return add(std::move(node));
    }

    /// Commas inside join references.
    int brackets(FormulaNode node)
    {
        node.kind = FormulaNode::Kind::brackets;
        ++m_at;
        int inside = expression(0);
        while (!m_failed && token().kind == Kind::comma) {
            ++m_at;
            inside = binary(",", inside, expression(0));
        }
        if (m_failed || token().kind != Kind::close)
            return fail();
        ++m_at;
        node.children = {inside};
        return add(std::move(node));
    }

    int array(FormulaNode node)
    {
        node.kind = FormulaNode::Kind::array;
        ++m_at;
        int column = 0;
        for (;;) {
            const int element = arrayElement();
            if (m_failed)
                return element;
            node.children.push_back(element);
            ++column;
            const Kind kind = token().kind;
            ++m_at;
            if (kind == Kind::comma)
                continue;
            if (node.columns != 0 && node.columns != column)
                return fail();
            node.columns = column;
            column = 0;
            if (kind == Kind::closeArray)
                return add(std::move(node));
            if (kind != Kind::semicolon)
                return fail();
        }
    }

    int arrayElement()
    {
        double factor = 1;
        while (isOperation("-") || isOperation("+")) {
            factor = token().text == "-" ? -factor : factor;
            ++m_at;
        }
        const int element = operand();
        FormulaNode& node = m_tree.nodes[static_cast<std::size_t>(element)];
        node.number *= node.kind == FormulaNode::Kind::number ? factor : 1;
        const bool isConstant =
            node.kind == FormulaNode::Kind::number || node.kind == FormulaNode::Kind::text ||
            node.kind == FormulaNode::Kind::error || node.kind == FormulaNode::Kind::boolean;
        return isConstant ? element : fail();
    }

    const std::vector<Token>& m_tokens;
    FormulaTree m_tree;
    std::size_t m_at = 0;
    int m_depth = 0;
    bool m_failed = false;
};

} // namespace

std::optional<FormulaTree> formulaTree(const LexedFormula& lexed)
{
    return TreeBuilder(lexed).build();
}

} // namespace spreadsheet
