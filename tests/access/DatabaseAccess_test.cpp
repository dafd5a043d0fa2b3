#include "access/DatabaseAccess.h"

#include "state/mdlMain.h"
#include "tests/fetch/TestLedger.h"
#include "tests/tdsserver/TdsServer.h"

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

/// Whatever number a server has for it.
TEST(DatabaseAccess, AMissingTableIsToldWithWhatToDo)
{
    const test::TestLedger ledger;
    ledger.database().rename("tbluser", "tblGone");
    ToldAccess access;
    access.database.connectionString = ledger.connectionString();
    EXPECT_FALSE(access.database.run(Icon::exclamation,
                                     [](Connection& open) { open.query("select * from tbluser"); }));
    ledger.database().rename("tblGone", "tbluser");
    ASSERT_EQ(access.told.size(), 1U);
    EXPECT_EQ(access.told[0].substr(0, access.told[0].find("：")),
              tds::road() == tds::Road::embedded ? "数据库不能执行语句"
                                                 : "找不到表或视图，请管理员检查数据库是否完整");
}

/// Tells the real driver that encryption is on, and then has no handshake for it.
void announceEncryption(tds::Reply& greeting)
{
    greeting.tokens.back().back() = 1;
}

TEST(DatabaseAccess, AnEncryptedConnectionThatIsNotToBeHadIsToldAsThat)
{
    using tds::Cut;
    using tds::Ending;
    using tds::Step;
    const std::string plain = "数据库文件不存在或读取错误!";
    const std::string why =
        plain + "\n无法建立加密连接，请管理员检查服务器的证书，或改连接字符串中的 Encrypt。";
    const struct {
        const char* what;
        const char* encrypt;
        std::vector<tds::Fault> faults;
        std::string told;
    } cases[] = {
        {"the server has none", "yes", {}, why},
        {"what follows is no handshake", "yes", {{Step::preLogin, Cut::none, {}, announceEncryption}}, why},
        {"the handshake is refused",
         "yes",
         {{Step::preLogin, Cut::none, {}, announceEncryption}, {Step::preLogin, Cut::beforeReply}},
         why},
        {"the server drops it",
         "strict",
         {{Step::preLogin, Cut::none, {}, announceEncryption},
          {Step::preLogin, Cut::beforeReply, Ending::reset}},
         why},
        {"nobody asked for one", "no", {{Step::preLogin, Cut::beforeReply}}, plain},
    };
    const test::TestLedger ledger;
    for (const auto& c : cases) {
        tds::TdsServer server(ledger.file());
        for (const tds::Fault& fault : c.faults)
            server.faults.order(fault);
        ToldAccess access;
        access.database.connectionString = server.connectionString() + ";Encrypt=" + c.encrypt;
        EXPECT_FALSE(access.database.open()) << c.what;
        EXPECT_EQ(access.told, Told{c.told}) << c.what;
    }
}

} // namespace
} // namespace selfreport
