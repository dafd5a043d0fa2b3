// Saving, broken at every place: whatever happens, row and menu item are both as before or both as wanted.
#include "tests/tdsserver/TdsServer.h"
#include "tests/torture/FaultyFiles.h"
#include "tests/torture/SavedReports.h"

#include <gtest/gtest.h>
#include <sys/wait.h>

namespace selfreport::torture {
namespace {

using tds::Cut;
using tds::Ending;
using tds::Step;

/// Saves with a fault at one call of the embedded database. Returns how many calls there were.
int savedWithFault(const WayOfSaving& way, Fault fault, int place)
{
    SavedReports reports;
    way.prepare(reports);
    closeIdleSessions(); // opening the file is part of saving
    faulty_files::order(fault, place);
    const bool done = way.save(reports);
    const int calls = faulty_files::endFault();
    closeIdleSessions();
    expectWholeAndTold(way, reports, done);
    if (!done) { // what failed can be done again, and once only
        reports.ledger().boxes.said.clear();
        const bool isUndone = reports.stored() == way.before;
        if (isUndone) {
            EXPECT_TRUE(way.save(reports));
            EXPECT_EQ(reports.stored(), way.after);
        }
    }
    return calls;
}

/// Saves in a child process that dies at one call of the embedded database. False if it came to its end.
bool diedWhileSaving(const WayOfSaving& way, Fault fault, int place)
{
    SavedReports reports;
    way.prepare(reports);
    closeIdleSessions(); // the child must not inherit an open database
    const pid_t child = ::fork();
    if (child == 0) {
        faulty_files::order(fault, place);
        ::_exit(way.save(reports) ? 0 : 1);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    const std::string stored = reports.stored();
    EXPECT_TRUE(stored == way.before || stored == way.after) << stored;
    EXPECT_EQ(reports.damage(), "");
    return WIFSIGNALED(status);
}

TEST(SavingTorture, ACallThatFailsAtAnyPlace)
{
    faulty_files::beginWatching();
    for (const WayOfSaving& way : waysOfSaving())
        for (const Fault fault : {Fault::failsOnce, Fault::failsFromNow, Fault::diskIsFull}) {
            int place = 1;
            for (bool isReached = true; isReached; ++place) {
                SCOPED_TRACE(std::string(way.name) + " fault " + std::to_string(int(fault)) + " at call " +
                             std::to_string(place));
                isReached = savedWithFault(way, fault, place) >= place;
                ASSERT_LT(place, 1000);
                if (testing::Test::HasFailure())
                    return;
            }
            EXPECT_GT(place, 20) << way.name; // opening, locking, journal, pages, flushing, deleting
        }
}

TEST(SavingTorture, AKillAtAnyPlace)
{
    faulty_files::beginWatching();
    for (const WayOfSaving& way : waysOfSaving())
        for (const Fault fault : {Fault::killed, Fault::killedWithin}) {
            int place = 1;
            for (; diedWhileSaving(way, fault, place); ++place) {
                ASSERT_LT(place, 1000);
                ASSERT_FALSE(testing::Test::HasFailure())
                    << way.name << " fault " << int(fault) << " at call " << place;
            }
            EXPECT_GT(place, 20) << way.name;
        }
}

/// What one request of a client is answered with instead.
struct WireFault {
    const char* name;
    Cut cut;
    Ending ending;
    void (*disorder)(tds::Reply&);
};

void refuse(tds::Reply& reply)
{
    reply.tokens.clear();
    reply.error(50000, "磁盘已满。");
    reply.done(tds::Reply::Done::statement, -1, true);
    reply.finish();
}

void tellTakenKey(tds::Reply& reply)
{
    reply.tokens.clear();
    reply.error(2627, "违反了主键约束。");
    reply.done(tds::Reply::Done::statement, -1, true);
    reply.finish();
}

const WireFault wireFaults[] = {
    {"closed", Cut::beforeReply, Ending::closed, nullptr},
    {"reset", Cut::beforeReply, Ending::reset, nullptr},
    {"header", Cut::inHeader, Ending::closed, nullptr},
    {"token", Cut::insideToken, Ending::reset, nullptr},
    {"last byte", Cut::lastByteMissing, Ending::closed, nullptr},
    {"refused", Cut::none, Ending::closed, refuse},
    {"key taken", Cut::none, Ending::closed, tellTakenKey},
};

/// The requests of one way of saving, in their order.
std::vector<Step> stepsOf(const WayOfSaving& way)
{
    SavedReports reports;
    tds::TdsServer server(reports.ledger().file());
    reports.goThrough(server.connectionString());
    way.prepare(reports);
    server.journal.clear();
    EXPECT_TRUE(way.save(reports)) << way.name << reports.ledger().boxes.said.back().text;
    std::vector<Step> steps{Step::preLogin, Step::login};
    for (const tds::Request& request : server.journal.requests())
        steps.push_back(request.step);
    closeIdleSessions();
    return steps;
}

void expectWholeAfter(const WayOfSaving& way, const std::vector<Step>& steps, std::size_t at,
                      const WireFault& fault)
{
    SavedReports reports;
    tds::TdsServer server(reports.ledger().file());
    reports.goThrough(server.connectionString());
    way.prepare(reports);
    for (std::size_t before = 0; before < at; ++before)
        if (steps[before] == steps[at])
            server.faults.order({steps[at], Cut::none, Ending::closed, {}, {}}); // lets it pass
    server.faults.order({steps[at], fault.cut, fault.ending, fault.disorder, {}});
    const bool done = way.save(reports);
    closeIdleSessions();
    expectWholeAndTold(way, reports, done);
    const bool isRepeated = fault.disorder == tellTakenKey && way.name != std::string("delete");
    EXPECT_TRUE(done || !isRepeated) << "at the second attempt it is done";
}

TEST(SavingTorture, AFaultAtAnyRequestToAServer)
{
    faulty_files::beginWatching(); // for its speed
    for (const WayOfSaving& way : waysOfSaving()) {
        const std::vector<Step> steps = stepsOf(way);
        EXPECT_GE(steps.size(), 6U) << way.name;
        for (std::size_t at = 0; at < steps.size(); ++at)
            for (const WireFault& fault : wireFaults) {
                if (fault.disorder && at < 2)
                    continue; // what greets has no such tokens
                SCOPED_TRACE(std::string(way.name) + " request " + std::to_string(at) + " step " +
                             std::to_string(int(steps[at])) + " " + fault.name);
                expectWholeAfter(way, steps, at, fault);
                if (testing::Test::HasFailure())
                    return;
            }
    }
}

} // namespace
} // namespace selfreport::torture
