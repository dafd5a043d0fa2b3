#include "platform/database/odbc/timed_opening.h"

#include "platform/database/odbc/odbc_string.h"
#include "platform/database/odbc/OdbcSession.h"

#include <chrono>
#include <future>
#include <thread>

namespace selfreport {

std::unique_ptr<Session> openedInTime(const OdbcTarget& target)
{
    if (target.loginTimeout == 0)
        return std::make_unique<OdbcSession>(target);
    std::packaged_task<std::unique_ptr<Session>()> opening(
        [target] { return std::make_unique<OdbcSession>(target); });
    std::future<std::unique_ptr<Session>> opened = opening.get_future();
    std::thread(std::move(opening)).detach(); // a session that comes too late goes with the task
    if (opened.wait_for(std::chrono::seconds(target.loginTimeout)) != std::future_status::ready)
        throw DatabaseError(unspecifiedError, "连不上数据库服务器：超过了连接的时限（" +
                                                  std::to_string(target.loginTimeout) + " 秒）");
    return opened.get();
}

} // namespace selfreport
