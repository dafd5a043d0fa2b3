#pragma once
#include <string_view>

namespace spreadsheet {

/// The family that workbook files name for a font: ours may leave it to the workbook.
constexpr std::string_view fileFamily(std::string_view family)
{
    return family.empty() ? "宋体" : family;
}

} // namespace spreadsheet
