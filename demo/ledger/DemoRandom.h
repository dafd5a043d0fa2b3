#pragma once
#include <cstdint>

namespace selfreport::demo {

/// Numbers that depend on the seed alone. The standard library's distributions differ between makers, so a
/// ledger made with them would not be the same everywhere. (SplitMix64.)
class DemoRandom {
public:
    explicit DemoRandom(std::uint64_t seed)
        : m_state(seed)
    {
    }

    /// From `least` to `most`, both included.
    std::int64_t between(std::int64_t least, std::int64_t most)
    {
        const auto choices = static_cast<std::uint64_t>(most - least) + 1;
        return least + static_cast<std::int64_t>(next() % choices);
    }

    bool oneIn(std::int64_t chances) { return between(1, chances) == 1; }

private:
    std::uint64_t next()
    {
        m_state += 0x9E3779B97F4A7C15U;
        std::uint64_t mixed = m_state;
        mixed = (mixed ^ (mixed >> 30U)) * 0xBF58476D1CE4E5B9U;
        mixed = (mixed ^ (mixed >> 27U)) * 0x94D049BB133111EBU;
        return mixed ^ (mixed >> 31U);
    }

    std::uint64_t m_state;
};

} // namespace selfreport::demo
