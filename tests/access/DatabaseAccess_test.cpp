#include "access/DatabaseAccess.h"

#include "state/mdlMain.h"
#include "tests/fetch/TestLedger.h"

#include <gtest/gtest.h>

namespace selfreport {
namespace {

using Told = std::vector<std::string>;

struct ToldAccess {
    Told told;
    DatabaseAccess database{"Provider=SQLite;Data Source=/nowhere/x.db",
                            [this](Icon, std::string_view text) { told.emplace_back(text); }};
};

TEST(DatabaseAccess, TriesAndTellsAFailedOpeningOnceInARecalculation)
{
    const Told once{"数据库文件不存在或读取错误!"};
    const test::TestLedger ledger;
    ToldAccess access;
    {
        const RecalculationUnderWay underWay(access.database);
        EXPECT_FALSE(access.database.open());
        EXPECT_TRUE(access.database.openingFailed());
        access.database.connectionString = ledger.connectionString();
        EXPECT_FALSE(access.database.open()); // though it could be opened by now
        EXPECT_FALSE(access.database.run(Icon::critical, [](Connection&) { FAIL(); }));
        EXPECT_EQ(access.told, once);
    }
    EXPECT_FALSE(access.database.openingFailed());
    EXPECT_TRUE(access.database.open());
    EXPECT_EQ(access.told, once);
    EXPECT_TRUE(ledger.boxes.said.empty());
}

TEST(DatabaseAccess, TwoOfThemShareNothing)
{
    const test::TestLedger ledger;
    ToldAccess broken;
    DatabaseAccess other(ledger.connectionString());
    const RecalculationUnderWay underWay(broken.database);
    EXPECT_FALSE(broken.database.open());
    EXPECT_TRUE(other.open());
    EXPECT_TRUE(openDB()); // the shared one
    other.close();
    EXPECT_TRUE(gCnn);
    closeDB();
}

} // namespace
} // namespace selfreport
