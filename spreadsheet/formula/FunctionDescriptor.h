#pragma once
#include "spreadsheet/formula/Operand.h"

#include <cstdint>
#include <span>
#include <string_view>

namespace spreadsheet {

class Call;

/// Families in the order of the function list.
enum class FunctionFamily : std::uint8_t {
    financial,
    dateAndTime,
    mathematical,
    statistical,
    lookup,
    database,
    text,
    logical,
    information,
    engineering,
};

/// Properties of a function that the machine must know.
enum FunctionTrait : std::uint8_t {
    pure = 0,
    isVolatile = 1,      ///< computed anew by every recalculation
    readsUnlisted = 2,   ///< may read cells that its arguments do not name
    dependsOnPlace = 4,  ///< depends on where its cell stands
    branches = 8,        ///< compiled into jumps: arguments that are not needed are not evaluated
    sumsBeside = 16,     ///< its third argument is read as far as its first one reaches
    placesOnly = 32,     ///< of its "r" and "a" arguments that are references it reads only where they are
    placesAsCorner = 64, ///< the same where the call is the second corner of a range (A1:INDEX(A:A,9))
    asksNoValues = 128,  ///< of such arguments it reads formulas and formats, but no values
};

inline constexpr int manyArguments = 255;

/// One function of the language.
///
/// `kinds` has a letter per argument: "v" a single value (a range is intersected, an array is gone
/// through element by element), "r" anything, ranges as such, "c" the same, but of an array of references
/// each one by itself, "a" anything, and operators inside work element by element. Arguments beyond the text
/// repeat its last `repeat` letters.
struct FunctionDescriptor {
    std::string_view name; ///< in capitals
    int minArguments;
    int maxArguments;
    std::string_view kinds;
    FunctionFamily family;
    std::string_view arguments; ///< argument names separated by ","; "[…]" may be left out, "…" repeats
    std::string_view help;      ///< one line in Chinese
    /// Null for those of the `branches` that come down to IF.
    Operand (*evaluate)(Call& call);
    std::uint8_t traits = pure;
    int repeat = 1;

    char kind(std::size_t argument) const;
    bool has(FunctionTrait trait) const { return (traits & trait) != 0; }
};

/// Finds a function by its name, letter case ignored; null if there is none.
using FunctionFinder = const FunctionDescriptor* (*)(std::string_view name);

/// The Chinese name of a family ("数学与三角").
std::string_view familyName(FunctionFamily family);

} // namespace spreadsheet
