#pragma once
#include <iosfwd>
#include <string>
#include <string_view>

namespace spreadsheet {

/// Computes one request and gives its answer, both a line of JSON without its end. A request that
/// cannot be served gives `{"id": …, "error": reason}`, with the id if it could be read, else null.
///
/// @param notes  formulas that the language does not take, one a line
std::string answerTo(std::string_view request, std::ostream& notes);

} // namespace spreadsheet
