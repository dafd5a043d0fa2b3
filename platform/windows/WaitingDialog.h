#pragma once
#include <QDeadlineTimer>
#include <QDialog>

#include <functional>
#include <future>

class QLabel;
class QProgressBar;
class QPushButton;

namespace selfreport {

/// What the user sees while long work goes on; its only live control is "取消" (object names `workProgress`
/// and `cmdCancel`). It is open as long as it lives. Cancelling only asks: the work ends early by itself.
class WaitingDialog : public QDialog {
public:
    /// @param over      null: the active window
    /// @param modality  whether it keeps the input from other windows itself
    explicit WaitingDialog(const QString& title, QWidget* over = nullptr,
                           Qt::WindowModality modality = Qt::ApplicationModal);

    /// Waits for work on another thread.
    /// @param meanwhile        called again and again
    /// @param mayBeLeftBehind  the work is given up when it goes on for half a second after it was cancelled
    /// @return  false if the work was given up
    bool waitFor(const std::future<void>& work, bool mayBeLeftBehind, const std::function<void()>& meanwhile);

    /// Between two pieces of work on this thread: lets the user act, now and then.
    void pause();

    bool isCancelled() const { return m_isCancelled; }
    void tell(const QString& what, int done, int all); ///< all 0: the end is not known
    void reject() override;                            ///< cancels

private:
    QLabel* m_label;
    QProgressBar* m_bar;
    QPushButton* m_cancel;
    QDeadlineTimer m_nextPause{0};
    bool m_isCancelled = false;
};

} // namespace selfreport
