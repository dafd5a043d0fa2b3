#pragma once
#include "platform/database/session/Session.h"
#include "platform/database/sqlite/AcctProcedure.h"
#include "platform/database/sqlite/SqliteDatabase.h"
#include "platform/database/sqlite/StatementCache.h"
#include "platform/database/sqlite/VoucherProcedure.h"

#include <memory>
#include <mutex>
#include <string>

namespace selfreport {

/// A session on the embedded database; runs the stored procedures itself.
class SqliteSession final : public Session {
public:
    /// @throws DatabaseError
    explicit SqliteSession(const std::string& file);

    std::int64_t execute(std::string_view sql, std::span<const SqlValue> values) override;
    Recordset query(std::string_view sql, std::span<const SqlValue> values, BinaryColumns binaries) override;
    std::vector<ProcedureResult> callProcedures(std::span<const ProcedureCall> calls) override;
    const TextColumns& textColumns() override; ///< they hold everything
    void begin() override;
    void commit() override;
    void rollBack() override;
    bool inTransaction() const override;
    bool beginReading() override;
    void endReading() override;
    bool looksAlive() override;
    bool answers() override { return looksAlive(); }
    bool resetForReuse() override;
    void limitWaits(std::chrono::seconds) override {} // a lock is waited for shortly anyway
    void cancel() override;
    void cut() override { cancel(); }

private:
    struct FileIdentity {
        std::uint64_t device = 0;
        std::uint64_t number = 0;
        bool operator==(const FileIdentity&) const = default;
    };
    static FileIdentity identityOf(const std::string& file);
    void keepCopy(std::unique_ptr<SqliteSession> copy);

    SqliteDatabase m_database;
    FileIdentity m_identity; ///< of the file when it was opened
    StatementCache m_statements;
    StatementCache m_lists; ///< queries without their binary columns
    AcctProcedure m_acctProcedure;
    VoucherProcedure m_voucherProcedure;
    std::mutex m_copyMutex;                ///< against those who cancel
    std::unique_ptr<SqliteSession> m_copy; ///< that is read while reads are of one moment
};

} // namespace selfreport
