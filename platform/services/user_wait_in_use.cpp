#include "platform/services/UserWait.h"

namespace selfreport {

namespace {

class NobodyWaits : public UserWait {
public:
    CallEnd runApart(std::function<void()> call, std::function<void()>) override
    {
        call();
        return CallEnd::done;
    }
    bool pause() override { return false; }
    bool isCancelled() const override { return false; }
};

} // namespace

UserWait*& UserWait::usual()
{
    static NobodyWaits nobody;
    static UserWait* usual = &nobody;
    return usual;
}

UserWait& userWait()
{
    return UserWaitInUse::current();
}

} // namespace selfreport
