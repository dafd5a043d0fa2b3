#include "platform/database/sqlite/SqliteSession.h"

#include "platform/database/dialect/text_columns.h"
#include "platform/database/session/DatabaseError.h"
#include "platform/database/session/names.h"
#include "platform/database/sqlite/binary_columns.h"
#include "platform/database/sqlite/tsql_rewriter.h"

#include <filesystem>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace selfreport {

// A transaction that reads keeps others from writing for as long as it lasts, and the proof of a big ledger
// lasts. So reads of one moment are made in a copy, which takes a fraction of a second.

namespace {

/// An empty file that nobody else may read; its name is gone at the end, and the file with whoever has it
/// open.
class UnnamedFile {
public:
    UnnamedFile()
        : m_path((std::filesystem::temp_directory_path() / "selfreport-XXXXXX").string())
    {
        const int made = ::mkstemp(m_path.data());
        if (made < 0)
            throw DatabaseError(unspecifiedError, "临时文件 " + m_path + " 不能建立");
        ::close(made);
    }
    ~UnnamedFile() { ::unlink(m_path.c_str()); }
    UnnamedFile(const UnnamedFile&) = delete;
    UnnamedFile& operator=(const UnnamedFile&) = delete;

    const std::string& path() const { return m_path; }

private:
    std::string m_path;
};

} // namespace

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
    if (m_copy)
        return m_copy->query(sql, values, binaries);
    StatementCache& statements = binaries == BinaryColumns::left ? m_lists : m_statements;
    SqliteStatement& statement = statements.statement(sql);
    statement.bind(values);
    return statement.rows(binaries);
}

std::vector<ProcedureResult> SqliteSession::callProcedures(std::span<const ProcedureCall> calls)
{
    if (m_copy)
        return m_copy->callProcedures(calls);
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
            if (error.isTimeOut) { // each of the others would be waited for as long
                results.resize(calls.size(), ProcedureResult{.error = error});
                break;
            }
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

void SqliteSession::keepCopy(std::unique_ptr<SqliteSession> copy)
{
    const std::lock_guard lock(m_copyMutex);
    m_copy.swap(copy);
}

/// Where there is no room for a copy, who writes waits.
bool SqliteSession::beginReading()
{
    try {
        const UnnamedFile file;
        m_database.copyTo(file.path());
        keepCopy(std::make_unique<SqliteSession>(file.path()));
    } catch (const std::exception&) {
        m_database.run("begin");
    }
    return true;
}

void SqliteSession::endReading()
{
    keepCopy(nullptr);
    rollBack();
}

/// A file that was removed or replaced since is another database.
bool SqliteSession::looksAlive()
{
    return m_identity != FileIdentity() && identityOf(m_database.file()) == m_identity;
}

bool SqliteSession::resetForReuse()
{
    try {
        endReading();
        return m_statements.statement("select 1 from sqlite_temp_schema limit 1").rows().isEmpty();
    } catch (const DatabaseError&) {
        return false;
    }
}

void SqliteSession::cancel()
{
    sqlite3_interrupt(m_database.handle());
    const std::lock_guard lock(m_copyMutex);
    if (m_copy)
        m_copy->cancel();
}

} // namespace selfreport
