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
};

inline constexpr int manyArguments = 255;

/// One function of the language.
///
/// `kinds` has a letter per argument: "v" a single value (a range is intersected, an array is gone
/// through element by element), "r" anything, ranges as such, "a" anything, and operators inside work
/// element by element. Arguments beyond the text repeat its last `repeat` letters.
struct FunctionDescriptor {
    std::string_view name; ///< in capitals
    int minArguments;
    int maxArguments;
    std::string_view kinds;
    FunctionFamily family;
    std::string_view arguments; ///< argument names separated by ","; "[…]" may be left out, "…" repeats
    std::string_view help;      ///< one line in Chinese
    Operand (*evaluate)(Call& call);
    std::uint8_t traits = pure;
    int repeat = 1;

    char kind(std::size_t argument) const;
    /// What a call comes to, evaluated here and nowhere else: #NUM! where something in it throws, #VALUE!
    /// where memory does not suffice. What else is no std::exception, such as a cancellation, goes on.
    Operand answer(Call& call) const;
    bool has(FunctionTrait trait) const { return (traits & trait) != 0; }
};

/// The function of that name, letter case ignored; null if there is none.
const FunctionDescriptor* findFunction(std::string_view name);

/// All functions in the order of their names.
std::span<const FunctionDescriptor* const> allFunctions();

/// The Chinese name of a family ("数学与三角").
std::string_view familyName(FunctionFamily family);

// The tables, one per family file.
std::span<const FunctionDescriptor> mathematicalFunctions();
std::span<const FunctionDescriptor> roundingFunctions();
std::span<const FunctionDescriptor> trigonometricFunctions();
std::span<const FunctionDescriptor> combinatorialFunctions();
std::span<const FunctionDescriptor> romanFunctions();
std::span<const FunctionDescriptor> matrixFunctions();
std::span<const FunctionDescriptor> statisticalFunctions();
std::span<const FunctionDescriptor> orderFunctions();
std::span<const FunctionDescriptor> spreadFunctions();
std::span<const FunctionDescriptor> correlationFunctions();
std::span<const FunctionDescriptor> regressionFunctions();
std::span<const FunctionDescriptor> sampleTestFunctions();
std::span<const FunctionDescriptor> normalDistributionFunctions();
std::span<const FunctionDescriptor> continuousDistributionFunctions();
std::span<const FunctionDescriptor> discreteDistributionFunctions();
std::span<const FunctionDescriptor> logicalFunctions();
std::span<const FunctionDescriptor> lookupFunctions();
std::span<const FunctionDescriptor> extendedLookupFunctions();
std::span<const FunctionDescriptor> arrayShapingFunctions();
std::span<const FunctionDescriptor> textFunctions();
std::span<const FunctionDescriptor> doubleByteTextFunctions();
std::span<const FunctionDescriptor> amountTextFunctions();
std::span<const FunctionDescriptor> dateFunctions();
std::span<const FunctionDescriptor> dateSpanFunctions();
std::span<const FunctionDescriptor> workdayFunctions();
std::span<const FunctionDescriptor> informationFunctions();
std::span<const FunctionDescriptor> cellInformationFunctions();
std::span<const FunctionDescriptor> annuityFunctions();
std::span<const FunctionDescriptor> cashFlowFunctions();
std::span<const FunctionDescriptor> depreciationFunctions();
std::span<const FunctionDescriptor> bondFunctions();
std::span<const FunctionDescriptor> oddBondFunctions();
std::span<const FunctionDescriptor> securityFunctions();
std::span<const FunctionDescriptor> numberBaseFunctions();
std::span<const FunctionDescriptor> complexFunctions();
std::span<const FunctionDescriptor> engineeringFunctions();
std::span<const FunctionDescriptor> databaseFunctions();
std::span<const FunctionDescriptor> euroFunctions();
std::span<const FunctionDescriptor> thaiFunctions();

} // namespace spreadsheet
