#include "platform/database/dialect/sql_text.h"

#include <gtest/gtest.h>

namespace selfreport {
namespace {

TEST(SqlText, QuotesAndNames)
{
    EXPECT_EQ(sqlQuoted("O'Brien''s ＇’"), "O''Brien''''s ＇’");
    for (const char* name : {"tblCustomer", "_x1", "客户表"})
        EXPECT_TRUE(isPlainIdentifier(name)) << name;
    for (const char* name : {"", "1a", "a b", "a;drop", "a'", "a.b", "[a]", "a-b"})
        EXPECT_FALSE(isPlainIdentifier(name)) << name;
}

} // namespace
} // namespace selfreport
