#pragma once
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace selfreport {

/// Whether a query copies its binary columns to the client.
enum class BinaryColumns {
    left,   ///< nothing is known of them, not even whether they are null
    fetched ///< their bytes can be read
};

/// All rows of one query, fetched to the client. Rows count from 0; columns go by name, letter case ignored
/// (the first of two columns with one name), or by position from 0.
/// A column or row that does not exist throws DatabaseError.
class Recordset {
public:
    struct LeftBinary {};
    using Bytes = std::shared_ptr<const std::vector<std::byte>>;
    using Cell = std::variant<std::monostate, std::int64_t, double, std::string, Bytes, LeftBinary>;

    Recordset() = default;
    explicit Recordset(std::vector<std::string> columnNames);

    bool isEmpty() const { return rowCount() == 0; }
    std::size_t rowCount() const { return m_rowCount; }
    std::size_t columnCount() const { return m_names.size(); }
    const std::string& columnName(std::size_t column) const { return m_names.at(column); }
    std::optional<std::size_t> columnIndex(std::string_view name) const;

    bool isNull(std::size_t row, std::string_view column) const;
    bool isNull(std::size_t row, std::size_t column) const;

    /// Null reads as "". Numbers come without a locale: point, no grouping, no exponent below 1e15.
    std::string text(std::size_t row, std::string_view column) const;
    std::string text(std::size_t row, std::size_t column) const;

    /// Null reads as 0. @throws DatabaseError if a text is no number as a whole.
    double number(std::size_t row, std::string_view column) const;
    double number(std::size_t row, std::size_t column) const;

    /// Null reads as 0; fractions are cut off. @throws DatabaseError as number() and beyond 64 bits.
    std::int64_t integer(std::size_t row, std::string_view column) const;
    std::int64_t integer(std::size_t row, std::size_t column) const;

    /// Null reads as no bytes. Valid as long as the recordset or a copy of it lives.
    /// @throws DatabaseError if the query did not fetch binary columns.
    std::span<const std::byte> binary(std::size_t row, std::string_view column) const;
    std::span<const std::byte> binary(std::size_t row, std::size_t column) const;

    /// For providers: one cell for each column.
    void appendRow(std::vector<Cell> cells);

private:
    const Cell& cell(std::size_t row, std::size_t column) const;
    std::size_t position(std::string_view column) const;

    std::vector<std::string> m_names;
    std::vector<Cell> m_cells; // row after row
    std::size_t m_rowCount = 0;
};

/// Shortest text that reads back as the same number; never with an exponent below 1e15.
std::string numberText(double number);

} // namespace selfreport
