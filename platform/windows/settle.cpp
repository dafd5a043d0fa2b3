#include "platform/windows/settle.h"

#include "platform/windows/text_room.h"

#include <QEvent>
#include <QFocusEvent>
#include <QLineEdit>
#include <QScreen>
#include <QTimer>
#include <QWidget>
#include <QWindow>

#include <algorithm>
#include <utility>

namespace selfreport {

namespace {

// Milliseconds in which a window manager puts its title round a window, or a busy one some time later.
constexpr int titleTime = 300;
constexpr int mostLooks = 30;

/// @return none for one that is being put round: the toolkit then measures a frame that has no size yet
QMargins titleOf(const QWidget& window)
{
    const QMargins title = window.windowHandle() ? window.windowHandle()->frameMargins() : QMargins();
    const bool isWhole = std::min({title.left(), title.top(), title.right(), title.bottom()}) >= 0;
    return isWhole ? title : QMargins();
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

/// @return whether it had to be moved
bool bringOntoScreen(QWidget& window)
{
    const QRect frame = window.geometry().marginsAdded(titleOf(window)); // the widget may not know it yet
    const QPoint corner = fitted(window, frame);
    if (corner == frame.topLeft())
        return false;
    window.move(window.pos() + corner - frame.topLeft());
    return true;
}

/// A window that has no title yet gets one like that of the window that it opens over. The toolkit would
/// centre it without one, and it would jump when it has it.
void openOver(QWidget& window, const QWidget& parent)
{
    const QMargins title = titleOf(parent);
    QRect frame = QRect({}, window.size()).marginsAdded(title);
    frame.moveCenter(parent.geometry().marginsAdded(title).center());
    window.move(fitted(window, frame) + QPoint(title.left(), title.top()));
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

/// Looks again until the window has had the same title twice and stands well, unless the user or the program
/// wants it otherwise meanwhile.
void lookAfterTitle(QWidget& window, int looks, const QMargins& former = {})
{
    QTimer::singleShot(titleTime, &window, [&window, opened = window.size(), looks, former] {
        if (window.size() != opened || !window.isVisible() || fillsTheScreen(window))
            return;
        const bool hasMoved = bringOntoScreen(window);
        const QMargins title = titleOf(window);
        if ((hasMoved || title.isNull() || title != former) && looks > 1)
            lookAfterTitle(window, looks - 1, title);
    });
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
            lookAfterTitle(window, mostLooks);
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
