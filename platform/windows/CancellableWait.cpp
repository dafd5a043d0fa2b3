#include "platform/windows/CancellableWait.h"

#include "platform/windows/front_window.h"

#include <QApplication>
#include <QEventLoop>
#include <QTimer>

#include <chrono>
#include <functional>
#include <future>
#include <thread>
#include <utility>

namespace selfreport {

namespace {

using namespace std::chrono_literals;

constexpr auto sameAction = 20ms;
constexpr auto unpainted = 100ms;  // the eye does not see it, and most calls end within
constexpr auto activation = 400ms; // that a window manager may take
constexpr auto pollInterval = 5ms;

bool isReady(const std::future<void>& work)
{
    return work.wait_for(0s) == std::future_status::ready;
}

/// Lets events pass until something has come about or the time is over.
void letEventsPass(const std::function<bool()>& hasComeAbout, QDeadlineTimer until)
{
    QEventLoop loop;
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, &loop, [&] {
        if (hasComeAbout() || until.hasExpired())
            loop.quit();
    });
    poll.start(pollInterval);
    loop.exec();
}

} // namespace

QDeadlineTimer CancellableWait::usualPatience()
{
    return QDeadlineTimer(500ms);
}

CancellableWait::CancellableWait(const QString& title, QWidget* window, QDeadlineTimer patience)
    : m_title(title)
    , m_window(window ? window : frontWindow())
    , m_patience(patience)
    , m_held(m_window)
    , m_inUse(*this)
{
}

/// A window manager gives the focus to the dialog's owner, which need not be the window that began. Keys that
/// come before some window has it are nobody's: the dialog stays until then.
CancellableWait::~CancellableWait()
{
    if (!m_dialog)
        return;
    if (m_window && m_window->isVisible() && !isBlocked(*m_window)) {
        m_window->activateWindow();
        letEventsPass([this] { return !m_window || QApplication::activeWindow() == m_window; },
                      QDeadlineTimer(activation));
    }
    m_dialog.reset();
}

void CancellableWait::openDialog()
{
    m_cursor.reset();
    m_dialog.emplace(m_title, m_window, Qt::NonModal);
    HeldInput::addDialog(*m_dialog);
}

CallEnd CancellableWait::runApart(std::function<void()> call, std::function<void()> stop)
{
    std::packaged_task<void()> task(std::move(call));
    const std::future<void> ended = task.get_future();
    std::thread thread(std::move(task));
    const auto stopIfCancelled = [&] {
        if (isCancelled() && stop)
            stop();
    };
    bool ends = false;
    if (!m_dialog) {
        ends = ended.wait_for(unpainted) == std::future_status::ready;
        if (!ends)
            letEventsPass([&] { return isReady(ended); }, m_patience);
        ends = isReady(ended);
    }
    if (!ends) {
        if (!m_dialog)
            openDialog();
        ends = m_dialog->waitFor(ended, true, stopIfCancelled);
        m_dialog->setVisible(!isCancelled()); // a box may tell what became of the work
    }
    if (!ends) {
        thread.detach();
        return CallEnd::leftBehind;
    }
    thread.join();
    return isCancelled() ? CallEnd::cancelled : CallEnd::done;
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

CallEnd CallWait::runApart(std::function<void()> call, std::function<void()> stop)
{
    if (!qobject_cast<QApplication*>(QCoreApplication::instance())) { // nobody looks on
        call();
        return CallEnd::done;
    }
    if (m_isSameAction.hasExpired())
        m_patience = CancellableWait::usualPatience();
    CancellableWait waiting(QStringLiteral("正在访问数据库"), nullptr, m_patience);
    const CallEnd end = waiting.runApart(std::move(call), std::move(stop));
    m_isSameAction = QDeadlineTimer(sameAction);
    return end;
}

} // namespace selfreport
