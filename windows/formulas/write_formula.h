#pragma once
#include "fetch/formula_text.h"

#include <algorithm>
#include <array>
#include <string>

namespace selfreport {

class FormulaCell;

/// Writes a formula into the cell. False after telling the user why it is refused.
/// @param otherwise  written in its place if it is refused
[[nodiscard]] bool writeFormula(FormulaCell& cell, const std::string& formula, const std::string& otherwise);

/// Writes a call with the texts of its boxes, as they stand; what is no formula so because a code or name has
/// a quote in it is written with that doubled. False after telling the user why it is refused.
template <std::size_t count>
[[nodiscard]] bool writeCall(FormulaCell& cell, const std::array<std::string, count>& texts,
                             std::string (*formula)(const std::array<std::string, count>&))
{
    std::array<std::string, count> doubled;
    std::ranges::transform(texts, doubled.begin(), withQuotesDoubled);
    return writeFormula(cell, formula(texts), formula(doubled));
}

} // namespace selfreport
