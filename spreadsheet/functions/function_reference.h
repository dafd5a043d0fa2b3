#pragma once
#include <string>

namespace spreadsheet {

/// The function table as a Markdown text in Chinese: a table for each family, the functions by name, each
/// with its arguments and its line of help.
std::string functionReference();

} // namespace spreadsheet
