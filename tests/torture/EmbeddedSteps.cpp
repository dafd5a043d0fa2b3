#include "tests/torture/EmbeddedSteps.h"

#include <mutex>
#include <sqlite3.h>
#include <thread>
#include <utility>

namespace selfreport::torture {

namespace {

std::mutex mutex;
int steps = 0;
int wantedPlace = 0;
std::function<bool()> wantedAct;
std::thread::id ownThread;
thread_local bool acting = false; ///< what happens there is no step itself

int seeStep(void*, int code, const char*, const char*, const char*, const char*)
{
    const bool isStep = code == SQLITE_SELECT || code == SQLITE_INSERT || code == SQLITE_UPDATE ||
                        code == SQLITE_DELETE || code == SQLITE_TRANSACTION;
    if (!isStep || acting || std::this_thread::get_id() == ownThread)
        return SQLITE_OK;
    std::function<bool()> act;
    {
        const std::lock_guard lock(mutex);
        if (++steps == wantedPlace)
            act = std::exchange(wantedAct, {});
    }
    if (!act)
        return SQLITE_OK;
    acting = true;
    const bool goesOn = act();
    acting = false;
    return goesOn ? SQLITE_OK : SQLITE_DENY;
}

int watchSession(sqlite3* database, const char**, const sqlite3_api_routines*)
{
    return acting ? SQLITE_OK : sqlite3_set_authorizer(database, seeStep, nullptr);
}

const auto watchSessions = reinterpret_cast<void (*)()>(watchSession);

} // namespace

EmbeddedSteps::EmbeddedSteps(int place, std::function<bool()> act)
{
    const std::lock_guard lock(mutex);
    steps = 0;
    ownThread = std::this_thread::get_id();
    wantedPlace = place;
    wantedAct = std::move(act);
    sqlite3_auto_extension(watchSessions);
}

EmbeddedSteps::~EmbeddedSteps()
{
    sqlite3_cancel_auto_extension(watchSessions);
    const std::lock_guard lock(mutex);
    wantedPlace = 0;
    wantedAct = {};
}

int EmbeddedSteps::count()
{
    const std::lock_guard lock(mutex);
    return steps;
}

} // namespace selfreport::torture
