#pragma once
#include "platform/services/UserWait.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <functional>
#include <future>
#include <optional>
#include <thread>
#include <utility>
#include <vector>

namespace selfreport::torture {

/// A user who cancels once a server has fallen silent, and waits for the end no longer than windows do.
class ImpatientUser : public UserWait {
public:
    using Clock = std::chrono::steady_clock;

    ~ImpatientUser() override { std::ranges::for_each(m_leftBehind, &std::thread::detach); }

    CallEnd runApart(std::function<void()> call, std::function<void()> stop) override
    {
        std::packaged_task<void()> task(std::move(call));
        const std::future<void> ended = task.get_future();
        std::thread thread(std::move(task));
        std::optional<Clock::time_point> cancelledAt;
        bool isLeft = false;
        while (!isLeft && ended.wait_for(std::chrono::milliseconds(5)) != std::future_status::ready) {
            if (!isSilent)
                continue;
            cancelledAt = cancelledAt.value_or(Clock::now());
            if (stop)
                stop();
            isLeft = Clock::now() - *cancelledAt > longestWait;
        }
        if (cancelledAt)
            waited = std::max<Clock::duration>(waited, Clock::now() - *cancelledAt);
        if (isLeft)
            m_leftBehind.push_back(std::move(thread));
        else
            thread.join();
        return isLeft ? CallEnd::leftBehind : cancelledAt ? CallEnd::cancelled : CallEnd::done;
    }
    bool pause() override { return isSilent; }
    bool isCancelled() const override { return false; } ///< each call is asked about by itself

    /// Until the calls that were left behind have ended, and closed what they held.
    void awaitLeftBehind()
    {
        for (std::thread& thread : m_leftBehind)
            thread.join();
        m_leftBehind.clear();
    }

    std::atomic<bool> isSilent = false;
    std::chrono::milliseconds longestWait{450};
    Clock::duration waited{}; ///< longest time from a cancellation until it could go on

private:
    std::vector<std::thread> m_leftBehind;
};

} // namespace selfreport::torture
