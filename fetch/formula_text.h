#pragma once
#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace selfreport {

/// The call of `Acct` with these arguments: account expression, fetch type, currency, year, first and last
/// period. Each stands between double quotes unchanged and unchecked.
std::string acctFormula(const std::array<std::string, 6>& arguments);

/// The call of `REF_F` with these arguments: report, cell, sheet.
std::string refFormula(const std::array<std::string, 3>& arguments);

/// The arguments of a formula that is one call of `Acct` with six quoted texts, whatever its blanks and
/// letter case; a "=" may stand before it. A doubled quote in an argument stays doubled, so that writing the
/// call again gives the same. Nothing for any other formula.
std::optional<std::array<std::string, 6>> acctArguments(std::string_view formula);

/// As acctArguments, for `REF_F` and its three arguments.
std::optional<std::array<std::string, 3>> refArguments(std::string_view formula);

/// A text that has a quote of its own, as a formula writes it: "6\"管" gives "6\"\"管". One whose quotes are
/// all doubled already stays as it is.
std::string withQuotesDoubled(std::string_view argument);
/// What a formula with that text between quotes means: "6\"\"管" and "6\"管" are both "6\"管".
std::string withQuotesRead(std::string_view argument);

} // namespace selfreport
