#include "platform/database/odbc/OdbcStatement.h"

#include "platform/database/odbc/odbc_diagnostics.h"
#include "platform/database/odbc/odbc_text.h"
#include "text/ascii.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <sqlucode.h>

namespace selfreport {

// A driver converts what it reads as it thinks fit, by the process's locale or into too short a number, and
// calls some failures a success. So every type is read in the one form that loses nothing, decimals as text
// first, and whether a call failed is read from the diagnostics that stand behind its result.

namespace {

// Above this many characters a text parameter must be a long one.
constexpr std::size_t mostWideCharacters = 4000;

bool isConnectionDead(SQLHDBC connection)
{
    SQLUINTEGER dead = SQL_CD_FALSE;
    return SQL_SUCCEEDED(SQLGetConnectAttr(connection, SQL_ATTR_CONNECTION_DEAD, &dead, 0, nullptr)) &&
           dead == SQL_CD_TRUE;
}

} // namespace

OdbcStatement::OdbcStatement(SQLHDBC connection, int queryTimeout)
    : m_connection(connection)
{
    if (!SQL_SUCCEEDED(SQLAllocHandle(SQL_HANDLE_STMT, connection, &m_handle))) {
        const auto records = odbcRecords(SQL_HANDLE_DBC, connection);
        throw ConnectionLost(unspecifiedError, workError(records).description);
    }
    SQLSetStmtAttr(m_handle, SQL_ATTR_QUERY_TIMEOUT,
                   reinterpret_cast<SQLPOINTER>(static_cast<std::intptr_t>(queryTimeout)), 0);
}

OdbcStatement::~OdbcStatement()
{
    SQLFreeHandle(SQL_HANDLE_STMT, m_handle);
}

void OdbcStatement::check(SQLRETURN result)
{
    if (result == SQL_SUCCESS || result == SQL_NO_DATA)
        return;
    const auto records = odbcRecords(SQL_HANDLE_STMT, m_handle);
    // The driver calls an error between two rows a success with information.
    if (result == SQL_SUCCESS_WITH_INFO && onlyWarns(records))
        return;
    throwWorkError(records, isConnectionDead(m_connection));
}

void OdbcStatement::bindAt(Form form, SQLULEN size, SQLSMALLINT digits, const void* data, Bound& bound,
                           SQLLEN capacity)
{
    check(SQLBindParameter(m_handle, static_cast<SQLUSMALLINT>(m_bound.size()), form.input, form.c, form.sql,
                           size, digits, const_cast<void*>(data), capacity, &bound.length));
}

void OdbcStatement::bindText(std::string_view text)
{
    Bound& bound = m_bound.emplace_back();
    bound.text = odbcText(text);
    const std::size_t units = bound.text.size();
    bound.length = static_cast<SQLLEN>(units * sizeof(SQLWCHAR));
    bound.text.push_back(0);
    const SQLSMALLINT type = units > mostWideCharacters ? SQL_WLONGVARCHAR : SQL_WVARCHAR;
    bindAt({SQL_PARAM_INPUT, SQL_C_WCHAR, type}, std::max<SQLULEN>(units, 1), 0, bound.text.data(), bound,
           bound.length);
}

void OdbcStatement::bindReturnValue(std::int64_t& value)
{
    Bound& bound = m_bound.emplace_back();
    bound.length = sizeof value;
    bindAt({SQL_PARAM_OUTPUT, SQL_C_SBIGINT, SQL_BIGINT}, 10, 0, &value, bound, sizeof value);
}

void OdbcStatement::bind(const SqlValue& value)
{
    if (const auto* text = std::get_if<std::string>(&value))
        return bindText(*text);
    Bound& bound = m_bound.emplace_back();
    if (const auto* integer = std::get_if<std::int64_t>(&value)) {
        bound.integer = *integer;
        bindAt({SQL_PARAM_INPUT, SQL_C_SBIGINT, SQL_BIGINT}, 19, 0, &bound.integer, bound, 0);
    } else if (const auto* number = std::get_if<double>(&value)) {
        bound.number = *number;
        bindAt({SQL_PARAM_INPUT, SQL_C_DOUBLE, SQL_DOUBLE}, 15, 0, &bound.number, bound, 0);
    } else if (const auto* moment = std::get_if<SqlDateTime>(&value)) {
        const auto part = [](int field) { return static_cast<SQLUSMALLINT>(field); };
        bound.moment = {static_cast<SQLSMALLINT>(moment->year),
                        part(moment->month),
                        part(moment->day),
                        part(moment->hour),
                        part(moment->minute),
                        part(moment->second),
                        static_cast<SQLUINTEGER>(moment->nanosecond / 1'000'000 * 1'000'000)};
        bindAt({SQL_PARAM_INPUT, SQL_C_TYPE_TIMESTAMP, SQL_TYPE_TIMESTAMP}, 23, 3, &bound.moment, bound, 0);
    } else if (const auto* bytes = std::get_if<std::span<const std::byte>>(&value)) {
        bound.length = static_cast<SQLLEN>(bytes->size());
        // A null pointer is refused even for no bytes.
        const void* const start = bytes->empty() ? &bound : static_cast<const void*>(bytes->data());
        bindAt({SQL_PARAM_INPUT, SQL_C_BINARY, SQL_LONGVARBINARY}, std::max<SQLULEN>(bytes->size(), 1), 0,
               start, bound, bound.length);
    } else {
        bound.length = SQL_NULL_DATA;
        bindAt({SQL_PARAM_INPUT, SQL_C_WCHAR, SQL_WVARCHAR}, 1, 0, nullptr, bound, 0);
    }
}

void OdbcStatement::run(std::string_view sql)
{
    std::vector<SQLWCHAR> text = odbcText(sql);
    check(SQLExecDirectW(m_handle, text.data(), static_cast<SQLINTEGER>(text.size())));
}

bool OdbcStatement::nextResult()
{
    const SQLRETURN result = SQLMoreResults(m_handle);
    check(result);
    return result != SQL_NO_DATA;
}

std::int64_t OdbcStatement::changedRows()
{
    SQLLEN rows = 0;
    check(SQLRowCount(m_handle, &rows));
    return std::max<SQLLEN>(rows, 0);
}

std::vector<OdbcStatement::Column> OdbcStatement::columns(SQLSMALLINT count)
{
    std::vector<Column> columns;
    for (SQLUSMALLINT number = 1; number <= count; ++number) {
        std::array<SQLWCHAR, 256> name{};
        SQLSMALLINT length = 0;
        SQLSMALLINT type = SQL_WVARCHAR;
        SQLULEN size = 0;
        SQLSMALLINT digits = 0;
        SQLSMALLINT nullable = 0;
        check(SQLDescribeColW(m_handle, number, name.data(), static_cast<SQLSMALLINT>(name.size()), &length,
                              &type, &size, &digits, &nullable));
        const auto shown = std::clamp<std::size_t>(static_cast<std::size_t>(length), 0, name.size() - 1);
        columns.push_back({utf8Text(std::span(name).first(shown)), type});
    }
    return columns;
}

std::optional<Recordset> OdbcStatement::rows(BinaryColumns binaries)
{
    SQLSMALLINT count = 0;
    check(SQLNumResultCols(m_handle, &count));
    if (count == 0)
        return std::nullopt;
    const std::vector<Column> described = columns(count);
    std::vector<std::string> names;
    for (const Column& column : described)
        names.push_back(column.name);
    Recordset rows(std::move(names));
    for (;;) {
        const SQLRETURN fetched = SQLFetch(m_handle);
        check(fetched);
        if (fetched == SQL_NO_DATA)
            return rows;
        std::vector<Recordset::Cell> cells;
        for (std::size_t at = 0; at < described.size(); ++at)
            cells.push_back(cell(static_cast<SQLUSMALLINT>(at + 1), described[at].type, binaries));
        rows.appendRow(std::move(cells));
    }
}

Recordset::Cell OdbcStatement::cell(SQLUSMALLINT column, SQLSMALLINT type, BinaryColumns binaries)
{
    SQLLEN length = 0;
    switch (type) {
    case SQL_BIT:
    case SQL_TINYINT:
    case SQL_SMALLINT:
    case SQL_INTEGER:
    case SQL_BIGINT: {
        SQLBIGINT integer = 0;
        check(SQLGetData(m_handle, column, SQL_C_SBIGINT, &integer, sizeof integer, &length));
        return length == SQL_NULL_DATA ? Recordset::Cell() : Recordset::Cell(std::int64_t{integer});
    }
    case SQL_REAL:
    case SQL_FLOAT:
    case SQL_DOUBLE: {
        // Read as text these would follow the process's locale.
        double number = 0;
        check(SQLGetData(m_handle, column, SQL_C_DOUBLE, &number, sizeof number, &length));
        return length == SQL_NULL_DATA ? Recordset::Cell() : Recordset::Cell(number);
    }
    case SQL_NUMERIC:
    case SQL_DECIMAL:
        return decimalCell(column);
    case SQL_TYPE_TIMESTAMP:
    case SQL_TYPE_DATE:
        return momentCell(column);
    case SQL_BINARY:
    case SQL_VARBINARY:
    case SQL_LONGVARBINARY:
        return binaryCell(column, binaries);
    default:
        return textCell(column);
    }
}

Recordset::Cell OdbcStatement::textCell(SQLUSMALLINT column)
{
    std::string text;
    std::vector<SQLWCHAR> whole;
    std::array<SQLWCHAR, 4096> piece;
    for (;;) {
        SQLLEN left = 0;
        const SQLRETURN read = SQLGetData(m_handle, column, SQL_C_WCHAR, piece.data(), sizeof piece, &left);
        check(read);
        if (read == SQL_NO_DATA)
            break;
        if (left == SQL_NULL_DATA)
            return std::monostate();
        const bool full =
            left == SQL_NO_TOTAL || static_cast<std::size_t>(left) > sizeof piece - sizeof(SQLWCHAR);
        const std::size_t units = full ? piece.size() - 1 : static_cast<std::size_t>(left) / sizeof(SQLWCHAR);
        whole.insert(whole.end(), piece.begin(), piece.begin() + static_cast<std::ptrdiff_t>(units));
        if (!full)
            break;
    }
    return utf8Text(whole);
}

/// Exact as text; a number where a double holds all its digits.
Recordset::Cell OdbcStatement::decimalCell(SQLUSMALLINT column)
{
    Recordset::Cell read = textCell(column);
    const auto* text = std::get_if<std::string>(&read);
    constexpr std::ptrdiff_t doubleDigits = 15;
    if (!text || std::ranges::count_if(*text, ascii::isDigit) > doubleDigits)
        return read;
    const std::string padded = text->starts_with('.')    ? "0" + *text
                               : text->starts_with("-.") ? "-0" + text->substr(1)
                                                         : *text;
    double number = 0;
    const auto parsed = std::from_chars(padded.data(), padded.data() + padded.size(), number);
    return parsed.ec == std::errc() && parsed.ptr == padded.data() + padded.size() ? Recordset::Cell(number)
                                                                                   : read;
}

Recordset::Cell OdbcStatement::momentCell(SQLUSMALLINT column)
{
    SQL_TIMESTAMP_STRUCT moment{};
    SQLLEN length = 0;
    check(SQLGetData(m_handle, column, SQL_C_TYPE_TIMESTAMP, &moment, sizeof moment, &length));
    if (length == SQL_NULL_DATA)
        return std::monostate();
    return dateTimeText({moment.year, moment.month, moment.day, moment.hour, moment.minute, moment.second,
                         static_cast<int>(moment.fraction)});
}

Recordset::Cell OdbcStatement::binaryCell(SQLUSMALLINT column, BinaryColumns binaries)
{
    if (binaries == BinaryColumns::left)
        return Recordset::LeftBinary(); // not asked for at all
    std::byte none{};
    SQLLEN left = 0;
    SQLRETURN read = SQLGetData(m_handle, column, SQL_C_BINARY, &none, 0, &left); // length or null only
    check(read);
    if (left == SQL_NULL_DATA)
        return std::monostate();
    auto bytes = std::make_shared<std::vector<std::byte>>();
    while (left > 0 || left == SQL_NO_TOTAL) {
        const std::size_t before = bytes->size();
        const std::size_t room = left == SQL_NO_TOTAL ? 1U << 20U : static_cast<std::size_t>(left);
        bytes->resize(before + room);
        read = SQLGetData(m_handle, column, SQL_C_BINARY, bytes->data() + before, static_cast<SQLLEN>(room),
                          &left);
        check(read);
        const bool whole =
            left != SQL_NO_TOTAL && static_cast<std::size_t>(std::max<SQLLEN>(left, 0)) <= room;
        if (read == SQL_NO_DATA)
            left = 0;
        if (whole || read == SQL_NO_DATA) {
            bytes->resize(before + static_cast<std::size_t>(std::max<SQLLEN>(left, 0)));
            break;
        }
        left = left == SQL_NO_TOTAL ? left : left - static_cast<SQLLEN>(room);
    }
    return Recordset::Bytes(std::move(bytes));
}

} // namespace selfreport
