#pragma once
#include "platform/database/SessionPool.h"

namespace selfreport::test {

/// While it lives the pool of sessions takes the time to be so much later than it is.
class PoolTime {
public:
    explicit PoolTime(SessionPool::Clock::duration later)
    {
        s_later = later;
        SessionPool::instance().now = [] { return SessionPool::Clock::now() + s_later.load(); };
    }
    ~PoolTime() { SessionPool::instance().now = &SessionPool::Clock::now; }
    PoolTime(const PoolTime&) = delete;
    PoolTime& operator=(const PoolTime&) = delete;

private:
    inline static std::atomic<SessionPool::Clock::duration> s_later{};
};

} // namespace selfreport::test
