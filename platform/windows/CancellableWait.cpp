#include "platform/windows/CancellableWait.h"

#include <chrono>
#include <future>
#include <thread>
#include <utility>

namespace selfreport {

using namespace std::chrono_literals;

CancellableWait::CancellableWait(const QString& title)
    : m_title(title)
    , m_patience(500ms)
    , m_inUse(*this)
{
}

void CancellableWait::openDialog()
{
    m_cursor.reset();
    m_dialog.emplace(m_title);
}

bool CancellableWait::runApart(std::function<void()> call, std::function<void()> stop)
{
    std::packaged_task<void()> task(std::move(call));
    const std::future<void> ended = task.get_future();
    std::thread thread(std::move(task));
    const auto stopIfCancelled = [&] {
        if (isCancelled() && stop)
            stop();
    };
    bool ends =
        !m_dialog && ended.wait_for(m_patience.remainingTimeAsDuration()) == std::future_status::ready;
    if (!ends) {
        if (!m_dialog)
            openDialog();
        ends = m_dialog->waitFor(ended, true, stopIfCancelled);
    }
    if (ends)
        thread.join();
    else
        thread.detach();
    return ends;
}

bool CancellableWait::pause()
{
    if (!m_dialog && !m_patience.hasExpired())
        return false;
    if (!m_dialog)
        openDialog();
    m_dialog->pause();
    return isCancelled();
}

} // namespace selfreport
