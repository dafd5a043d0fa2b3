#include "platform/database/sqlite/SqliteSession.h"

#include "platform/database/dialect/text_columns.h"
#include "platform/database/session/DatabaseError.h"
#include "platform/database/session/names.h"
#include "platform/database/sqlite/binary_columns.h"
#include "platform/database/sqlite/tsql_rewriter.h"

#include <sqlite3.h>
#include <sys/stat.h>

namespace selfreport {

SqliteSession::SqliteSession(const std::string& file)
    : m_database(file)
    , m_identity(identityOf(file))
    , m_statements(m_database, toEmbeddedSql)
    , m_lists(m_database,
              [this](std::string_view sql) { return withoutBinaryColumns(m_database, toEmbeddedSql(sql)); })
    , m_acctProcedure(m_database)
    , m_voucherProcedure(m_database)
{
}

SqliteSession::FileIdentity SqliteSession::identityOf(const std::string& file)
{
    struct stat status {};
    if (::stat(file.c_str(), &status) != 0)
        return {};
    return {static_cast<std::uint64_t>(status.st_dev), static_cast<std::uint64_t>(status.st_ino)};
}

std::int64_t SqliteSession::execute(std::string_view sql, std::span<const SqlValue> values)
{
    SqliteStatement& statement = m_statements.statement(sql);
    statement.bind(values);
    while (statement.step()) {
    }
    statement.reset();
    return sqlite3_stmt_readonly(statement.handle()) ? 0 : sqlite3_changes64(m_database.handle());
}

Recordset SqliteSession::query(std::string_view sql, std::span<const SqlValue> values, BinaryColumns binaries)
{
    StatementCache& statements = binaries == BinaryColumns::left ? m_lists : m_statements;
    SqliteStatement& statement = statements.statement(sql);
    statement.bind(values);
    return statement.rows(binaries);
}

std::vector<ProcedureResult> SqliteSession::callProcedures(std::span<const ProcedureCall> calls)
{
    // One read transaction takes the file's lock once, and all calls see the same ledger.
    const bool ownTransaction = !inTransaction();
    if (ownTransaction)
        m_statements.statement("begin").step();
    m_acctProcedure.forgetLatest();
    std::vector<ProcedureResult> results;
    for (const ProcedureCall& call : calls) {
        ProcedureResult& result = results.emplace_back();
        try {
            if (sameName(call.procedure, AcctProcedure::name))
                result = m_acctProcedure.run(call);
            else if (sameName(call.procedure, VoucherProcedure::name))
                result = m_voucherProcedure.run(call);
            else
                throw DatabaseError(procedureMissing, "找不到存储过程 " + call.procedure);
        } catch (const DatabaseError& error) {
            result.error = error;
        }
    }
    if (ownTransaction)
        m_statements.statement("commit").step();
    return results;
}

const TextColumns& SqliteSession::textColumns()
{
    static const TextColumns unlimited;
    return unlimited;
}

void SqliteSession::begin()
{
    m_database.run("begin immediate");
}

void SqliteSession::commit()
{
    m_database.run("commit");
}

void SqliteSession::rollBack()
{
    if (inTransaction()) // a full disk, for one, makes the library roll back by itself
        m_database.run("rollback");
}

bool SqliteSession::inTransaction() const
{
    return sqlite3_get_autocommit(m_database.handle()) == 0;
}

/// The file's lock is shared with who reads; who writes waits for it.
bool SqliteSession::beginReading()
{
    m_database.run("begin");
    return true;
}

/// A file that was removed or replaced since is another database.
bool SqliteSession::looksAlive()
{
    return m_identity != FileIdentity() && identityOf(m_database.file()) == m_identity;
}

bool SqliteSession::resetForReuse()
{
    try {
        rollBack();
        return m_statements.statement("select 1 from sqlite_temp_schema limit 1").rows().isEmpty();
    } catch (const DatabaseError&) {
        return false;
    }
}

void SqliteSession::cancel()
{
    sqlite3_interrupt(m_database.handle());
}

} // namespace selfreport
