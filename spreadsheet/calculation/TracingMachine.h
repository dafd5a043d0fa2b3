#pragma once
#include "spreadsheet/calculation/CallCells.h"
#include "spreadsheet/calculation/Evaluator.h"
#include "spreadsheet/calculation/FigureParts.h"
#include "spreadsheet/calculation/linear_form.h"
#include "spreadsheet/calculation/LookupIndexes.h"
#include "spreadsheet/calculation/TracedCall.h"

#include <vector>

namespace spreadsheet {

struct LinearRule;

/// The stack machine once more over formulas whose cells are computed: values come out as they did, and
/// beside each operand lies what it is made of. Calls of custom functions are not made; they answer what they
/// did.
class TracingMachine : private Evaluator {
public:
    TracingMachine(const Book& book, CallCells& cells, const CallAnswers& answers);

    /// What the formula of a cell makes of calls and other cells; of an array formula all elements. Null: it
    /// depends on no call.
    FigureTrace trace(const Formula& formula, const EvaluationPlace& place);

private:
    /// Where the branches end whose conditions depend on calls, innermost last.
    using Conditions = std::vector<int>;

    void runTraced(const Formula& formula, int first, int end, const EvaluationPlace& place);
    int stepTraced(const Formula& formula, const Instruction& instruction, int position,
                   const EvaluationPlace& place, Conditions& conditions);
    void nameTraced(int name, const EvaluationPlace& place);
    void operatorTraced(const Formula& formula, const Instruction& instruction, int position,
                        const EvaluationPlace& place);
    void callTraced(const FunctionDescriptor& function, std::size_t count, bool arrayMode,
                    const EvaluationPlace& place);
    void customTraced(const Formula& formula, const Instruction& instruction, const EvaluationPlace& place);
    void answerTraced(const Formula& formula, const Instruction& instruction, bool isByCondition,
                      const EvaluationPlace& place);
    int branchTraced(const Formula& formula, const Instruction& instruction, int position,
                     const EvaluationPlace& place, Conditions& conditions);
    int branchesTraced(const Formula& formula, const Instruction& instruction, int position,
                       const EvaluationPlace& place);
    void markTop(const EvaluationPlace& place);

    FigureTrace traceOf(const FunctionDescriptor& function, const TracedCall& call, bool arrayMode,
                        const Operand& result);
    FigureTrace operatorTrace(const Instruction& instruction, const TracedCall& call,
                              const Operand& result) const;
    TracedCall traced(std::string_view function, std::size_t count, const Operand& result,
                      const EvaluationPlace& place);
    void pushTraced(Operand operand, FigureTrace trace = nullptr);
    void dropTraced(std::size_t count);

    CallCells& m_cells;
    const CallAnswers& m_answers;
    Effort m_effort;
    LookupIndexes m_indexes;
    std::vector<FigureTrace> m_traces; ///< one for each operand on the stack
    const FunctionDescriptor* m_lastFunction = nullptr;
    const LinearRule* m_lastRule = nullptr; ///< of that function
    int m_calls = 0;                        ///< that the formula has made
    const Operand m_nothing;                ///< the result of what has none
};

} // namespace spreadsheet
