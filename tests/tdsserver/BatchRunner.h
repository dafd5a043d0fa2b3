#pragma once
#include "platform/database/dialect/sql_tokens.h"
#include "tests/tdsserver/Ledger.h"
#include "tests/tdsserver/Reply.h"

#include <string>
#include <string_view>
#include <vector>

namespace selfreport::tds {

/// Runs the statements of a batch one after the other. Of the server's language it takes apart only what
/// connects statements: set, declare, exec, if object_id(...) is null, begin and end, create and drop
/// procedure. All others go to the ledger as they stand.
class BatchRunner {
public:
    /// @param done        what ends each statement in the reply
    /// @param countsRows  the session's setting, which a batch may change for those that follow
    BatchRunner(Ledger& ledger, Reply& reply, Reply::Done done, bool& countsRows)
        : m_ledger(ledger)
        , m_reply(reply)
        , m_done(done)
        , m_countsRows(countsRows)
    {
    }

    void declare(Parameter variable) { m_variables.push_back(std::move(variable)); }

    /// What the server refuses stands in the reply. @throws Interrupted
    void run(std::string_view batch);

private:
    void statement();
    void setStatement();
    void declareStatement();
    void executeStatement();
    void ifStatement();
    void plainStatement();

    bool isAt(std::string_view name) const;
    bool isSymbolAt(std::string_view symbol) const;
    std::string_view take();
    void expect(std::string_view spelling);
    std::string takeName();
    Value takeValue();
    std::size_t statementEnd() const;
    bool startsStatement(std::size_t at, std::size_t first) const;
    void skipStatement();
    Parameter& variable(std::string_view name);

    Ledger& m_ledger;
    Reply& m_reply;
    Reply::Done m_done;
    bool& m_countsRows;
    std::vector<Parameter> m_variables;
    std::string_view m_batch;
    std::vector<SqlToken> m_tokens;
    std::size_t m_at = 0;
};

} // namespace selfreport::tds
