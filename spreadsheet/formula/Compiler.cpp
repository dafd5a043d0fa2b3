#include "spreadsheet/formula/Compiler.h"

#include "spreadsheet/formula/formula_grammar.h"
#include "spreadsheet/formula/operator_table.h"
#include "spreadsheet/formula/Vocabulary.h"
#include "spreadsheet/values/Array.h"

#include <algorithm>

namespace spreadsheet {

// Which code an argument becomes depends on the call around it (single value, range, element by element,
// branch), hence each open call keeps what is known of it, and code is emitted as soon as it is certain,
// without a tree in between.

namespace {

/// An open call. The first one is the whole formula, which is none.
struct Frame {
    const FunctionDescriptor* function = nullptr;
    int custom = -1;         ///< number of a function that the program registers
    bool isCorner = false;   ///< the call stands behind ":"
    bool byElements = false; ///< branches chosen element by element: the condition may be an array
    bool arrayMode = false;  ///< of the operators inside the present argument
    bool outerArrayMode = false;
    int arguments = 0;      ///< finished ones
    int argumentStart = 0;  ///< position in the code of the present argument
    int firstSlot = -1;     ///< slot of the first argument if that is a plain reference
    int depth = 0;          ///< operands below
    int pendingJump = -1;   ///< a jump whose target is the next argument
    int condition = -1;     ///< the jump behind IF's condition
    std::vector<int> exits; ///< jumps whose target is the end of the call
};

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
        opened.depth = m_depth;
        opened.argumentStart = here();
        opened.arrayMode = opened.outerArrayMode = frame().arrayMode;
        m_frames.push_back(std::move(opened));
        setArgumentMode();
    }

    void argument() override
    {
        ++frame().arguments;
        noteArrayCondition();
        notePlainReference();
        if (branching())
            branchAfterArgument();
        setArgumentMode();
    }

    Refusal closeCall(std::size_t at, int arguments) override
    {
        const bool jumps = branching();
        Frame closed = std::move(m_frames.back());
        if (closed.function &&
            (arguments < closed.function->minArguments || arguments > closed.function->maxArguments))
            return {"函数 " + std::string(closed.function->name) + " 的参数个数不对", token(at).position};
        m_frames.pop_back();
        m_depth = closed.depth + 1;
        m_formula.stackDepth = std::max(m_formula.stackDepth, m_depth);
        if (jumps)
            finishBranches(closed);
        else if (closed.function)
            emitCall(*closed.function, arguments, closed.byElements);
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

    /// True while the innermost call is compiled into jumps.
    bool branching() const
    {
        const Frame& open = m_frames.back();
        return open.function && open.function->has(branches) && !open.outerArrayMode && !open.byElements;
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

    const LexedFormula& m_lexed;
    Vocabulary& m_vocabulary;
    Formula& m_formula;
    std::vector<Frame> m_frames;
    std::vector<std::vector<int>> m_choiceStarts;
    int m_depth = 0;
};

} // namespace

Refusal compileFormula(LexedFormula& lexed, Vocabulary& vocabulary, bool asArray, Formula& formula)
{
    Compiler compiler(lexed, vocabulary, asArray, formula);
    if (auto problem = parseFormula(lexed.tokens, compiler))
        return problem;
    formula.pieces = std::move(lexed.pieces);
    formula.slots = std::move(lexed.slots);
    return {};
}

} // namespace spreadsheet
