#include "fetch/ledger_query.h"

#include "tests/golden_texts.h"

#include <gtest/gtest.h>

namespace selfreport {
namespace {

const test::GoldenTexts& golden()
{
    static const test::GoldenTexts texts("sql_texts.golden");
    return texts;
}

/// The text for an expression whose classes all list their items in tblCustomer.
std::string queryOf(const std::string& account)
{
    const AccountExpression expression = parseAccountExpression(account);
    return ledgerQuery(expression,
                       std::vector<std::optional<std::string>>(expression.qualifiers.size(), "tblCustomer"));
}

TEST(LedgerQuery, TextOfEachAccountForm)
{
    struct Case {
        const char* account;
        const char* condition; ///< name in the golden file; "" for none
    };
    const Case cases[] = {
        {"1001", "account 1001"},
        {"10*1", "account 10*1"},
        {"1001:1099", "account 1001:1099"},
        {"1001:1099:2000", "account 1001:1099"}, // a third piece is not used
        {"1001:", "account 1001:"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(queryOf(c.account),
                  golden()["ledger from"] + golden()["ledger where"] + golden()[c.condition])
            << c.account;
}

TEST(LedgerQuery, TextOfEachQualifierForm)
{
    struct Case {
        const char* account;
        std::vector<const char*> conditions;
    };
    const Case cases[] = {
        {"1001|客户|001", {"account 1001", "items 001"}},
        {"1001:1099|客户|01*", {"account 1001:1099", "items 01*"}},
        {"|客户|001:099", {"items 001:099"}}, // filters by item only
        {"1001|客户", {"account 1001"}},      // a class without codes adds nothing
        {"1001|客户|", {"account 1001"}},     // nor one with empty codes
        {"1001|客户|001|部门", {"account 1001", "items 001"}},
        {"1001|客户||部门|001", {"account 1001", "items 001"}},
        {"1001|客户|001|部门|01*", {"account 1001", "items 001", "items 01*"}},
    };
    for (const Case& c : cases) {
        std::string expected =
            golden()["ledger from"] + golden()["ledger items join"] + golden()["ledger where items"];
        for (const char* condition : c.conditions)
            expected += golden()[condition];
        EXPECT_EQ(queryOf(c.account), expected) << c.account;
    }
}

TEST(LedgerQuery, UnknownClassNarrowsNothing)
{
    const AccountExpression expression = parseAccountExpression("1001|没有|001|客户|001");
    const std::optional<std::string> tables[] = {std::nullopt, "tblCustomer"};
    EXPECT_EQ(ledgerQuery(expression, tables), golden()["ledger from"] + golden()["ledger items join"] +
                                                   golden()["ledger where items"] + golden()["account 1001"] +
                                                   golden()["items 001"]);
}

TEST(LedgerQuery, OnlyAsciiApostrophesAreDoubled)
{
    const std::string text = queryOf("1'0|客户|a'b:c''d");
    EXPECT_NE(text.find("(b.fNumber='1''0')"), std::string::npos) << text;
    EXPECT_NE(text.find("(fNumber>='a''b' and fNumber<='c''''d')"), std::string::npos) << text;
    EXPECT_EQ(itemClassStatement("客'户"), "select * from tblItemClass where fItemname='客''户'");
    for (const char* other : {"’", "‘", "＇", "′"})
        EXPECT_NE(queryOf(other).find("(b.fNumber='" + std::string(other) + "')"), std::string::npos)
            << other;
    EXPECT_EQ(itemClassStatement("客户"), golden()["item class"]);
}

TEST(LedgerQuery, SplittingKeepsEmptyPiecesButNotOfAnEmptyText)
{
    struct Case {
        const char* text;
        std::vector<std::string_view> pieces;
    };
    const Case cases[] = {
        {"", {}}, {"1001", {"1001"}}, {"1001:", {"1001", ""}}, {":", {"", ""}}, {"a::b", {"a", "", "b"}},
    };
    for (const Case& c : cases)
        EXPECT_EQ(splitText(c.text, ':'), c.pieces) << c.text;
}

TEST(LedgerQuery, TrimmingTakesOrdinaryBlanksOnly)
{
    EXPECT_EQ(trimmed("  a b "), "a b");
    EXPECT_EQ(trimmed("   "), "");
    EXPECT_EQ(trimmed("\ta\xE3\x80\x80"), "\ta\xE3\x80\x80"); // tab and full-width blank stay
}

} // namespace
} // namespace selfreport
