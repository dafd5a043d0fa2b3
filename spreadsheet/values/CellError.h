#pragma once
#include "text/ascii.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

namespace spreadsheet {

/// Error values of cells. The codes are stored in the content file: never renumber.
enum class CellError : std::uint8_t { null = 0, div0, value, ref, name, num, na };

inline constexpr std::array<std::string_view, 7> cellErrorTexts{"#NULL!", "#DIV/0!", "#VALUE!", "#REF!",
                                                                "#NAME?", "#NUM!",   "#N/A"};

constexpr std::string_view errorText(CellError error)
{
    return cellErrorTexts[static_cast<std::size_t>(error)];
}

/// The error that a text names (letter case ignored), if it names one.
constexpr std::optional<CellError> parseErrorText(std::string_view text)
{
    for (std::size_t code = 0; code < cellErrorTexts.size(); ++code)
        if (ascii::equalFolded(text, cellErrorTexts[code]))
            return static_cast<CellError>(code);
    return std::nullopt;
}

} // namespace spreadsheet
