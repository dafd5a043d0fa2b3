// Which kind of nothing a call gave, and which totals carry it.
#include "fetch/ReportEvaluation.h"
#include "spreadsheet/files/content/content.h"
#include "tests/fetch/TestLedger.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace selfreport {
namespace {

using spreadsheet::demand;
using spreadsheet::Sheet;
using spreadsheet::Workbook;
using ::testing::HasSubstr;

/// 6001 has figures of every kind in period 1 and rows of 0 in period 2; 7001, in credit, has balances only.
void addAccounts(const test::TestLedger& ledger)
{
    ledger.run("insert into tblAccount(fitemid,fNumber,fName,fDirection) values(5,'6001','收入',1)");
    ledger.run("insert into tblAccount(fitemid,fNumber,fName,fDirection) values(6,'7001','费用',1)");
    const std::string balance = "insert into tblAccountBal(faccountid,fDetailId,fYear,fPeriod,fCurrencyid,"
                                "fBeginBal,fDebit,fCredit,fYtdDebit,fYtdCredit,fEndBal) values(";
    ledger.run(balance + "5,0,2025,1,1,10,5,3,5,3,12)");
    ledger.run(balance + "5,0,2025,2,1,0,0,0,0,0,0)");
    ledger.run(balance + "6,0,2025,1,1,-10,5,3,5,3,-8)");
    ledger.run(
        "insert into tblProfitAndLoss(fAccountId,fDetailid,fYear,fPeriod,fCurrencyid,fAmount,fYtdAmount)"
        " values(5,0,2025,1,1,4,4)");
    ledger.run(
        "insert into tblProfitAndLoss(fAccountId,fDetailid,fYear,fPeriod,fCurrencyid,fAmount,fYtdAmount)"
        " values(5,0,2025,2,1,0,0)");
    const std::string quantity = "insert into tblQtyBalance(fAccountId,fDetailid,fYear,fPeriod,fCurrencyid,"
                                 "fBeginQty,fDebitQty,fCreditQty,fEndQty) values(5,0,2025,";
    ledger.run(quantity + "1,1,2,1,1,2)");
    ledger.run(quantity + "2,1,0,0,0,0)");
}

struct Called {
    CallState state;
    std::string reason;
};

std::vector<Called> called(const std::vector<std::string>& formulas)
{
    Workbook workbook;
    ReportEvaluation evaluation(workbook, sharedContext.database);
    evaluation.addSelfFunction();
    for (std::size_t i = 0; i < formulas.size(); ++i)
        demand(workbook.sheet(1).setFormula({1, static_cast<int>(i) + 1}, formulas[i]));
    evaluation.recalculate();
    std::vector<Called> states;
    for (std::size_t i = 0; i < formulas.size(); ++i) {
        const spreadsheet::SheetCell cell{workbook.sheet(1).id(), {1, static_cast<int>(i) + 1}};
        states.push_back({evaluation.record().callsOf(cell)[0].state(), evaluation.record().remarkOn(cell)});
    }
    return states;
}

std::string call(const std::string& account, int key, int period, const std::string& currency = "")
{
    return "Acct(\"" + account + "\",\"" + std::to_string(key) + "\",\"" + currency + "\",2025," +
           std::to_string(period) + "," + std::to_string(period) + ")";
}

TEST(CallState, OfEachKeyAndKindOfNothing)
{
    const test::TestLedger ledger;
    addAccounts(ledger);
    constexpr int kinds = 5;
    std::vector<std::string> formulas;
    for (int key = 1; key <= 14; ++key)
        for (const std::string& formula : {call("6001", key, 1), call("6001", key, 2), call("6001", key, 7),
                                           call("7001", key, 1), call("9999|客户|001", key, 1)})
            formulas.push_back(formula);
    const std::vector<Called> states = called(formulas);
    for (int key = 1; key <= 14; ++key) {
        const bool isBalance = key <= 2 || key == 9 || key == 10 || key >= 13;
        const bool isKept = key <= 6 || key >= 13; // by an account without quantities, profit and loss
        const CallState nothing = isBalance ? CallState::zeroBalance : CallState::noMovement;
        const CallState inCredit = key == 13 ? nothing : isKept ? CallState::value : CallState::notApplicable;
        const CallState expected[kinds] = {key == 14 ? nothing : CallState::value, nothing, CallState::noData,
                                           inCredit, CallState::missing};
        for (int kind = 0; kind < kinds; ++kind) {
            const Called& found = states[static_cast<std::size_t>((key - 1) * kinds + kind)];
            EXPECT_EQ(stateName(found.state), stateName(expected[kind]))
                << formulas[static_cast<std::size_t>((key - 1) * kinds + kind)] << found.reason;
            if (found.state == CallState::noData) {
                EXPECT_THAT(found.reason, HasSubstr("最近有数据的是2025年2期"));
            }
            EXPECT_EQ(found.reason.empty(), !isMarked(found.state));
        }
    }
}

TEST(CallState, OfNamesWithoutMeaningAndFailures)
{
    const test::TestLedger ledger;
    addAccounts(ledger);
    const struct {
        std::string formula;
        CallState state;
    } cases[] = {
        {call("1001", 2, 2), CallState::value},
        {call("1001|供应商|001", 2, 2), CallState::missing},
        {call("1122|供应商", 2, 2), CallState::missing},
        {call("1122|客户|009", 2, 2), CallState::missing},
        {call("1122|部门|01", 2, 2), CallState::noData},
        {call(" 1122 |部门| 01 ", 2, 2), CallState::noData},
        {"Acct(\"1122|部门|01\",\" 2\",\" \",2025,2,2)", CallState::noData},
        {"Acct(\"1122|部门|01\",\"２\",\" RMB\",2025,2,2)", CallState::noData},
        {"Acct(\"6001\",\"２\",\"\",2025,2,2)", CallState::zeroBalance},
        {"Acct(\"7001\",\" ９\",\"\",2025,1,1)", CallState::notApplicable},
        {call("1001", 15, 2), CallState::missing},
        {call("1001", 2, 2, "USD"), CallState::missing},
        {call("", 2, 2), CallState::missing},
        {"Acct(\"1001\",\"2\",\"\",\"x\",1,1)", CallState::missing},
        {call(std::string(2100, '1'), 2, 2), CallState::failed},
        {"REF_F(\"没有\",\"A1\",\"1\")", CallState::missing},
        {"REF_F(\"甲\",\"A1\",\"1\")", CallState::missing}, // reads another itself
    };
    Workbook reading;
    demand(reading.sheet(1).setFormula({1, 1}, "REF_F(\"乙\",\"A1\",\"1\")"));
    ledger.addReport(1, "甲", spreadsheet::saveContent(reading));
    std::vector<std::string> formulas;
    for (const auto& [formula, state] : cases)
        formulas.push_back(formula);
    const std::vector<Called> states = called(formulas);
    for (std::size_t i = 0; i < states.size(); ++i)
        EXPECT_EQ(stateName(states[i].state), stateName(cases[i].state))
            << formulas[i].substr(0, 60) << ": " << states[i].reason;
}

/// A: one call of each kind; B: what is made of them, with its state.
TEST(CallState, TotalsCarryTheWorstOfTheirForm)
{
    const test::TestLedger ledger;
    addAccounts(ledger);
    Workbook workbook;
    ReportEvaluation evaluation(workbook, sharedContext.database);
    evaluation.addSelfFunction();
    const std::string calls[] = {call("1001", 2, 2),           call("6001", 2, 2), call("6001", 2, 7),
                                 call("1123|客户|K009", 2, 2), call("1124", 2, 2), "0"};
    for (int row = 1; row <= 6; ++row)
        demand(workbook.sheet(1).setFormula({1, row}, calls[row - 1]));
    const struct {
        const char *formula, *note;
    } cases[] = {
        {"A1+A2+A6", ""},
        {"SUM(A1:A3)", "含1项期间无数据：6001"},
        {"SUM(A1:A4)", "含1项不存在：1123|客户|K009"},
        {"A1+A4-A4", "含1项不存在：1123|客户|K009"},
        {"SUM(A:A)*2-A4", "含2项不存在：1123|客户|K009、1124"},
        {"IF(A1>0,A1,A4)", ""},
        {"IF(A1<0,A1,A4)", "含1项不存在：1123|客户|K009"},
        {"MAX(A1,A4)", ""},
        {"SQRT(A5)", "含1项不存在：1124"},
        {"B5", "含2项不存在：1123|客户|K009、1124"},
    };
    for (int row = 1; row <= static_cast<int>(std::size(cases)); ++row)
        demand(workbook.sheet(1).setFormula({2, row}, cases[row - 1].formula));
    evaluation.recalculate();
    for (int row = 1; row <= static_cast<int>(std::size(cases)); ++row) {
        const spreadsheet::SheetCell cell{workbook.sheet(1).id(), {2, row}};
        EXPECT_EQ(evaluation.record().noteOn(cell), cases[row - 1].note) << cases[row - 1].formula;
        EXPECT_EQ(isMarked(evaluation.record().markedState(cell)), *cases[row - 1].note != '\0');
    }
}

TEST(CallState, GoesOverReferencesToOtherReports)
{
    const test::TestLedger ledger;
    addAccounts(ledger);
    Workbook referred;
    const std::string formulas[] = {
        call("1001", 2, 2), call("6001", 2, 2), call("9999", 2, 2), "A1+A3", call("6001", 2, 7), "0"};
    for (int row = 1; row <= 6; ++row)
        demand(referred.sheet(1).setFormula({1, row}, formulas[row - 1]));
    ledger.addReport(3, "底稿", spreadsheet::saveContent(referred));
    std::vector<std::string> references;
    for (int row = 1; row <= 6; ++row)
        references.push_back("REF_F(\"底稿\",\"A" + std::to_string(row) + "\",\"1\")");
    const std::vector<Called> states = called(references);
    const CallState expected[] = {CallState::value,   CallState::zeroBalance, CallState::missing,
                                  CallState::missing, CallState::noData,      CallState::value};
    for (std::size_t i = 0; i < std::size(expected); ++i)
        EXPECT_EQ(stateName(states[i].state), stateName(expected[i])) << references[i] << states[i].reason;
}

TEST(CallState, ReferencesToNoCellSayWhy)
{
    const test::TestLedger ledger;
    ledger.addReport(3, "底稿", spreadsheet::saveContent(Workbook()));
    const std::pair<std::string, std::string> cases[] = {
        {"REF_F(\"底稿\",\"A1\",\"九\")", "报表“底稿”没有第“九”个标签"},
        {"REF_F(\"底稿\",\"A1\",\"1\")", "报表“底稿”的单元格A1为空"},
        {"REF_F(\"没有的\",\"A1\",\"1\")", "没有的"},
    };
    std::vector<std::string> references;
    for (const auto& [reference, reason] : cases)
        references.push_back(reference);
    const std::vector<Called> found = called(references);
    for (std::size_t i = 0; i < std::size(cases); ++i)
        EXPECT_THAT(found[i].reason, HasSubstr(cases[i].second)) << references[i];
}

TEST(CallState, SheetsChooseWhatNothingsShow)
{
    const test::TestLedger ledger;
    addAccounts(ledger);
    Workbook workbook;
    ReportEvaluation evaluation(workbook, sharedContext.database);
    evaluation.addSelfFunction();
    workbook.sheet(1).changeSettings([](spreadsheet::SheetSettings& settings) {
        settings.nothingTexts = {{static_cast<int>(CallState::zeroBalance), "–"},
                                 {static_cast<int>(CallState::noData), ""},
                                 {static_cast<int>(CallState::missing), "无此科目"}};
    });
    const struct {
        std::string formula, shown;
    } cases[] = {
        {call("1001", 2, 2), "100.25"},
        {call("6001", 2, 2), "–"},
        {call("6001", 3, 2), "0.00"},
        {call("6001", 2, 7), ""},
        {call("9999", 2, 2), "无此科目"},
        {call("6001", 2, 7) + "+" + call("9999", 2, 2), "无此科目"},
        {call("1001", 2, 2) + "+" + call("9999", 2, 2), "100.25"},
        {call("1001", 2, 2) + "-" + call("1001", 2, 2), "0.00"},
        {"A5*1", "0"},
    };
    for (int row = 1; row <= static_cast<int>(std::size(cases)); ++row)
        demand(workbook.sheet(1).setFormula({1, row}, cases[row - 1].formula));
    evaluation.recalculate();
    for (int row = 1; row <= static_cast<int>(std::size(cases)); ++row)
        EXPECT_EQ(workbook.sheet(1).displayText({1, row}), cases[row - 1].shown) << cases[row - 1].formula;
    EXPECT_EQ(workbook.sheet(1).textByType({1, 2}), "0.00"); // what other reports get
    EXPECT_EQ(workbook.sheet(1).value({1, 5}), spreadsheet::Value(0.0));
}

} // namespace
} // namespace selfreport
