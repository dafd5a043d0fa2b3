#include "platform/windows/background_work.h"

#include <QApplication>
#include <QDeadlineTimer>
#include <QDialog>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

#include <future>
#include <memory>
#include <thread>

namespace selfreport {

namespace {

using namespace std::chrono_literals;

constexpr auto patience = 300ms;     // before the dialog opens
constexpr auto leftBehindAfter = 2s; // after it was cancelled
constexpr auto pollInterval = 50ms;
constexpr int dialogWidth = 360; // pixels

/// Waits for work. Nothing but the work's end, or its being left behind, closes it.
class WaitingDialog : public QDialog {
public:
    WaitingDialog(const QString& title, WorkProgress& progress, const std::future<void>& work,
                  Waiting waiting)
        : QDialog(QApplication::activeWindow())
        , m_progress(progress)
        , m_work(work)
        , m_waiting(waiting)
    {
        setObjectName(QStringLiteral("workProgress"));
        setWindowTitle(title);
        setWindowModality(Qt::ApplicationModal);
        setMinimumWidth(dialogWidth);
        m_label.setText(title);
        m_bar.setRange(0, 0);
        m_cancel.setText(QStringLiteral("取消"));
        m_cancel.setObjectName(QStringLiteral("cmdCancel"));
        auto* const rows = new QVBoxLayout(this);
        rows->addWidget(&m_label);
        rows->addWidget(&m_bar);
        rows->addWidget(&m_cancel, 0, Qt::AlignRight);
        connect(&m_cancel, &QPushButton::clicked, this, &WaitingDialog::reject);
        connect(&m_poll, &QTimer::timeout, this, [this] { look(); });
        m_poll.start(pollInterval);
    }

    void reject() override
    {
        m_progress.cancel();
        m_cancel.setEnabled(false);
        if (m_leaving.isForever() && m_waiting == Waiting::untilCancelled)
            m_leaving = QDeadlineTimer(leftBehindAfter);
    }

private:
    void look()
    {
        const WorkProgress::State state = m_progress.state();
        m_bar.setRange(0, state.all);
        m_bar.setValue(state.done);
        if (!state.what.isEmpty())
            m_label.setText(state.what);
        if (m_work.wait_for(0s) == std::future_status::ready || m_leaving.hasExpired())
            done(Accepted);
    }

    WorkProgress& m_progress;
    const std::future<void>& m_work;
    Waiting m_waiting;
    QLabel m_label;
    QProgressBar m_bar;
    QPushButton m_cancel;
    QTimer m_poll;
    QDeadlineTimer m_leaving{QDeadlineTimer::Forever};
};

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

bool runInBackground(const QString& title, std::function<void(WorkProgress&)> work, Waiting waiting)
{
    const auto progress = std::make_shared<WorkProgress>(); // outlives this call if the work is left behind
    std::packaged_task<void()> task([progress, work = std::move(work)] { work(*progress); });
    std::future<void> result = task.get_future();
    std::thread thread(std::move(task));
    if (result.wait_for(patience) != std::future_status::ready)
        WaitingDialog(title, *progress, result, waiting).exec();
    if (result.wait_for(0s) != std::future_status::ready) {
        thread.detach();
        return false;
    }
    thread.join();
    result.get();
    return true;
}

} // namespace selfreport
