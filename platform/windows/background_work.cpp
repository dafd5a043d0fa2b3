#include "platform/windows/background_work.h"

#include "platform/windows/WaitingDialog.h"

#include <chrono>
#include <future>
#include <memory>
#include <thread>

namespace selfreport {

namespace {

using namespace std::chrono_literals;

constexpr auto patience = 300ms; // before the dialog opens

/// When work is given up; notes whether it was.
struct Deadline {
    std::chrono::milliseconds atMost; ///< 0: never
    std::chrono::steady_clock::time_point start = std::chrono::steady_clock::now();
    bool wasPassed = false;

    bool hasPassed()
    {
        wasPassed = atMost > 0ms && std::chrono::steady_clock::now() - start >= atMost;
        return wasPassed;
    }
};

/// False if the work was left behind.
bool waitWithDialog(const QString& title, const std::future<void>& result, WorkProgress& progress,
                    Waiting waiting, Deadline& deadline)
{
    WaitingDialog dialog(title);
    return dialog.waitFor(result, waiting == Waiting::untilCancelled, [&] {
        if (!dialog.isCancelled() && deadline.hasPassed())
            dialog.reject();
        const WorkProgress::State state = progress.state();
        dialog.tell(state.what, state.done, state.all);
        if (dialog.isCancelled())
            progress.cancel();
    });
}

} // namespace

void WorkProgress::tell(const QString& what, int done, int all)
{
    const std::scoped_lock lock(m_mutex);
    m_what = what;
    m_done = done;
    m_all = all;
}

WorkProgress::State WorkProgress::state() const
{
    const std::scoped_lock lock(m_mutex);
    return {m_what, m_done, m_all};
}

bool runInBackground(const QString& title, std::function<void(WorkProgress&)> work, Waiting waiting,
                     std::chrono::milliseconds atMost)
{
    Deadline deadline{atMost};
    const auto progress = std::make_shared<WorkProgress>(); // outlives this call if the work is left behind
    std::packaged_task<void()> task([progress, work = std::move(work)] { work(*progress); });
    std::future<void> result = task.get_future();
    std::thread thread(std::move(task));
    if (result.wait_for(patience) != std::future_status::ready &&
        !waitWithDialog(title, result, *progress, waiting, deadline)) {
        thread.detach();
        if (deadline.wasPassed)
            throw OutOfTime();
        return false;
    }
    thread.join();
    try {
        result.get();
    } catch (...) {
        if (deadline.wasPassed)
            throw OutOfTime();
        throw;
    }
    return true;
}

} // namespace selfreport
