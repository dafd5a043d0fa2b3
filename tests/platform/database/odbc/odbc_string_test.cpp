#include "platform/database/odbc/odbc_string.h"

#include "platform/database/dialect/connection_string.h"
#include "platform/database/session/DatabaseError.h"

#include <cstring>
#include <gtest/gtest.h>

namespace selfreport {
namespace {

/// What a string becomes for the driver, without what is always sent, or why it is refused.
std::string becomes(const char* text)
{
    static const std::string head = "Driver=FreeTDS;",
                             tail = "Timeout=120;TDS_Version=7.4;ClientCharset=UTF-8;";
    try {
        std::string sent = odbcTarget(parseConnectionString(text)).connectionString;
        if (const std::size_t name = sent.find("APP=selfreport;"); name != std::string::npos)
            sent.erase(name, std::strlen("APP=selfreport;"));
        if (!sent.starts_with(head))
            return sent;
        EXPECT_TRUE(sent.ends_with(tail)) << sent;
        return sent.substr(head.size(), sent.size() - head.size() - tail.size());
    } catch (const DatabaseError& error) {
        EXPECT_EQ(error.number, unspecifiedError) << text;
        const std::string before = "连接字符串无效: ";
        EXPECT_TRUE(error.description.starts_with(before)) << error.description;
        return "拒: " + error.description.substr(before.size());
    }
}

struct Case {
    const char* given;
    const char* becomes;
};

const Case cases[] = {
    // Servers
    {"server=h", "Server=h;"},
    {"Provider=SQLOLEDB.1;Persist Security Info=False;User ID=sa;Password=p w;Initial Catalog=账套;Data "
     "Source=h",
     "Server=h;UID=sa;PWD={p w};Database=账套;"},
    {"provider=sqlncli11 ; ADDR = h", "Server=h;"},
    {"provider=MSOLEDBSQL19;network address=h", "Server=h;"},
    {"server=h,1444", "Server=h;Port=1444;"},
    {"server= h , 1444 ", "Server=h;Port=1444;"},
    {"server=h:1444", "Server=h;Port=1444;"},
    {"server=h,65535", "Server=h;Port=65535;"},
    {"server=h,0", "拒: 端口超出范围"},
    {"server=h,65536", "拒: 端口超出范围"},
    {"server=h,99999999999", "拒: 端口 不是整数"},
    {"server=h,port", "拒: 端口 不是整数"},
    {"server=h,-1", "拒: 端口 不是整数"},
    {"server=h,", "拒: 服务器的名称不完整"},
    {"server=,1433", "拒: 没有给出服务器"},
    {"server=", "拒: 没有给出服务器"},
    {"uid=sa", "拒: 没有给出服务器"},
    {"server=.", "Server=127.0.0.1;"},
    {"server=(LOCAL)", "Server=127.0.0.1;"},
    {"server=(local),1433", "Server=127.0.0.1;Port=1433;"},
    {"server=localhost", "Server=localhost;"},
    {R"(server=h\FIN)", R"(Server=h\FIN;)"},
    {R"(server=.\FIN)", R"(Server=127.0.0.1\FIN;)"},
    {R"(server=(local)\FIN)", R"(Server=127.0.0.1\FIN;)"},
    {R"(server=tcp:(Local) \ FIN)", R"(Server=127.0.0.1\FIN;)"},
    {R"(server=h\财务)", R"(Server=h\财务;)"},
    {R"(server=h\FIN,1500)", "Server=h;Port=1500;"},
    {R"(server=.\MSSQLServer)", "Server=127.0.0.1;"},
    {R"(server=h\)", "拒: 服务器的名称不完整"},
    {R"(server=\FIN)", "拒: 没有给出服务器"},
    {R"(server=(localdb)\v11)", "拒: 不支持 LocalDB"},
    {"server=TCP:h,1444", "Server=h;Port=1444;"},
    {R"(server=np:\\h\pipe\sql\query)", "拒: 不支持的网络协议 np"},
    {"server=lpc:h", "拒: 不支持的网络协议 lpc"},
    {"server=admin:h", "拒: 不支持的网络协议 admin"},
    {"server=::1", "Server=::1;"},
    {"server=[::1]", "Server=::1;"},
    {"server=[::1],1444", "Server=::1;Port=1444;"},
    {"server=tcp:::1,1444", "Server=::1;Port=1444;"},
    {"server=fe80::1%eth0", "Server=fe80::1%eth0;"},
    {R"(server=[fe80::1]\FIN)", R"(Server=fe80::1\FIN;)"},
    {"server=10.0.0.7,1433", "Server=10.0.0.7;Port=1433;"},
    // Quotes, braces, blanks
    {"server=h;pwd='a;b'", "Server=h;PWD={a;b};"},
    {"server=h;pwd=\"a;b\"", "Server=h;PWD={a;b};"},
    {"server=h;pwd='it''s'", "Server=h;PWD=it's;"},
    {"server=h;pwd=\"say \"\"no\"\"\"", "Server=h;PWD={say \"no\"};"},
    {"server=h;pwd='a\"b'", "Server=h;PWD=a\"b;"},
    {"server=h;pwd=it's", "Server=h;PWD=it's;"},
    {"server=h;pwd= a b ", "Server=h;PWD={a b};"},
    {"server=h;pwd=' a b '", "Server=h;PWD={ a b };"},
    {"server=h;pwd='\ta'", "Server=h;PWD={\ta};"},
    {"server=h;pwd={ab}", "Server=h;PWD={{ab}};"},
    {"server=h;pwd={ab", "Server=h;PWD={{ab};"},
    {"server=h;pwd=a}b", "Server=h;PWD={a}b};"},
    {"server=h;pwd='{a;b}'", "Server=h;PWD={{a;b}};"},
    {"server=h;pwd='a;b}c'", "Server=h;PWD={a;b}c};"},
    {"server=h;pwd='a};b'", "拒: PWD 的值无法传给驱动程序"},
    {"server=h;pwd='driver={x};y'", "拒: PWD 的值无法传给驱动程序"},
    {"server=h;pwd='a;driver=x'", "Server=h;PWD={a;driver=x};"},
    {"server=h;pwd=a=b", "Server=h;PWD={a=b};"},
    {"server=h;pwd=", "Server=h;"},
    {"server=h;pwd=密码", "Server=h;PWD=密码;"},
    {"server=h;pwd='abc", "拒: 引号没有结束"},
    {"server=h;pwd='a'b", "拒: 引号之后有多余的文字"},
    // Keys
    {"server=a;Data Source=b", "Server=b;"},
    {"server=h;uid=a;User ID=b;USER=c", "Server=h;UID=c;"},
    {";; server = h ;; uid = a ;", "Server=h;UID=a;"},
    {"server=h;nobody knows=x", "Server=h;"},
    {"server", "拒: 缺少等号"},
    {"=h", "拒: 缺少关键字"},
    {"", "拒: 字符串为空"},
    {" ; ;", "拒: 字符串为空"},
    {"server=h;Integrated Security=sspi;uid=a;pwd=b", "Server=h;Trusted_Connection=Yes;"},
    {"server=h;trusted_connection=no;uid=a", "Server=h;UID=a;"},
    {"server=h;Encrypt=Mandatory", "Server=h;Encryption=require;"},
    {"server=h;Encrypt=optional", "Server=h;Encryption=request;"},
    {"server=h;Encrypt=perhaps", "拒: Encrypt"},
    {"server=h;app=报表;applicationintent=ReadOnly;packet size=8192",
     "Server=h;APP=报表;PacketSize=8192;ApplicationIntent=ReadOnly;"},
    {"server=h;timeout=soon", "拒: Connect Timeout 不是整数"},
    {"server=h;timeout=-1", "拒: Connect Timeout 不是整数"},
    // Of ODBC's own
    {"Driver={My;Driver};Server=x;PWD={a}b}", "Driver={My;Driver};Server=x;PWD={a}b}"},
    {"DSN=x;UID=y;PWD='z", "DSN=x;UID=y;PWD='z"},
    {"Driver={x", "拒: 大括号没有结束"},
    {"Provider=MSDASQL.1;Extended Properties=\"DSN=x;A=b\"", "DSN=x;A=b;"},
    {"Provider=MSDASQL;Data Source=x;User ID=a;Password={b}", "DSN={x};UID={a};PWD={{b}};"},
};

TEST(OdbcString, HoldsOnlyWhatTheDriverKnows)
{
    for (const Case& c : cases)
        EXPECT_EQ(becomes(c.given), c.becomes) << c.given;
}

TEST(OdbcString, TimeOutsAreAlwaysSet)
{
    const auto login = [](const char* text) { return odbcTarget(parseConnectionString(text)).loginTimeout; };
    EXPECT_EQ(login("server=h"), 15);
    EXPECT_EQ(login("server=h;Connection Timeout=3"), 3);
    EXPECT_EQ(login("server=h;timeout=0"), 0); // no limit
    EXPECT_EQ(login("Driver={x};Connect Timeout=4"), 4);
}

} // namespace
} // namespace selfreport
