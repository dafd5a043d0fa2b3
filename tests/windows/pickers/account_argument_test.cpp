#include "windows/pickers/account_argument.h"

#include <gtest/gtest.h>
#include <vector>

namespace selfreport {
namespace {

TEST(AccountArgument, IsBuiltLiterallyAndReadAsTheFetchDoes)
{
    const struct {
        const char *from, *to;
        std::vector<ItemCondition> rows;
        const char *argument, *words;
    } cases[] = {
        {"", "", {}, "", ""},
        {"1001", "1002", {{"部门", "01", "05"}}, "1001:1002|部门|01:05", "科目 1001 至 1002,部门 01 至 05"},
        {"1001", "1001 ", {}, "1001", "科目 1001"},
        {"a1", "A1", {}, "a1", "科目 a1"},
        {" 1001 ", "", {}, "1001", "科目 1001"},
        {"", " 1002", {}, "1002", "科目 1002"},
        {"10**", "", {{"部门", "", ""}}, "10**|部门|", "科目 10**,部门不限"},
        {"1001", "", {{"部门", "", " 05 "}}, "1001|部门|05", "科目 1001,部门 05"},
        {"1001", "", {{" 部门 ", "01", "01 "}}, "1001| 部门 |01", "科目 1001, 部门  01"},
        {"1001", "", {{"部门", "a", "A"}}, "1001|部门|a", "科目 1001,部门 a"},
        // An empty row shifts class and codes.
        {"1001", "", {{"", "", ""}, {"部门", "01", ""}}, "1001||部门|01", "科目 1001,(无类别) 部门,01不限"},
        {"1001", "", {{"", "01", "02"}}, "1001|01:02", "科目 1001,01:02不限"},
        {"", "", {{"部门", "01", ""}}, "|部门|01", "科目不限,部门 01"},
        {"1'0", "1\"1", {{"a|b", "x:y", ""}}, "1'0:1\"1|a|b|x:y", "科目 1'0 至 1\"1,a b,x:y不限"},
        {"　1001", "", {}, "　1001", "科目 　1001"}, // only plain blanks fall away
    };
    for (const auto& [from, to, rows, argument, words] : cases) {
        EXPECT_EQ(accountArgument(from, to, rows), argument);
        EXPECT_EQ(argumentInWords(argument), words) << argument;
    }
}

} // namespace
} // namespace selfreport
