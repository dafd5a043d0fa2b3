#pragma once
#include <compare>
#include <optional>
#include <string>
#include <string_view>

namespace spreadsheet {

inline constexpr int maxRows = 1'048'576;
inline constexpr int maxColumns = 16'384;
inline constexpr int maxSheets = 256;

/// A cell of one sheet. Both count from 1; 0 is the heading row or column.
struct CellAddress {
    int column = 1; ///< 1 to 16,384
    int row = 1;    ///< 1 to 1,048,576

    friend auto operator<=>(const CellAddress&, const CellAddress&) = default;
};

/// A rectangle of cells; both corners belong to it.
struct CellRange {
    int left = 1;
    int top = 1;
    int right = 1;
    int bottom = 1;

    int columns() const { return right - left + 1; }
    int rows() const { return bottom - top + 1; }
    bool isOneCell() const { return left == right && top == bottom; }
    bool contains(CellAddress cell) const
    {
        return cell.column >= left && cell.column <= right && cell.row >= top && cell.row <= bottom;
    }
    bool contains(const CellRange& other) const
    {
        return other.left >= left && other.right <= right && other.top >= top && other.bottom <= bottom;
    }
    bool intersects(const CellRange& other) const
    {
        return left <= other.right && other.left <= right && top <= other.bottom && other.top <= bottom;
    }

    friend auto operator<=>(const CellRange&, const CellRange&) = default;
};

/// The smallest range that holds both.
CellRange united(const CellRange& a, const CellRange& b);

/// Letters of a column: 1 "A", 26 "Z", 27 "AA", 702 "ZZ", 703 "AAA". Empty below 1.
std::string columnName(int column);

/// Reads column letters of either case; nothing if the text holds anything else or lies beyond the sheet.
std::optional<int> parseColumnName(std::string_view letters);

/// "B12" for column 2, row 12.
std::string cellName(CellAddress cell);

/// Reads a cell name such as "B12" (either case, no blanks, no "$").
/// Nothing if the text is no cell name or the cell lies outside the sheet.
std::optional<CellAddress> parseCellName(std::string_view text);

/// Reads "B2:C9" or a single cell name, in either order of the corners.
std::optional<CellRange> parseRangeName(std::string_view text);

} // namespace spreadsheet
