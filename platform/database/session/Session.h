#pragma once
#include "platform/database/session/ProcedureCall.h"
#include "platform/database/session/Recordset.h"
#include "platform/database/session/SqlValue.h"

#include <chrono>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace selfreport {

struct TextColumns;

/// One physical session of a provider. Used by one thread at a time; only cancel() and cut() may come from
/// another.
/// Failures throw DatabaseError, a broken session ConnectionLost.
class Session {
public:
    Session() = default;
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;
    virtual ~Session() = default;

    virtual std::int64_t execute(std::string_view sql, std::span<const SqlValue> values) = 0;
    virtual Recordset query(std::string_view sql, std::span<const SqlValue> values,
                            BinaryColumns binaries) = 0;

    /// One result for each call, in order. Calls do not spoil each other; texts fit their parameters.
    virtual std::vector<ProcedureResult> callProcedures(std::span<const ProcedureCall> calls) = 0;

    /// What the database's text columns can hold. A server is asked once for the session; where it does not
    /// say, nothing counts as limited.
    virtual const TextColumns& textColumns() = 0;

    virtual void begin() = 0;
    virtual void commit() = 0;
    virtual void rollBack() = 0;
    virtual bool inTransaction() const = 0;

    /// From here to endReading() whatever is read is of one moment, whoever writes meanwhile. False if the
    /// database does not offer that: each statement sees what stands when it runs.
    virtual bool beginReading() = 0;
    virtual void endReading() = 0;

    /// Cheap look whether the session is still good, without a round trip.
    virtual bool looksAlive() = 0;

    /// Asks the server for a sign of life. False if the session is gone or out of step with the server.
    virtual bool answers() = 0;

    /// Puts the session into its first state, out of any transaction. False if it must be thrown away.
    virtual bool resetForReuse() = 0;

    /// Longest wait for the answer to a statement from now on, until the session is reset.
    virtual void limitWaits(std::chrono::seconds longest) = 0;

    /// Asks for the end of the statement under way.
    virtual void cancel() = 0;

    /// Ends the session without waiting for the server: what is under way fails where that can be done.
    virtual void cut() = 0;
};

} // namespace selfreport
