#pragma once
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace spreadsheet {

using TextSeries = std::function<std::string(int index)>;

/// How texts that name steps of a row go on (see continuedSeries); nothing if they name none. With one text
/// the step is 1.
std::optional<TextSeries> continuedTexts(const std::vector<std::string>& texts);

} // namespace spreadsheet
