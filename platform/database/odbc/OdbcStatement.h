#pragma once
#include "platform/database/session/ProcedureCall.h"
#include "platform/database/session/Recordset.h"
#include "platform/database/session/SqlValue.h"

#include <functional>
#include <list>
#include <optional>
#include <span>
#include <sql.h>
#include <sqlext.h>
#include <string_view>
#include <vector>

namespace selfreport {

/// One statement on an ODBC session, run once. All failures throw DatabaseError, a lost session
/// ConnectionLost.
class OdbcStatement {
public:
    /// @param queryTimeout  seconds; 0 for no limit
    OdbcStatement(SQLHDBC connection, int queryTimeout);
    ~OdbcStatement();
    OdbcStatement(const OdbcStatement&) = delete;
    OdbcStatement& operator=(const OdbcStatement&) = delete;

    void bind(const SqlValue& value);

    /// A text bound as varchar-like input, and the place for a procedure's return value.
    void bindText(std::string_view text);
    void bindReturnValue(std::int64_t& value);

    void run(std::string_view sql);

    /// Rows of the result at hand; nothing if it has no columns.
    std::optional<Recordset> rows(BinaryColumns binaries);

    /// Moves to the next result; false behind the last. Return values are valid from then on.
    bool nextResult();

    std::int64_t changedRows();

    SQLHSTMT handle() const { return m_handle; }

private:
    struct Column {
        std::string name;
        SQLSMALLINT type;
    };
    /// What a bound value points to must stay until the statement has run.
    struct Bound {
        std::vector<SQLWCHAR> text;
        std::int64_t integer = 0;
        double number = 0;
        SQL_TIMESTAMP_STRUCT moment{};
        SQLLEN length = 0;
    };
    struct Form {
        SQLSMALLINT input, c, sql;
    };

    void check(SQLRETURN result);
    void bindAt(Form form, SQLULEN size, SQLSMALLINT digits, const void* data, Bound& bound, SQLLEN capacity);
    std::vector<Column> columns(SQLSMALLINT count);
    Recordset::Cell cell(SQLUSMALLINT column, SQLSMALLINT type, BinaryColumns binaries);
    Recordset::Cell textCell(SQLUSMALLINT column);
    Recordset::Cell decimalCell(SQLUSMALLINT column);
    Recordset::Cell momentCell(SQLUSMALLINT column);
    Recordset::Cell binaryCell(SQLUSMALLINT column, BinaryColumns binaries);

    SQLHDBC m_connection;
    SQLHSTMT m_handle = SQL_NULL_HSTMT;
    std::list<Bound> m_bound;
};

} // namespace selfreport
