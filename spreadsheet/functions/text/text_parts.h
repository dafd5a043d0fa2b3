#pragma once
#include "spreadsheet/calculation/Call.h"
#include "spreadsheet/calculation/wildcards.h"

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>

namespace spreadsheet {

// LEFT, RIGHT and MID, which count in units of UTF-16 or in bytes of the double-byte encoding: a `Measure`
// has the length `count(text)` and the part `part(text, first, count)`, from 0.

template <typename Measure>
Operand leftPart(Call& call)
{
    const std::string text = call.text(0);
    const int count = call.integer(1, 1);
    if (call.failed())
        return call.error();
    if (count < 0)
        return CellError::value;
    return Value::text(Measure::part(text, 0, static_cast<std::size_t>(count)));
}

template <typename Measure>
Operand rightPart(Call& call)
{
    const std::string text = call.text(0);
    const int count = call.integer(1, 1);
    if (call.failed())
        return call.error();
    if (count < 0)
        return CellError::value;
    const std::size_t all = Measure::count(text);
    const std::size_t taken = std::min(all, static_cast<std::size_t>(count));
    return Value::text(Measure::part(text, all - taken, taken));
}

template <typename Measure>
Operand middlePart(Call& call)
{
    const std::string text = call.text(0);
    const int first = call.integer(1);
    const int count = call.integer(2);
    if (call.failed())
        return call.error();
    if (first < 1 || count < 0)
        return CellError::value;
    return Value::text(
        Measure::part(text, static_cast<std::size_t>(first) - 1, static_cast<std::size_t>(count)));
}

/// Byte at which a text begins within another one. FIND looks for the letters as they stand; SEARCH ignores
/// letter case and takes wildcards.
inline std::optional<std::size_t> placeOf(const std::string& wanted, const std::string& text,
                                          std::size_t from, bool withWildcards)
{
    if (withWildcards)
        return WildcardPattern(wanted).find(text, from);
    const std::size_t at = text.find(wanted, from);
    return at == text.npos ? std::nullopt : std::optional(at);
}

} // namespace spreadsheet
