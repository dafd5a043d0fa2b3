#pragma once
#include "platform/database/session/ProcedureCall.h"
#include "platform/database/sqlite/AcctProcedure.h"
#include "platform/database/sqlite/SqliteDatabase.h"
#include "tests/tdsserver/Reply.h"
#include "tests/tdsserver/requests.h"

#include <atomic>
#include <functional>
#include <optional>
#include <span>
#include <string>

namespace selfreport::tds {

/// What the server refuses, with the number that clients see.
struct ServerError {
    std::int32_t number;
    std::string text;
    bool endsBatch = false; ///< what follows in the batch is not run
};

/// The client asked to stop.
struct Interrupted {};

/// One session's view of a database: statements in the server's language over the embedded one.
/// Failures throw ServerError.
class Ledger {
public:
    struct Outcome {
        std::optional<ResultSet> rows;
        std::int64_t changed = 0;
    };
    struct Called {
        std::int32_t returned = 0;
        std::optional<ResultSet> rows;
    };

    /// @param file       of the embedded database
    /// @param wantsStop  asked now and then while a statement runs
    /// @param codePage   of every text, as the catalogue tells it; must outlive this
    Ledger(const std::string& file, std::function<bool()> wantsStop, const std::atomic<int>& codePage);

    Outcome run(std::string_view sql, std::span<const Parameter> parameters);
    Called call(const std::string& procedure, std::span<const Parameter> parameters);
    bool hasObject(const std::string& name);

    /// A transaction locks out other writers with the first statement in it that changes something, as a
    /// server does for the rows of that statement.
    void begin() { m_isBeginWanted = true; }
    void commit() { end("commit"); }
    void rollBack() { end("rollback"); }

private:
    void end(const char* how);
    void beginIfWanted();

    SqliteDatabase m_database;
    AcctProcedure m_procedure;
    std::function<bool()> m_wantsStop;
    const std::atomic<int>& m_codePage;
    bool m_isBeginWanted = false;
};

} // namespace selfreport::tds
