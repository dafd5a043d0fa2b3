#include "spreadsheet/formula/Compiler.h"

#include "spreadsheet/formula/operator_table.h"
#include "spreadsheet/formula/Vocabulary.h"
#include "spreadsheet/values/Array.h"
#include "spreadsheet/values/case_fold.h"
#include "text/quotes.h"

#include <algorithm>

namespace spreadsheet {

// Formulas come from files and from the clipboard, so nesting must not use up the program's stack: operators
// and brackets wait on stacks of our own. Which code an argument becomes depends on the call around it
// (single value, range, element by element, branch), hence each open bracket keeps what is known of its call,
// and code is emitted as soon as it is certain, without a tree in between.

namespace {

using Place = OperatorRow::Place;

/// An open bracket or call, with what its operators wait for.
struct Frame {
    const FunctionDescriptor* function = nullptr;
    int custom = -1; ///< number of a function that the program registers
    bool isCall = false;
    bool isCorner = false;   ///< the call stands behind ":"
    bool byElements = false; ///< branches chosen element by element: the condition may be an array
    bool arrayMode = false;  ///< of the operators inside the present argument
    bool outerArrayMode = false;
    std::size_t position = 0;
    std::size_t operators = 0; ///< size of the operator stack when it opened
    int arguments = 0;         ///< finished ones
    int argumentStart = 0;     ///< position in the code of the present argument
    int firstSlot = -1;        ///< slot of the first argument if that is a plain reference
    int depth = 0;             ///< operands below
    int pendingJump = -1;      ///< a jump whose target is the next argument
    int condition = -1;        ///< the jump behind IF's condition
    std::vector<int> exits;    ///< jumps whose target is the end of the call
};

class Compiler {
public:
    Compiler(LexedFormula& lexed, Vocabulary& vocabulary, bool asArray, Formula& formula)
        : m_lexed(lexed)
        , m_vocabulary(vocabulary)
        , m_formula(formula)
    {
        m_formula.isArrayFormula = asArray;
        Frame root;
        root.arrayMode = asArray;
        m_frames.push_back(std::move(root));
    }

    Refusal run()
    {
        for (m_at = 0; !m_problem && token().kind != Token::Kind::end; ++m_at) {
            if (m_expectOperand)
                operand();
            else
                afterOperand();
        }
        if (!m_problem && m_frames.size() > 1)
            fail("缺少右括号", m_frames.back().position);
        if (!m_problem && m_expectOperand)
            fail(m_lexed.tokens.size() == 1 ? "公式是空的" : "公式不完整");
        if (m_problem)
            return m_problem;
        reduce(-1);
        m_formula.pieces = std::move(m_lexed.pieces);
        m_formula.slots = std::move(m_lexed.slots);
        return {};
    }

private:
    const Token& token() const { return m_lexed.tokens[m_at]; }
    Frame& frame() { return m_frames.back(); }

    void fail(std::string reason) { fail(std::move(reason), token().position); }
    void fail(std::string reason, std::size_t position)
    {
        if (!m_problem)
            m_problem = Refusal(std::move(reason), position);
    }

    // Code.

    int emit(Op op, int index = 0, int count = 0)
    {
        Instruction instruction;
        instruction.op = op;
        instruction.arrayMode = frame().arrayMode;
        instruction.index = index;
        instruction.count = static_cast<std::uint16_t>(count);
        m_formula.code.push_back(instruction);
        return here() - 1;
    }
    int here() const { return static_cast<int>(m_formula.code.size()); }
    void aim(int jump, int target) { m_formula.code[static_cast<std::size_t>(jump)].index = target; }

    void push(Op op, int index)
    {
        emit(op, index);
        m_formula.stackDepth = std::max(m_formula.stackDepth, ++m_depth);
        m_expectOperand = false;
    }

    template <typename T>
    static int keep(std::vector<T>& pool, T value)
    {
        pool.push_back(std::move(value));
        return static_cast<int>(pool.size()) - 1;
    }

    void reduce(int downTo)
    {
        while (m_operators.size() > frame().operators && m_operators.back()->precedence >= downTo) {
            const OperatorRow& row = *m_operators.back();
            m_operators.pop_back();
            emit(row.op);
            if (row.op == Op::range) // the cells between two corners stand in no slot
                m_formula.readsUnlisted = m_formula.isVolatile = true;
            if (row.place == Place::between)
                --m_depth;
        }
    }

    // Where an operand may stand.

    void operand()
    {
        switch (token().kind) {
        case Token::Kind::number:
            return push(Op::number, keep(m_formula.numbers, token().number));
        case Token::Kind::text:
            return push(Op::text, keep(m_formula.texts, Text(quotes::within(token().text))));
        case Token::Kind::error:
            return push(Op::error, static_cast<int>(*parseErrorText(token().text)));
        case Token::Kind::reference:
            return push(Op::reference, token().index);
        case Token::Kind::name:
            return name();
        case Token::Kind::function:
            return openCall();
        case Token::Kind::open:
            return openFrame({});
        case Token::Kind::close:
            return closeEmpty();
        case Token::Kind::comma:
            return leftOut();
        case Token::Kind::openArray:
            return arrayConstant();
        case Token::Kind::operation:
            return sign();
        default:
            return fail("此处缺少数值或引用");
        }
    }

    void name()
    {
        const std::string folded = foldedName(token().text);
        if (folded == "TRUE" || folded == "FALSE")
            return push(Op::boolean, folded == "TRUE");
        if (!NameTable::isValid(token().text))
            return fail("名称写法不对");
        push(Op::name, keep(m_formula.names, m_vocabulary.names.number(token().text)));
    }

    void sign()
    {
        if (const OperatorRow* const sign = findOperator(token().text, Place::before))
            m_operators.push_back(sign);
        else
            fail("此处缺少数值或引用");
        if (m_operators.size() > frame().operators + 4 * maxNesting)
            fail("符号太多");
    }

    void arrayConstant()
    {
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
        push(Op::array, keep(m_formula.arrays, std::shared_ptr<const Array>(std::move(array))));
    }

    /// One element of an array constant; m_at is left behind it.
    Value arrayElement()
    {
        double factor = 1;
        while (token().kind == Token::Kind::operation && (token().text == "-" || token().text == "+")) {
            factor = token().text == "-" ? -factor : factor;
            ++m_at;
        }
        Value value;
        const std::string folded =
            token().kind == Token::Kind::name ? foldedName(token().text) : std::string();
        if (token().kind == Token::Kind::number)
            value = Value(factor * token().number);
        else if (token().kind == Token::Kind::text)
            value = Value::text(quotes::within(token().text));
        else if (token().kind == Token::Kind::error)
            value = Value(*parseErrorText(token().text));
        else if (folded == "TRUE" || folded == "FALSE")
            value = Value::boolean(folded == "TRUE");
        else
            fail("数组常量只能包含常量");
        if (!m_problem)
            ++m_at;
        return value;
    }

    // Brackets and calls.

    void openFrame(Frame opened)
    {
        if (m_frames.size() > maxNesting)
            return fail("括号嵌套太深");
        opened.position = token().position;
        opened.operators = m_operators.size();
        opened.depth = m_depth;
        opened.argumentStart = here();
        opened.outerArrayMode = frame().arrayMode;
        opened.arrayMode = opened.outerArrayMode;
        m_frames.push_back(std::move(opened));
        setArgumentMode();
        m_expectOperand = true;
    }

    void openCall()
    {
        Frame opened;
        opened.isCall = true;
        opened.isCorner = m_operators.size() > frame().operators && m_operators.back()->op == Op::range;
        opened.function = m_vocabulary.findFunction(token().text);
        if (!opened.function)
            opened.custom = m_vocabulary.customs.number(token().text);
        openFrame(std::move(opened));
    }

    void setArgumentMode()
    {
        Frame& open = frame();
        if (open.function)
            open.arrayMode =
                open.outerArrayMode || open.function->kind(static_cast<std::size_t>(open.arguments)) == 'a';
    }

    /// True while the innermost call is compiled into jumps.
    bool branching() const
    {
        const Frame& open = m_frames.back();
        return open.function && open.function->has(branches) && !open.outerArrayMode && !open.byElements;
    }

    void leftOut()
    {
        if (!frame().isCall)
            return fail("此处缺少数值或引用");
        push(Op::missing, 0);
        finishArgument();
        m_expectOperand = true;
    }

    void closeEmpty()
    {
        if (!frame().isCall)
            return fail(m_frames.size() > 1 ? "括号里是空的" : "多了一个右括号");
        if (frame().arguments > 0) {
            push(Op::missing, 0);
            finishArgument();
        }
        closeCall();
    }

    void finishArgument()
    {
        reduce(-1);
        ++frame().arguments;
        noteArrayCondition();
        notePlainReference();
        if (branching())
            branchAfterArgument();
        setArgumentMode();
    }

    /// IF({1,0},…) gives an array of both branches, so none of them may be jumped over.
    void noteArrayCondition()
    {
        Frame& open = frame();
        if (open.arguments == 1 && branching())
            open.byElements = std::any_of(m_formula.code.begin() + open.argumentStart, m_formula.code.end(),
                                          [](const Instruction& step) { return step.op == Op::array; });
    }

    void notePlainReference()
    {
        Frame& open = frame();
        const bool plain = here() - open.argumentStart == 1 && m_formula.code.back().op == Op::reference;
        open.argumentStart = here();
        if (!plain || !open.function)
            return;
        const int slot = m_formula.code.back().index;
        if (open.function->has(sumsBeside))
            noteWidened(open, slot);
        const bool asPlace =
            open.function->has(placesOnly) || (open.isCorner && open.function->has(placesAsCorner));
        if (asPlace && open.function->kind(static_cast<std::size_t>(open.arguments - 1)) != 'v') {
            m_formula.placesOnly.push_back(slot);
            m_formula.dependsOnPlace = true;
        }
    }

    /// The third argument of SUMIF and its like is read as far as the first one reaches.
    void noteWidened(Frame& open, int slot)
    {
        if (open.arguments == 1)
            open.firstSlot = slot;
        else if (open.arguments == 3 && open.firstSlot >= 0)
            m_formula.widened.push_back({slot, open.firstSlot});
    }

    void closeCall()
    {
        const bool jumps = branching();
        Frame closed = std::move(m_frames.back());
        if (closed.function && (closed.arguments < closed.function->minArguments ||
                                closed.arguments > closed.function->maxArguments))
            return fail("函数 " + std::string(closed.function->name) + " 的参数个数不对", closed.position);
        m_frames.pop_back();
        m_depth = closed.depth + 1;
        m_formula.stackDepth = std::max(m_formula.stackDepth, m_depth);
        m_expectOperand = false;
        if (jumps)
            return finishBranches(closed);
        if (closed.function)
            emitCall(*closed.function, closed.arguments, closed.byElements);
        else
            emit(Op::callCustom, customIndex(closed.custom), closed.arguments);
    }

    void emitCall(const FunctionDescriptor& function, int arguments, bool byElements)
    {
        const int step = emit(Op::call, keep(m_formula.functions, &function), arguments);
        if (byElements)
            m_formula.code[static_cast<std::size_t>(step)].arrayMode = true;
        m_formula.isVolatile = m_formula.isVolatile || function.has(isVolatile);
        m_formula.readsUnlisted = m_formula.readsUnlisted || function.has(readsUnlisted);
        m_formula.changesByItself =
            m_formula.changesByItself || (function.has(isVolatile) && !function.has(readsUnlisted));
        m_formula.dependsOnPlace =
            m_formula.dependsOnPlace || (function.has(dependsOnPlace) && arguments == 0);
    }

    int customIndex(int custom)
    {
        const auto found = std::ranges::find(m_formula.customs, custom);
        if (found != m_formula.customs.end())
            return static_cast<int>(found - m_formula.customs.begin());
        return keep(m_formula.customs, custom);
    }

    // IF, CHOOSE, IFERROR and IFNA as jumps. Each branch leaves one operand, so only one counts.

    void branchAfterArgument()
    {
        Frame& open = frame();
        const std::string_view name = open.function->name;
        if (name == "IFERROR" || name == "IFNA") {
            if (open.arguments == 1)
                open.exits.push_back(emit(Op::jumpIfOk, 0, name == "IFNA"));
        } else if (open.arguments == 1) {
            if (name == "IF")
                open.condition = open.pendingJump = emit(Op::jumpIfFalse);
            else
                openChoice();
        } else {
            open.exits.push_back(emit(Op::jump));
            if (name == "IF" && open.arguments == 2) {
                aim(open.pendingJump, here());
                open.pendingJump = -1;
            } else if (name == "CHOOSE") {
                m_choiceStarts.back().push_back(here());
            }
        }
        m_depth = open.depth;
    }

    void openChoice()
    {
        // The table's length is known only at the end, so the choices stand before it: jump there first.
        frame().pendingJump = emit(Op::jump);
        m_choiceStarts.push_back({here()});
    }

    void finishBranches(Frame& closed)
    {
        const std::string_view name = closed.function->name;
        if (name == "CHOOSE")
            finishChoice(closed);
        else if (closed.pendingJump >= 0)
            aim(closed.pendingJump, here());
        if (name == "IF" && closed.arguments == 2) {
            emit(Op::boolean, 0);
        } else if (name == "IF" && closed.arguments == 3) { // the last branch falls through
            closed.exits.pop_back();
            m_formula.code.pop_back();
        }
        for (const int exit : closed.exits)
            aim(exit, here());
        if (closed.condition >= 0) // an error in the condition leaves the call at once
            m_formula.code[static_cast<std::size_t>(closed.condition)].other = here();
    }

    void finishChoice(const Frame& closed)
    {
        const std::vector<int> starts = std::move(m_choiceStarts.back());
        m_choiceStarts.pop_back();
        aim(closed.pendingJump, here());
        const int choices = closed.arguments - 1;
        emit(Op::choose, 0, choices);
        for (int i = 0; i < choices; ++i)
            emit(Op::jump, starts[static_cast<std::size_t>(i)]);
        m_formula.code[static_cast<std::size_t>(here() - choices - 1)].other = here();
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
        if (const OperatorRow* const behind = findOperator(token().text, Place::behind)) {
            reduce(behind->precedence);
            emit(behind->op);
        } else {
            between(token().text);
        }
    }

    /// An operator whose second operand is to come.
    void between(std::string_view text)
    {
        const OperatorRow* const row = findOperator(text, Place::between);
        if (!row)
            return fail("此处缺少数值或引用");
        reduce(row->precedence);
        m_operators.push_back(row);
        m_expectOperand = true;
    }

    void comma()
    {
        if (frame().isCall) {
            finishArgument();
            if (frame().arguments > manyArguments)
                return fail("参数太多");
        } else if (m_frames.size() > 1) {
            between(",");
        } else {
            return fail("此处不能用逗号");
        }
        m_expectOperand = true;
    }

    void close()
    {
        if (m_frames.size() == 1)
            return fail("多了一个右括号");
        if (frame().isCall) {
            finishArgument();
            return closeCall();
        }
        reduce(-1);
        m_frames.pop_back();
    }

    LexedFormula& m_lexed;
    Vocabulary& m_vocabulary;
    Formula& m_formula;
    std::vector<Frame> m_frames;
    std::vector<const OperatorRow*> m_operators;
    std::vector<std::vector<int>> m_choiceStarts;
    Refusal m_problem;
    std::size_t m_at = 0;
    int m_depth = 0;
    bool m_expectOperand = true;
};

} // namespace

Refusal compileFormula(LexedFormula& lexed, Vocabulary& vocabulary, bool asArray, Formula& formula)
{
    return Compiler(lexed, vocabulary, asArray, formula).run();
}

} // namespace spreadsheet
