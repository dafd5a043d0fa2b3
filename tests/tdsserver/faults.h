#pragma once
#include "tests/tdsserver/Reply.h"

#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace selfreport::tds {

/// The kinds of requests, each a round trip.
enum class Step { preLogin, login, batch, statement, procedure, begin, commit, rollBack, attention };

/// How much of a reply goes out.
enum class Cut { none, beforeReply, inHeader, insideToken, lastByteMissing };

/// What becomes of the connection behind a cut.
enum class Ending {
    closed, ///< ended in order
    reset,  ///< dropped
    silent, ///< stays open, nothing is answered any more
    held,   ///< stays open, the next request (an attention) is answered
};

/// Something that goes wrong once, at the next request of its kind.
struct Fault {
    Step step;
    Cut cut = Cut::none;
    Ending ending = Ending::closed;         ///< only behind a cut
    std::function<void(Reply&)> disorder{}; ///< changes the tokens
    std::string garbage{};                  ///< goes out instead of the framed reply, then the ending
};

/// The faults that are ordered. Safe from any thread.
class FaultPlan {
public:
    void order(Fault fault);
    std::optional<Fault> take(Step step);
    void clear();

private:
    std::mutex m_mutex;
    std::vector<Fault> m_faults;
};

/// What of the framed reply goes out.
std::string cutReply(const std::string& framed, const Reply& reply, Cut cut);

} // namespace selfreport::tds
