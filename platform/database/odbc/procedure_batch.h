#pragma once
#include "platform/database/session/ProcedureCall.h"

#include <optional>
#include <span>
#include <string>
#include <vector>

namespace selfreport {

/// Most calls that go out in one round trip.
inline constexpr std::size_t mostCallsInBatch = 200;

/// One statement text for many calls. After the rows of each call comes a row of its ordinal (from 0) and
/// return value, by which its answer is known.
std::string procedureBatch(std::span<const ProcedureCall> calls);

/// Pairs the row sets of a batch with its calls as they arrive.
class BatchAnswers {
public:
    explicit BatchAnswers(std::size_t calls)
        : m_results(calls)
    {
    }

    void add(Recordset rows);

    /// The call whose ordinal comes next has failed, whatever it returns.
    void failCurrent() { m_hasFailed = true; }

    /// Whether anything came that is an answer to such a batch.
    bool hasCome() const { return m_hasCome; }

    /// One for each call; nothing for those that must be repeated alone: no ordinal came, or no return value.
    std::vector<std::optional<ProcedureResult>> take() && { return std::move(m_results); }

private:
    std::vector<std::optional<ProcedureResult>> m_results;
    std::optional<Recordset> m_pending;
    bool m_hasFailed = false;
    bool m_hasCome = false;
};

} // namespace selfreport
