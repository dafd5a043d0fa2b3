#pragma once
#include "platform/database/Connection.h"
#include "platform/services/UserWait.h"

#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <utility>

namespace selfreport {

/// The user cancelled a change while its commit was under way, and the server has not said what became of it.
struct ChangeLeftBehind : DatabaseError {
    ChangeLeftBehind()
        : DatabaseError(unspecifiedError, "操作已取消，数据库没有答复，无法确定更改是否已保存。")
    {
    }
};

/// Whether a call into a driver is under way on this thread, which waits for it and meanwhile lets the host's
/// timers run: nothing that would begin another one may be started then.
bool isDriverCallUnderWay();

namespace driver_calls {

/// @throws DatabaseError if a call is under way already
class UnderWay {
public:
    UnderWay();
    ~UnderWay();
    UnderWay(const UnderWay&) = delete;
    UnderWay& operator=(const UnderWay&) = delete;
};

template <class Result>
struct Run {
    std::function<Result()> call;
    std::optional<Result> result{};
    std::exception_ptr failure{};
};

/// @throws WorkCancelled if nothing more is wanted
template <class Result>
CallEnd run(const std::shared_ptr<Run<Result>>& run, std::function<void()> stop)
{
    if (userWait().isCancelled())
        throw WorkCancelled();
    const UnderWay underWay;
    return userWait().runApart(
        [run] {
            try {
                run->result = run->call();
            } catch (...) {
                run->failure = std::current_exception();
            }
        },
        std::move(stop));
}

template <class Result>
Result resultOf(Run<Result>& run)
{
    if (run.failure)
        std::rethrow_exception(run.failure);
    return std::move(*run.result);
}

using HeldConnection = std::shared_ptr<std::unique_ptr<Connection>>;

/// What stops a call on a connection: it asks for the end of the statement, and cuts the connection if that
/// has not come soon.
std::function<void()> stopOf(HeldConnection held);

} // namespace driver_calls

/// Runs a call into a database driver so that the waiting user can cancel it.
/// @param call  owns all that it uses: a driver that does not answer is left behind with it
/// @throws WorkCancelled, or what the call throws
template <class Result>
Result driverCall(std::function<Result()> call)
{
    const auto run = std::make_shared<driver_calls::Run<Result>>(std::move(call));
    if (driver_calls::run<Result>(run, {}) != CallEnd::done)
        throw WorkCancelled();
    return driver_calls::resultOf(*run);
}

/// … a call that uses an open connection, which belongs to the call meanwhile. It does not come back from
/// one that was cancelled.
template <class Result>
Result driverCall(std::unique_ptr<Connection>& connection, std::function<Result(Connection&)> call)
{
    const auto held = std::make_shared<std::unique_ptr<Connection>>(std::move(connection));
    const auto run =
        std::make_shared<driver_calls::Run<Result>>([held, call = std::move(call)] { return call(**held); });
    if (driver_calls::run<Result>(run, driver_calls::stopOf(held)) != CallEnd::done) {
        (*held)->cut();
        throw WorkCancelled();
    }
    connection = std::move(*held);
    return driver_calls::resultOf(*run);
}

/// … and changes what is stored, in a transaction that it commits. A result that comes with or behind the
/// cancellation counts.
/// @throws WorkCancelled if nothing has been changed nor will be; ChangeLeftBehind if nobody knows
template <class Result>
Result driverChange(std::unique_ptr<Connection>& connection, std::function<Result(Connection&)> call)
{
    const auto held = std::make_shared<std::unique_ptr<Connection>>(std::move(connection));
    const auto run =
        std::make_shared<driver_calls::Run<Result>>([held, call = std::move(call)] { return call(**held); });
    const CallEnd end = driver_calls::run<Result>(run, driver_calls::stopOf(held));
    if (end == CallEnd::done) {
        connection = std::move(*held);
        return driver_calls::resultOf(*run);
    }
    (*held)->cut(); // from here on nothing is committed that was not before
    if (!(*held)->hasSentCommit())
        throw WorkCancelled();
    if (end == CallEnd::leftBehind)
        throw ChangeLeftBehind();
    return driver_calls::resultOf(*run);
}

} // namespace selfreport
