#include "platform/database/Connection.h"

#include "platform/database/dialect/parameter_sizes.h"
#include "platform/database/dialect/text_columns.h"
#include "platform/database/providers.h"
#include "platform/database/session/Session.h"
#include "platform/database/SessionPool.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <type_traits>
#include <utility>

namespace selfreport {

namespace {

struct AtomicCounters {
    std::atomic<std::int64_t> opens = 0;
    std::atomic<std::int64_t> closes = 0;
    std::atomic<std::int64_t> sessions = 0;
    std::atomic<std::int64_t> procedureCalls = 0;
    std::atomic<std::int64_t> batches = 0;
};
AtomicCounters counters;

std::unique_ptr<Session> countedSession(std::string_view connectionString)
{
    ++counters.sessions;
    return openSession(connectionString);
}

void requireInStep(bool isInStep)
{
    if (!isInStep) // an answer that nobody had read
        throw ConnectionLost(unspecifiedError, "数据库的应答与请求不符");
}

bool gaveRows(const Recordset& rows)
{
    return rows.columnCount() > 0;
}

bool gaveRows(bool)
{
    return true;
}

bool gaveRows(const std::vector<ProcedureResult>& results)
{
    return results.empty() || results[0].error || results[0].rows || results[0].returnValue != -1;
}

} // namespace

std::unique_ptr<Connection> openConnection(std::string_view connectionString)
{
    const std::string key(connectionString);
    SessionPool::Taken taken = SessionPool::instance().take(key);
    const bool isUnproven = taken.session && !taken.hasAnswered;
    if (!taken.session)
        taken.session = countedSession(connectionString);
    ++counters.opens;
    return std::unique_ptr<Connection>(new Connection(key, std::move(taken.session), isUnproven));
}

Connection::Connection(std::string connectionString, std::unique_ptr<Session> session, bool isUnproven)
    : m_connectionString(std::move(connectionString))
    , m_session(std::move(session))
    , m_isUnproven(isUnproven)
{
}

Connection::~Connection()
{
    ++counters.closes;
    if (!m_isCut)
        SessionPool::instance().giveBack(m_connectionString, std::move(m_session),
                                         m_hasFailed || m_isCancelled);
}

void Connection::refuseIfCut() const
{
    if (m_isCut)
        throw ConnectionLost(unspecifiedError, "操作已取消，与数据库的连接已断开");
}

/// Where the session is replaced it was found gone: nothing of this connection has been done on it.
void Connection::renewSession()
{
    {
        const std::lock_guard lock(m_mutex);
        refuseIfCut();
    }
    std::unique_ptr<Session> fresh;
    try {
        fresh = countedSession(m_connectionString);
    } catch (const DatabaseError& error) {
        throw OpeningFailed(error.number, error.description);
    }
    if (m_longestWait.count() > 0)
        fresh->limitWaits(m_longestWait);
    const std::lock_guard lock(m_mutex);
    refuseIfCut();
    m_session = std::move(fresh);
}

/// Whatever is done on the session.
template <class Work>
auto Connection::guarded(const Work& work) -> decltype(work())
{
    {
        const std::lock_guard lock(m_mutex);
        refuseIfCut();
    }
    try {
        return work();
    } catch (const DatabaseError&) {
        m_hasFailed = true;
        throw;
    }
}

/// What may be done twice. A session that lay idle may turn out to be gone, and then another does it.
template <class Work>
auto Connection::reading(const Work& work) -> decltype(work())
{
    return guarded([&] {
        if (!std::exchange(m_isUnproven, false))
            return work();
        try {
            if constexpr (std::is_void_v<decltype(work())>) {
                return work();
            } else {
                auto result = work();
                requireInStep(gaveRows(result));
                return result;
            }
        } catch (const ConnectionLost& error) {
            if (error.isTimeOut)
                throw;
        }
        renewSession();
        return work();
    });
}

std::int64_t Connection::execute(std::string_view sql, std::span<const SqlValue> values)
{
    return guarded([&] {
        // A change whose answer does not come may have been made: nobody could send it again.
        if (std::exchange(m_isUnproven, false) && !m_session->answers())
            renewSession();
        return m_session->execute(sql, values);
    });
}

std::int64_t Connection::execute(std::string_view sql, std::initializer_list<SqlValue> values)
{
    return execute(sql, std::span(values.begin(), values.size()));
}

Recordset Connection::query(std::string_view sql, std::span<const SqlValue> values, BinaryColumns binaries)
{
    return reading([&] { return m_session->query(sql, values, binaries); });
}

Recordset Connection::query(std::string_view sql, std::initializer_list<SqlValue> values,
                            BinaryColumns binaries)
{
    return query(sql, std::span(values.begin(), values.size()), binaries);
}

Recordset Connection::query(std::string_view sql, BinaryColumns binaries)
{
    return query(sql, std::span<const SqlValue>(), binaries);
}

ProcedureResult Connection::call(const ProcedureCall& call)
{
    return std::move(callProcedures(std::span(&call, 1)).front());
}

std::vector<ProcedureResult> Connection::callProcedures(std::span<const ProcedureCall> calls)
{
    ++counters.batches;
    counters.procedureCalls += static_cast<std::int64_t>(calls.size());
    std::vector<ProcedureResult> results(calls.size());
    int codePage = 0;
    try {
        codePage = std::ranges::all_of(calls, hasOnlyAscii) ? 0 : textColumns().codePage;
    } catch (const DatabaseError& error) {
        for (ProcedureResult& result : results)
            result.error = error;
        return results;
    }
    std::vector<ProcedureCall> sent;
    std::vector<std::size_t> places;
    for (std::size_t at = 0; at < calls.size(); ++at) {
        results[at].error = unfitParameter(calls[at], codePage);
        if (results[at].error)
            continue;
        sent.push_back(calls[at]);
        places.push_back(at);
    }
    try {
        auto answers = reading([&] { return m_session->callProcedures(sent); });
        for (std::size_t at = 0; at < places.size(); ++at) {
            m_hasFailed = m_hasFailed || answers[at].error;
            results[places[at]] = std::move(answers[at]);
        }
    } catch (const DatabaseError& error) {
        for (const std::size_t place : places)
            results[place].error = error;
    }
    return results;
}

const TextColumns& Connection::textColumns()
{
    const TextColumns* columns = nullptr;
    reading([&] { columns = &m_session->textColumns(); });
    return *columns;
}

void Connection::begin()
{
    reading([&] { m_session->begin(); });
}

void Connection::commit()
{
    {
        const std::lock_guard lock(m_mutex);
        refuseIfCut();
        m_hasSentCommit = true;
    }
    guarded([&] { m_session->commit(); });
}

void Connection::rollBack()
{
    guarded([&] { m_session->rollBack(); });
}

bool Connection::inTransaction() const
{
    return m_session->inTransaction();
}

bool Connection::beginReading()
{
    return reading([&] { return m_session->beginReading(); });
}

void Connection::endReading()
{
    guarded([&] { m_session->endReading(); });
}

void Connection::cancel()
{
    const std::lock_guard lock(m_mutex);
    m_isCancelled = true;
    m_session->cancel();
}

void Connection::cut()
{
    const std::lock_guard lock(m_mutex);
    m_isCut = true;
    m_session->cut();
}

bool Connection::hasSentCommit() const
{
    const std::lock_guard lock(m_mutex);
    return m_hasSentCommit;
}

std::unique_ptr<Connection> Connection::another() const
{
    auto connection = openConnection(m_connectionString);
    connection->m_longestWait = std::chrono::seconds(10);
    connection->m_session->limitWaits(connection->m_longestWait);
    return connection;
}

ReadingOfOneMoment::~ReadingOfOneMoment()
{
    try {
        m_connection.endReading();
    } catch (const std::exception&) {
        // The session is gone, or is thrown away for it.
    }
}

Transaction::Transaction(Connection& connection)
    : m_connection(connection)
{
    m_connection.begin();
}

Transaction::~Transaction()
{
    giveUp();
}

void Transaction::giveUp() noexcept
{
    if (!std::exchange(m_isOpen, false))
        return;
    try {
        m_connection.rollBack();
    } catch (const std::exception&) {
        // The session is gone and its transaction with it: nothing is left to roll back.
    }
}

void Transaction::commit()
{
    m_connection.commit();
    m_isOpen = false;
}

DatabaseCounters databaseCounters()
{
    return {counters.opens, counters.closes, counters.sessions, counters.procedureCalls, counters.batches};
}

void closeIdleSessions()
{
    SessionPool::instance().clear();
}

} // namespace selfreport
