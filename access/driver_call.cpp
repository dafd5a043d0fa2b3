#include "access/driver_call.h"

#include <chrono>
#include <optional>

namespace selfreport {

namespace {

using Clock = std::chrono::steady_clock;

// A server that goes on confirms the end of a statement at once.
constexpr std::chrono::milliseconds patience(200);

thread_local bool underWay = false;

} // namespace

bool isDriverCallUnderWay()
{
    return underWay;
}

namespace driver_calls {

UnderWay::UnderWay()
{
    if (underWay)
        throw DatabaseError(unspecifiedError, "另一项数据库操作还没有结束，请稍后再试。");
    underWay = true;
}

UnderWay::~UnderWay()
{
    underWay = false;
}

std::function<void()> stopOf(HeldConnection held)
{
    return [held = std::move(held), cutsAt = std::optional<Clock::time_point>()]() mutable {
        const auto now = Clock::now();
        cutsAt = cutsAt.value_or(now + patience);
        if (now < *cutsAt)
            (*held)->cancel();
        else
            (*held)->cut();
    };
}

} // namespace driver_calls

} // namespace selfreport
