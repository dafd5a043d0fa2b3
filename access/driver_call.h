#pragma once
#include "platform/database/Connection.h"
#include "platform/services/UserWait.h"

#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <utility>

namespace selfreport {

/// Runs a call into a database driver so that the waiting user can cancel it.
/// @param call  owns all that it uses: a driver that does not answer is left behind with it
/// @param stop  ends the call early, from any thread
/// @throws WorkCancelled, or what the call throws
template <class Result>
Result driverCall(std::function<Result()> call, std::function<void()> stop = {})
{
    struct Run {
        std::function<Result()> call;
        std::optional<Result> result;
        std::exception_ptr failure;
    };
    if (userWait().isCancelled())
        throw WorkCancelled();
    const auto run = std::make_shared<Run>(std::move(call), std::nullopt, nullptr);
    const bool ended = userWait().runApart(
        [run] {
            try {
                run->result = run->call();
            } catch (...) {
                run->failure = std::current_exception();
            }
        },
        std::move(stop));
    if (!ended || userWait().isCancelled())
        throw WorkCancelled();
    if (run->failure)
        std::rethrow_exception(run->failure);
    return std::move(*run->result);
}

/// … a call that uses an open connection, which belongs to the call meanwhile. It does not come back from
/// one that was cancelled.
template <class Result>
Result driverCall(std::unique_ptr<Connection>& connection, std::function<Result(Connection&)> call)
{
    const auto held = std::make_shared<std::unique_ptr<Connection>>(std::move(connection));
    try {
        Result result = driverCall<Result>([held, call = std::move(call)] { return call(**held); },
                                           [held] { (*held)->cancel(); });
        connection = std::move(*held);
        return result;
    } catch (const std::exception&) {
        connection = std::move(*held);
        throw;
    }
}

} // namespace selfreport
