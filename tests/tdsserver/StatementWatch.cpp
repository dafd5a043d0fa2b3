#include "tests/tdsserver/StatementWatch.h"

#include <mutex>
#include <sqlite3.h>
#include <string_view>
#include <utility>

namespace selfreport::tds {

namespace {

std::mutex watchMutex;
std::string watched; // empty: nothing
std::function<void()> watchAct;

int seeStatement(unsigned, void*, void*, void* text)
{
    std::function<void()> act;
    {
        const std::lock_guard lock(watchMutex);
        if (!watched.empty() && std::string_view(static_cast<const char*>(text)).starts_with(watched)) {
            watched.clear();
            act = std::exchange(watchAct, {});
        }
    }
    if (act)
        act();
    return 0;
}

int watchSession(sqlite3* database, const char**, const sqlite3_api_routines*)
{
    return sqlite3_trace_v2(database, SQLITE_TRACE_STMT, seeStatement, nullptr);
}

const auto watchSessions = reinterpret_cast<void (*)()>(watchSession);

} // namespace

StatementWatch::StatementWatch(std::string beginning, std::function<void()> act)
{
    const std::lock_guard lock(watchMutex);
    watched = std::move(beginning);
    watchAct = std::move(act);
    sqlite3_auto_extension(watchSessions);
}

StatementWatch::~StatementWatch()
{
    sqlite3_cancel_auto_extension(watchSessions);
    const std::lock_guard lock(watchMutex);
    watched.clear();
    watchAct = {};
}

} // namespace selfreport::tds
