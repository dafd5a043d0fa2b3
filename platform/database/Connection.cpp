#include "platform/database/Connection.h"

#include "platform/database/dialect/parameter_sizes.h"
#include "platform/database/dialect/text_columns.h"
#include "platform/database/providers.h"
#include "platform/database/session/Session.h"
#include "platform/database/SessionPool.h"

#include <algorithm>
#include <atomic>
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

} // namespace

std::unique_ptr<Connection> openConnection(std::string_view connectionString)
{
    const std::string key(connectionString);
    std::unique_ptr<Session> session = SessionPool::instance().take(key);
    const bool reused = session != nullptr;
    if (!reused)
        session = countedSession(connectionString);
    ++counters.opens;
    return std::unique_ptr<Connection>(new Connection(key, std::move(session), reused));
}

Connection::Connection(std::string connectionString, std::unique_ptr<Session> session, bool reused)
    : m_connectionString(std::move(connectionString))
    , m_session(std::move(session))
    , m_unproven(reused)
{
}

Connection::~Connection()
{
    ++counters.closes;
    SessionPool::instance().giveBack(m_connectionString, std::move(m_session));
}

/// An idle session may have died since, or still hold an answer that nobody read. Work is not sent twice, so
/// the session is asked for a sign of life before its first use.
Session& Connection::provenSession()
{
    if (std::exchange(m_unproven, false) && !m_session->answers())
        m_session = countedSession(m_connectionString);
    return *m_session;
}

std::int64_t Connection::execute(std::string_view sql, std::span<const SqlValue> values)
{
    return provenSession().execute(sql, values);
}

std::int64_t Connection::execute(std::string_view sql, std::initializer_list<SqlValue> values)
{
    return execute(sql, std::span(values.begin(), values.size()));
}

Recordset Connection::query(std::string_view sql, std::span<const SqlValue> values, BinaryColumns binaries)
{
    return provenSession().query(sql, values, binaries);
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
        auto answers = provenSession().callProcedures(sent);
        for (std::size_t at = 0; at < places.size(); ++at)
            results[places[at]] = std::move(answers[at]);
    } catch (const DatabaseError& error) {
        for (const std::size_t place : places)
            results[place].error = error;
    }
    return results;
}

const TextColumns& Connection::textColumns()
{
    return provenSession().textColumns();
}

void Connection::begin()
{
    provenSession().begin();
}

void Connection::commit()
{
    m_session->commit();
}

void Connection::rollBack()
{
    m_session->rollBack();
}

bool Connection::inTransaction() const
{
    return m_session->inTransaction();
}

void Connection::cancel()
{
    m_session->cancel();
}

std::unique_ptr<Connection> Connection::another() const
{
    return openConnection(m_connectionString);
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
