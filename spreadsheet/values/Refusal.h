#pragma once
#include <cstddef>
#include <stdexcept>
#include <string>
#include <utility>

namespace spreadsheet {

/// Whether something was refused, and why: true if it was, and then nothing has changed. Whoever gets one
/// shows the reason to the user or says in a comment why nobody needs it; the compiler finds those who drop
/// it.
class [[nodiscard]] Refusal {
public:
    Refusal() = default; ///< it was done
    /// @param reason  one Chinese sentence for the user, not empty
    /// @param position  byte offset of the mistake in the text that was handed over; 0 if there is none
    Refusal(std::string reason, std::size_t position = 0)
        : m_reason(std::move(reason))
        , m_position(position)
    {
    }
    Refusal(const char* reason)
        : m_reason(reason)
    {
    }

    explicit operator bool() const { return !m_reason.empty(); }
    const std::string& reason() const { return m_reason; } ///< empty: it was done
    std::size_t position() const { return m_position; }
    /// The same of a text that `bytes` more stand before.
    Refusal movedBy(std::size_t bytes) const { return {m_reason, m_position + bytes}; }

private:
    std::string m_reason;
    std::size_t m_position = 0;
};

/// For programs that build sheets of their own, where a refusal is a mistake of the program.
/// @throws std::logic_error with the reason
inline void demand(const Refusal& refusal)
{
    if (refusal)
        throw std::logic_error(refusal.reason());
}

} // namespace spreadsheet
