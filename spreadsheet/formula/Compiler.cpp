#include "spreadsheet/formula/Compiler.h"

#include "spreadsheet/formula/formula_grammar.h"
#include "spreadsheet/formula/operator_table.h"
#include "spreadsheet/formula/Vocabulary.h"
#include "spreadsheet/values/Array.h"
#include "text/ascii.h"

#include <algorithm>
#include <utility>

namespace spreadsheet {

// Which code an argument becomes depends on the call around it (single value, range, element by element,
// branch), hence each open call keeps what is known of it, and code is emitted as soon as it is certain,
// without a tree in between.

namespace {

/// The functions that are compiled into jumps.
enum class Branching : std::uint8_t { none, condition, conditions, choice, unlessError, equality };

Branching branchingOf(const FunctionDescriptor& function)
{
    if (!function.has(branches))
        return Branching::none;
    return function.name == "IF"       ? Branching::condition
           : function.name == "IFS"    ? Branching::conditions
           : function.name == "CHOOSE" ? Branching::choice
           : function.name == "SWITCH" ? Branching::equality
                                       : Branching::unlessError;
}

/// An open call. The first one is the whole formula, which is none.
struct Frame {
    const FunctionDescriptor* function = nullptr;
    Branching branching = Branching::none;
    int custom = -1;        ///< number of a function that the program registers
    bool isCorner = false;  ///< the call stands behind ":"
    bool arrayMode = false; ///< of the operators inside the present argument
    bool outerArrayMode = false;
    bool wantsValues = true;  ///< of the cells that its second argument names
    int arguments = 0;        ///< finished ones
    int start = 0;            ///< position in the code
    int argumentStart = 0;    ///< the same of the present argument
    int firstSlot = -1;       ///< slot of the first argument if that is a plain reference
    int depth = 0;            ///< operands below
    int pendingJump = -1;     ///< a jump whose target is the next argument
    std::vector<int> tests;   ///< jumps on a condition: an error in it leaves the call at once
    std::vector<int> choices; ///< where each of them begins
    std::vector<int> exits;   ///< jumps whose target is the end of the call
};

/// Steps of an argument that is a reference, however put together.
bool isReferenceStep(Op op)
{
    return op == Op::reference || op == Op::name || op == Op::range || op == Op::intersect || op == Op::unite;
}

class Compiler final : public FormulaListener {
public:
    Compiler(const LexedFormula& lexed, Vocabulary& vocabulary, bool asArray, Formula& formula)
        : m_lexed(lexed)
        , m_vocabulary(vocabulary)
        , m_formula(formula)
        , m_frames(1)
    {
        m_formula.isArrayFormula = asArray;
        frame().arrayMode = asArray;
    }

    void constant(std::size_t /*at*/, const Value& value) override
    {
        switch (value.kind()) {
        case ValueKind::number:
            return push(Op::number, keep(m_formula.numbers, value.number()));
        case ValueKind::text:
            return push(Op::text, keep(m_formula.texts, value.text()));
        case ValueKind::boolean:
            return push(Op::boolean, value.boolean());
        default:
            return push(Op::error, static_cast<int>(value.error()));
        }
    }

    void array(std::size_t /*at*/, std::shared_ptr<const Array> array) override
    {
        push(Op::array, keep(m_formula.arrays, std::move(array)));
    }

    void reference(std::size_t at) override { push(Op::reference, token(at).index); }

    Refusal name(std::size_t at) override
    {
        if (!NameTable::isValid(token(at).text))
            return {"名称写法不对", token(at).position};
        push(Op::name, keep(m_formula.names, m_vocabulary.names.number(token(at).text)));
        return {};
    }

    void missing() override { push(Op::missing, 0); }

    void brackets(std::size_t /*at*/) override {} // what stands in them has its code

    void operation(const OperatorRow& row, std::size_t /*at*/) override
    {
        emit(row.op);
        if (row.op == Op::range) // the cells between two corners stand in no slot
            m_formula.readsUnlisted = m_formula.isVolatile = true;
        if (row.place == OperatorRow::Place::between)
            --m_depth;
    }

    void openCall(std::size_t at, bool isCorner) override
    {
        Frame opened;
        opened.isCorner = isCorner;
        opened.function = m_vocabulary.findFunction(token(at).text);
        if (!opened.function)
            opened.custom = m_vocabulary.customs.number(token(at).text);
        else
            opened.branching = branchingOf(*opened.function);
        opened.depth = m_depth;
        opened.start = opened.argumentStart = here();
        opened.arrayMode = opened.outerArrayMode = frame().arrayMode;
        m_frames.push_back(std::move(opened));
        setArgumentMode();
    }

    void argument() override
    {
        ++frame().arguments;
        noteReferences();
        if (frame().branching != Branching::none)
            branchAfterArgument();
        setArgumentMode();
    }

    Refusal closeCall(std::size_t at, int arguments) override
    {
        Frame closed = std::move(m_frames.back());
        if (closed.function &&
            (arguments < closed.function->minArguments || arguments > closed.function->maxArguments))
            return {"函数 " + std::string(closed.function->name) + " 的参数个数不对", token(at).position};
        m_frames.pop_back();
        m_depth = closed.depth + 1;
        m_formula.stackDepth = std::max(m_formula.stackDepth, m_depth);
        if (closed.branching != Branching::none)
            finishBranches(closed);
        else if (closed.function)
            emitCall(*closed.function, arguments);
        else
            emit(Op::callCustom, customIndex(closed.custom), arguments);
        return {};
    }

private:
    const Token& token(std::size_t at) const { return m_lexed.tokens[at]; }
    Frame& frame() { return m_frames.back(); }

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
    }

    template <typename T>
    static int keep(std::vector<T>& pool, T value)
    {
        pool.push_back(std::move(value));
        return static_cast<int>(pool.size()) - 1;
    }

    void setArgumentMode()
    {
        Frame& open = frame();
        if (open.function)
            open.arrayMode =
                open.outerArrayMode || open.function->kind(static_cast<std::size_t>(open.arguments)) == 'a';
    }

    /// What an argument that is a reference is read for.
    void noteReferences()
    {
        Frame& open = frame();
        const auto first = m_formula.code.begin() + std::exchange(open.argumentStart, here());
        const auto end = m_formula.code.end();
        const bool plain = end - first == 1 && first->op == Op::reference;
        if (!open.function)
            return;
        if (plain && open.function->has(sumsBeside))
            noteWidened(open, first->index);
        if (open.arguments == 1)
            noteAskedFor(open, first, end);
        const bool asPlace =
            open.function->has(placesOnly) || (open.isCorner && open.function->has(placesAsCorner));
        const bool unread = asPlace || (open.function->has(asksNoValues) && !open.wantsValues);
        if (!unread || open.function->kind(static_cast<std::size_t>(open.arguments - 1)) == 'v' ||
            !std::all_of(first, end, [](const Instruction& step) { return isReferenceStep(step.op); }))
            return;
        for (auto step = first; step != end; ++step) {
            step->other = 1;
            if (asPlace && step->op == Op::reference)
                m_formula.placesOnly.push_back(step->index);
        }
        m_formula.dependsOnPlace = m_formula.dependsOnPlace || asPlace;
    }

    /// CELL reads a value for some of the words that may stand in front of the reference, and who knows for
    /// what a formula comes to; ISFORMULA and its like, whose only argument is the reference, never do.
    template <typename Step>
    void noteAskedFor(Frame& open, Step first, Step end)
    {
        open.wantsValues = open.function->kind(0) == 'v';
        if (!open.wantsValues || end - first != 1 || first->op != Op::text)
            return;
        const std::string word = ascii::lower(m_formula.texts[static_cast<std::size_t>(first->index)].view());
        open.wantsValues = word == "contents" || word == "type" || word == "prefix";
    }

    /// The third argument of SUMIF and its like is read as far as the first one reaches.
    void noteWidened(Frame& open, int slot)
    {
        if (open.arguments == 1)
            open.firstSlot = slot;
        else if (open.arguments == 3 && open.firstSlot >= 0)
            m_formula.widened.push_back({slot, open.firstSlot});
    }

    int functionIndex(const FunctionDescriptor* function)
    {
        const auto found = std::ranges::find(m_formula.functions, function);
        if (found != m_formula.functions.end())
            return static_cast<int>(found - m_formula.functions.begin());
        return keep(m_formula.functions, function);
    }

    void emitCall(const FunctionDescriptor& function, int arguments)
    {
        emit(Op::call, functionIndex(&function), arguments);
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

    // Branches as jumps. Each branch leaves one operand, so only one counts.

    void branchAfterArgument()
    {
        Frame& open = frame();
        const bool isFirst = open.arguments == 1;
        const bool isOdd = open.arguments % 2 == 1;
        m_depth = open.depth;
        switch (open.branching) {
        case Branching::condition:
            return isFirst ? test(Op::jumpIfFalse) : leave(open.arguments == 2);
        case Branching::conditions:
            return isOdd ? test(Op::jumpIfFalse) : leave(true);
        case Branching::equality:
            if (!isOdd)
                return test(Op::jumpIfUnequal);
            if (!isFirst)
                leave(true);
            ++m_depth; // the value that the next ones are compared with
            return;
        case Branching::choice:
            if (isFirst) // the table's length is known only at the end, so the choices stand before it
                open.pendingJump = emit(Op::jump);
            else
                leave(false);
            open.choices.push_back(here());
            return;
        case Branching::unlessError:
            if (isFirst) {
                open.exits.push_back(emit(Op::jumpIfOk, 0, open.function->name == "IFNA"));
                m_formula.code.back().other = functionIndex(open.function);
            }
            return;
        case Branching::none:
            return;
        }
    }

    /// Goes on with the next argument, or behind the one after it.
    void test(Op op)
    {
        const int condition = functionIndex(m_vocabulary.findFunction("IF"));
        frame().pendingJump = emit(op, 0, condition);
        frame().tests.push_back(frame().pendingJump);
    }

    /// Ends a branch; `isTested` if the last test jumps behind it.
    void leave(bool isTested)
    {
        frame().exits.push_back(emit(Op::jump));
        if (isTested)
            aim(std::exchange(frame().pendingJump, -1), here());
    }

    void finishBranches(Frame& closed)
    {
        switch (closed.branching) {
        case Branching::condition:
            if (closed.arguments == 2)
                emit(Op::boolean, 0);
            else
                dropExit(closed);
            break;
        case Branching::conditions:
            if (closed.arguments % 2 != 0)
                return refuse(closed);
            emit(Op::error, static_cast<int>(CellError::na));
            break;
        case Branching::equality:
            if (closed.arguments % 2 == 0) { // the last one is for all other values
                m_formula.code.pop_back();
                closed.tests.pop_back();
            } else {
                emit(Op::error, static_cast<int>(CellError::na));
            }
            emit(Op::dropBelow);
            break;
        case Branching::choice:
            finishChoice(closed);
            break;
        default:
            break;
        }
        for (const int exit : closed.exits)
            aim(exit, here());
        for (const int test : closed.tests)
            m_formula.code[static_cast<std::size_t>(test)].other = here();
    }

    /// The last branch falls through to the end.
    void dropExit(Frame& closed)
    {
        closed.exits.pop_back();
        m_formula.code.pop_back();
    }

    /// A condition without its value.
    void refuse(const Frame& closed)
    {
        m_formula.code.resize(static_cast<std::size_t>(closed.start));
        emit(Op::error, static_cast<int>(CellError::value));
    }

    void finishChoice(const Frame& closed)
    {
        aim(closed.pendingJump, here());
        const int choices = closed.arguments - 1;
        emit(Op::choose, functionIndex(closed.function), choices);
        for (int i = 0; i < choices; ++i)
            emit(Op::jump, closed.choices[static_cast<std::size_t>(i)]);
        m_formula.code[static_cast<std::size_t>(here() - choices - 1)].other = here();
    }

    const LexedFormula& m_lexed;
    Vocabulary& m_vocabulary;
    Formula& m_formula;
    std::vector<Frame> m_frames;
    int m_depth = 0;
};

} // namespace

Refusal compileFormula(LexedFormula& lexed, Vocabulary& vocabulary, bool asArray, Unions unions,
                       Formula& formula)
{
    Compiler compiler(lexed, vocabulary, asArray, formula);
    if (auto problem = parseFormula(lexed.tokens, compiler, unions))
        return problem;
    formula.pieces = std::move(lexed.pieces);
    formula.slots = std::move(lexed.slots);
    return {};
}

} // namespace spreadsheet
