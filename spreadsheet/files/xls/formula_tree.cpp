#include "spreadsheet/files/xls/formula_tree.h"

#include "spreadsheet/formula/formula_grammar.h"
#include "spreadsheet/formula/operator_table.h"

#include <algorithm>
#include <utility>

namespace spreadsheet {

namespace {

/// Puts what it is told together: operands wait until what takes them is told.
class TreeBuilder final : public FormulaListener {
public:
    explicit TreeBuilder(const std::vector<Token>& tokens)
        : m_tokens(tokens)
    {
    }

    /// Whether programs that read the other notation take the formula too.
    bool isKnownEverywhere() const { return m_isKnownEverywhere; }

    FormulaTree take()
    {
        m_tree.root = m_waiting.back();
        return std::move(m_tree);
    }

    void constant(std::size_t at, const Value& value) override
    {
        add(FormulaNode::Kind::constant, blanksBefore(at)).value = value;
    }
    void array(std::size_t at, std::shared_ptr<const Array> array) override
    {
        add(FormulaNode::Kind::array, blanksBefore(at)).array = std::move(array);
    }
    void reference(std::size_t at) override
    {
        add(FormulaNode::Kind::reference, blanksBefore(at)).slot = m_tokens[at].index;
    }
    Refusal name(std::size_t at) override
    {
        add(FormulaNode::Kind::name, blanksBefore(at)).text = m_tokens[at].text;
        return {};
    }
    void missing() override { add(FormulaNode::Kind::missing, 0); }

    Refusal closeCall(std::size_t at, int arguments) override
    {
        add(FormulaNode::Kind::call, blanksBefore(at), arguments).text = m_tokens[at].text;
        return {};
    }
    void brackets(std::size_t at) override { add(FormulaNode::Kind::brackets, blanksBefore(at), 1); }

    void operation(const OperatorRow& symbol, std::size_t at) override
    {
        const int operands = symbol.place == OperatorRow::Place::between ? 2 : 1;
        if (symbol.op == Op::intersect) // the blank is the operator
            m_tree.nodes[static_cast<std::size_t>(m_waiting.back())].blanks = 0;
        m_isKnownEverywhere = m_isKnownEverywhere && mayOperateOn(symbol, m_waiting.back()) &&
                              (operands == 1 || mayOperateOn(symbol, m_waiting.end()[-2]));
        const int blanks = symbol.place == OperatorRow::Place::before ? blanksBefore(at) : 0;
        add(FormulaNode::Kind::operation, blanks, operands).symbol = &symbol;
    }

private:
    FormulaNode& add(FormulaNode::Kind kind, int blanks, int children = 0)
    {
        FormulaNode node;
        node.kind = kind;
        node.blanks = blanks;
        node.children.assign(m_waiting.end() - children, m_waiting.end());
        m_waiting.resize(m_waiting.size() - static_cast<std::size_t>(children));
        m_waiting.push_back(static_cast<int>(m_tree.nodes.size()));
        return m_tree.nodes.emplace_back(std::move(node));
    }

    /// Operators need operands, and ranges and intersections need references.
    bool mayOperateOn(const OperatorRow& symbol, int operand) const
    {
        const FormulaNode& node = m_tree.nodes[static_cast<std::size_t>(operand)];
        const bool isPlace = symbol.op == Op::range || symbol.op == Op::intersect;
        return node.kind != FormulaNode::Kind::missing &&
               !(isPlace && node.symbol && node.symbol->precedence <= signPrecedence);
    }

    /// Signs between the token before and this one.
    int blanksBefore(std::size_t at) const
    {
        const Token& token = m_tokens[at];
        if (!token.blankBefore || at == 0)
            return 0;
        const Token& before = m_tokens[at - 1];
        std::size_t end = before.position + before.text.size();
        if (before.kind == Token::Kind::function) // its text leaves the bracket out
            ++end;
        return token.position > end ? static_cast<int>(std::min<std::size_t>(token.position - end, 255)) : 1;
    }

    const std::vector<Token>& m_tokens;
    FormulaTree m_tree;
    std::vector<int> m_waiting; ///< nodes that are nobody's children yet
    bool m_isKnownEverywhere = true;
};

} // namespace

std::optional<FormulaTree> formulaTree(const LexedFormula& lexed)
{
    TreeBuilder builder(lexed.tokens);
    // The writer has a sentence of its own for what is none.
    const bool isFormula = !parseFormula(lexed.tokens, builder, Unions::everywhere);
    if (!isFormula || !builder.isKnownEverywhere())
        return std::nullopt;
    return builder.take();
}

} // namespace spreadsheet
