#include "tests/tdsserver/column_types.h"

#include "tests/tdsserver/texts.h"

#include <algorithm>
#include <cstdio>
#include <optional>
#include <sqlite3.h>

namespace selfreport::tds {

namespace {

constexpr std::uint32_t mostVariableBytes = 8000;

Value columnValue(sqlite3_stmt* statement, int column)
{
    const auto bytes = [&](const void* start) {
        const auto size = static_cast<std::size_t>(sqlite3_column_bytes(statement, column));
        return size == 0 ? std::string() : std::string(static_cast<const char*>(start), size);
    };
    switch (sqlite3_column_type(statement, column)) {
    case SQLITE_INTEGER:
        return std::int64_t{sqlite3_column_int64(statement, column)};
    case SQLITE_FLOAT:
        return sqlite3_column_double(statement, column);
    case SQLITE_TEXT:
        return bytes(sqlite3_column_text(statement, column));
    case SQLITE_BLOB:
        return Blob{bytes(sqlite3_column_blob(statement, column))};
    default:
        return std::monostate();
    }
}

bool fits(const TypeInfo& type, const Value& value)
{
    if (std::holds_alternative<std::monostate>(value))
        return true;
    switch (type.token) {
    case TypeToken::intN:
        return std::holds_alternative<std::int64_t>(value);
    case TypeToken::decimalN:
        return std::holds_alternative<std::int64_t>(value) || std::holds_alternative<double>(value);
    case TypeToken::image:
        return std::holds_alternative<Blob>(value);
    default:
        return std::holds_alternative<std::string>(value);
    }
}

/// Bytes of the longest text; a table of the embedded database does not keep to its columns' sizes.
std::uint32_t longestText(const std::vector<std::vector<Value>>& rows, std::size_t column, bool isWide)
{
    std::size_t longest = 0;
    for (const auto& row : rows)
        if (const auto* text = std::get_if<std::string>(&row[column]))
            longest = std::max(longest, isWide ? utf16Of(*text).size() : codePageOf(*text).size());
    return static_cast<std::uint32_t>(longest);
}

TypeInfo textType(TypeToken token, std::uint32_t size, const std::vector<std::vector<Value>>& rows,
                  std::size_t column)
{
    const std::uint32_t needed = std::max(size, longestText(rows, column, token == TypeToken::nvarchar));
    return {token, needed > mostVariableBytes ? unlimited : needed};
}

std::optional<TypeInfo> declaredType(const char* declared, const std::vector<std::vector<Value>>& rows,
                                     std::size_t column)
{
    const std::string text = declared ? declared : "";
    unsigned size = 0;
    unsigned scale = 0;
    if (std::sscanf(text.c_str(), "decimal(%u,%u)", &size, &scale) == 2)
        return TypeInfo{TypeToken::decimalN, size > 19 ? 17U : 9U, static_cast<std::uint8_t>(size),
                        static_cast<std::uint8_t>(scale)};
    if (std::sscanf(text.c_str(), "varchar(%u)", &size) == 1)
        return textType(TypeToken::varchar, size, rows, column);
    if (text == "datetime")
        return TypeInfo{TypeToken::datetimeN, 8};
    if (text == "smallint")
        return TypeInfo{TypeToken::intN, 2};
    if (text == "integer" || text == "int")
        return TypeInfo{TypeToken::intN, 4};
    if (text == "image")
        return TypeInfo{TypeToken::image, 0x7FFFFFFF};
    return std::nullopt;
}

bool isWideInteger(const Value& value)
{
    const auto* integer = std::get_if<std::int64_t>(&value);
    return integer && *integer != static_cast<std::int32_t>(*integer);
}

} // namespace

TypeInfo computedType(const std::vector<std::vector<Value>>& rows, std::size_t column)
{
    const auto any = [&](const auto& is) {
        return std::ranges::any_of(rows, [&](const auto& row) { return is(row[column]); });
    };
    if (any([](const Value& value) { return std::holds_alternative<Blob>(value); }))
        return {TypeToken::varbinary, unlimited};
    if (any([](const Value& value) { return std::holds_alternative<std::string>(value); }))
        return textType(TypeToken::nvarchar, 2, rows, column);
    if (any([](const Value& value) { return std::holds_alternative<double>(value); }))
        return {TypeToken::floatN, 8};
    return {TypeToken::intN, any(isWideInteger) ? 8U : 4U};
}

ResultSet typedRows(sqlite3_stmt* statement)
{
    ResultSet result;
    const int count = sqlite3_column_count(statement);
    while (sqlite3_step(statement) == SQLITE_ROW) {
        auto& row = result.rows.emplace_back();
        for (int column = 0; column < count; ++column)
            row.push_back(columnValue(statement, column));
    }
    for (int column = 0; column < count; ++column) {
        const auto at = static_cast<std::size_t>(column);
        const auto declared = declaredType(sqlite3_column_decltype(statement, column), result.rows, at);
        const bool holds = declared && std::ranges::all_of(result.rows, [&](const auto& row) {
                               return fits(*declared, row[at]);
                           });
        result.columns.push_back(
            {sqlite3_column_name(statement, column), holds ? *declared : computedType(result.rows, at)});
    }
    return result;
}

} // namespace selfreport::tds
