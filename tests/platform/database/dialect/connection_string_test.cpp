#include "platform/database/dialect/connection_string.h"

#include "platform/database/session/DatabaseError.h"

#include <gtest/gtest.h>

namespace selfreport {
namespace {

TEST(ConnectionString, ReadsKeysAndValues)
{
    struct Case {
        const char* what;
        const char* text;
        const char* key;
        const char* value;
    };
    const Case cases[] = {
        {"letter case and blanks", " proVIDER = sqlite ;  dATA source =  C:/a b.db  ; ", "Data Source",
         "C:/a b.db"},
        {"no last semicolon", "provider=sqlite;data source=x", "Data Source", "x"},
        {"apostrophes", "provider=sqlite;data source='a;b''c'", "Data Source", "a;b'c"},
        {"quotes", "provider=sqlite;data source=\"a\"\"b;=\" ;", "Data Source", "a\"b;="},
        {"other quote inside", "provider=sqlite;data source='a\"b'", "Data Source", "a\"b"},
        {"quote in the middle is itself", "provider=sqlite;data source=a'b", "Data Source", "a'b"},
        {"equals in the value", "server=h;pwd=a=b", "Password", "a=b"},
        {"equals in the key", "server=h;a==b=c", "a=b", "c"},
        {"the last one wins", "server=h;uid=a;User ID=b", "User ID", "b"},
        {"synonyms", "addr=h;database=d", "Initial Catalog", "d"},
        {"server", "NETWORK ADDRESS=h", "Data Source", "h"},
        {"trusted", "server=h;trusted_connection=yes", "Integrated Security", "yes"},
        {"ODBC's braces", "Driver={My;Driver};Server=x", "Driver", "My;Driver"},
        {"braces of a file's name", "provider=sqlite;data source={a b}.db", "Data Source", "{a b}.db"},
        {"empty value", "server=h;pwd=;uid=a", "Password", ""},
        {"empty pairs", ";;server=h;;", "Data Source", "h"},
        {"Chinese", "server=h;密码=数据", "密码", "数据"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(parseConnectionString(c.text).value(c.key), c.value) << c.what;
}

TEST(ConnectionString, RefusesWhatIsMalformed)
{
    const std::string withZero("server=h;pwd=a\0b", 16);
    for (const std::string& text : {std::string(), std::string("  ;; "), std::string("server"),
                                    std::string("=x;server=h"), std::string("server=h;pwd='abc"),
                                    std::string("server=h;pwd='a'b"), std::string("Driver={x"), withZero}) {
        try {
            parseConnectionString(text);
            ADD_FAILURE() << text;
        } catch (const DatabaseError& error) {
            EXPECT_EQ(error.number, unspecifiedError) << text;
            EXPECT_EQ(error.description.find("abc"), std::string::npos);
        }
    }
}

} // namespace
} // namespace selfreport
