#include "platform/database/session/Recordset.h"

#include "platform/database/session/DatabaseError.h"
#include "platform/database/session/names.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <iterator>

namespace selfreport {

std::string numberText(double number)
{
    char buffer[400];
    const bool plain = std::fabs(number) < 1e15;
    const auto end =
        plain ? std::to_chars(std::begin(buffer), std::end(buffer), number, std::chars_format::fixed)
              : std::to_chars(std::begin(buffer), std::end(buffer), number);
    const std::string_view text(buffer, static_cast<std::size_t>(end.ptr - buffer));
    return std::string(text == "-0" ? "0" : text);
}

Recordset::Recordset(std::vector<std::string> columnNames)
    : m_names(std::move(columnNames))
{
}

std::optional<std::size_t> Recordset::columnIndex(std::string_view name) const
{
    const auto found =
        std::ranges::find_if(m_names, [&](const std::string& have) { return sameName(have, name); });
    if (found == m_names.end())
        return std::nullopt;
    return static_cast<std::size_t>(found - m_names.begin());
}

std::size_t Recordset::position(std::string_view column) const
{
    if (const auto index = columnIndex(column))
        return *index;
    throw DatabaseError(unspecifiedError, "结果中没有列 " + std::string(column));
}

const Recordset::Cell& Recordset::cell(std::size_t row, std::size_t column) const
{
    if (row >= m_rowCount || column >= m_names.size())
        throw DatabaseError(unspecifiedError, "结果中没有这一行或列");
    return m_cells[row * m_names.size() + column];
}

void Recordset::appendRow(std::vector<Cell> cells)
{
    cells.resize(m_names.size());
    std::ranges::move(cells, std::back_inserter(m_cells));
    ++m_rowCount;
}

bool Recordset::isNull(std::size_t row, std::size_t column) const
{
    return std::holds_alternative<std::monostate>(cell(row, column));
}

std::string Recordset::text(std::size_t row, std::size_t column) const
{
    const Cell& value = cell(row, column);
    if (const auto* text = std::get_if<std::string>(&value))
        return *text;
    if (const auto* integer = std::get_if<std::int64_t>(&value))
        return std::to_string(*integer);
    if (const auto* number = std::get_if<double>(&value))
        return numberText(*number);
    if (std::holds_alternative<std::monostate>(value))
        return {};
    throw DatabaseError(unspecifiedError, "列 " + m_names[column] + " 不是文本");
}

double Recordset::number(std::size_t row, std::size_t column) const
{
    const Cell& value = cell(row, column);
    if (const auto* integer = std::get_if<std::int64_t>(&value))
        return static_cast<double>(*integer);
    if (const auto* number = std::get_if<double>(&value))
        return *number;
    if (std::holds_alternative<std::monostate>(value))
        return 0.0;
    const std::string digits = text(row, column);
    double number = 0.0;
    const auto parsed = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    if (parsed.ec != std::errc() || parsed.ptr != digits.data() + digits.size())
        throw DatabaseError(unspecifiedError, "列 " + m_names[column] + " 不是数字: " + digits);
    return number;
}

std::int64_t Recordset::integer(std::size_t row, std::size_t column) const
{
    if (const auto* integer = std::get_if<std::int64_t>(&cell(row, column)))
        return *integer;
    const double wide = number(row, column);
    constexpr double limit = 9223372036854775808.0; // 2^63
    if (!(wide >= -limit && wide < limit))
        throw DatabaseError(unspecifiedError, "列 " + m_names[column] + " 超出整数范围");
    return static_cast<std::int64_t>(wide);
}

std::span<const std::byte> Recordset::binary(std::size_t row, std::size_t column) const
{
    const Cell& value = cell(row, column);
    if (const auto* bytes = std::get_if<Bytes>(&value))
        return **bytes;
    if (std::holds_alternative<std::monostate>(value))
        return {};
    if (const auto* text = std::get_if<std::string>(&value))
        return std::as_bytes(std::span(*text));
    throw DatabaseError(unspecifiedError, "列 " + m_names[column] + " 没有读取二进制内容");
}

bool Recordset::isNull(std::size_t row, std::string_view column) const
{
    return isNull(row, position(column));
}

std::string Recordset::text(std::size_t row, std::string_view column) const
{
    return text(row, position(column));
}

double Recordset::number(std::size_t row, std::string_view column) const
{
    return number(row, position(column));
}

std::int64_t Recordset::integer(std::size_t row, std::string_view column) const
{
    return integer(row, position(column));
}

std::span<const std::byte> Recordset::binary(std::size_t row, std::string_view column) const
{
    return binary(row, position(column));
}

} // namespace selfreport
