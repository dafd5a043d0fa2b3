#include "state/mdlMain.h"

#include "tests/fetch/TestLedger.h"

#include <gtest/gtest.h>

namespace selfreport {
namespace {

TEST(SharedConnection, OpensOnceAndClosesToNone)
{
    const test::TestLedger ledger;
    const DatabaseCounters before = databaseCounters();
    EXPECT_TRUE(openDB());
    EXPECT_TRUE(openDB());
    EXPECT_EQ(databaseCounters().opens, before.opens + 1);
    closeDB();
    EXPECT_FALSE(gCnn);
    closeDB(); // nothing to close
    EXPECT_EQ(databaseCounters().closes, before.closes + 1);
}

TEST(SharedConnection, FailedOpeningKeepsNoObjectAndTellsWhy)
{
    test::TestLedger ledger;
    for (const char* bad :
         {"", "no pairs", "Provider=SQLite;Data Source=/nowhere/x.db", "Provider=unknown;"}) {
        gConnString = bad;
        ledger.boxes.said.clear();
        EXPECT_FALSE(openDB()) << bad;
        EXPECT_FALSE(gCnn) << bad;
        ASSERT_EQ(ledger.boxes.said.size(), 1U) << bad;
        EXPECT_EQ(ledger.boxes.said[0],
                  (RecordingDialogs::Said{Icon::critical, "测试账套", "数据库文件不存在或读取错误!"}));
    }
    gConnString = ledger.connectionString();
    EXPECT_TRUE(openDB()); // the failed tries left nothing in the way
    closeDB();
}

TEST(SharedConnection, TextOfAFailedOpening)
{
    const struct {
        std::int32_t number;
        const char* text;
    } cases[] = {
        {-2147217843, "用户名或密码错误!"},
        {-2147467259, "数据库文件不存在或读取错误!"},
        {18456, "数据库文件不存在或读取错误!"},
        {0, "数据库文件不存在或读取错误!"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(openingFailureText(c.number), c.text) << c.number;
}

TEST(DatabaseProcedure, RollsBackAndClosesBeforeItTells)
{
    class Watching : public RecordingDialogs {
    public:
        void message(Icon icon, std::string_view title, std::string_view text) override
        {
            wasOpen = wasOpen || gCnn;
            RecordingDialogs::message(icon, title, text);
        }
        bool wasOpen = false;
    };
    test::TestLedger ledger;
    Watching boxes;
    const DialogsInUse inUse(boxes);
    EXPECT_FALSE(databaseProcedure(Icon::exclamation, [](Connection& connection) {
        connection.begin();
        connection.execute("delete from tblAccount");
        connection.execute("no statement");
    }));
    EXPECT_FALSE(boxes.wasOpen);
    ASSERT_EQ(boxes.said.size(), 1U);
    EXPECT_EQ(boxes.said[0].icon, Icon::exclamation);
    EXPECT_NE(boxes.said[0].text, "");
    EXPECT_EQ(ledger.query("select count(*) as n from tblAccount").integer(0, "n"), 4);
}

TEST(Recalculation, NestedOnesTellOnceAndCloseAtTheOuterEnd)
{
    test::TestLedger ledger;
    {
        const RecalculationUnderWay outer(sharedContext.database);
        {
            const RecalculationUnderWay inner(sharedContext.database);
            EXPECT_TRUE(openDB());
            tellUser(Icon::critical, "一次");
        }
        EXPECT_TRUE(gCnn);
        tellUser(Icon::critical, "一次");
        tellUser(Icon::critical, "另一个");
    }
    EXPECT_FALSE(gCnn);
    EXPECT_EQ(ledger.boxes.said.size(), 2U);
}

} // namespace
} // namespace selfreport
