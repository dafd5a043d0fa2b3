#pragma once
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace selfreport {

class Connection;

/// What came of an identity.
struct ProvedIdentity {
    enum class State {
        holds,
        broken,
        skipped, ///< the ledger has nothing to hold it against
        failed,  ///< it could not be asked
    };
    std::string name;
    State state = State::holds;
    std::int64_t rows = 0;                             ///< that break it
    double difference = 0;                             ///< of all of them, whatever its sign
    std::vector<std::string> columns{};                ///< of the rows
    std::vector<std::vector<std::string>> firstRows{}; ///< at most ten, in the order of periods and accounts
    std::string statement{}; ///< that shows all rows; "" of what is no statement: a comparison of calls
    std::string reason{};    ///< why it was skipped or failed
};

struct LedgerProof {
    std::vector<ProvedIdentity> identities;
    bool isOfOneMoment = false; ///< whoever wrote meanwhile
    double seconds = 0;

    /// How many are broken or could not be asked.
    std::int64_t faults() const;
};

/// Asks a ledger whether everything holds that holds in a sound one. Only reads.
/// @param year  only that one; 0: all
/// @param tell  told the name of each identity before it is asked
/// @throws DatabaseError if the ledger's tables cannot be read at all
LedgerProof proveLedger(Connection& connection, int year,
                        const std::function<void(std::string_view)>& tell = {});

/// "通过", "不符", "未查", "未查成"
std::string_view stateText(ProvedIdentity::State state);

} // namespace selfreport
