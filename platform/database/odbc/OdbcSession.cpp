#include "platform/database/odbc/OdbcSession.h"

#include "platform/database/dialect/ledger_companion.h"
#include "platform/database/dialect/reading_isolation.h"
#include "platform/database/odbc/odbc_diagnostics.h"
#include "platform/database/odbc/odbc_text.h"
#include "platform/database/odbc/procedure_batch.h"
#include "platform/services/CLocale.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <future>
#include <sqlext.h>
#include <sqlucode.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <thread>
#include <utility>

namespace selfreport {

// A sheet makes hundreds of small procedure calls, and each round trip to a server costs more than the call.
// So calls go out in batches; a batch tells badly which of its calls failed and may end at one, so that what
// got no answer is called again alone. And the driver's word is not taken for it: a cancelled statement may
// look complete, and a dead connection alive until it is asked.

namespace {

// Seconds. A firewall may have dropped an idle session without telling either side.
constexpr int signOfLifeTimeout = 2;

// The driver may lose a cancellation for good that comes while it is still sending the statement.
constexpr std::chrono::milliseconds cancellableAge(30);

SQLPOINTER attribute(std::intptr_t value)
{
    return reinterpret_cast<SQLPOINTER>(value);
}

/// The socket below a connection; -1 if the driver does not tell. The number of the question is the driver's
/// own, and another driver may mean something else by it.
int socketOf(SQLHDBC connection)
{
    constexpr SQLUSMALLINT driversSocket = 1301;
    std::intptr_t answer[4]{};
    SQLSMALLINT length = 0;
    if (!SQL_SUCCEEDED(SQLGetInfo(connection, driversSocket, answer, sizeof answer, &length)) ||
        length < static_cast<SQLSMALLINT>(sizeof(int)))
        return -1;
    const int socket = static_cast<int>(answer[0]);
    sockaddr_storage peer{};
    socklen_t size = sizeof peer;
    return ::getpeername(socket, reinterpret_cast<sockaddr*>(&peer), &size) == 0 ? socket : -1;
}

/// Tells a socket from another one under the same number.
std::optional<ino_t> identityOf(int socket)
{
    struct stat status {};
    return socket >= 0 && ::fstat(socket, &status) == 0 ? std::optional(status.st_ino) : std::nullopt;
}

/// A server with a cancellation still to be read sees a reset, where it would overlook an end in order.
void resetConnection(int socket)
{
    sockaddr none{};
    none.sa_family = AF_UNSPEC;
    static_cast<void>(::connect(socket, &none, sizeof none));
    ::shutdown(socket, SHUT_RDWR); // wakes who waits on it, if it could not be reset
}

} // namespace

/// A statement that cancel() can reach while it lives, on the thread that runs it.
class OdbcSession::Running {
public:
    explicit Running(OdbcSession& session)
        : Running(session, session.m_queryTimeout)
    {
    }
    Running(OdbcSession& session, int timeout)
        : statement(session.m_connection, timeout)
        , m_session(session)
    {
        const std::lock_guard lock(m_session.m_runningMutex);
        m_session.m_running = this;
    }
    ~Running()
    {
        const std::lock_guard lock(m_session.m_runningMutex);
        m_session.m_running = nullptr;
    }
    Running(const Running&) = delete;
    Running& operator=(const Running&) = delete;

    bool isYoung() const { return std::chrono::steady_clock::now() - m_start < cancellableAge; }
    /// Where no call of the statement is under way, the driver itself waits for the server to confirm: apart,
    /// as a server that says nothing must not hold up whoever cancels.
    void cancel()
    {
        m_isCancelled = true;
        if (!m_asking.valid() || m_asking.wait_for(std::chrono::seconds(0)) == std::future_status::ready)
            m_asking = std::async(std::launch::async, [handle = statement.handle()] { SQLCancel(handle); });
    }
    /// What was read of a cancelled statement may lack rows without a word from the driver.
    void throwIfCancelled() const
    {
        if (m_isCancelled)
            throw DatabaseError(unspecifiedError, "操作已取消");
    }

private:
    const CLocale m_locale; // the driver writes floats by the locale where it makes texts of them

public:
    OdbcStatement statement; // freed after the session has forgotten it

private:
    OdbcSession& m_session;
    const std::chrono::steady_clock::time_point m_start = std::chrono::steady_clock::now();
    std::atomic<bool> m_isCancelled = false;
    std::future<void> m_asking; ///< waited for before the statement is freed
};

OdbcSession::OdbcSession(const OdbcTarget& target)
    : m_usualTimeout(target.queryTimeout)
    , m_queryTimeout(target.queryTimeout)
{
    try {
        connect(target);
    } catch (const DatabaseError&) {
        SQLFreeHandle(SQL_HANDLE_DBC, m_connection);
        SQLFreeHandle(SQL_HANDLE_ENV, m_environment);
        throw;
    }
}

OdbcSession::~OdbcSession()
{
    SQLDisconnect(m_connection);
    SQLFreeHandle(SQL_HANDLE_DBC, m_connection);
    SQLFreeHandle(SQL_HANDLE_ENV, m_environment);
}

void OdbcSession::connect(const OdbcTarget& target)
{
    const CLocale locale;
    if (!SQL_SUCCEEDED(SQLAllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &m_environment)))
        throw DatabaseError(unspecifiedError, "ODBC 无法启动");
    SQLSetEnvAttr(m_environment, SQL_ATTR_ODBC_VERSION, attribute(SQL_OV_ODBC3), 0);
    if (!SQL_SUCCEEDED(SQLAllocHandle(SQL_HANDLE_DBC, m_environment, &m_connection)))
        throw openingError(odbcRecords(SQL_HANDLE_ENV, m_environment));
    // Without it a silent server is waited for without end.
    SQLSetConnectAttr(m_connection, SQL_ATTR_LOGIN_TIMEOUT, attribute(target.loginTimeout), 0);
    std::vector<SQLWCHAR> text = odbcText(target.connectionString);
    const SQLRETURN connected =
        SQLDriverConnectW(m_connection, nullptr, text.data(), static_cast<SQLSMALLINT>(text.size()), nullptr,
                          0, nullptr, SQL_DRIVER_NOPROMPT);
    if (!SQL_SUCCEEDED(connected))
        throw openingError(odbcRecords(SQL_HANDLE_DBC, m_connection), target.encrypts);
    m_socket = socketOf(m_connection);
    m_socketIdentity = identityOf(m_socket);
}

std::int64_t OdbcSession::execute(std::string_view sql, std::span<const SqlValue> values)
{
    Running running(*this);
    for (const SqlValue& value : values)
        running.statement.bind(value);
    running.statement.run(sql);
    const std::int64_t changed = running.statement.changedRows();
    while (running.statement.nextResult()) { // errors of later statements come here
    }
    return changed;
}

Recordset OdbcSession::query(std::string_view sql, std::span<const SqlValue> values, BinaryColumns binaries)
{
    Running running(*this);
    for (const SqlValue& value : values)
        running.statement.bind(value);
    return firstRows(running, sql, binaries);
}

Recordset OdbcSession::firstRows(Running& running, std::string_view sql, BinaryColumns binaries)
{
    running.statement.run(sql);
    std::optional<Recordset> first;
    do {
        if (auto rows = running.statement.rows(binaries); rows && !first)
            first = std::move(rows);
    } while (running.statement.nextResult());
    running.throwIfCancelled();
    return first ? std::move(*first) : Recordset();
}

const TextColumns& OdbcSession::textColumns()
{
    if (m_textColumns)
        return *m_textColumns;
    try {
        m_textColumns = textColumnsOf(query(textColumnsStatement(), {}, BinaryColumns::left));
    } catch (const ConnectionLost&) {
        throw;
    } catch (const DatabaseError&) {
        m_textColumns.emplace(); // who may not read the catalogue is refused by the server, if at all
    }
    return *m_textColumns;
}

ProcedureResult OdbcSession::callAlone(const ProcedureCall& call)
{
    ProcedureResult result;
    std::int64_t returned = -1;
    Running running(*this);
    running.statement.bindReturnValue(returned);
    std::string marks;
    for (const ProcedureParameter& parameter : call.parameters) {
        running.statement.bindText(parameter.value);
        marks += marks.empty() ? "?" : ",?";
    }
    try {
        running.statement.run("{?=call " + call.procedure + (marks.empty() ? "" : "(" + marks + ")") + "}");
        do {
            auto rows = running.statement.rows(BinaryColumns::left);
            if (rows && result.rows)
                result.moreRows.push_back(std::move(*rows));
            else if (rows)
                result.rows = std::move(rows);
        } while (running.statement.nextResult());
        running.throwIfCancelled();
        // The driver sets it when everything was read; a failed call may leave something there too.
        result.returnValue = returned;
    } catch (const ConnectionLost&) {
        throw;
    } catch (const DatabaseError& error) {
        running.throwIfCancelled(); // the calls that follow are not wanted either
        result.rows.reset();
        result.moreRows.clear();
        result.error = error;
    }
    return result;
}

/// The rows of a statement that may be refused; none then.
Recordset OdbcSession::rowsUnlessRefused(std::string_view sql)
{
    Running running(*this);
    try {
        return firstRows(running, sql, BinaryColumns::left);
    } catch (const ConnectionLost&) {
        throw;
    } catch (const DatabaseError& error) {
        running.throwIfCancelled();
        if (error.isTimeOut)
            throw;
        return {};
    }
}

/// Whether the companion is to be used; it is looked for again after a while, as procedures may be replaced.
bool OdbcSession::hasCompanion()
{
    constexpr std::chrono::minutes knownFor(1);
    const auto now = std::chrono::steady_clock::now();
    if (!m_companion || now - m_companion->since > knownFor) {
        const Recordset rows = rowsUnlessRefused(companionQuestion());
        m_companion = Companion{rows.rowCount() == 1 ? rows.text(0, "f") : "", now};
    }
    return !m_companion->procedureNumber.empty();
}

/// The companion's answers; what it leaves has none. Where it gave nothing at all it is not asked again for a
/// while: it may not be used, or the procedure was replaced.
std::vector<std::optional<ProcedureResult>> OdbcSession::callTogether(std::span<const ProcedureCall> calls)
{
    std::vector<std::optional<ProcedureResult>> answers(calls.size());
    m_callsSoFar += calls.size();
    if (!areForCompanion(calls) || m_callsSoFar < callsBeforeCompanion)
        return answers;
    for (std::size_t first = 0; first < calls.size() && hasCompanion(); first += mostCallsTogether) {
        const auto some = calls.subspan(first, std::min(mostCallsTogether, calls.size() - first));
        const Recordset rows = rowsUnlessRefused(companionBatch(some, m_companion->procedureNumber));
        if (rows.isEmpty())
            m_companion->procedureNumber.clear();
        std::ranges::move(companionAnswers(rows, some.size()),
                          answers.begin() + static_cast<std::ptrdiff_t>(first));
    }
    return answers;
}

std::vector<std::optional<ProcedureResult>> OdbcSession::callOneByOne(std::span<const ProcedureCall> calls)
{
    BatchAnswers answers(calls.size());
    Running running(*this);
    std::size_t failures = 0;
    bool more = true;
    const auto step = [&](const auto& work) {
        try {
            work();
        } catch (const ConnectionLost&) {
            throw;
        } catch (const DatabaseError& error) {
            running.throwIfCancelled();
            if (error.isTimeOut)
                throw;
            answers.failCurrent(); // repeated alone, it tells the reason
            more = ++failures <= calls.size();
        }
    };
    step([&] { running.statement.run(procedureBatch(calls)); });
    while (more) {
        step([&] {
            if (auto rows = running.statement.rows(BinaryColumns::left))
                answers.add(std::move(*rows));
        });
        if (more)
            step([&] { more = running.statement.nextResult(); });
    }
    running.throwIfCancelled();
    if (!answers.hasCome() && failures == 0) // what came was the answer to something else
        throw ConnectionLost(unspecifiedError, "数据库的应答与请求不符");
    return std::move(answers).take();
}

/// Sends the calls of one batch. Calls that get no answer before the last answer failed by themselves; the
/// one behind it may have ended the batch, and those that follow were not run. Returns how many calls of the
/// batch are settled.
std::size_t OdbcSession::settleBatch(std::span<const ProcedureCall> batch,
                                     std::vector<ProcedureResult>& results)
{
    auto answers = callOneByOne(batch);
    std::size_t settled = batch.size();
    while (settled > 0 && !answers[settled - 1])
        --settled;
    const bool answersNothing = settled == 0; // then it is the batch itself that is refused
    settled = answersNothing ? batch.size() : std::min(settled + 1, batch.size());
    for (std::size_t at = 0; at < settled; ++at) {
        results.push_back(answers[at] ? std::move(*answers[at]) : callAlone(batch[at]));
        if (results.back().error && results.back().error->isTimeOut)
            throw *results.back().error; // that of all that follow
    }
    return settled;
}

std::vector<ProcedureResult> OdbcSession::callProcedures(std::span<const ProcedureCall> calls)
{
    std::vector<std::optional<ProcedureResult>> answers;
    try {
        answers = callTogether(calls);
    } catch (const DatabaseError& error) {
        if (!error.isTimeOut)
            throw;
        return {calls.size(), ProcedureResult{.error = error}};
    }
    std::vector<ProcedureCall> left;
    for (std::size_t at = 0; at < calls.size(); ++at)
        if (!answers[at])
            left.push_back(calls[at]);
    std::vector<ProcedureResult> others = callInBatches(left);
    std::vector<ProcedureResult> results;
    auto other = others.begin();
    for (std::optional<ProcedureResult>& answer : answers)
        results.push_back(std::move(answer ? *answer : *other++));
    return results;
}

std::vector<ProcedureResult> OdbcSession::callInBatches(std::span<const ProcedureCall> calls)
{
    constexpr int mostBrokenBatches = 8; // from then on batches would cost more than they save
    int brokenBatches = 0;
    std::vector<ProcedureResult> results;
    while (results.size() < calls.size()) {
        const auto left = calls.subspan(results.size());
        const bool goesAlone = left.size() == 1 || brokenBatches > mostBrokenBatches;
        const auto batch = left.first(goesAlone ? 1 : std::min(left.size(), mostCallsInBatch));
        std::size_t settled = batch.size();
        try {
            if (goesAlone)
                results.push_back(callAlone(batch.front()));
            else
                settled = settleBatch(batch, results);
        } catch (const DatabaseError& error) {
            if (!error.isTimeOut)
                throw;
            // Each of them alone would be waited for as long. Nothing more goes over a connection that is
            // lost.
            const bool isLost = dynamic_cast<const ConnectionLost*>(&error) != nullptr;
            results.resize(isLost ? calls.size() : calls.size() - left.size() + batch.size(),
                           ProcedureResult{.error = error});
        }
        brokenBatches += settled < batch.size() ? 1 : 0;
    }
    return results;
}

void OdbcSession::setAutocommit(bool on)
{
    const SQLRETURN set = SQLSetConnectAttr(m_connection, SQL_ATTR_AUTOCOMMIT,
                                            attribute(on ? SQL_AUTOCOMMIT_ON : SQL_AUTOCOMMIT_OFF), 0);
    if (SQL_SUCCEEDED(set))
        return;
    const auto records = odbcRecords(SQL_HANDLE_DBC, m_connection);
    throwWorkError(records, !looksAlive());
}

void OdbcSession::begin()
{
    m_isSpoiled = true; // until it is known to have begun
    setAutocommit(false);
    m_isSpoiled = false;
    m_inTransaction = true;
}

void OdbcSession::endTransaction(SQLSMALLINT how)
{
    if (!m_inTransaction)
        return;
    m_inTransaction = false;
    m_isSpoiled = true; // until all is done
    if (!SQL_SUCCEEDED(SQLEndTran(SQL_HANDLE_DBC, m_connection, how))) {
        const auto records = odbcRecords(SQL_HANDLE_DBC, m_connection);
        throwWorkError(records, !looksAlive());
    }
    setAutocommit(true); // until then the driver keeps the next transaction open
    m_isSpoiled = false;
}

bool OdbcSession::beginReading()
{
    if (rowsUnlessRefused(snapshotQuestion()).isEmpty())
        return false;
    m_isSpoiled = true; // a session that goes on with it would read what is long past
    execute(snapshotIsolation(), {});
    m_readsSnapshot = true;
    begin();
    m_isSpoiled = false;
    return true;
}

void OdbcSession::endReading()
{
    if (!std::exchange(m_readsSnapshot, false))
        return;
    rollBack();
    m_isSpoiled = true;
    execute(usualIsolation(), {});
    m_isSpoiled = false;
}

bool OdbcSession::looksAlive()
{
    if (m_isCut)
        return false;
    SQLUINTEGER dead = SQL_CD_FALSE;
    SQLGetConnectAttr(m_connection, SQL_ATTR_CONNECTION_DEAD, &dead, 0, nullptr);
    return dead != SQL_CD_TRUE;
}

/// Asks for a number that was not asked for before: an answer that was left over shows itself.
bool OdbcSession::answers()
{
    try {
        Running running(*this, signOfLifeTimeout);
        const std::int64_t number = ++m_signsOfLife;
        running.statement.run("select " + std::to_string(number) + " as sign");
        const auto rows = running.statement.rows(BinaryColumns::left);
        return rows && rows->rowCount() == 1 && rows->integer(0, "sign") == number &&
               !running.statement.nextResult();
    } catch (const DatabaseError&) {
        return false;
    }
}

bool OdbcSession::resetForReuse()
{
    m_queryTimeout = m_usualTimeout;
    try {
        rollBack();
        return !m_isSpoiled && looksAlive();
    } catch (const DatabaseError&) {
        return false;
    }
}

void OdbcSession::limitWaits(std::chrono::seconds longest)
{
    const int seconds = static_cast<int>(longest.count());
    if (m_queryTimeout == 0 || m_queryTimeout > seconds)
        m_queryTimeout = seconds;
}

/// The driver finds the socket closed, whatever it waits for. It may have closed it by itself before.
void OdbcSession::cut()
{
    if (!m_isCut.exchange(true) && m_socketIdentity && identityOf(m_socket) == m_socketIdentity)
        resetConnection(m_socket);
}

void OdbcSession::cancel()
{
    for (std::unique_lock lock(m_runningMutex); m_running; lock.lock()) {
        if (!m_running->isYoung())
            return m_running->cancel();
        lock.unlock();
        std::this_thread::sleep_for(cancellableAge);
    }
}

} // namespace selfreport
