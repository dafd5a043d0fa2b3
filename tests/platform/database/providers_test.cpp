#include "platform/database/providers.h"

#include "platform/database/dialect/connection_string.h"
#include "platform/database/odbc/odbc_provider.h"
#include "platform/database/session/DatabaseError.h"
#include "platform/database/session/Session.h"
#include "platform/database/sqlite/sqlite_provider.h"

#include <gtest/gtest.h>

namespace selfreport {
namespace {

TEST(Providers, TakeTheirOwnStringsOnly)
{
    struct Case {
        const char* text;
        bool isEmbedded, isServer;
    };
    const Case cases[] = {
        {"Provider=sqlite;Data Source=x", true, false},
        {"Provider=SQLNCLI11;Server=x", false, true},
        {"provider=msoledbsql;Server=x", false, true},
        {"Provider=SQLOLEDB.1;Server=x", false, true},
        {"Provider=MSDASQL.1;DSN=x", false, true},
        {"DSN=x", false, true},
        {"Server=x", false, true},
        {"Provider=Jet;Data Source=x", false, false},
    };
    for (const Case& c : cases) {
        const ConnectionSettings settings = parseConnectionString(c.text);
        EXPECT_EQ(sqliteProvider.takes(settings), c.isEmbedded) << c.text;
        EXPECT_EQ(odbcProvider.takes(settings), c.isServer) << c.text;
    }
}

TEST(Providers, SayWhyAStringOpensNothing)
{
    struct Case {
        const char *text, *reason;
    };
    const Case cases[] = {
        {"Provider=SQLite", "没有给出数据库文件"},
        {"Provider=Jet;Data Source=x", "不支持的提供者 Jet"},
        {"Provider=SQLOLEDB;uid=sa", "没有给出服务器"},
        {"uid=sa;pwd=abc", "没有给出服务器"},
    };
    for (const Case& c : cases)
        try {
            openSession(c.text);
            ADD_FAILURE() << c.text;
        } catch (const DatabaseError& error) {
            EXPECT_EQ(error.number, unspecifiedError) << c.text;
            EXPECT_EQ(error.description, std::string("连接字符串无效: ") + c.reason);
        }
}

} // namespace
} // namespace selfreport
