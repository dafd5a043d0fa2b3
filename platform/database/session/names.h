#pragma once
#include <string_view>

namespace selfreport {

/// Whether two names of tables, columns, parameters or keys are equal, ASCII letter case ignored.
bool sameName(std::string_view left, std::string_view right);

/// Whether a text begins with that name, ASCII letter case ignored.
bool beginsWithName(std::string_view text, std::string_view name);

} // namespace selfreport
