#include "spreadsheet/files/xls/XlsFormulas.h"

#include "spreadsheet/files/exchange/function_numbers.h"
#include "spreadsheet/files/exchange/unicode_text.h"
#include "spreadsheet/files/xls/cell_codes.h"
#include "spreadsheet/files/xls/formula_tree.h"
#include "spreadsheet/files/xls/records.h"
#include "spreadsheet/files/xls/tokens.h"
#include "spreadsheet/formula/FormulaPool.h"
#include "spreadsheet/formula/operator_table.h"
#include "spreadsheet/functions/FunctionTable.h"
#include "spreadsheet/values/Array.h"
#include "text/ascii.h"

#include <algorithm>
#include <array>

namespace spreadsheet {

// A formula in a file is a list of tokens in reverse Polish order, and each operand's token says in which
// sense it is wanted: as a reference, a value or an array. The same cell under SUM and under a plus sign is
// two tokens. So the tree is walked from the top with what the place wants, and a text that the format
// cannot hold fails the whole formula: its cell then gets the value that it shows.

using namespace xls;

namespace {

/// What the place of an operand asks for: cells as such, one value, all values.
enum class Wanted { reference, value, array };

std::uint8_t classed(std::uint8_t token, Wanted wanted)
{
    return wanted == Wanted::reference
               ? token
               : static_cast<std::uint8_t>(token + (wanted == Wanted::value ? valueClass : arrayClass));
}

bool returnsReference(std::string_view name)
{
    static constexpr std::array<std::string_view, 5> names{"CHOOSE", "IF", "INDEX", "INDIRECT", "OFFSET"};
    return std::ranges::find(names, name) != names.end();
}

bool joinsReferences(const FormulaNode& node)
{
    return node.symbol &&
           (node.symbol->op == Op::range || node.symbol->op == Op::intersect || node.symbol->op == Op::unite);
}

class TokenWriter {
public:
    TokenWriter(const FormulaTree& tree, const Formula& formula, LinkTable& links, bool inName,
                XlsFormula& result)
        : m_tree(tree)
        , m_formula(formula)
        , m_links(links)
        , m_inName(inName)
        , m_result(result)
    {
    }

    void write(Wanted wanted)
    {
        if (m_formula.isVolatile) {
            byte(tokenAttribute);
            byte(attributeVolatile);
            word(0);
        }
        node(m_tree.root, wanted);
    }

private:
    void byte(unsigned number) { m_result.tokens.push_back(static_cast<std::byte>(number)); }
    void word(unsigned number) { appendNumber(m_result.tokens, static_cast<std::uint16_t>(number)); }
    void fail(const std::string& problem)
    {
        if (m_result.problem.empty())
            m_result.problem = problem;
    }

    void node(int position, Wanted wanted)
    {
        const FormulaNode& node = m_tree.nodes[static_cast<std::size_t>(position)];
        if (node.blanks > 0 && node.kind != FormulaNode::Kind::brackets) {
            byte(tokenAttribute);
            byte(attributeSpace);
            word(static_cast<unsigned>(node.blanks) << 8);
        }
        switch (node.kind) {
        case FormulaNode::Kind::reference:
            return reference(node.slot, wanted);
        case FormulaNode::Kind::name:
            return name(node.text, wanted);
        case FormulaNode::Kind::array:
            return array(*node.array);
        case FormulaNode::Kind::call:
            return call(node, wanted);
        case FormulaNode::Kind::operation:
        case FormulaNode::Kind::brackets:
            return operation(node, wanted);
        case FormulaNode::Kind::constant:
            return constant(node.value);
        default:
            return byte(tokenMissing);
        }
    }

    void constant(const Value& value)
    {
        switch (value.kind()) {
        case ValueKind::number:
            return number(value.number());
        case ValueKind::text:
            byte(tokenText);
            return characters(m_result.tokens, value.textView(), false);
        case ValueKind::boolean:
            byte(tokenBoolean);
            return byte(value.boolean());
        default:
            byte(tokenError);
            return byte(codeOfError(value.error()));
        }
    }

    void number(double number)
    {
        if (number >= 0 && number <= 65535 && number == static_cast<double>(static_cast<unsigned>(number))) {
            byte(tokenInteger);
            return word(static_cast<unsigned>(number));
        }
        byte(tokenNumber);
        appendNumber(m_result.tokens, number);
    }

    void characters(std::vector<std::byte>& to, std::string_view text, bool isLong)
    {
        const std::u16string units = utf16Of(text);
        if (units.size() > 255)
            return fail("公式中的文本超过 255 个字");
        const bool isWide = std::ranges::any_of(units, [](char16_t unit) { return unit > 0xFF; });
        if (isLong)
            appendNumber(to, static_cast<std::uint16_t>(units.size()));
        else
            to.push_back(static_cast<std::byte>(units.size()));
        to.push_back(static_cast<std::byte>(isWide));
        for (const char16_t unit : units) {
            to.push_back(static_cast<std::byte>(unit & 0xFF));
            if (isWide)
                to.push_back(static_cast<std::byte>(unit >> 8));
        }
    }

    void operation(const FormulaNode& node, Wanted wanted)
    {
        if (joinsReferences(node))
            return joined(node, wanted);
        const Wanted inner = wanted == Wanted::array ? Wanted::array : Wanted::value;
        const bool isBrackets = node.kind == FormulaNode::Kind::brackets;
        for (const int child : node.children)
            this->node(child, isBrackets ? wanted : inner);
        byte(isBrackets ? std::uint8_t{tokenBrackets} : node.symbol->xlsToken);
    }

    /// The length of the tokens that make an area stands before them.
    void joined(const FormulaNode& node, Wanted wanted)
    {
        const bool isOutermost = !m_inJoined;
        m_inJoined = true;
        if (isOutermost) {
            byte(classed(tokenMemoryFunction, wanted));
            word(0);
        }
        const std::size_t start = m_result.tokens.size();
        for (const int child : node.children)
            this->node(child, Wanted::reference);
        byte(node.symbol->xlsToken);
        if (isOutermost) {
            putNumber(m_result.tokens, start - 2, static_cast<std::uint16_t>(m_result.tokens.size() - start));
            m_inJoined = false;
        }
    }

    void reference(int slotNumber, Wanted wanted)
    {
        const ReferenceSlot& slot = m_formula.slots[static_cast<std::size_t>(slotNumber)];
        if (slot.shape == ReferenceSlot::Shape::broken) {
            byte(classed(tokenBrokenReference, wanted));
            return word(0), word(0);
        }
        const bool isArea = !slot.isSingleCell();
        if (slot.firstSheet == 0) {
            if (m_inName)
                fail("名称中的引用没有写明表");
            byte(classed(isArea ? tokenArea : tokenReference, wanted));
        } else {
            const int sheets = m_links.sheets(slot.firstSheet, slot.lastSheet);
            if (sheets < 0)
                fail("引用的表不存在");
            byte(classed(isArea ? tokenArea3d : tokenReference3d, wanted));
            word(static_cast<unsigned>(sheets));
        }
        m_result.places.push_back({m_result.tokens.size(), slotNumber, isArea});
        m_result.tokens.resize(m_result.tokens.size() + (isArea ? 8 : 4));
    }

    void name(std::string_view text, Wanted wanted)
    {
        const int number = m_links.name(text);
        if (number == 0)
            fail("名称“" + std::string(text) + "”没有定义");
        byte(classed(tokenName, wanted));
        word(static_cast<unsigned>(number));
        word(0);
    }

    void array(const Array& array)
    {
        byte(tokenArray + arrayClass);
        m_result.tokens.resize(m_result.tokens.size() + 7);
        if (array.columns() > 256 || array.rows() > 65536)
            return fail("数组常量太大");
        auto& extra = m_result.extra;
        extra.push_back(static_cast<std::byte>(array.columns() - 1));
        appendNumber(extra, static_cast<std::uint16_t>(array.rows() - 1));
        for (int row = 0; row < array.rows(); ++row)
            for (int column = 0; column < array.columns(); ++column)
                arrayElement(array.at(row, column));
    }

    void arrayElement(const Value& value)
    {
        auto& extra = m_result.extra;
        const auto typed = [&](unsigned type, std::uint64_t payload) {
            extra.push_back(static_cast<std::byte>(type));
            appendNumber(extra, payload);
        };
        switch (value.kind()) {
        case ValueKind::text:
            extra.push_back(std::byte(2));
            return characters(extra, value.textView(), true);
        case ValueKind::boolean:
            return typed(4, value.boolean());
        case ValueKind::error:
            return typed(0x10, codeOfError(value.error()));
        default:
            return typed(1, std::bit_cast<std::uint64_t>(value.number()));
        }
    }

    void call(const FormulaNode& node, Wanted wanted)
    {
        const std::string name = ascii::upper(node.text);
        const FunctionDescriptor* ours = findFunction(name);
        const XlsFunction* known = xlsFunction(std::string_view(name));
        const auto count = static_cast<int>(node.children.size());
        if (known && (count < known->minArguments || count > known->maxArguments))
            return fail(".xls 的函数 " + name + " 没有这么多参数");
        const bool byName = !known, isLater = byName && ours && !isXlsAddInFunction(name);
        if (count > 29 && byName)
            return fail("函数 " + name + " 的参数超过 29 个");
        if (isLater) {
            byte(tokenName);
            word(static_cast<unsigned>(m_links.laterFunction(name)));
            word(0);
        } else if (byName) {
            byte(tokenExternName);
            word(static_cast<unsigned>(m_links.functionsBook()));
            word(static_cast<unsigned>(m_links.function(ours ? std::string_view(name) : node.text)));
            word(0);
        }
        arguments(node, ours, wanted);
        Wanted result = wanted == Wanted::array ? Wanted::array : Wanted::value;
        if (wanted == Wanted::reference && known && returnsReference(name))
            result = Wanted::reference;
        if (known && known->isFixed()) {
            byte(classed(tokenFunction, result));
        } else {
            byte(classed(tokenVariableFunction, result));
            byte(static_cast<unsigned>(count + byName));
        }
        word(static_cast<unsigned>(known ? known->number : functionByName));
    }

    void arguments(const FormulaNode& node, const FunctionDescriptor* ours, Wanted wanted)
    {
        const bool wasJoined = std::exchange(m_inJoined, false);
        for (std::size_t i = 0; i < node.children.size(); ++i) {
            const char kind = ours ? ours->kind(i) : 'r';
            const Wanted one = wanted == Wanted::array ? Wanted::array : Wanted::value;
            this->node(node.children[i], kind == 'v' ? one : kind == 'a' ? Wanted::array : Wanted::reference);
        }
        m_inJoined = wasJoined;
    }

    const FormulaTree& m_tree;
    const Formula& m_formula;
    LinkTable& m_links;
    bool m_inName;
    XlsFormula& m_result;
    bool m_inJoined = false;
};

/// Row and column words of a corner; relative ones of whole rows and columns are as if fixed.
std::uint16_t columnWord(int column, const AxisPoint& across, const AxisPoint& down)
{
    return static_cast<std::uint16_t>((column - 1) | (across.absolute ? 0 : relativeColumn) |
                                      (down.absolute ? 0 : relativeRow));
}

} // namespace

const XlsFormula& XlsFormulas::formula(std::uint32_t number, CellAddress base, bool inName)
{
    if (m_made.size() <= number)
        m_made.resize(m_workbook.formulas().size() + std::size_t(1));
    std::optional<XlsFormula>& made = m_made[number];
    if (made)
        return *made;
    made.emplace();
    const Formula& formula = m_workbook.formulas()[number];
    const std::string text = m_workbook.formulas().text(number, base);
    LexedFormula lexed;
    const SheetResolver sheetId = [this](std::string_view name) {
        const int index = m_workbook.sheetIndex(name);
        return index == 0 ? 0 : m_workbook.sheet(index).id();
    };
    const bool isRead = !lexFormula(text, base, sheetId, lexed) && lexed.slots.size() == formula.slots.size();
    const auto tree = isRead ? formulaTree(lexed) : std::nullopt;
    if (!tree) {
        made->problem = "公式写法无法转换";
        return *made;
    }
    TokenWriter(*tree, formula, m_links, inName, *made)
        .write(inName                   ? Wanted::reference
               : formula.isArrayFormula ? Wanted::array
                                        : Wanted::value);
    constexpr std::size_t mostTokens = 1800; // programs of the format's time read no more
    if (made->tokens.size() > mostTokens && made->problem.empty())
        made->problem = "公式太长";
    return *made;
}

bool XlsFormulas::tokensAt(const XlsFormula& formula, std::uint32_t number, CellAddress base,
                           std::vector<std::byte>& tokens) const
{
    tokens = formula.tokens;
    const Formula& source = m_workbook.formulas()[number];
    for (const auto& [offset, slotNumber, isArea] : formula.places) {
        const ReferenceSlot& slot = source.slots[static_cast<std::size_t>(slotNumber)];
        std::optional<CellRange> range = slot.range(base);
        if (!range)
            return false;
        if (slot.shape == ReferenceSlot::Shape::columns)
            range->bottom = xls::maxRows;
        if (slot.shape == ReferenceSlot::Shape::rows)
            range->right = xls::maxColumns;
        if (range->right > xls::maxColumns || range->bottom > xls::maxRows)
            return false;
        const AxisPoint fixed{0, true};
        const AxisPoint& top = slot.shape == ReferenceSlot::Shape::columns ? fixed : slot.top;
        const AxisPoint& bottom = slot.shape == ReferenceSlot::Shape::columns ? fixed : slot.bottom;
        const AxisPoint& left = slot.shape == ReferenceSlot::Shape::rows ? fixed : slot.left;
        const AxisPoint& right = slot.shape == ReferenceSlot::Shape::rows ? fixed : slot.right;
        putNumber(tokens, offset, static_cast<std::uint16_t>(range->top - 1));
        if (!isArea) {
            putNumber(tokens, offset + 2, columnWord(range->left, left, top));
            continue;
        }
        putNumber(tokens, offset + 2, static_cast<std::uint16_t>(range->bottom - 1));
        putNumber(tokens, offset + 4, columnWord(range->left, left, top));
        putNumber(tokens, offset + 6, columnWord(range->right, right, bottom));
    }
    return true;
}

} // namespace spreadsheet
