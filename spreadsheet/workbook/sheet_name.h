#pragma once
#include "spreadsheet/values/Refusal.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace spreadsheet {

/// Characters that a sheet's name may have, in UTF-16 units as other spreadsheets count them.
inline constexpr std::size_t maxSheetNameUnits = 31;

/// Why a text cannot name a sheet: it is empty or longer than so many units, holds one of [ ] : * ? / \ or
/// has an apostrophe at its beginning or end.
Refusal sheetNameProblem(std::string_view name, std::size_t units = maxSheetNameUnits);

/// The beginning of a name that has at most so many units; no character is cut in two.
std::string shortenedSheetName(std::string_view name, std::size_t units = maxSheetNameUnits);

} // namespace spreadsheet
