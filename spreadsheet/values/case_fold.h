#pragma once
#include <string>
#include <string_view>

namespace spreadsheet {

/// Letters in one case, for names that ignore it: names, functions, sheets. Full-width letters stay
/// apart from ordinary ones.
std::string foldedName(std::string_view name);

} // namespace spreadsheet
