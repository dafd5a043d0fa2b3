#pragma once
#include "platform/database/dialect/text_columns.h"
#include "platform/database/odbc/odbc_string.h"
#include "platform/database/odbc/OdbcStatement.h"
#include "platform/database/session/Session.h"

#include <atomic>
#include <chrono>
#include <mutex>
#include <optional>
#include <sql.h>
#include <sys/types.h>

namespace selfreport {

/// A session on a server through the ODBC driver manager.
class OdbcSession final : public Session {
public:
    /// @throws DatabaseError
    explicit OdbcSession(const OdbcTarget& target);
    ~OdbcSession() override;

    std::int64_t execute(std::string_view sql, std::span<const SqlValue> values) override;
    Recordset query(std::string_view sql, std::span<const SqlValue> values, BinaryColumns binaries) override;
    std::vector<ProcedureResult> callProcedures(std::span<const ProcedureCall> calls) override;
    const TextColumns& textColumns() override;
    void begin() override;
    void commit() override { endTransaction(SQL_COMMIT); }
    void rollBack() override { endTransaction(SQL_ROLLBACK); }
    bool inTransaction() const override { return m_inTransaction; }
    bool beginReading() override;
    void endReading() override;
    bool looksAlive() override;
    bool answers() override;
    bool resetForReuse() override;
    void limitWaits(std::chrono::seconds longest) override;
    void cancel() override;
    void cut() override;

private:
    class Running;
    /// That of the ledger's procedure.
    struct Companion {
        std::string procedureNumber; ///< "": there is none
        std::chrono::steady_clock::time_point since;
    };

    void connect(const OdbcTarget& target);
    void setAutocommit(bool on);
    void endTransaction(SQLSMALLINT how);
    ProcedureResult callAlone(const ProcedureCall& call);
    Recordset firstRows(Running& running, std::string_view sql, BinaryColumns binaries);
    Recordset rowsUnlessRefused(std::string_view sql);
    bool hasCompanion();
    std::vector<std::optional<ProcedureResult>> callTogether(std::span<const ProcedureCall> calls);
    std::vector<std::optional<ProcedureResult>> callOneByOne(std::span<const ProcedureCall> calls);
    std::vector<ProcedureResult> callInBatches(std::span<const ProcedureCall> calls);
    std::size_t settleBatch(std::span<const ProcedureCall> batch, std::vector<ProcedureResult>& results);

    SQLHENV m_environment = SQL_NULL_HENV;
    SQLHDBC m_connection = SQL_NULL_HDBC;
    int m_usualTimeout = 0; ///< of statements, in seconds; 0: none
    int m_queryTimeout = 0; ///< now
    int m_socket = -1;      ///< that the driver uses; -1: it does not tell
    std::optional<ino_t> m_socketIdentity;
    std::int64_t m_signsOfLife = 0;
    bool m_inTransaction = false;
    bool m_readsSnapshot = false;             ///< the isolation is to be set back
    std::optional<TextColumns> m_textColumns; ///< once they were asked for
    std::optional<Companion> m_companion;     ///< once it was looked for
    std::size_t m_callsSoFar = 0;             ///< of the ledger's procedure, or any other
    bool m_isSpoiled = false;                 ///< a transaction did not end cleanly: not for reuse
    std::atomic<bool> m_isCut = false;
    std::mutex m_runningMutex;
    Running* m_running = nullptr; ///< what cancel() stops
};

} // namespace selfreport
