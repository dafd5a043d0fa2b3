#pragma once
#include "platform/database/session/Recordset.h"
#include "platform/database/session/SqlValue.h"

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>

struct sqlite3;
struct sqlite3_stmt;

namespace selfreport {

/// A prepared statement of the embedded database; reset before each use.
class SqliteStatement {
public:
    /// @param sql  in the embedded database's own SQL. @throws DatabaseError
    SqliteStatement(sqlite3* database, std::string_view sql);

    /// Binds the values in order; there must be as many as the statement has "?".
    void bind(std::span<const SqlValue> values);

    /// Moves to the next row; false behind the last one. @throws DatabaseError
    bool step();
    void reset();

    bool isNull(int column) const;
    std::int64_t integer(int column) const;
    double number(int column) const;
    std::string text(int column) const;

    /// All rows from here on; the statement is reset afterwards.
    Recordset rows(BinaryColumns binaries = BinaryColumns::left);

    sqlite3_stmt* handle() const { return m_handle.get(); }

private:
    void bindOne(int place, const SqlValue& value);
    Recordset::Cell cell(int column, BinaryColumns binaries) const;

    struct Finalize {
        void operator()(sqlite3_stmt* statement) const;
    };
    std::unique_ptr<sqlite3_stmt, Finalize> m_handle;
};

/// An open database file with the server's comparison rules: collation "chinese", `like`, getdate(), len().
class SqliteDatabase {
public:
    /// Never creates a file. @throws DatabaseError that names the file if it is missing, empty or no database
    explicit SqliteDatabase(const std::string& file);

    SqliteStatement prepare(std::string_view sql) const { return {handle(), sql}; }

    /// Runs several statements without values, in the embedded database's own SQL.
    void run(const std::string& script) const;

    /// Writes all of it, as it stands at one moment, into an empty file. Others may write again as soon as
    /// that is done. @throws DatabaseError, of a full disk too
    void copyTo(const std::string& file) const;

    sqlite3* handle() const { return m_handle.get(); }
    const std::string& file() const { return m_file; }

private:
    struct Close {
        void operator()(sqlite3* database) const;
    };
    std::string m_file;
    std::unique_ptr<sqlite3, Close> m_handle;
};

/// Writes a new database file with all tables and the fetch type keys and nothing else.
/// @throws DatabaseError if the file exists or cannot be written; nothing is left behind then
void createDatabase(const std::string& file);

} // namespace selfreport
