#pragma once
#include "platform/services/InUse.h"

#include <functional>

namespace selfreport {

/// Lets the user see, and end, work that takes long. The work is done piece by piece on the user-interface
/// thread; only a call into a driver runs apart from it.
class UserWait {
public:
    virtual ~UserWait() = default;

    /// Returns when `call` has ended, which may run on a thread of its own.
    /// @param call  throws nothing; it may be left behind, so it must own all that it uses
    /// @param stop  ends the call early, from any thread; may be asked again and again
    /// @return  false if the user cancelled and the call was left behind
    virtual bool runApart(std::function<void()> call, std::function<void()> stop) = 0;

    /// Between two pieces of work: shows the user that it goes on. True once the user has cancelled.
    virtual bool pause() = 0;
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
