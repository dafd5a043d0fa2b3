#pragma once
#include "spreadsheet/calculation/Call.h"
#include "spreadsheet/formula/CustomFunction.h"
#include "spreadsheet/formula/Formula.h"
#include "spreadsheet/formula/Operand.h"

#include <optional>
#include <vector>

namespace spreadsheet {

/// What a handler asked to be done to its cell after the recalculation.
struct QueuedCellChange {
    CallPlace place;
    int decimals = 0;
};

/// A call of a registered function and what it came to.
struct MadeCall {
    int custom;
    std::vector<Value> parameters;
    Value result;
};

/// Asked while cells are computed whose order shows only as they run.
class ReadGuard {
public:
    enum class Answer : std::uint8_t {
        read,
        wait,   ///< some of the cells are not computed yet: the formula comes to nothing
        circle, ///< some of them wait for this one: #REF! in their place
    };
    virtual ~ReadGuard() = default;
    /// A formula is about to use the values of cells.
    virtual Answer beforeReading(const Area& area) = 0;
    /// The calls that the cell has made: when it runs once more they are not made again.
    virtual std::vector<MadeCall>& calls() = 0;
};

/// The stack machine that runs formulas, one cell at a time.
class Evaluator {
public:
    explicit Evaluator(const Book& book);

    /// The value of a formula in one cell. Nothing if the cell keeps what it has (a custom function
    /// declined, or handed back nothing while formulas are shown), or has to wait.
    std::optional<Value> cellValueOf(const Formula& formula, const EvaluationPlace& place);
    /// The elements of an array formula; nothing as above.
    std::shared_ptr<const Array> arrayOf(const Formula& formula, const EvaluationPlace& place);

    /// What a formula comes to, references as such.
    Operand operandOf(const Formula& formula, const EvaluationPlace& place) { return run(formula, place); }

    /// Gathers the custom calls that are certain to be made, without making them. A call that takes
    /// the value of another is found once that one's `expected` value is known: `known` holds the
    /// calls of this formula found so far, and new ones are appended.
    void gatherCalls(const Formula& formula, const EvaluationPlace& place, std::vector<PreparedCall>& known);

    /// Null: cells come in an order in which everything that they read is there.
    void setGuard(ReadGuard* guard) { m_guard = guard; }

    std::vector<QueuedCellChange>& queue() { return m_queue; }

protected: // for the machine that goes the same steps with its eye on what they make of calls
    Operand run(const Formula& formula, const EvaluationPlace& place);
    Operand runPart(const Formula& formula, int first, int end, const EvaluationPlace& place);
    int step(const Formula& formula, const Instruction& instruction, int position,
             const EvaluationPlace& place);
    void binary(const Instruction& instruction, const EvaluationPlace& place);
    void sign(const Instruction& instruction, const EvaluationPlace& place);
    int branch(const Formula& formula, const Instruction& instruction, int position,
               const EvaluationPlace& place);
    int branchOnEquality(const Formula& formula, const Instruction& instruction, int position,
                         const EvaluationPlace& place);
    bool chooses(const Operand& operand, const Instruction& instruction) const;
    int everyBranch(const Formula& formula, const Instruction& instruction, int position,
                    const EvaluationPlace& place);
    /// What follows a condition: code by branch, the function that takes what all of them leave, and where
    /// it goes on. Of several cases the first; the others are conditions of their own.
    struct Branches {
        int function;
        int end;
        std::vector<std::pair<int, int>> parts; ///< first and behind the last
    };
    static Branches branchesOf(const Formula& formula, const Instruction& instruction, int position);
    Operand reference(const ReferenceSlot& slot, const EvaluationPlace& place) const;
    Operand guarded(const Formula& formula, int slot, const EvaluationPlace& place);
    Operand named(int name, const EvaluationPlace& place);
    Operand namedPlace(int name, const EvaluationPlace& place);
    void call(const FunctionDescriptor& function, std::size_t count, bool arrayMode,
              const EvaluationPlace& place);
    Operand applied(const FunctionDescriptor& function, std::span<const Operand> arguments, bool arrayMode,
                    const EvaluationPlace& place);
    Operand callElementwise(const FunctionDescriptor& function, std::span<const Operand> arguments,
                            bool arrayMode, const EvaluationPlace& place);
    Operand callCustom(int custom, std::size_t count, const EvaluationPlace& place);
    Operand callOnce(int custom, std::vector<Value> parameters, const EvaluationPlace& place);
    Value handled(int custom, std::span<const Value> parameters, const EvaluationPlace& place);
    Operand gatheredCall(std::string_view name, std::vector<Value> parameters, const EvaluationPlace& place);
    Operand pop();
    void push(Operand operand) { m_stack.push_back(std::move(operand)); }

    const Book& m_book;
    std::vector<Operand> m_stack;
    std::vector<QueuedCellChange> m_queue;
    std::vector<PreparedCall>* m_gathered = nullptr; ///< set while calls are gathered
    ReadGuard* m_guard = nullptr;
    bool m_keep = false; ///< the cell keeps what it has
    int m_nameDepth = 0;
};

} // namespace spreadsheet
