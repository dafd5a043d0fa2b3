#include "platform/windows/settle.h"

#include <QEvent>
#include <QFocusEvent>
#include <QLineEdit>
#include <QScreen>
#include <QTimer>
#include <QWidget>

#include <algorithm>

namespace selfreport {

namespace {

constexpr int titleTime = 300; // milliseconds in which a window manager has put its title round a window

void bringOntoScreen(QWidget& window)
{
    const QRect screen = window.screen()->availableGeometry();
    const QSize border = window.frameGeometry().size() - window.size();
    if (!window.isVisible() || window.windowState() & (Qt::WindowMaximized | Qt::WindowFullScreen))
        return;
    const QSize fitting = window.size().boundedTo(screen.size() - border);
    if (fitting != window.size())
        window.resize(fitting);
    const QRect frame = window.frameGeometry();
    const QPoint place(std::max(screen.left(), std::min(frame.left(), screen.right() + 1 - frame.width())),
                       std::max(screen.top(), std::min(frame.top(), screen.bottom() + 1 - frame.height())));
    if (place != frame.topLeft())
        window.move(place);
}

class WithinScreen : public QObject {
public:
    using QObject::QObject;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        auto& window = static_cast<QWidget&>(*watched);
        if (event->type() == QEvent::Show && !event->spontaneous()) {
            bringOntoScreen(window);
            QTimer::singleShot(titleTime, &window, [&window, opened = window.size()] {
                if (window.size() == opened) // else somebody wants it otherwise
                    bringOntoScreen(window);
            });
        }
        return false;
    }
};

class SelectedOnFocus : public QObject {
public:
    using QObject::QObject;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() != QEvent::FocusIn)
            return false;
        const Qt::FocusReason reason = static_cast<QFocusEvent*>(event)->reason();
        if (reason == Qt::ActiveWindowFocusReason || reason == Qt::PopupFocusReason)
            return false; // it comes back to what was being typed
        auto* const box = static_cast<QLineEdit*>(watched);
        if (reason != Qt::MouseFocusReason)
            box->selectAll();
        else
            QTimer::singleShot(0, box, [box] { // once the click has put its cursor
                if (box->hasFocus() && !box->hasSelectedText())
                    box->selectAll();
            });
        return false;
    }
};

} // namespace

void openOnScreen(QWidget& window)
{
    window.installEventFilter(new WithinScreen(&window));
}

void settle(QWidget& window)
{
    openOnScreen(window);
    auto* const selecting = new SelectedOnFocus(&window);
    for (QLineEdit* const box : window.findChildren<QLineEdit*>())
        if (!box->isReadOnly() && box->inputMask().isEmpty())
            box->installEventFilter(selecting);
}

} // namespace selfreport
