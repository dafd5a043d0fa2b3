#include "component/instances.h"
#include "component/application.h"

#include <atomic>

namespace selfreport {

namespace {

std::atomic<int> alive = 0; // hosts may end instances on any thread

}

void countInstance(int change) noexcept
{
    alive += change;
}

bool mayBeUnloaded() noexcept
{
    return alive == 0 && !toolkitStarted();
}

} // namespace selfreport
