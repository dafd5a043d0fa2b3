#include "platform/windows/HeldInput.h"

#include "platform/windows/front_window.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QKeyEvent>
#include <QMessageBox>
#include <QMouseEvent>
#include <QTimer>
#include <QWidget>
#include <QWindow>

#include <algorithm>
#include <chrono>
#include <iterator>
#include <utility>

namespace selfreport {

namespace {

using namespace std::chrono_literals;

constexpr auto deliveryInterval = 10ms;
constexpr qint64 longestUnseen = 3000; // milliseconds: a window that does not open gets nothing
constexpr qint64 activationTime = 500; // milliseconds that a window manager may take

constexpr qint64 seen = 1000; // milliseconds that tell a key for the dialog from a late one

HeldInput* holder = nullptr; ///< on the user-interface thread

bool isKey(const QEvent& event)
{
    return event.type() == QEvent::KeyPress || event.type() == QEvent::KeyRelease ||
           event.type() == QEvent::InputMethod;
}

/// Whether it is one of the user's and would do something. Input methods send their texts themselves, and
/// empty ones where the program sets a field.
bool isInput(const QEvent& event)
{
    if (event.type() == QEvent::InputMethod) {
        const auto& text = static_cast<const QInputMethodEvent&>(event);
        return !text.commitString().isEmpty() || !text.preeditString().isEmpty();
    }
    if (!event.spontaneous())
        return false;
    switch (event.type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseMove:
    case QEvent::Wheel:
    case QEvent::ContextMenu:
    case QEvent::Drop:
    case QEvent::TouchBegin:
    case QEvent::TabletPress:
    case QEvent::Close:
        return true;
    default:
        return isKey(event);
    }
}

/// Whether it is done later; pointer moves and the like are not.
bool isKept(const QEvent& event)
{
    switch (event.type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::Wheel:
    case QEvent::Close:
        return true;
    default:
        return isKey(event);
    }
}

/// A copy that shares nothing: the points of a cloned event go on with those that come later.
std::unique_ptr<QEvent> copyOf(const QEvent& event)
{
    const auto* const mouse = dynamic_cast<const QMouseEvent*>(&event);
    if (!mouse)
        return std::unique_ptr<QEvent>(event.clone());
    return std::make_unique<QMouseEvent>(mouse->type(), mouse->position(), mouse->scenePosition(),
                                         mouse->globalPosition(), mouse->button(), mouse->buttons(),
                                         mouse->modifiers());
}

const QWidget* windowOf(const QObject& receiver)
{
    if (const auto* widget = qobject_cast<const QWidget*>(&receiver))
        return widget->window();
    for (const QWidget* const window : QApplication::topLevelWidgets())
        if (window->windowHandle() == &receiver)
            return window;
    return nullptr;
}

/// Menus and buttons hear of their keys before the widget with the focus does.
bool triggersShortcut(const QWidget& window, QWidget& focus, const QKeyEvent& key)
{
    QKeyEvent overriding(QEvent::ShortcutOverride, key.key(), key.modifiers(), key.text());
    overriding.ignore();
    QCoreApplication::sendEvent(&focus, &overriding);
    const QKeySequence keys(key.keyCombination());
    if (overriding.isAccepted() || key.modifiers() == Qt::KeypadModifier)
        return false;
    for (QAction* const action : window.findChildren<QAction*>())
        if (action->isEnabled() && action->shortcuts().contains(keys)) {
            action->trigger();
            return true;
        }
    for (QAbstractButton* const button : window.findChildren<QAbstractButton*>())
        if (button->isEnabled() && button->isVisible() && button->shortcut() == keys && !keys.isEmpty()) {
            button->click();
            return true;
        }
    return false;
}

void sendKey(QWidget& window, QEvent& event)
{
    QWidget* const focus = window.focusWidget() ? window.focusWidget() : &window;
    if (event.type() == QEvent::KeyPress &&
        triggersShortcut(window, *focus, static_cast<const QKeyEvent&>(event)))
        return;
    QCoreApplication::sendEvent(focus, &event);
}

} // namespace

/// Brings what was held back to its window once that can take it, and what comes for it meanwhile behind it.
class HeldInput::Delivery : public QObject {
public:
    Delivery(QWidget& window, std::deque<Held> held)
        : QObject(qApp) // which may end before the next turn of its loop
        , m_window(&window)
        , m_held(std::move(held))
    {
        connect(&m_timer, &QTimer::timeout, this, &Delivery::deliver);
        m_timer.start(deliveryInterval);
        m_age.start();
        qApp->installEventFilter(this);
        s_last = this;
    }

    /// What was held back later comes behind what is on its way already.
    static void start(QWidget& window, std::deque<Held> held)
    {
        if (!s_last || s_last->m_window != &window || !s_last->m_timer.isActive())
            new Delivery(window, std::move(held)); // ends by itself
        else
            std::ranges::move(held, std::back_inserter(s_last->m_held));
    }

protected:
    bool eventFilter(QObject* receiver, QEvent* event) override
    {
        if (!isKey(*event) || !isInput(*event) || m_isSending || !m_window ||
            windowOf(*receiver) != m_window || holder)
            return false;
        m_held.push_back({receiver, copyOf(*event)});
        return true;
    }

private:
    void deliver()
    {
        if (!m_window || m_held.empty())
            return end();
        if (!m_window->isVisible()) {
            if (m_age.elapsed() > longestUnseen)
                end();
            return;
        }
        if (holder)
            return;
        if (isBlocked(*m_window)) { // a box is read and closed; another window is what the user works in now
            if (!qobject_cast<QMessageBox*>(QApplication::activeModalWidget()))
                return end();
            m_age.restart();
            return;
        }
        if (QApplication::activeWindow() != m_window && m_age.elapsed() < activationTime)
            return m_window->activateWindow();
        while (!m_held.empty() && m_window && !isBlocked(*m_window) && !holder)
            sendNext();
    }

    void sendNext()
    {
        const Held next = std::move(m_held.front());
        m_held.pop_front(); // before it is sent: it may open a window with an event loop of its own
        const bool wasSending = std::exchange(m_isSending, true);
        if (isKey(*next.event)) {
            sendKey(*m_window, *next.event);
        } else if (next.receiver) {
            const QWidget* const window = windowOf(*next.receiver);
            if (window && window->isVisible() && !isBlocked(*window))
                sendTo(*next.receiver, *next.event);
        }
        m_isSending = wasSending;
    }

    /// A window gives clicks on only while they come from the system.
    void sendTo(QObject& receiver, QEvent& event)
    {
        const auto* const mouse = dynamic_cast<const QMouseEvent*>(&event);
        auto* const window = const_cast<QWidget*>(windowOf(receiver));
        if (!mouse || &receiver == window || receiver.isWidgetType()) {
            QCoreApplication::sendEvent(&receiver, &event);
            return;
        }
        const QPoint place = mouse->position().toPoint();
        if (event.type() != QEvent::MouseButtonRelease)
            m_pressed = window->childAt(place) ? window->childAt(place) : window;
        if (!m_pressed)
            return;
        QMouseEvent mapped(event.type(), m_pressed->mapFrom(window, place), mouse->scenePosition(),
                           mouse->globalPosition(), mouse->button(), mouse->buttons(), mouse->modifiers());
        QCoreApplication::sendEvent(m_pressed, &mapped);
    }

    void end()
    {
        m_timer.stop();
        qApp->removeEventFilter(this);
        deleteLater();
    }

    QPointer<QWidget> m_window;
    std::deque<Held> m_held;
    QTimer m_timer;
    QElapsedTimer m_age;         ///< since it was last kept from delivering
    QPointer<QWidget> m_pressed; ///< where the last click began
    bool m_isSending = false;

    inline static QPointer<Delivery> s_last;
};

HeldInput::HeldInput(QWidget* window)
    : m_window(window)
    , m_modalBefore(QApplication::activeModalWidget())
    , m_goesWhereItCame(!window)
    , m_isInstalled(!holder)
{
    if (!m_isInstalled)
        return;
    holder = this;
    qApp->installEventFilter(this);
}

HeldInput::~HeldInput()
{
    if (!m_isInstalled)
        return;
    holder = nullptr;
    qApp->removeEventFilter(this);
    if (m_window && !m_held.empty())
        Delivery::start(*m_window, std::move(m_held));
}

bool HeldInput::isHolding()
{
    return holder != nullptr;
}

void HeldInput::addDialog(QWidget& dialog)
{
    if (!holder)
        return;
    holder->m_dialogs.emplace_back(&dialog);
    holder->m_quiet.start();
}

/// Null if none is open.
QWidget* HeldInput::dialog() const
{
    const auto open = std::ranges::find_if(m_dialogs.rbegin(), m_dialogs.rend(),
                                           [](const auto& dialog) { return dialog && dialog->isVisible(); });
    return open == m_dialogs.rend() ? nullptr : open->data();
}

/// Whether the dialog has an event that came for it.
bool HeldInput::isForDialog(const QEvent& event) const
{
    if (!isKey(event) && event.type() != QEvent::ShortcutOverride)
        return true;
    if (event.type() == QEvent::InputMethod)
        return false;
    const auto& key = static_cast<const QKeyEvent&>(event);
    if (key.key() == Qt::Key_Escape)
        return true;
    if (event.type() == QEvent::KeyRelease || key.isAutoRepeat())
        return key.key() == m_pressed;
    return m_quiet.hasExpired(seen) &&
           (key.key() == Qt::Key_Space || key.key() == Qt::Key_Return || key.key() == Qt::Key_Enter);
}

bool HeldInput::isLive(const QObject& receiver, const QEvent& event) const
{
    const QWidget* const window = windowOf(receiver);
    if (window && window == dialog())
        return isForDialog(event);
    const QWidget* const modal = QApplication::activeModalWidget();
    return modal && modal != m_modalBefore;
}

void HeldInput::hold(QObject& receiver, const QEvent& event)
{
    QWidget* const open = dialog();
    if (m_goesWhereItCame && !m_window && (!open || windowOf(receiver) != open))
        m_window = const_cast<QWidget*>(windowOf(receiver));
    m_held.push_back({&receiver, copyOf(event)});
    if (isKey(event))
        m_quiet.restart();
    else if (open && event.type() == QEvent::MouseButtonPress)
        open->activateWindow(); // the click has brought its own window to the front
}

bool HeldInput::eventFilter(QObject* receiver, QEvent* event)
{
    if (event->type() != QEvent::ShortcutOverride && !isInput(*event))
        return false;
    const bool live = isLive(*receiver, *event);
    if (event->type() == QEvent::ShortcutOverride) {
        if (live)
            return false;
        event->accept(); // so that the key comes as a key
        return true;
    }
    QWidget* const open = dialog();
    if (live) {
        if (event->type() == QEvent::KeyPress && windowOf(*receiver) == open)
            m_pressed = static_cast<const QKeyEvent*>(event)->key();
        return false;
    }
    if (open && event->type() == QEvent::KeyPress &&
        static_cast<const QKeyEvent*>(event)->key() == Qt::Key_Escape) {
        QCoreApplication::sendEvent(open, event); // the user sees the dialog before it has the focus
        return true;
    }
    if (isKept(*event))
        hold(*receiver, *event);
    if (event->type() == QEvent::Close)
        event->ignore();
    return true;
}

} // namespace selfreport
