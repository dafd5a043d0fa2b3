#pragma once
#include <string_view>

namespace spreadsheet {

/// A worksheet function that the .xls format names by number.
struct XlsFunction {
    int number;
    std::string_view name; ///< in capitals, as the format's own list has it
    int minArguments;
    int maxArguments;

    bool isFixed() const { return minArguments == maxArguments; }
};

/// Null if no worksheet function has the number (macro commands have numbers too).
const XlsFunction* xlsFunction(int number);
/// By name in capitals; null if the format has no number for it.
const XlsFunction* xlsFunction(std::string_view name);

/// What stands before the name of a function that came after the formats: "_xlfn.", with "_xlws." behind it
/// for the two whose plain names meant another thing before.
/// @param name  in any case
std::string_view laterFunctionPrefix(std::string_view name);
/// Takes such prefixes from a name.
std::string_view withoutLaterPrefix(std::string_view name);

/// True for functions of the add-in that came with every program of the format's time (EOMONTH, YEARFRAC).
bool isXlsAddInFunction(std::string_view name);

} // namespace spreadsheet
