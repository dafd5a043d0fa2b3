#include "spreadsheet/values/CellAddress.h"

#include "text/ascii.h"

#include <algorithm>
#include <charconv>

namespace spreadsheet {

CellRange united(const CellRange& a, const CellRange& b)
{
    return {std::min(a.left, b.left), std::min(a.top, b.top), std::max(a.right, b.right),
            std::max(a.bottom, b.bottom)};
}

std::string columnName(int column)
{
    std::string letters;
    for (int rest = column; rest > 0; rest = (rest - 1) / 26)
        letters.insert(letters.begin(), static_cast<char>('A' + (rest - 1) % 26));
    return letters;
}

std::optional<int> parseColumnName(std::string_view letters)
{
    if (letters.empty() || letters.size() > 3)
        return std::nullopt;
    int column = 0;
    for (const char letter : letters) {
        const char upper = ascii::upper(letter);
        if (upper < 'A' || upper > 'Z')
            return std::nullopt;
        column = column * 26 + (upper - 'A' + 1);
    }
    return column <= maxColumns ? std::optional(column) : std::nullopt;
}

std::string cellName(CellAddress cell)
{
    return columnName(cell.column) + std::to_string(cell.row);
}

std::optional<CellAddress> parseCellName(std::string_view text)
{
    const std::size_t digits = text.find_first_of("0123456789");
    if (digits == std::string_view::npos)
        return std::nullopt;
    const std::optional<int> column = parseColumnName(text.substr(0, digits));
    int row = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, failure] = std::from_chars(text.data() + digits, end, row);
    if (!column || failure != std::errc() || stop != end || row < 1 || row > maxRows)
        return std::nullopt;
    return CellAddress{*column, row};
}

std::optional<CellRange> parseRangeName(std::string_view text)
{
    const std::size_t colon = text.find(':');
    const auto first = parseCellName(text.substr(0, colon));
    const auto second = colon == std::string_view::npos ? first : parseCellName(text.substr(colon + 1));
    if (!first || !second)
        return std::nullopt;
    return CellRange{std::min(first->column, second->column), std::min(first->row, second->row),
                     std::max(first->column, second->column), std::max(first->row, second->row)};
}

} // namespace spreadsheet
