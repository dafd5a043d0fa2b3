#include "platform/database/dialect/chinese_collation.h"

#include "platform/database/sqlite/LikePattern.h"
#include "tests/platform/database/database_folder.h"

#include <array>

namespace selfreport {
namespace {

TEST(ChineseCollation, LeavesCaseWidthAndTrailingBlanksOutOfAccount)
{
    struct Case {
        const char *left, *right;
    };
    const Case equal[] = {
        {"abc", "ABC"}, {"1001", "１００１"}, {"A-1", "ａ－１"}, {"a", "a  "}, {"a", "a　"},
        {"", "  "},     {"ｶ", "カ"},          {"É", "é"},        {"￥", "¥"},  {"现金", "现金 "},
    };
    for (const Case& c : equal)
        EXPECT_EQ(compareChinese(c.left, c.right), 0) << c.left << " " << c.right;
    const Case ascending[] = {
        {"", "a"},     {"1001", "100101"}, {"100199", "1002"}, {"9", "a"},       {"-", "0"},     {"z", "啊"},
        {"a b", "ab"}, {"a", "a\t"},       {"阿", "波"},       {"波", "赵"},     {"１０", "11"}, {"B", "c"},
        {"一", "丂"},  {"座", "亍"},       {"赵", "\xFF"},     {"a\tb", "a\tc"},
    };
    for (const Case& c : ascending) {
        EXPECT_LT(compareChinese(c.left, c.right), 0) << c.left << " < " << c.right;
        EXPECT_GT(compareChinese(c.right, c.left), 0) << c.right << " > " << c.left;
    }
}

TEST(ChineseCollation, IsAnOrder)
{
    const std::array texts{"",   " ",  "a",    "A ",    "a b", "a\t", "ab",   "１",
                           "1 ", "一", "\xFF", "a\xFF", "丂",  "😀",   "a 　x"};
    for (const char* a : texts)
        for (const char* b : texts)
            for (const char* c : texts) {
                EXPECT_EQ(compareChinese(a, b), -compareChinese(b, a));
                if (compareChinese(a, b) <= 0 && compareChinese(b, c) <= 0) {
                    EXPECT_LE(compareChinese(a, c), 0) << a << "|" << b << "|" << c;
                }
            }
}

TEST(Like, MatchesAsTheServerDoes)
{
    struct Case {
        const char *pattern, *text;
        bool matches;
    };
    const Case cases[] = {
        {"1001", "1001  ", true},
        {"1001 ", "1001", false},
        {"10_1", "1001", true},
        {"10_1", "101", false},
        {"_", "现", true},
        {"__", "现", false},
        {"10%", "10", true},
        {"10%", "1", false},
        {"%01", "100101", true},
        {"%0%1%", "100", false},
        {"%", "", true},
        {"", "", true},
        {"", "a", false},
        {"A_c", "aBC", true},
        {"１%", "1001", true},
        {"[13]%", "3", true},
        {"[1-3]x", "2X", true},
        {"[1-3]x", "4x", false},
        {"[^1-3]x", "4x", true},
        {"[^1-3]x", "1x", false},
        {"[%]", "%", true},
        {"[_]", "a", false},
        {"[[]a", "[a", true},
        {"[a", "[a", false},
        {"[]a", "a", false},
        {"a]", "a]", true},
        {"[a-]", "-", true},
        {"％", "a", false},
        {"%a%a%a%b", "aaaaaaaa", false},
        {"\xFF_", "\xFFz", true},
    };
    for (const Case& c : cases)
        EXPECT_EQ(LikePattern(c.pattern).matches(c.text), c.matches) << c.pattern << " on " << c.text;
    EXPECT_TRUE(LikePattern("a!%", '!').matches("a%"));
    EXPECT_FALSE(LikePattern("a!%", '!').matches("ab"));
    EXPECT_TRUE(LikePattern("a!", '!').matches("a"));
}

TEST(Like, TheRangeOfAPatternLosesNothing)
{
    const testing::DatabaseFolder folder;
    const auto connection = folder.create();
    const std::array codes{"10",      "１００", "100  ", "100A", "100a1", "100现",
                           "100\xFF", "1",      "2",     "100😀", "99"};
    std::int64_t id = 0;
    for (const char* code : codes)
        connection->execute("insert into tblsystemprivillenge(fitemid,fnumber) values(?,?)",
                            {++id, std::string(code)});
    for (const char* pattern :
         {"100%", "100_", "10[0]a%", "%", "_", "", "100a%", "9%", "１００ａ%", "100 %"}) {
        std::size_t expected = 0;
        for (const char* code : codes)
            expected += LikePattern(pattern).matches(code);
        const std::string sql =
            "select * from tblsystemprivillenge where fnumber like '" + std::string(pattern) + "'";
        EXPECT_EQ(connection->query(sql).rowCount(), expected) << pattern;
    }
}

TEST(ChineseCollation, IndexesServeCodesRangesAndPatterns)
{
    const testing::DatabaseFolder folder;
    const auto connection = folder.create();
    for (const char* condition : {"fNumber='1'", "fNumber>='1' and fNumber<='2'", "fNumber like '12__'"}) {
        const auto plan = connection->query("explain query plan select fName from tblCustomer where " +
                                            std::string(condition));
        EXPECT_TRUE(plan.text(0, "detail").starts_with("SEARCH tblCustomer USING INDEX"))
            << plan.text(0, "detail");
    }
}

} // namespace
} // namespace selfreport
