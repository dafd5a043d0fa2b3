#pragma once
#include <optional>
#include <string_view>

namespace spreadsheet {

/// A number of one unit in another one ("mi" to "km"); letter case counts. Decimal prefixes (k, M, …)
/// go before metric units, binary ones (ki, Mi, …) before bits and bytes. Nothing if a unit is unknown
/// or both measure different things.
std::optional<double> convertedUnit(double number, std::string_view from, std::string_view to);

} // namespace spreadsheet
