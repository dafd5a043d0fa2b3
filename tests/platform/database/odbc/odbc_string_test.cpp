#include "platform/database/odbc/odbc_string.h"

#include "platform/database/dialect/connection_string.h"
#include "platform/database/session/DatabaseError.h"

#include <gtest/gtest.h>

namespace selfreport {
namespace {

TEST(OdbcString, HoldsOnlyWhatTheDriverKnows)
{
    struct Case {
        const char* what;
        const char* given;
        const char* sent;
    };
    const std::string tail = "Timeout=120;TDS_Version=7.4;ClientCharset=UTF-8;";
    const Case cases[] = {
        {"the classic form",
         "Provider=SQLOLEDB.1;Persist Security Info=False;User ID=sa;Password=p w;Initial Catalog=账套;Data "
         "Source=host",
         "Driver=FreeTDS;Server=host;UID=sa;PWD={p w};Database=账套;"},
        {"a port", "Server=host, 1444;uid=a;pwd=b", "Driver=FreeTDS;Server=host;Port=1444;UID=a;PWD=b;"},
        {"an instance stays", "server=tcp:host\\inst", "Driver=FreeTDS;Server=host\\inst;"},
        {"this machine", "server=(LOCAL),1433", "Driver=FreeTDS;Server=127.0.0.1;Port=1433;"},
        {"the logged-in user needs no name", "server=h;Integrated Security=sspi;uid=a;pwd=b",
         "Driver=FreeTDS;Server=h;Trusted_Connection=Yes;"},
        {"separators in a password", "server=h;pwd='a;b}c'", "Driver=FreeTDS;Server=h;PWD={a;b}c};"},
        {"encryption", "server=h;Encrypt=Mandatory", "Driver=FreeTDS;Server=h;Encryption=require;"},
        {"read-only routing", "server=h;applicationintent=ReadOnly;app=报表",
         "Driver=FreeTDS;Server=h;APP=报表;ApplicationIntent=ReadOnly;"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(odbcTarget(parseConnectionString(c.given)).connectionString, c.sent + tail) << c.what;
    EXPECT_EQ(odbcTarget(parseConnectionString("DSN=x;UID=y")).connectionString, "DSN=x;UID=y");
    EXPECT_EQ(odbcTarget(parseConnectionString("Provider=MSDASQL.1;Extended Properties=\"DSN=x;A=b\""))
                  .connectionString,
              "DSN=x;A=b;");
}

TEST(OdbcString, TimeOutsAreAlwaysSet)
{
    const auto login = [](const char* text) { return odbcTarget(parseConnectionString(text)).loginTimeout; };
    EXPECT_EQ(login("server=h"), 15);
    EXPECT_EQ(login("server=h;Connection Timeout=3"), 3);
    EXPECT_EQ(login("server=h;timeout=0"), 1);
    EXPECT_EQ(login("Driver={x};Connect Timeout=4"), 4);
}

TEST(OdbcString, RefusesWhatCannotBeSent)
{
    for (const char* text : {"server=np:\\\\host\\pipe", "server=lpc:host", "server=h,port", "server=h,70000",
                             "server=h;timeout=soon", "server=h;pwd='a};b'", "server=h;encrypt=perhaps"})
        EXPECT_THROW(odbcTarget(parseConnectionString(text)), DatabaseError) << text;
}

} // namespace
} // namespace selfreport
