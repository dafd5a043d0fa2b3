#include "platform/windows/WaitingDialog.h"

#include "platform/windows/front_window.h"

#include <QApplication>
#include <QEventLoop>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

namespace selfreport {

namespace {

using namespace std::chrono_literals;

constexpr auto givenUpAfter = 450ms; // after it was cancelled
constexpr auto pollInterval = 20ms;
constexpr auto pauseInterval = 50ms;
constexpr int dialogWidth = 360; // pixels

bool isReady(const std::future<void>& work)
{
    return work.wait_for(0s) == std::future_status::ready;
}

/// A window that a modal one blocks would have the dialog blocked too.
QWidget* ownerFor(QWidget* over)
{
    return over && over->isVisible() && !isBlocked(*over) ? over : frontWindow();
}

} // namespace

WaitingDialog::WaitingDialog(const QString& title, QWidget* over, Qt::WindowModality modality)
    : QDialog(ownerFor(over))
    , m_label(new QLabel(title))
    , m_bar(new QProgressBar)
    , m_cancel(new QPushButton(QStringLiteral("取消")))
{
    setObjectName(QStringLiteral("workProgress"));
    setWindowTitle(title);
    setWindowModality(modality);
    setMinimumWidth(dialogWidth);
    m_bar->setRange(0, 0);
    m_cancel->setObjectName(QStringLiteral("cmdCancel"));
    auto* const rows = new QVBoxLayout(this);
    rows->addWidget(m_label);
    rows->addWidget(m_bar);
    rows->addWidget(m_cancel, 0, Qt::AlignRight);
    connect(m_cancel, &QPushButton::clicked, this, &WaitingDialog::reject);
    show();
}

void WaitingDialog::tell(const QString& what, int done, int all)
{
    m_bar->setRange(0, all);
    m_bar->setValue(done);
    if (!what.isEmpty())
        m_label->setText(what);
}

void WaitingDialog::reject()
{
    m_isCancelled = true;
    m_cancel->setEnabled(false);
}

bool WaitingDialog::waitFor(const std::future<void>& work, bool mayBeLeftBehind,
                            const std::function<void()>& meanwhile)
{
    QEventLoop loop;
    QTimer poll;
    QDeadlineTimer givenUp(QDeadlineTimer::Forever);
    connect(&poll, &QTimer::timeout, &loop, [&] {
        meanwhile();
        if (m_isCancelled && mayBeLeftBehind && givenUp.isForever())
            givenUp = QDeadlineTimer(givenUpAfter);
        if (isReady(work) || givenUp.hasExpired())
            loop.quit();
    });
    poll.start(pollInterval);
    loop.exec();
    return isReady(work);
}

void WaitingDialog::pause()
{
    if (!m_nextPause.hasExpired())
        return;
    QApplication::processEvents();
    m_nextPause = QDeadlineTimer(pauseInterval);
}

} // namespace selfreport
