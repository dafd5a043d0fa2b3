#pragma once
#include <array>
#include <string>

namespace selfreport {

/// The call of `Acct` with these arguments: account expression, fetch type, currency, year, first and last
/// period. Each stands between double quotes unchanged and unchecked.
std::string acctFormula(const std::array<std::string, 6>& arguments);

/// The call of `REF_F` with these arguments: report, cell, sheet.
std::string refFormula(const std::array<std::string, 3>& arguments);

} // namespace selfreport
