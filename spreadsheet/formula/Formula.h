#pragma once
#include "spreadsheet/formula/ReferenceSlot.h"
#include "spreadsheet/values/Value.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace spreadsheet {

struct FunctionDescriptor;
class Array;

/// Steps of the stack machine.
enum class Op : std::uint8_t {
    // Operands; `index` chooses from the formula's constants, slots or names.
    number,
    text,
    boolean, ///< index 0 or 1
    error,   ///< index is the CellError
    missing, ///< an argument left out between two commas
    array,
    reference,
    name,
    // Operators.
    add,
    subtract,
    multiply,
    divide,
    power,
    concatenate,
    equal,
    notEqual,
    less,
    lessEqual,
    greater,
    greaterEqual,
    negate,
    plus,
    percent,
    range,
    intersect,
    unite,
    // Calls; `count` arguments lie on the stack.
    call,       ///< a function of the table
    callCustom, ///< index of the custom function's name
    // Branches that are not taken are not evaluated; targets are positions in the code. A branch of an IF
    // ends with its jump to the end. Where the condition is an array every branch is evaluated, and then
    // the function called that the condition's step names among `functions`: `count` of the jumps on a
    // condition, `index` of choose, `other` of jumpIfOk.
    jumpIfFalse, ///< takes the condition; to `index` if false, to `other` with an error
    jump,
    choose,        ///< takes the number; table of targets follows as `jump` steps, `count` of them
    jumpIfOk,      ///< keeps a value that is no error and jumps; else takes it (count 1: only #N/A)
    jumpIfUnequal, ///< takes a value, to `index` if the one below is another; else takes that too
    dropBelow,     ///< takes the operand below the topmost one
};

struct Instruction {
    Op op = Op::missing;
    bool arrayMode = false; ///< elements one by one instead of implicit intersection
    std::uint16_t count = 0;
    std::int32_t index = 0;
    std::int32_t other = 0; ///< of a reference or name: 1 if its cells' values are not read
};

/// A formula in relative form: text template, references and compiled code. All cells filled down
/// or across, and equal formulas typed one by one, share one.
struct Formula {
    // The text: pieces[0] slot 0 pieces[1] slot 1 … pieces[n].
    std::vector<std::string> pieces;
    std::vector<ReferenceSlot> slots;

    /// A reference that is read as far as another one reaches, as the third argument of SUMIF.
    struct Widened {
        int slot;
        int like;
    };
    std::vector<Widened> widened;

    /// Slots of which only the place is read, as in ROW(A1): their cells' values do not matter.
    std::vector<int> placesOnly;

    std::vector<Instruction> code;
    std::vector<double> numbers;
    std::vector<Text> texts;
    std::vector<std::shared_ptr<const Array>> arrays;
    std::vector<const FunctionDescriptor*> functions; ///< by `index` of call
    std::vector<int> names;                           ///< numbers of NameTable
    std::vector<int> customs;                         ///< numbers of CustomFunctions

    bool isArrayFormula = false;
    bool isVolatile = false;      ///< evaluated by every recalculation
    bool changesByItself = false; ///< gives another value each time (RAND, NOW)
    bool readsUnlisted = false;   ///< may read cells that its slots do not name (OFFSET, INDIRECT)
    bool dependsOnPlace = false;  ///< changes when cells are moved (ROW(), ROW(A1))
    bool blockwise = false;       ///< BlockEvaluator can take it
    int stackDepth = 1;

    bool callsCustom() const { return !customs.empty(); }
};

} // namespace spreadsheet
