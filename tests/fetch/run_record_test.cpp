// What a calculation fetched stays with its cells, whatever moves them.
#include "fetch/ReportEvaluation.h"
#include "spreadsheet/files/content/content.h"
#include "spreadsheet/workbook/typed_text.h"
#include "spreadsheet/workbook/UndoJournal.h"
#include "tests/fetch/TestLedger.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace selfreport {
namespace {

using spreadsheet::demand;
using spreadsheet::Sheet;
using spreadsheet::Workbook;

std::string closing(const std::string& account)
{
    return "Acct(\"" + account + "\" ,\"2\" , \"\", \"2025\",\"1\",\"2\")";
}

/// C5 asks for account 9001, C6 for 1001, C7 for 9003; D5 adds two calls, of which the second finds nothing.
class RecordedReport {
public:
    RecordedReport()
        : evaluation(workbook, sharedContext.database)
    {
        evaluation.addSelfFunction();
        demand(sheet().setFormula({3, 5}, closing("9001")));
        demand(sheet().setFormula({3, 6}, closing("1001")));
        demand(sheet().setFormula({3, 7}, closing("9003")));
        demand(sheet().setFormula({4, 5}, closing("1002") + "+" + closing("9004")));
        workbook.setUndoEnabled(true);
        evaluation.recalculate();
    }
    Sheet& sheet(int index = 1) { return workbook.sheet(index); }

    /// "Sheet1!C5 9001" for each remark: which cell holds which account's.
    std::vector<std::string> remarks() const
    {
        std::vector<std::string> texts;
        for (const CellDiagnostic& found : evaluation.diagnostics()) {
            const std::size_t account = found.reason.find("90");
            texts.push_back(workbook.sheet(found.place.sheet).name() + "!" +
                            spreadsheet::cellName({found.place.column, found.place.row}) + " " +
                            (account == std::string::npos ? found.reason : found.reason.substr(account, 4)));
        }
        return texts;
    }

    Workbook workbook;
    ReportEvaluation evaluation;
};

TEST(RunRecord, EntriesLieWhereTheirCellsLie)
{
    const test::TestLedger ledger;
    using Work = void (*)(RecordedReport&);
    const struct {
        const char* what;
        Work work;
        std::vector<std::string> remarks;
    } cases[] = {
        {"row inserted above",
         [](RecordedReport& r) { demand(r.sheet().insertRows(2, 3)); },
         {"Sheet1!C8 9001", "Sheet1!C10 9003", "Sheet1!D8 9004"}},
        {"row inserted between",
         [](RecordedReport& r) { demand(r.sheet().insertRows(6, 1)); },
         {"Sheet1!C5 9001", "Sheet1!C8 9003", "Sheet1!D5 9004"}},
        {"row inserted below",
         [](RecordedReport& r) { demand(r.sheet().insertRows(8, 1)); },
         {"Sheet1!C5 9001", "Sheet1!C7 9003", "Sheet1!D5 9004"}},
        {"row deleted above",
         [](RecordedReport& r) { demand(r.sheet().deleteRows(1, 2)); },
         {"Sheet1!C3 9001", "Sheet1!C5 9003", "Sheet1!D3 9004"}},
        {"own row deleted",
         [](RecordedReport& r) { demand(r.sheet().deleteRows(5, 1)); },
         {"Sheet1!C6 9003"}},
        {"column inserted",
         [](RecordedReport& r) { demand(r.sheet().insertColumns(4, 1)); },
         {"Sheet1!C5 9001", "Sheet1!C7 9003", "Sheet1!E5 9004"}},
        {"column deleted",
         [](RecordedReport& r) { demand(r.sheet().deleteColumns(3, 1)); },
         {"Sheet1!C5 9004"}},
        {"sheet inserted before",
         [](RecordedReport& r) { demand(r.workbook.addSheet("前", 1)); },
         {"Sheet1!C5 9001", "Sheet1!C7 9003", "Sheet1!D5 9004"}},
        {"rows of another sheet",
         [](RecordedReport& r) {
             demand(r.workbook.addSheet("后"));
             demand(r.sheet(2).insertRows(1, 5));
         },
         {"Sheet1!C5 9001", "Sheet1!C7 9003", "Sheet1!D5 9004"}},
        {"sheet removed",
         [](RecordedReport& r) {
             demand(r.workbook.addSheet("后"));
             demand(r.workbook.removeSheet(1));
         },
         {}},
        {"block moved onto another one",
         [](RecordedReport& r) {
             demand(r.sheet().moveCells({3, 5, 3, 5}, r.sheet(), {3, 7}));
         },
         {"Sheet1!C7 9001", "Sheet1!D5 9004"}},
        {"block moved to another sheet",
         [](RecordedReport& r) {
             demand(r.workbook.addSheet("后"));
             demand(r.sheet(1).moveCells({3, 5, 4, 7}, r.sheet(2), {1, 1}));
         },
         {"后!A1 9001", "后!A3 9003", "后!B1 9004"}},
        {"call replaced by a figure",
         [](RecordedReport& r) {
             r.sheet().setNumber({3, 5}, 1);
         },
         {"Sheet1!C7 9003", "Sheet1!D5 9004"}},
        {"call replaced by a sum",
         [](RecordedReport& r) {
             demand(r.sheet().setFormula({3, 5}, "1+1"));
         },
         {"Sheet1!C7 9003", "Sheet1!D5 9004"}},
        {"call no longer made",
         [](RecordedReport& r) {
             demand(r.sheet().setFormula({3, 5}, "IF(1>2," + closing("9001") + ",0)"));
         },
         {"Sheet1!C7 9003", "Sheet1!D5 9004"}},
        {"another content",
         [](RecordedReport& r) {
             Workbook other;
             demand(other.sheet(1).setFormula({3, 5}, "1+1"));
             spreadsheet::loadContent(r.workbook, spreadsheet::saveContent(other));
         },
         {}},
    };
    for (const auto& c : cases) {
        RecordedReport report;
        const std::vector<std::string> before = report.remarks();
        ASSERT_EQ(before.size(), 3U);
        c.work(report);
        report.evaluation.recalculateChanged();
        EXPECT_EQ(report.remarks(), c.remarks) << c.what;
        for (const int pass : {1, 2}) {
            while (report.workbook.canUndo())
                report.workbook.journal().undo();
            report.evaluation.recalculateChanged();
            if (report.workbook.canRedo()) {
                EXPECT_EQ(report.remarks(), before) << c.what << ", undone " << pass;
            }
            while (report.workbook.canRedo())
                report.workbook.journal().redo();
            report.evaluation.recalculateChanged();
            EXPECT_EQ(report.remarks(), c.remarks) << c.what << ", done again " << pass;
        }
    }
}

TEST(RunRecord, MovesOfManyStepsAreUndoneInTheirOrder)
{
    const test::TestLedger ledger;
    RecordedReport report;
    const std::vector<std::string> before = report.remarks();
    {
        const spreadsheet::UndoStep step(report.workbook, "多步");
        demand(report.sheet().insertRows(1, 2));
        demand(report.sheet().moveCells({3, 7, 3, 9}, report.sheet(), {1, 20}));
        demand(report.sheet().deleteRows(10, 4));
        demand(report.sheet().insertColumns(1, 1));
    }
    report.evaluation.recalculateChanged();
    EXPECT_EQ(report.remarks(),
              (std::vector<std::string>{"Sheet1!B16 9001", "Sheet1!B18 9003", "Sheet1!E7 9004"}));
    report.workbook.journal().undo();
    report.evaluation.recalculateChanged();
    EXPECT_EQ(report.remarks(), before);
    {
        spreadsheet::UndoStep step(report.workbook, "拒绝");
        demand(report.sheet().insertRows(1, 2));
        step.takeBack();
    }
    EXPECT_EQ(report.remarks(), before); // no calculation needed
}

TEST(RunRecord, CallsWithTooManyArgumentsComputeAndAreListed)
{
    const test::TestLedger ledger;
    ledger.addReport(1, "甲表", {});
    const struct {
        const char *formula, *shown, *reason;
    } cases[] = {
        {R"(Acct("1001","2","","2025","1","2"))", "100.25", ""},
        {R"(Acct("1001","2","","2025","1","2","7"))", "100.25", "给了7个参数，只用前6个"},
        {R"(Acct("1001","2","","2025","1","2",1,2,3))", "100.25", "给了9个参数，只用前6个"},
        {R"(Acct("9001","2","","2025","1","2","7"))", "0.00", "给了7个参数，只用前6个;科目“9001”不存在"},
        {R"(Acct("1001","2","","2025","1"))", "#VALUE!", "第6个参数没有给出"},
        {R"(REF_F("没有","A1","","4"))", "", "给了4个参数，只用前3个;没有名为“没有”的报表"},
    };
    for (const auto& c : cases) {
        Workbook workbook;
        ReportEvaluation evaluation(workbook, sharedContext.database);
        evaluation.addSelfFunction();
        demand(workbook.sheet(1).setFormula({1, 1}, c.formula)); // as files and stored reports do
        evaluation.recalculate();
        EXPECT_EQ(workbook.sheet(1).displayText({1, 1}), c.shown) << c.formula;
        std::string reasons;
        for (const CellDiagnostic& diagnostic : evaluation.diagnostics())
            reasons += (reasons.empty() ? "" : ";") + diagnostic.reason;
        EXPECT_EQ(reasons, c.reason) << c.formula;

        Workbook typed;
        ReportEvaluation hooked(typed, sharedContext.database);
        hooked.addSelfFunction();
        const bool isRight = !spreadsheet::enterFormula(typed, typed.sheet(1), {1, 1}, c.formula);
        EXPECT_EQ(isRight, *c.reason == 0) << c.formula;
        EXPECT_EQ(typed.sheet(1).hasFormula({1, 1}), isRight);
        const spreadsheet::Refusal entered = spreadsheet::enterText(workbook, workbook.sheet(1), {1, 1},
                                                                    c.formula, spreadsheet::TypedInto::cell);
        EXPECT_FALSE(entered) << c.formula; // what the cell holds already is no new mistake
    }
    Workbook workbook;
    ReportEvaluation evaluation(workbook, sharedContext.database);
    evaluation.addSelfFunction();
    EXPECT_EQ(spreadsheet::enterText(workbook, workbook.sheet(1), {1, 1},
                                     R"(=1+IF(A2,Acct("1","2","","","","","7"),0))",
                                     spreadsheet::TypedInto::cell)
                  .reason(),
              "Acct 有 6 个参数,这里给了 7 个");
}

TEST(RunRecord, HoldsEachCallWithWhatItGaveAndWasAskedFor)
{
    const test::TestLedger ledger;
    ledger.run("insert into tblSelfReportFieldKey values(77,'77','新')");
    Workbook workbook;
    ReportEvaluation evaluation(workbook, sharedContext.database);
    evaluation.addSelfFunction();
    Sheet& sheet = workbook.sheet(1);
    demand(sheet.setFormula({1, 1}, closing("1001") + "*" + closing("1002")));
    demand(sheet.setFormula({1, 2}, closing("1001")));
    demand(sheet.setFormula({1, 3}, R"(Acct("1001","77","","2025",B3,2))"));
    demand(sheet.setFormula({1, 4}, R"(Acct("1001","2","","x","1","2"))"));
    sheet.setNumber({2, 3}, 1);
    evaluation.recalculate();
    const auto callsOf = [&](int row) { return evaluation.record().callsOf({sheet.id(), {1, row}}); };
    ASSERT_EQ(callsOf(1).size(), 2U);
    EXPECT_EQ(callsOf(1)[1].ledger->arguments.account, "1002");
    EXPECT_EQ(callsOf(1)[1].ledger->answer.amount, 2000.5);
    EXPECT_EQ(callsOf(1)[1].ledger->answer.returnValue, 1);
    EXPECT_EQ(callsOf(2)[0].ledger, callsOf(1)[0].ledger); // shared
    EXPECT_EQ(callsOf(3)[0].ledger->arguments.firstPeriod, "1");
    EXPECT_EQ(callsOf(3)[0].ledger->answer.returnValue, 0); // what it declines with
    EXPECT_EQ(callsOf(4)[0].ledger, nullptr);
    EXPECT_EQ(callsOf(4)[0].remarks.at(0).reason, "第4个参数不是整数");
}

/// What blanks stand for is told by figures too: a call that names year and periods gives the same.
TEST(RunRecord, HoldsWhatBlankYearsAndPeriodsWereTakenFor)
{
    const test::TestLedger ledger;
    ledger.run(
        "insert into tblAccountBal(faccountid,fDetailId,fYear,fPeriod,fCurrencyid,fEndBal,fDebit) values"
        "(1,0,2024,11,1,7,1),(1,0,2024,13,1,8,2)");
    const struct {
        const char *year, *first, *last, *used;
    } cases[] = {
        {"0", "0", "0", "2025 1 2"},       {"0", "2", "2", "2025 2 2"},      {"2024", "0", "0", "2024 1 13"},
        {"2024", "11", "0", "2024 11 13"}, {"0", "0", "1", "2025 1 1"},      {"2025", "1", "2", "2025 1 2"},
        {"1999", "0", "0", "1999 1 1"},    {"2024", "0", "11", "2024 1 11"},
    };
    const auto call = [](const std::string& numbers) { return "Acct(\"1001\",\"3\",\"\"," + numbers + ")"; };
    Workbook workbook;
    ReportEvaluation evaluation(workbook, sharedContext.database);
    evaluation.addSelfFunction();
    Sheet& sheet = workbook.sheet(1);
    int row = 0;
    for (const auto& c : cases)
        demand(sheet.setFormula({1, ++row}, call(std::string(c.year) + "," + c.first + "," + c.last)));
    demand(sheet.setFormula({1, ++row}, call("0,0,0")));
    evaluation.recalculate();
    const auto used = [&](int at) {
        const LedgerArguments& of = evaluation.record().callsOf({sheet.id(), {1, at}})[0].argumentsUsed();
        return of.year + " " + of.firstPeriod + " " + of.lastPeriod;
    };
    for (int at = 1; at < row; ++at) {
        EXPECT_EQ(used(at), cases[at - 1].used) << at;
        std::string numbers = used(at);
        std::ranges::replace(numbers, ' ', ',');
        demand(sheet.setFormula({2, at}, call(numbers)));
    }
    EXPECT_EQ(evaluation.record().callsOf({sheet.id(), {1, 1}})[0].filled,
              evaluation.record().callsOf({sheet.id(), {1, row}})[0].filled); // shared
    const std::size_t empty = evaluation.diagnostics().size();

    // A later year: only what is computed again stands for it.
    ledger.run("insert into tblAccountBal(faccountid,fDetailId,fYear,fPeriod,fCurrencyid,fDebit) "
               "values(2,0,2026,1,1,5)");
    demand(sheet.setFormula({1, 2}, call("0,0,0") + "+0"));
    evaluation.recalculateChanged();
    for (int at = 1; at < row; ++at)
        if (at != 2) {
            EXPECT_EQ(sheet.displayText({1, at}), sheet.displayText({2, at})) << used(at);
            EXPECT_EQ(used(at), cases[at - 1].used) << at;
        }
    EXPECT_EQ(used(2), "2026 1 1");
    EXPECT_GT(evaluation.diagnostics().size(), empty);
}

} // namespace
} // namespace selfreport
