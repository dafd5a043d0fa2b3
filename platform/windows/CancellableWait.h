#pragma once
#include "platform/services/UserWait.h"
#include "platform/windows/HeldInput.h"
#include "platform/windows/WaitCursor.h"
#include "platform/windows/WaitingDialog.h"

#include <QPointer>

#include <optional>

namespace selfreport {

/// Waits with the user as long as it lives: with a wait cursor at first, and with a dialog that can cancel
/// once the work takes longer than half a second. Windows are painted from the start; input is held back for
/// the window that began the work, which is the active one again behind the dialog.
class CancellableWait : public UserWait {
public:
    /// @param window    that began the work; null: the one in front
    /// @param patience  until the dialog opens
    explicit CancellableWait(const QString& title, QWidget* window = nullptr,
                             QDeadlineTimer patience = usualPatience());
    ~CancellableWait() override;

    CallEnd runApart(std::function<void()> call, std::function<void()> stop) override;
    bool pause() override;
    bool isCancelled() const override { return m_dialog && m_dialog->isCancelled(); }

    static QDeadlineTimer usualPatience();

private:
    void openDialog();

    QString m_title;
    QPointer<QWidget> m_window;
    QDeadlineTimer m_patience;
    HeldInput m_held;
    std::optional<WaitCursor> m_cursor{std::in_place}; ///< until the dialog opens
    std::optional<WaitingDialog> m_dialog;
    UserWaitInUse m_inUse;
};

/// Waits with the user for each call that nobody else waits for. Calls that follow each other at once are one
/// action's, and the dialog opens half a second after the first.
class CallWait : public UserWait {
public:
    CallEnd runApart(std::function<void()> call, std::function<void()> stop) override;
    bool pause() override { return false; }
    bool isCancelled() const override { return false; } ///< each call is asked about by itself

private:
    QDeadlineTimer m_patience;
    QDeadlineTimer m_isSameAction{0};
};

} // namespace selfreport
