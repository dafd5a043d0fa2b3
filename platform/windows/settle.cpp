#include "platform/windows/settle.h"

#include "platform/windows/text_room.h"

#include <QEvent>
#include <QFocusEvent>
#include <QLineEdit>
#include <QScreen>
#include <QTimer>
#include <QWidget>

#include <algorithm>
#include <utility>

namespace selfreport {

namespace {

constexpr int titleTime = 300; // milliseconds in which a window manager has put its title round a window

QSize borderOf(const QWidget& window)
{
    return window.frameGeometry().size() - window.size();
}

/// Makes a window as large as the screen allows. @return where its frame stands within the screen.
QPoint fitted(QWidget& window, QRect frame)
{
    const QRect screen = window.screen()->availableGeometry();
    const QSize border = frame.size() - window.size();
    const QSize fitting = window.size().boundedTo(screen.size() - border);
    if (fitting != window.size())
        window.resize(fitting);
    frame.setSize(fitting + border);
    return {std::max(screen.left(), std::min(frame.left(), screen.right() + 1 - frame.width())),
            std::max(screen.top(), std::min(frame.top(), screen.bottom() + 1 - frame.height()))};
}

void bringOntoScreen(QWidget& window)
{
    const QPoint corner = fitted(window, window.frameGeometry());
    if (corner != window.frameGeometry().topLeft())
        window.move(corner);
}

/// A window that has no title yet gets one like that of the window that it opens over. The toolkit would
/// centre it without one, and it would jump when it has it.
void openOver(QWidget& window, const QWidget& parent)
{
    QRect frame({}, window.size() + borderOf(parent));
    frame.moveCenter(parent.frameGeometry().center());
    window.move(fitted(window, frame) + parent.geometry().topLeft() - parent.frameGeometry().topLeft());
}

void open(QWidget& window)
{
    if (const int needed = titleRoom(window); window.width() < needed)
        window.resize(needed, window.height());
    const QWidget* const parent = window.parentWidget() ? window.parentWidget()->window() : nullptr;
    if (parent && parent->isVisible() && !window.testAttribute(Qt::WA_Moved))
        openOver(window, *parent);
    else
        bringOntoScreen(window);
}

bool fillsTheScreen(const QWidget& window)
{
    return window.windowState() & (Qt::WindowMaximized | Qt::WindowFullScreen);
}

class WithinScreen : public QObject {
public:
    using QObject::QObject;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        auto& window = static_cast<QWidget&>(*watched);
        if (event->type() == QEvent::Show && !event->spontaneous() && !fillsTheScreen(window)) {
            open(window);
            QTimer::singleShot(titleTime, &window, [&window, opened = window.size()] {
                const bool isWantedOtherwise = window.size() != opened || !window.isVisible();
                if (!isWantedOtherwise && !fillsTheScreen(window))
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
        const bool returns = reason == Qt::ActiveWindowFocusReason || reason == Qt::PopupFocusReason;
        if (!std::exchange(m_isFresh, false) && returns)
            return false; // to what was being typed
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

private:
    bool m_isFresh = true; ///< none of the window's boxes has had the focus
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
