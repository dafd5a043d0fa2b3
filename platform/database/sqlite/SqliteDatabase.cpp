#include "platform/database/sqlite/SqliteDatabase.h"

#include "platform/database/session/DatabaseError.h"
#include "platform/database/sqlite/ledger_schema.h"
#include "platform/database/sqlite/sqlite_failure.h"
#include "platform/database/sqlite/sqlite_functions.h"

#include <climits>
#include <filesystem>
#include <sqlite3.h>

namespace selfreport {

// The library is friendlier than a ledger may have it: it makes an empty database of a file name that was
// mistyped, takes missing parameters for null and reads an empty value as none. All of that is refused or put
// right here, so that nothing above has to know which database is open.

namespace {

[[noreturn]] void fail(sqlite3* database)
{
    const int code = sqlite3_extended_errcode(database);
    const DatabaseError error = sqliteError(database);
    if (code == SQLITE_CONSTRAINT_PRIMARYKEY || code == SQLITE_CONSTRAINT_UNIQUE ||
        code == SQLITE_CONSTRAINT_ROWID)
        throw RepeatableError(error.number, error.description);
    throw error;
}

[[noreturn]] void failOnFile(const std::string& file, const std::string& reason)
{
    throw DatabaseError(unspecifiedError, "数据库文件 " + file + ": " + reason);
}

/// Refuses what the library would take for a new, empty database.
void checkFile(const std::string& file)
{
    std::error_code error;
    const auto status = std::filesystem::status(file, error);
    if (!std::filesystem::exists(status))
        failOnFile(file, "文件不存在");
    if (!std::filesystem::is_regular_file(status))
        failOnFile(file, "不是文件");
    const auto size = std::filesystem::file_size(file, error);
    if (!error && size == 0)
        failOnFile(file, "文件是空的");
}

sqlite3* openFile(const std::string& file, int flags)
{
    sqlite3* database = nullptr;
    const int opened = sqlite3_open_v2(file.c_str(), &database, flags | SQLITE_OPEN_EXRESCODE, nullptr);
    if (opened == SQLITE_OK)
        return database;
    const std::string reason = sqliteReason(opened, database ? sqlite3_errmsg(database) : nullptr);
    sqlite3_close(database);
    failOnFile(file, reason);
}

} // namespace

void SqliteStatement::Finalize::operator()(sqlite3_stmt* statement) const
{
    sqlite3_finalize(statement);
}

void SqliteDatabase::Close::operator()(sqlite3* database) const
{
    sqlite3_close_v2(database);
}

SqliteStatement::SqliteStatement(sqlite3* database, std::string_view sql)
{
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v3(database, sql.data(), static_cast<int>(sql.size()), SQLITE_PREPARE_PERSISTENT,
                           &statement, nullptr) != SQLITE_OK)
        fail(database);
    m_handle.reset(statement);
    if (!statement)
        throw DatabaseError(unspecifiedError, "空的 SQL 语句");
}

void SqliteStatement::bind(std::span<const SqlValue> values)
{
    const int wanted = sqlite3_bind_parameter_count(handle());
    if (static_cast<std::size_t>(wanted) != values.size())
        throw DatabaseError(unspecifiedError, "语句有 " + std::to_string(wanted) + " 个参数, 给出 " +
                                                  std::to_string(values.size()) + " 个");
    int place = 0;
    for (const SqlValue& value : values)
        bindOne(++place, value);
}

void SqliteStatement::bindOne(int place, const SqlValue& value)
{
    struct Binder {
        sqlite3_stmt* statement;
        int place;
        int operator()(std::monostate) const { return sqlite3_bind_null(statement, place); }
        int operator()(std::int64_t integer) const { return sqlite3_bind_int64(statement, place, integer); }
        int operator()(double number) const { return sqlite3_bind_double(statement, place, number); }
        int operator()(const std::string& text) const
        {
            return sqlite3_bind_text64(statement, place, text.data(), text.size(), SQLITE_TRANSIENT,
                                       SQLITE_UTF8);
        }
        int operator()(const SqlDateTime& moment) const { return (*this)(dateTimeText(moment)); }
        int operator()(std::span<const std::byte> bytes) const
        {
            // Null bytes would bind a null; an empty value is no null.
            const void* start = bytes.empty() ? "" : static_cast<const void*>(bytes.data());
            return sqlite3_bind_blob64(statement, place, start, bytes.size(), SQLITE_STATIC);
        }
    };
    if (std::visit(Binder{handle(), place}, value) != SQLITE_OK)
        fail(sqlite3_db_handle(handle()));
}

bool SqliteStatement::step()
{
    const int result = sqlite3_step(handle());
    if (result == SQLITE_ROW)
        return true;
    if (result == SQLITE_DONE)
        return false;
    try {
        fail(sqlite3_db_handle(handle()));
    } catch (const DatabaseError&) {
        reset(); // a failed statement must not keep its lock
        throw;
    }
}

void SqliteStatement::reset()
{
    sqlite3_reset(handle());
    sqlite3_clear_bindings(handle());
}

bool SqliteStatement::isNull(int column) const
{
    return sqlite3_column_type(handle(), column) == SQLITE_NULL;
}

std::int64_t SqliteStatement::integer(int column) const
{
    return sqlite3_column_int64(handle(), column);
}

double SqliteStatement::number(int column) const
{
    return sqlite3_column_double(handle(), column);
}

std::string SqliteStatement::text(int column) const
{
    const auto* text = sqlite3_column_text(handle(), column);
    const int length = sqlite3_column_bytes(handle(), column);
    return text ? std::string(reinterpret_cast<const char*>(text), static_cast<std::size_t>(length)) : "";
}

Recordset::Cell SqliteStatement::cell(int column, BinaryColumns binaries) const
{
    switch (sqlite3_column_type(handle(), column)) {
    case SQLITE_NULL:
        return std::monostate();
    case SQLITE_INTEGER:
        return integer(column);
    case SQLITE_FLOAT:
        return number(column);
    case SQLITE_TEXT:
        return text(column);
    default:
        break;
    }
    if (binaries == BinaryColumns::left)
        return Recordset::LeftBinary();
    const auto* bytes = static_cast<const std::byte*>(sqlite3_column_blob(handle(), column));
    const int length = sqlite3_column_bytes(handle(), column);
    return std::make_shared<const std::vector<std::byte>>(bytes, bytes + length);
}

Recordset SqliteStatement::rows(BinaryColumns binaries)
{
    const int columns = sqlite3_column_count(handle());
    std::vector<std::string> names;
    for (int column = 0; column < columns; ++column)
        names.emplace_back(sqlite3_column_name(handle(), column));
    Recordset rows(std::move(names));
    while (step()) {
        std::vector<Recordset::Cell> cells;
        cells.reserve(static_cast<std::size_t>(columns));
        for (int column = 0; column < columns; ++column)
            cells.push_back(cell(column, binaries));
        rows.appendRow(std::move(cells));
    }
    reset();
    return rows;
}

SqliteDatabase::SqliteDatabase(const std::string& file)
    : m_file(file)
{
    checkFile(file);
    m_handle.reset(openFile(file, SQLITE_OPEN_READWRITE));
    sqlite3_busy_timeout(handle(), 5000); // another session may be writing: milliseconds as a rule
    registerServerFunctions(handle());
    try {
        run("select count(*) from sqlite_schema");
        run("pragma cache_size=-65536"); // KiB: the pages of a big ledger's upper levels and last reports
    } catch (const DatabaseError& error) {
        failOnFile(file, error.description);
    }
}

void SqliteDatabase::run(const std::string& script) const
{
    if (sqlite3_exec(handle(), script.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK)
        fail(handle());
}

void SqliteDatabase::copyTo(const std::string& file) const
{
    const std::unique_ptr<sqlite3, Close> copy(openFile(file, SQLITE_OPEN_READWRITE));
    // What is lost with the program anyway needs no care.
    sqlite3_exec(copy.get(), "pragma journal_mode=off;pragma synchronous=off", nullptr, nullptr, nullptr);
    sqlite3_backup* const backup = sqlite3_backup_init(copy.get(), "main", handle(), "main");
    if (!backup)
        failOnFile(file, sqliteError(copy.get()).description);
    constexpr int allPages = -1;
    sqlite3_backup_step(backup, allPages);
    if (sqlite3_backup_finish(backup) != SQLITE_OK)
        failOnFile(file, sqliteError(copy.get()).description);
}

void createDatabase(const std::string& file)
{
    std::error_code error;
    if (std::filesystem::exists(file, error))
        failOnFile(file, "文件已经存在");
    try {
        std::unique_ptr<sqlite3, decltype(&sqlite3_close)> database(
            openFile(file, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE), &sqlite3_close);
        registerServerFunctions(database.get());
        // Bytes a page: a year of an item's balances stands on one.
        const std::string script = "pragma page_size=8192;begin;" + ledgerSchemaScript() + "commit;";
        if (sqlite3_exec(database.get(), script.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK)
            failOnFile(file, sqliteError(database.get()).description);
    } catch (const DatabaseError&) {
        std::filesystem::remove(file, error);
        throw;
    }
}

} // namespace selfreport
