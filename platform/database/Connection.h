#pragma once
#include "platform/database/session/ProcedureCall.h"
#include "platform/database/session/Recordset.h"
#include "platform/database/session/SqlValue.h"

#include <chrono>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <mutex>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace selfreport {

class Session;
struct TextColumns;

/// An open connection to the ledger's database. Statements are the T-SQL of the server; the embedded database
/// understands what the module needs of it. "?" takes the next bound value.
///
/// Destroying the connection hands its session back for the next one with the same connection string, a
/// transaction that is still open is rolled back first. A session that died while it lay idle is replaced
/// unseen: what only reads, or begins a transaction, is sent again if the first answer does not come; before
/// a change the server is asked for a sign of life. OpeningFailed if there is no other session to be had. No
/// time limit on statements. All operations throw DatabaseError.
class Connection {
public:
    ~Connection();
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    /// Runs a statement that gives no rows. Returns the number of rows that it changed. Never sent twice.
    std::int64_t execute(std::string_view sql, std::span<const SqlValue> values = {});
    std::int64_t execute(std::string_view sql, std::initializer_list<SqlValue> values);

    /// Runs a statement that reads.
    Recordset query(std::string_view sql, BinaryColumns binaries = BinaryColumns::left);
    Recordset query(std::string_view sql, std::span<const SqlValue> values,
                    BinaryColumns binaries = BinaryColumns::left);
    Recordset query(std::string_view sql, std::initializer_list<SqlValue> values,
                    BinaryColumns binaries = BinaryColumns::left);

    /// Calls a procedure that reads. A failed call is a result with an error, never an exception.
    ProcedureResult call(const ProcedureCall& call);

    /// The same results as one call() after the other, with a round trip for up to 200 calls. A round trip
    /// that ran out of time is the answer of all its calls.
    std::vector<ProcedureResult> callProcedures(std::span<const ProcedureCall> calls);

    /// What the database's text columns can hold, asked once for a session; see dialect/text_columns.
    const TextColumns& textColumns();

    void begin();
    void commit();
    void rollBack();
    bool inTransaction() const;

    /// See Session: one moment for all that is read from here on.
    bool beginReading();
    void endReading();

    /// Stops the statement under way, from any thread; it fails with DatabaseError.
    void cancel();

    /// Ends the session at once, from any thread and without waiting for the server: what is under way fails,
    /// where the driver lets it, and nothing is sent any more. The server rolls back by itself.
    void cut();
    /// Whether a commit has been sent. Behind cut() that is what nobody knows the outcome of.
    bool hasSentCommit() const;

    /// A second connection to the same database, whose statements wait ten seconds at most.
    /// @throws DatabaseError as openConnection does
    std::unique_ptr<Connection> another() const;

private:
    friend std::unique_ptr<Connection> openConnection(std::string_view connectionString);
    Connection(std::string connectionString, std::unique_ptr<Session> session, bool isUnproven);

    template <class Work>
    auto guarded(const Work& work) -> decltype(work());
    template <class Work>
    auto reading(const Work& work) -> decltype(work());
    void renewSession();
    void refuseIfCut() const; ///< under the lock

    std::string m_connectionString;
    mutable std::mutex m_mutex; ///< for what cancel() and cut() see
    std::unique_ptr<Session> m_session;
    std::chrono::seconds m_longestWait{0}; ///< for an answer; 0: without end
    bool m_isUnproven; ///< the session lay idle and has not yet answered on this connection
    bool m_hasFailed = false;
    bool m_isCancelled = false;
    bool m_isCut = false;
    bool m_hasSentCommit = false;
};

/// Opens the database of a connection string ("Provider=SQLite;Data Source=<file>", or a server's).
/// @throws DatabaseError with loginRejected or unspecifiedError
std::unique_ptr<Connection> openConnection(std::string_view connectionString);

/// Rolls back at the end of its scope unless committed.
class Transaction {
public:
    explicit Transaction(Connection& connection);
    ~Transaction();
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;

    const Connection& connection() const { return m_connection; }
    void commit();
    /// Rolls back now; what fails of that the server does by itself.
    void giveUp() noexcept;

private:
    Connection& m_connection;
    bool m_isOpen = true;
};

/// Reads of one moment, to the end of its scope.
class ReadingOfOneMoment {
public:
    explicit ReadingOfOneMoment(Connection& connection)
        : m_connection(connection)
        , m_isOne(connection.beginReading())
    {
    }
    ~ReadingOfOneMoment();
    ReadingOfOneMoment(const ReadingOfOneMoment&) = delete;
    ReadingOfOneMoment& operator=(const ReadingOfOneMoment&) = delete;

    /// False: the database does not offer it, each statement sees what stands when it runs.
    bool isOne() const { return m_isOne; }

private:
    Connection& m_connection;
    bool m_isOne;
};

/// What this process did so far.
struct DatabaseCounters {
    std::int64_t opens = 0;          ///< connections opened
    std::int64_t closes = 0;         ///< connections given up
    std::int64_t sessions = 0;       ///< physical sessions opened below them
    std::int64_t procedureCalls = 0; ///< each call of a batch counts
    std::int64_t batches = 0;        ///< callProcedures() and call()
};
DatabaseCounters databaseCounters();

/// Closes all idle sessions, so that a database file can be replaced or removed on any system.
void closeIdleSessions();

} // namespace selfreport
