#include "fetch/call_trial.h"

#include "access/DatabaseAccess.h"
#include "failures/failure_text.h"
#include "fetch/ledger_explanation.h"
#include "platform/database/Connection.h"
#include "text/amount_text.h"

#include <charconv>
#include <condition_variable>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>

namespace selfreport {

namespace {

constexpr const char* overTheLimit = "取数超过时限,未取";

/// Stops what the connection does if this still lives when the time is up.
class CancelledAfter {
public:
    CancelledAfter(Connection& connection, std::chrono::milliseconds limit)
        : m_watch([this, &connection, limit](const std::stop_token& stop) {
            std::unique_lock lock(m_mutex);
            if (m_over.wait_for(lock, stop, limit, [&] { return stop.stop_requested(); }))
                return;
            if (!stop.stop_requested()) {
                m_isOver = true;
                connection.cancel();
            }
        })
    {
    }
    ~CancelledAfter()
    {
        m_watch.request_stop();
        m_watch.join();
    }
    CancelledAfter(const CancelledAfter&) = delete;
    CancelledAfter& operator=(const CancelledAfter&) = delete;

    bool isOver()
    {
        const std::lock_guard lock(m_mutex);
        return m_isOver;
    }

private:
    std::mutex m_mutex;
    std::condition_variable_any m_over;
    bool m_isOver = false;
    std::jthread m_watch; // last: it uses the others
};

/// Year or period as the fetch takes it: 0 counts as not given. Nothing for a text that is no whole number.
std::optional<std::string> wholeNumber(std::string_view text)
{
    text = trimmed(text);
    if (text.empty())
        return std::string();
    int number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size())
        return {};
    return number == 0 ? std::string() : std::to_string(number);
}

std::optional<LedgerArguments> usableArguments(const std::array<std::string, 6>& texts, std::string& problem)
{
    static constexpr const char* names[] = {"年度", "起始期间", "截目期间"};
    LedgerArguments arguments{texts[0], texts[1], texts[2], {}, {}, {}};
    std::string* const numbers[] = {&arguments.year, &arguments.firstPeriod, &arguments.lastPeriod};
    for (std::size_t index = 0; index < 3; ++index) {
        const auto number = wholeNumber(texts[index + 3]);
        if (!number) {
            problem = std::string(names[index]) + "“" + texts[index + 3] + "”不是整数";
            return {};
        }
        *numbers[index] = *number;
    }
    return arguments;
}

std::string fetchedValue(Connection& connection, const LedgerArguments& arguments)
{
    const std::vector<std::optional<LedgerAnswer>> answers = fetchLedger(connection, {&arguments, 1});
    const LedgerAnswer answer = answers.at(0) ? *answers[0] : LedgerAnswer{{}, {}, "取数失败", {}};
    return answer.amount && answer.failure.empty() ? amountText(*answer.amount)
                                                   : explainLedgerFetch(connection, {arguments, answer});
}

/// A trial on a thread of its own, which may be left behind: opening a connection cannot be stopped.
struct Attempt {
    std::mutex mutex;
    std::condition_variable ended;
    bool isOver = false;
    CallTrial trial;

    void tell(const std::function<void(CallTrial&)>& change)
    {
        const std::lock_guard lock(mutex);
        change(trial);
    }
    void run(const std::string& connectionString, const LedgerArguments& arguments,
             std::chrono::milliseconds limit);
};

void Attempt::run(const std::string& connectionString, const LedgerArguments& arguments,
                  std::chrono::milliseconds limit)
{
    std::string value;
    try {
        const auto connection = openConnection(connectionString);
        CancelledAfter watch(*connection, limit);
        try {
            CallInWords meaning = callInWords(*connection, arguments);
            tell([&](CallTrial& known) { known.meaning = std::move(meaning); });
            value = fetchedValue(*connection, arguments);
        } catch (const OpeningFailed&) {
            throw; // a session that was gone
        } catch (const std::exception& error) {
            value = watch.isOver() ? overTheLimit : failures::sentenceOf(error);
        }
    } catch (const DatabaseError& error) {
        value = openingFailureText(error.number);
    } catch (const std::exception&) {
        value = openingFailureText(unspecifiedError);
    }
    tell([&](CallTrial& known) {
        known.value = std::move(value);
        isOver = true;
    });
    ended.notify_one();
}

} // namespace

CallTrial tryCall(const std::string& connectionString, const std::array<std::string, 6>& texts,
                  std::chrono::milliseconds limit)
{
    static std::weak_ptr<Attempt> s_leftBehind;
    CallTrial refused;
    const auto arguments = usableArguments(texts, refused.value);
    if (!arguments)
        return refused;
    if (!s_leftBehind.expired())
        return {{}, "数据库没有应答,未取"};
    const auto attempt = std::make_shared<Attempt>();
    std::thread thread([attempt, connectionString, arguments = *arguments, limit] {
        attempt->run(connectionString, arguments, limit);
    });
    std::unique_lock lock(attempt->mutex);
    const bool inTime = attempt->ended.wait_for(lock, limit, [&] { return attempt->isOver; });
    CallTrial trial = attempt->trial;
    lock.unlock();
    if (inTime) {
        thread.join();
        return trial;
    }
    s_leftBehind = attempt;
    thread.detach();
    trial.value = overTheLimit;
    return trial;
}

} // namespace selfreport
