#pragma once
#include "tests/tdsserver/BatchRunner.h"
#include "tests/tdsserver/packets.h"
#include "tests/tdsserver/TdsServer.h"

#include <map>
#include <optional>

namespace selfreport::tds {

/// One client's connection, served until one side ends it.
class ClientSession {
public:
    ClientSession(TdsServer& server, Socket socket, int number);

    void serve();
    /// Ends serve() from another thread.
    void drop();

private:
    struct Answer {
        Step step;
        Reply reply;
    };
    std::optional<Answer> answer(const Message& message);
    Answer answerLogin(const Message& message);
    Answer answerBatch(const Message& message);
    Answer answerProcedure(const Message& message);
    Answer answerTransaction(const Message& message);
    void callProcedure(const ProcedureRequest& request, Reply& reply);
    void runSystemProcedure(const ProcedureRequest& request, Reply& reply);
    void runStatement(const std::string& sql, std::span<const Parameter> parameters, Reply& reply);
    void beginTransaction(Reply& reply);
    Ledger& ledger();

    /// False if the session ends.
    bool deliver(Answer answer);
    bool endAfterCut(Ending ending);

    TdsServer& m_server;
    Socket m_socket;
    int m_number;
    std::size_t m_packetSize = 4096;
    std::optional<Ledger> m_ledger; ///< once logged in
    std::map<std::int32_t, std::string> m_prepared;
    std::uint64_t m_transactions = 0;
    bool m_countsRows = true;
};

} // namespace selfreport::tds
