#include "tests/tdsserver/Reply.h"

#include "tests/tdsserver/texts.h"

#include <algorithm>

namespace selfreport::tds {

namespace {

enum Token : std::uint8_t {
    returnStatusToken = 0x79,
    columnsToken = 0x81,
    errorToken = 0xAA,
    infoToken = 0xAB,
    returnValueToken = 0xAC,
    loginToken = 0xAD,
    rowToken = 0xD1,
    rowWithNullsToken = 0xD2,
    environmentToken = 0xE3,
};

enum DoneStatus : std::uint16_t { more = 1, failed = 2, counted = 0x10, attention = 0x20 };

constexpr std::string_view serverName = "TEST";

/// A token whose contents stand behind their length in two bytes.
std::string sized(std::uint8_t token, std::string_view contents)
{
    std::string bytes(1, static_cast<char>(token));
    put<std::uint16_t>(bytes, static_cast<std::uint16_t>(contents.size()));
    return bytes.append(contents);
}

std::string doneToken(Reply::Done kind, int status, std::int64_t rows)
{
    std::string bytes;
    put(bytes, kind);
    put<std::uint16_t>(bytes, static_cast<std::uint16_t>(status));
    put<std::uint16_t>(bytes, 0); // which statement it was
    put<std::int64_t>(bytes, rows);
    return bytes;
}

bool isNull(const Value& value)
{
    return std::holds_alternative<std::monostate>(value);
}

} // namespace

void Reply::loginAcknowledged()
{
    std::string contents(1, '\x01');
    contents += std::string_view("\x74\x00\x00\x04", 4); // version 7.4
    putText(contents, "Microsoft SQL Server", 1);        // the name clients look for
    contents += std::string_view("\x0b\x00\x00\x00", 4);
    tokens.push_back(sized(loginToken, contents));
}

void Reply::environment(std::uint8_t kind, std::string_view now, std::string_view before)
{
    std::string contents(1, static_cast<char>(kind));
    putText(contents, now, 1);
    putText(contents, before, 1);
    tokens.push_back(sized(environmentToken, contents));
}

void Reply::collation()
{
    // Kind 7; five bytes of language 0x0804 and flags; none before.
    tokens.push_back(sized(environmentToken, std::string_view("\x07\x05\x04\x08\xd0\x00\x00\x00", 8)));
}

void Reply::transaction(std::uint8_t kind, std::string_view now, std::string_view before)
{
    std::string contents(1, static_cast<char>(kind));
    for (const std::string_view descriptor : {now, before}) {
        put<std::uint8_t>(contents, static_cast<std::uint8_t>(descriptor.size()));
        contents += descriptor;
    }
    tokens.push_back(sized(environmentToken, contents));
}

void Reply::message(char token, std::int32_t number, std::uint8_t severity, std::string_view text)
{
    std::string contents;
    put(contents, number);
    put<std::uint8_t>(contents, 1); // state
    put(contents, severity);
    putText(contents, text, 2);
    putText(contents, serverName, 1);
    putText(contents, "", 1);        // procedure
    put<std::uint32_t>(contents, 1); // line
    tokens.push_back(sized(static_cast<std::uint8_t>(token), contents));
}

void Reply::error(std::int32_t number, std::string_view text)
{
    constexpr std::uint8_t userError = 16;
    message(static_cast<char>(errorToken), number, userError, text);
}

void Reply::info(std::int32_t number, std::string_view text)
{
    message(static_cast<char>(infoToken), number, 0, text);
}

void Reply::columnDescriptions(std::span<const Column> columns)
{
    std::string bytes(1, static_cast<char>(columnsToken));
    put<std::uint16_t>(bytes, static_cast<std::uint16_t>(columns.size()));
    for (const Column& column : columns) {
        put<std::uint32_t>(bytes, 0); // user type
        put<std::uint16_t>(bytes, 1); // nullable
        putTypeInfo(bytes, column.type);
        if (column.type.token == TypeToken::image) {
            put<std::uint8_t>(bytes, 1); // parts of the table's name
            putText(bytes, "t", 2);
        }
        putText(bytes, column.name, 1);
    }
    tokens.push_back(std::move(bytes));
}

void Reply::row(std::span<const Column> columns, std::span<const Value> values)
{
    const bool hasNulls = std::ranges::any_of(values, isNull);
    std::string bytes(1, static_cast<char>(hasNulls ? rowWithNullsToken : rowToken));
    if (hasNulls) {
        bytes.append((columns.size() + 7) / 8, '\0');
        for (std::size_t at = 0; at < columns.size(); ++at)
            if (isNull(values[at]))
                bytes[1 + at / 8] = static_cast<char>(bytes[1 + at / 8] | 1 << at % 8);
    }
    for (std::size_t at = 0; at < columns.size(); ++at)
        if (!isNull(values[at]))
            putValue(bytes, columns[at].type, values[at]);
    tokens.push_back(std::move(bytes));
}

void Reply::rows(const ResultSet& rows)
{
    columnDescriptions(rows.columns);
    for (const auto& values : rows.rows)
        row(rows.columns, values);
}

void Reply::returnStatus(std::int32_t status)
{
    std::string bytes(1, static_cast<char>(returnStatusToken));
    put(bytes, status);
    tokens.push_back(std::move(bytes));
}

void Reply::returnInteger(std::int32_t value)
{
    std::string bytes(1, static_cast<char>(returnValueToken));
    put<std::uint16_t>(bytes, 0); // ordinal
    putText(bytes, "", 1);
    put<std::uint8_t>(bytes, 1);  // an output parameter
    put<std::uint32_t>(bytes, 0); // user type
    put<std::uint16_t>(bytes, 1); // nullable
    const TypeInfo integer;
    putTypeInfo(bytes, integer);
    putValue(bytes, integer, std::int64_t{value});
    tokens.push_back(std::move(bytes));
}

void Reply::done(Done kind, std::int64_t rows, bool hasFailed)
{
    const int status = more | (hasFailed ? failed : 0) | (rows >= 0 ? counted : 0);
    tokens.push_back(doneToken(kind, status, std::max<std::int64_t>(rows, 0)));
}

void Reply::attentionDone()
{
    tokens.push_back(doneToken(Done::statement, attention, 0));
}

void Reply::finish()
{
    const bool ends = !tokens.empty() && static_cast<std::uint8_t>(tokens.back().front()) >=
                                             static_cast<std::uint8_t>(Done::statement);
    if (!ends)
        done(Done::statement);
    tokens.back()[1] = static_cast<char>(tokens.back()[1] & ~more);
}

std::string Reply::body() const
{
    std::size_t size = 0;
    for (const std::string& token : tokens)
        size += token.size();
    std::string bytes;
    bytes.reserve(size);
    for (const std::string& token : tokens)
        bytes += token;
    return bytes;
}

} // namespace selfreport::tds
