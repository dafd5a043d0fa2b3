#include "fetch/coverage_calls.h"

#include "spreadsheet/workbook/Workbook.h"
#include "tests/fetch/TestLedger.h"

#include <gtest/gtest.h>

namespace selfreport {
namespace {

class Coverage : public ::testing::Test {
protected:
    Coverage()
    {
        ledger.run("update tblAccount set fIsDetail=0 where fitemid=2");
        for (const char* row : {"20,'100201','工商银行'", "21,'100202','建设银行'"})
            ledger.run(std::string("insert into tblAccount(fitemid,fNumber,fName,fParentId,fLevel) values(") +
                       row + ",2,2)");
    }
    static CellCall closing(int row, const std::string& account)
    {
        return {1, row, {account, "2", "", "2025", "1", "2"}};
    }
    /// "code times amount", "~" behind those that are covered in part.
    std::string found(const std::string& first, const std::string& last,
                      const std::vector<CellCall>& calls) const
    {
        const auto connection = openConnection(ledger.connectionString());
        std::string text;
        for (const AccountCoverage& account :
             accountCoverage(*connection, first, last, closing(1, "").arguments, calls))
            text += (text.empty() ? "" : ", ") + account.code + " " + std::to_string(account.calls.size()) +
                    (account.isPartial ? "~" : "") + " " +
                    (account.amount ? numberText(*account.amount) : "-");
        return text;
    }
    test::TestLedger ledger;
};

TEST_F(Coverage, FindsTheDoubleAndTheGap)
{
    const std::vector<CellCall> calls{closing(2, "1001"), closing(3, "1002"), closing(4, "10**"),
                                      closing(5, "1122|客户|001")};
    // 1001 twice; the banks twice by their parent; 2001 not at all.
    EXPECT_EQ(found("", "", calls), "1001 2 100.25, 100201 2 -, 100202 2 -, 1122 1~ 300, 2001 0 700");
    EXPECT_EQ(found("1001", "1099", {closing(2, "100201")}), "1001 0 100.25, 100201 1 -, 100202 0 -");
    EXPECT_EQ(found("2001", "", {}), "2001 0 700");
    // What stands below 1002 belongs to it, though 100201 does not stand between 1001 and 1002.
    EXPECT_EQ(found("1001", "1002", {closing(2, "1002")}), "1001 0 100.25, 100201 1 -, 100202 1 -");
    EXPECT_EQ(found("1002", "", {}), "100201 0 -, 100202 0 -");
    EXPECT_EQ(found("3001", "3999", calls), "");
}

TEST_F(Coverage, OtherMeasuresAndEmptyAccountsDoNotCount)
{
    CellCall opening = closing(2, "1001");
    opening.arguments.fetchType = "1";
    CellCall lastYear = closing(3, "1001");
    lastYear.arguments.year = "2024";
    EXPECT_EQ(found("1001", "1001", {opening, lastYear, closing(4, "")}), "1001 0 100.25");
    ledger.run("update tblAccount set fParentId=20 where fitemid=2"); // a chart that goes round
    EXPECT_EQ(found("1001", "100201", {closing(2, "1122")}), "1001 0 100.25, 100201 0 -, 100202 0 -");
}

TEST_F(Coverage, CallsAreThoseThatTheCellsMake)
{
    spreadsheet::Workbook book;
    for (const auto& [name, parameters] : {std::pair("Acct", 6), {"REF_F", 3}})
        book.registerFunction(name, parameters, [](spreadsheet::FunctionCall& call) { call.decline(); });
    spreadsheet::Sheet& sheet = book.sheet(1);
    demand(book.setSheetCount(2));
    const auto write = [](spreadsheet::Sheet& on, spreadsheet::CellAddress cell, const char* formula) {
        EXPECT_FALSE(on.setFormula(cell, formula)) << formula;
    };
    sheet.setNumber({4, 1}, 2025);
    write(sheet, {2, 3}, R"(Acct(" 1002 "," 2"," ",D1,"0",2))"); // computed arguments, 0 is not given
    write(sheet, {2, 1}, R"(ROUND(-acct("1001","2","","2025","1","2"),2)+Acct("1001","2","","","",""))");
    // 1001 holds 100.25: the branch that is not taken covers nothing
    write(sheet, {1, 9}, R"(IF(B1<0,Acct("1122","2","","","",""),Acct("2001","2","","","","")))");
    write(sheet, {1, 8}, R"(Acct("1001","2","","今年","1","2"))");
    write(sheet, {1, 7}, R"-("Acct(""1001"",""2"")")-");
    write(book.sheet(2), {1, 1}, R"(Acct("1001","2","","2025","1","2"))");
    const std::uint64_t revision = book.revision();

    const auto [calls, unusable] = acctCallsOf(book, 1, sharedContext.database).value();
    EXPECT_EQ(book.revision(), revision);
    EXPECT_EQ(unusable, 1);
    std::string found;
    for (const auto& [column, row, arguments] : calls)
        found += spreadsheet::cellName({column, row}) + " " + arguments.account + " " + arguments.year + ":" +
                 arguments.firstPeriod + "-" + arguments.lastPeriod + "; ";
    EXPECT_EQ(found, "A9 2001 :-; B1 1001 2025:1-2; B1 1001 :-; B3 1002 2025:-2; ");
    const std::vector<CoverageMeasure> measures = measuresOf(calls);
    ASSERT_EQ(measures.size(), 3U);
    EXPECT_EQ(measures[0].calls, 2U);
    EXPECT_EQ(measures[0].arguments.year, ""); // the most frequent first
}

} // namespace
} // namespace selfreport
