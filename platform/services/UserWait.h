#pragma once
#include "platform/services/InUse.h"

#include <functional>

namespace selfreport {

/// How a call into a driver came to its end.
enum class CallEnd {
    done,
    cancelled, ///< the user did not want to wait, and it has ended all the same
    leftBehind ///< … and it still goes on, on its own thread
};

/// Lets the user see, and end, work that takes long. The work is done piece by piece on the user-interface
/// thread; only a call into a driver runs apart from it.
class UserWait {
public:
    virtual ~UserWait() = default;

    /// Returns when `call` has ended, which may run on a thread of its own, or is left behind.
    /// @param call  throws nothing; it may be left behind, so it must own all that it uses
    /// @param stop  ends the call early, from any thread; may be asked again and again
    virtual CallEnd runApart(std::function<void()> call, std::function<void()> stop) = 0;

    /// Between two pieces of work: shows the user that it goes on. True once the user has cancelled.
    virtual bool pause() = 0;
    /// Whether nothing more of the work is wanted.
    virtual bool isCancelled() const = 0;

    /// What is in use without a replacement: at first nobody waits, and nothing is cancelled.
    static UserWait*& usual();
};

/// The one in use.
UserWait& userWait();

using UserWaitInUse = InUse<UserWait>;

/// The user cancelled. No std::exception: a failure is told, this is not.
struct WorkCancelled {};

} // namespace selfreport
