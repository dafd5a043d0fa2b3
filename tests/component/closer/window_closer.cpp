// Stands for the user of a host that knows nothing of the toolkit: loaded into the process, it closes every
// window that opens.
#include <QApplication>
#include <QTimer>
#include <QWidget>

namespace {

void closeWindows()
{
    auto* timer = new QTimer(qApp);
    QObject::connect(timer, &QTimer::timeout, qApp, [] {
        if (QWidget* const window = QApplication::activeModalWidget())
            window->close();
    });
    timer->start(5);
}

} // namespace

Q_COREAPP_STARTUP_FUNCTION(closeWindows)
