#pragma once
#include <QString>

#include <atomic>
#include <chrono>
#include <functional>
#include <mutex>
#include <stdexcept>

namespace selfreport {

/// Told by work in the background, read by the window that waits for it. Safe on both threads.
class WorkProgress {
public:
    /// What is being done, and how far it has come.
    void tell(const QString& what, int done = 0, int all = 0);
    struct State {
        QString what;
        int done, all; ///< all 0: the end is not known
    };
    State state() const;

    void cancel() { m_cancelled = true; }
    bool cancelled() const { return m_cancelled; }

private:
    mutable std::mutex m_mutex;
    QString m_what;
    int m_done = 0;
    int m_all = 0;
    std::atomic<bool> m_cancelled = false;
};

enum class Waiting { untilTheEnd, untilCancelled };

/// Work was left behind because nothing had come of it in its time.
struct OutOfTime : std::runtime_error {
    OutOfTime()
        : std::runtime_error("没有回答。")
    {
    }
};

/// Runs work on a thread of its own while the user-interface thread waits in a dialog, which opens when it
/// takes longer than a moment; its only live control is "取消" (object name `workProgress`). The work must
/// not touch widgets, and nothing but the work may touch what it uses. An exception of the work is thrown on.
///
/// Cancelling only asks: the work looks at `cancelled()` and ends early.
/// @param waiting  work that waits for an answer from outside may be left behind when it does not end within
///                 half a second after it was cancelled; it must own all it uses
/// @param atMost   after that it is cancelled as if by the user; 0: never
/// @return  false if the work was left behind
/// @throws OutOfTime  it was cancelled after `atMost`, and ended without a result or was left behind
bool runInBackground(const QString& title, std::function<void(WorkProgress&)> work,
                     Waiting waiting = Waiting::untilTheEnd,
                     std::chrono::milliseconds atMost = std::chrono::milliseconds(0));

} // namespace selfreport
