#pragma once
#include <QElapsedTimer>
#include <QObject>
#include <QPointer>

#include <deque>
#include <memory>
#include <vector>

class QEvent;
class QWidget;

namespace selfreport {

/// While it lives, what the user types and clicks is held back; afterwards it reaches the window that it was
/// meant for, in its order. Only the dialog in which the user waits, and boxes that open meanwhile, are live,
/// and no box gets what was typed before it was there. The dialog has the clicks on it, Esc wherever it is
/// typed, and blank and Enter once nothing was typed for a second: before that they belong to what was.
///
/// The toolkit drops the keys for a window that a modal one blocks, and a window manager takes its time to
/// move the focus: the dialog must not be modal.
class HeldInput : public QObject {
public:
    /// @param window  what is typed is meant for; it need not be visible yet. Null: the one that it came for
    explicit HeldInput(QWidget* window);
    /// From now on the input is on its way.
    ~HeldInput() override;

    /// The dialog that is live, which has just opened. Of several the last one that is still open.
    static void addDialog(QWidget& dialog);
    /// Whether input is held back now: the user waits for something.
    static bool isHolding();

protected:
    bool eventFilter(QObject* receiver, QEvent* event) override;

private:
    struct Held {
        QPointer<QObject> receiver;
        std::unique_ptr<QEvent> event;
    };
    class Delivery;

    QWidget* dialog() const;
    bool isForDialog(const QEvent& event) const;
    bool isLive(const QObject& receiver, const QEvent& event) const;
    void hold(QObject& receiver, const QEvent& event);

    QPointer<QWidget> m_window;
    std::vector<QPointer<QWidget>> m_dialogs;
    QPointer<QWidget> m_modalBefore; ///< the modal window at the beginning
    std::deque<Held> m_held;
    QElapsedTimer m_quiet;      ///< since the dialog opened, or a key was held back
    int m_pressed = 0;          ///< the last key that the dialog had
    bool m_goesWhereItCame;     ///< no window was given
    bool m_isInstalled = false; ///< not if another one holds the input back already
};

} // namespace selfreport
