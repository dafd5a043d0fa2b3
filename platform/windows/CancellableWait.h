#pragma once
#include "platform/services/UserWait.h"
#include "platform/windows/WaitCursor.h"
#include "platform/windows/WaitingDialog.h"

#include <optional>

namespace selfreport {

/// Waits with the user as long as it lives: with a wait cursor at first, and with a dialog that can cancel
/// once the work takes longer than half a second.
class CancellableWait : public UserWait {
public:
    explicit CancellableWait(const QString& title);

    bool runApart(std::function<void()> call, std::function<void()> stop) override;
    bool pause() override;
    bool isCancelled() const override { return m_dialog && m_dialog->isCancelled(); }

private:
    void openDialog();

    QString m_title;
    QDeadlineTimer m_patience;
    std::optional<WaitCursor> m_cursor{std::in_place}; ///< until the dialog opens
    std::optional<WaitingDialog> m_dialog;
    UserWaitInUse m_inUse;
};

} // namespace selfreport
