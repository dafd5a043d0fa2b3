#pragma once
#include <QElapsedTimer>
#include <QObject>
#include <QPointer>
#include <QTimer>

#include <deque>
#include <memory>

class QEvent;
class QWidget;

namespace selfreport {

/// While it lives, what the user types and clicks is held back; afterwards it reaches the window that it was
/// meant for, in its order. Only the dialog in which the user waits, and boxes that open meanwhile, are live:
/// Esc, closing and clicks go to the dialog, and no box gets what was typed before it was there.
class HeldInput : public QObject {
public:
    /// @param window  what is typed is meant for; it need not be visible yet. Null: nothing is held back
    explicit HeldInput(QWidget* window);
    /// From now on the input is on its way.
    ~HeldInput() override;

    /// The dialog that is live.
    void setDialog(QWidget* dialog) { m_dialog = dialog; }

protected:
    bool eventFilter(QObject* receiver, QEvent* event) override;

private:
    struct Held {
        QPointer<QObject> receiver;
        std::unique_ptr<QEvent> event;
    };
    class Delivery;

    bool isLive(const QObject& receiver, const QEvent& event) const;

    QPointer<QWidget> m_window;
    QPointer<QWidget> m_dialog;
    QPointer<QWidget> m_modalBefore; ///< the modal window at the beginning
    std::deque<Held> m_held;
    bool m_isInstalled = false; ///< not if another one holds the input back already
};

} // namespace selfreport
