// Stands for the user of a host that knows nothing of the toolkit: loaded into the process, it closes every
// window that opens. The host may act before each.
#include <QApplication>
#include <QPointer>
#include <QTimer>
#include <QWidget>

namespace {

void (*actWhileOpen)() = nullptr;

void closeWindows()
{
    QTimer::singleShot(5, qApp, closeWindows); // what the host does may open a further window
    const QPointer<QWidget> window = QApplication::activeModalWidget();
    if (window && actWhileOpen)
        actWhileOpen();
    if (window)
        window->close();
}

} // namespace

extern "C" __attribute__((visibility("default"))) void before_closing(void (*act)())
{
    actWhileOpen = act;
}

Q_COREAPP_STARTUP_FUNCTION(closeWindows)
