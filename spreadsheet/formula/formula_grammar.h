#pragma once
#include "spreadsheet/formula/Lexer.h"
#include "spreadsheet/values/Refusal.h"
#include "spreadsheet/values/Value.h"

#include <cstddef>
#include <cstdint>
#include <memory>

namespace spreadsheet {

class Array;
struct OperatorRow;

/// Brackets and calls may be nested this deep.
inline constexpr std::size_t maxNesting = 256;

/// Where references may be joined by commas: behind a cell's "=" one is a slip, in a name it is a union.
enum class Unions : std::uint8_t { inBrackets, everywhere };

/// Is told what a formula consists of, in the order of a stack machine: operands before their operator,
/// arguments before their call. `at` is the position of a token among the formula's tokens.
class FormulaListener {
public:
    virtual ~FormulaListener() = default;

    /// A number, text, truth value or error value.
    virtual void constant(std::size_t at, const Value& value) = 0;
    /// @param at  its opening brace
    virtual void array(std::size_t at, std::shared_ptr<const Array> array) = 0;
    virtual void reference(std::size_t at) = 0;
    virtual Refusal name(std::size_t at) = 0;
    /// An argument left out between two commas.
    virtual void missing() = 0;
    /// @param isCorner  the call is an operand of ":", behind it
    virtual void openCall(std::size_t /*at*/, bool /*isCorner*/) {}
    /// An argument of the innermost open call has ended.
    virtual void argument() {}
    /// @param at  the function's name
    virtual Refusal closeCall(std::size_t at, int arguments) = 0;
    /// What was told last stands in brackets.
    /// @param at  the opening one
    virtual void brackets(std::size_t at) = 0;
    virtual void operation(const OperatorRow& row, std::size_t at) = 0;
};

/// The grammar of formulas. Operators from the tightest: ":" range, blank intersection, "," union inside
/// brackets, sign, "%", "^", "*" "/", "+" "-", "&", comparisons; equal ones group from the left, so -2^2 is 4
/// and 2^3^2 is 64.
/// @return  the first mistake, or the listener's refusal, behind which it is told nothing more
Refusal parseFormula(const std::vector<Token>& tokens, FormulaListener& listener,
                     Unions unions = Unions::inBrackets);

} // namespace spreadsheet
