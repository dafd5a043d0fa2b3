#include "fetch/call_in_words.h"

#include "fetch/call_trial.h"
#include "tests/fetch/TestLedger.h"

#include <chrono>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace selfreport {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using Texts = std::array<std::string, 6>;

constexpr std::chrono::seconds ample{20};

class CallInWordsTest : public ::testing::Test {
protected:
    CallInWordsTest()
    {
        ledger.run("insert into tblAccount(fitemid,fNumber,fName,fParentId,fLevel,fDirection) "
                   "values(20,'100201','工商银行',2,2,1)");
    }
    /// Codes of the accounts meant, "-" behind those whose parent is meant too.
    static std::string codes(const CallTrial& trial)
    {
        std::string text;
        for (const auto& account : trial.meaning.accounts)
            text += (text.empty() ? "" : " ") + account.code + (account.countedInParent ? "-" : "");
        return text;
    }
    test::TestLedger ledger;
};

TEST_F(CallInWordsTest, SaysWhatTheFetchWillDo)
{
    const struct {
        Texts texts;
        const char *words, *accounts, *value;
    } cases[] = {
        {{"1001", "2", "", "2025", "1", "2"},
         "期末余额,1001 库存现金,综合本位币,2025 年 1–2 期",
         "1001",
         "100.25"},
        {{"1001:1099", "2", "RMB", "2025", "2", "2"},
         "期末余额,1001 至 1099 (3 个科目),人民币,2025 年 2 期",
         "1001 1002 100201-",
         "2100.75"},
        {{" 1001: 1099 ", " ２", " RMB", "2025", "2", "2"},
         "期末余额,1001 至 1099 (3 个科目),人民币,2025 年 2 期",
         "1001 1002 100201-",
         "2100.75"},
        {{" 1122 |客户| 001:002", "2 ", " ", " 2025 ", "1", "2"},
         "期末余额,1122 应收账款,客户 001 至 002,综合本位币,2025 年 1–2 期",
         "1122",
         "300.00"},
        {{"10**", "2", "RMB", "0", "0", "0"},
         "期末余额,10** (2 个科目),人民币,最近年度 1 期至最近一期",
         "1001 1002",
         "2100.75"},
        {{"1122|客户|001:002", "2", "", " 2025 ", "1", "2"},
         "期末余额,1122 应收账款,客户 001 至 002,综合本位币,2025 年 1–2 期",
         "1122",
         "300.00"},
        {{"1122|客户|", "2", "", "2025", "1", "1"},
         "期末余额,1122 应收账款,客户不限,综合本位币,2025 年 1 期",
         "1122",
         "250.00"},
        {{"2001", "1", "", "", "", ""},
         "期初余额,2001 短期借款,综合本位币,最近年度 1 期至最近一期",
         "2001",
         "700.00"},
    };
    for (const auto& [texts, words, accounts, value] : cases) {
        const CallTrial trial = tryCall(gConnString, texts, ample);
        EXPECT_EQ(trial.meaning.words, words);
        EXPECT_EQ(codes(trial), accounts) << words;
        EXPECT_EQ(trial.value, value) << words;
        EXPECT_THAT(trial.meaning.problems, IsEmpty()) << words;
    }
}

TEST_F(CallInWordsTest, UnknownCodesComeWithTheNearestOne)
{
    const struct {
        Texts texts;
        std::vector<std::string> problems;
    } cases[] = {
        {{"1112", "2", "", "", "", ""}, {"科目“1112”不存在,最接近的是“1122”"}},
        {{"1002011", "2", "", "", "", ""}, {"科目“1002011”不存在,最接近的是“100201”"}},
        {{"3001:3002", "2", "", "", "", ""},
         {"科目“3001”不存在,最接近的是“1001”", "科目“3002”不存在,最接近的是“1002”"}},
        {{"1122|客|01", "2", "", "", "", ""}, {"核算项目类别“客”不存在,最接近的是“客户”"}},
        {{"1122| 客户|001", "2", "", "", "", ""}, {"核算项目类别“ 客户”不存在,最接近的是“客户”"}},
        {{" ", "2", "", "", "", ""}, {"科目“ ”不存在,最接近的是“1001”"}},
        {{"1122|客户|0011", "2", "", "", "", ""}, {"客户“0011”不存在,最接近的是“001”"}},
        {{"1001", "22", "", "", "", ""}, {"取数类型“22”不存在,最接近的是“2”"}},
        {{"1001", "2", "RMD", "", "", ""}, {"货币“RMD”不存在,最接近的是“RMB”"}},
        {{"10'01", "2", "", "", "", ""}, {"科目“10'01”不存在,最接近的是“1001”"}},
        {{"1001：1122", "2", "", "", "", ""}, {"科目“1001：1122”不存在，“：”是全角字符，应为半角的“:”"}},
        {{"1122:1001", "2", "", "", "", ""}, {"科目“1122 至 1001”不存在，区间的起点大于终点"}},
        {{"3002:3001", "22", "", "", "", ""},
         {"取数类型“22”不存在,最接近的是“2”", "科目“3002”不存在,最接近的是“1002”",
          "科目“3001”不存在,最接近的是“1001”"}},
        {{"1122|客户|002:001", "22", "", "", "", ""},
         {"取数类型“22”不存在,最接近的是“2”", "客户“002 至 001”不存在，区间的起点大于终点"}},
    };
    for (const auto& [texts, problems] : cases)
        EXPECT_EQ(tryCall(gConnString, texts, ample).meaning.problems, problems);
    EXPECT_EQ(nearestCode("1", {}), "");
}

TEST_F(CallInWordsTest, WhyNothingIsFoundIsTheSameBetweenBlanks)
{
    const std::string why = tryCall(gConnString, {"1122|部门|01", "2", "RMB", "2025", "2", "2"}, ample).value;
    EXPECT_THAT(why, HasSubstr("2025年2期没有科目“1122|部门|01”的数据"));
    EXPECT_EQ(tryCall(gConnString, {" 1122 |部门| 01 ", " ２", " RMB", "2025", "2", "2"}, ample).value, why);
}

TEST_F(CallInWordsTest, WhatCannotBeFetchedIsSaidAndShowsNoBox)
{
    EXPECT_EQ(tryCall(gConnString, {"1001", "2", "", "今年", "", ""}, ample).value, "年度“今年”不是整数");
    EXPECT_EQ(tryCall(gConnString, {"1001", "2", "", "2025", "1.5", ""}, ample).value,
              "起始期间“1.5”不是整数");
    EXPECT_THAT(tryCall(gConnString, {"1001", "2", "", "1999", "1", "1"}, ample).value,
                HasSubstr("没有科目"));
    gConnString = "Provider=SQLite;Data Source=/nowhere/at/all.db";
    EXPECT_EQ(tryCall(gConnString, {"1001", "2", "", "", "", ""}, ample).value,
              "数据库文件不存在或读取错误!");
    EXPECT_THAT(ledger.boxes.said, IsEmpty());
}

TEST_F(CallInWordsTest, SlowStatementsAreStopped)
{
    ledger.database().makeEndless("tblAccount");
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(tryCall(gConnString, {"1001", "2", "", "", "", ""}, std::chrono::milliseconds(100)).value,
              "取数超过时限,未取");
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
}

} // namespace
} // namespace selfreport
