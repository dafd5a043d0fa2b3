// Sessions that lay idle, and what became of the server meanwhile.
#include "platform/database/Connection.h"

#include "tests/platform/database/database_folder.h"
#include "tests/platform/database/PoolTime.h"
#include "tests/tdsserver/TdsServer.h"

#include <functional>
#include <gtest/gtest.h>
#include <optional>

namespace selfreport {
namespace {

using testing::DatabaseFolder;
using namespace std::chrono_literals;
using tds::Cut;
using tds::Ending;
using tds::Step;

constexpr const char* countUp = "update tblAccount set fLevel=fLevel+1";

/// A server with one account on level 1, and a session on it that lies idle.
struct IdleSession {
    IdleSession()
    {
        folder.create()->execute(
            "insert into tblAccount(fitemid,fNumber,fName,fLevel) values(1,'1001','库存现金',1)");
        server.emplace(folder.file());
        connectionString = server->connectionString();
        openConnection(connectionString);
    }
    ~IdleSession() { closeIdleSessions(); }
    IdleSession(const IdleSession&) = delete;
    IdleSession& operator=(const IdleSession&) = delete;

    std::int64_t level() const
    {
        return openConnection(folder.connectionString())
            ->query("select fLevel from tblAccount")
            .integer(0, "fLevel");
    }
    std::size_t signsOfLife() const
    {
        std::size_t count = 0;
        for (const tds::Request& request : server->journal.requests())
            count += request.text.ends_with(" as sign") ? 1U : 0U;
        return count;
    }

    DatabaseFolder folder;
    std::optional<tds::TdsServer> server;
    std::string connectionString;
};

TEST(PooledOpening, AsksForASignOfLifeAfterTenSecondsOnly)
{
    const struct {
        std::chrono::seconds idle;
        std::size_t signs;
    } cases[] = {{9s, 0}, {11s, 1}};
    for (const auto& c : cases) {
        IdleSession idle;
        const test::PoolTime later(c.idle);
        const auto connection = openConnection(idle.connectionString);
        EXPECT_EQ(idle.signsOfLife(), c.signs) << "when it is taken";
        connection->query("select 1 as n");
        connection->execute(countUp);
        EXPECT_EQ(idle.signsOfLife(), c.signs);
        EXPECT_EQ(idle.server->journal.logins().size(), 1U);
    }
}

TEST(PooledOpening, ADeadServerIsToldByTheOpeningOrAtTheFirstStatement)
{
    const std::function<void(Connection&)> works[] = {
        [](Connection& connection) { connection.query("select 1 as n"); },
        [](Connection& connection) { connection.execute(countUp); },
        [](Connection& connection) { connection.begin(); },
        [](Connection& connection) {
            const ProcedureResult result = connection.call({"sp_GS_AcctProc", {}});
            EXPECT_TRUE(result.error);
            throw OpeningFailed(0, ""); // it throws nothing itself
        },
    };
    for (const auto& work : works) {
        IdleSession idle;
        idle.server.reset();
        const auto connection = openConnection(idle.connectionString);
        EXPECT_THROW(work(*connection), OpeningFailed);
    }
    IdleSession idle;
    idle.server.reset();
    const test::PoolTime later(11s);
    EXPECT_THROW(openConnection(idle.connectionString), DatabaseError);
}

TEST(PooledOpening, WhatReadsIsSentAgainAndAChangeNever)
{
    const struct {
        const char* name;
        Step lost; ///< the first reply of this kind is cut
        std::function<void(Connection&)> work;
        bool fails;
        std::int64_t level;
    } cases[] = {
        {"read", Step::batch, [](Connection& c) { c.query("select 1 as n"); }, false, 1},
        {"begin", Step::begin,
         [](Connection& c) {
             Transaction transaction(c);
             c.execute(countUp);
             transaction.commit();
         },
         false, 2},
        {"sign of life", Step::batch, [](Connection& c) { c.execute(countUp); }, false, 2},
        {"change", Step::statement,
         [](Connection& c) { c.execute("update tblAccount set fLevel=fLevel+?", {std::int64_t{1}}); }, true,
         2},
        {"change behind begin", Step::batch,
         [](Connection& c) {
             Transaction transaction(c);
             c.execute(countUp);
             transaction.commit();
         },
         true, 1},
        {"second read", Step::statement,
         [](Connection& c) {
             c.query("select 1 as n");
             c.query("select fLevel from tblAccount where fitemid=?", {std::int64_t{1}});
         },
         true, 1},
    };
    for (const auto& c : cases)
        for (const auto ending : {Ending::closed, Ending::reset}) {
            IdleSession idle;
            idle.server->faults.order({c.lost, Cut::beforeReply, ending, {}, {}});
            const auto connection = openConnection(idle.connectionString);
            bool failed = false;
            try {
                c.work(*connection);
            } catch (const ConnectionLost&) {
                failed = true;
            }
            EXPECT_EQ(failed, c.fails) << c.name;
            EXPECT_EQ(idle.level(), c.level) << c.name;
            EXPECT_LE(idle.server->journal.logins().size(), 2U) << c.name;
        }
}

TEST(PooledOpening, AfterAFailureTheNextOpeningAsks)
{
    IdleSession idle;
    EXPECT_THROW(openConnection(idle.connectionString)->query("select * from tblNowhere"), DatabaseError);
    const auto connection = openConnection(idle.connectionString);
    EXPECT_EQ(idle.signsOfLife(), 1U);
}

} // namespace
} // namespace selfreport
