#include "fetch/call_in_words.h"
#include "fetch/call_trial.h"
#include "fetch/coverage.h"
#include "fetch/ledger_fetch.h"
#include "fetch/ReportEvaluation.h"
#include "spreadsheet/files/content/content.h"
#include "state/fetch_procedures.h"
#include "tests/fetch/TestLedger.h"
#include "tests/golden_texts.h"
#include "tests/tdsserver/TdsServer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace selfreport {
namespace {

using spreadsheet::Workbook;

/// The small ledger behind a server, under the shared connection string.
struct ServedLedger : test::TestLedger {
    ServedLedger()
        : server(file())
    {
        gConnString = server.connectionString();
    }
    ~ServedLedger() { closeIdleSessions(); }
    ServedLedger(const ServedLedger&) = delete;
    ServedLedger& operator=(const ServedLedger&) = delete;

    tds::TdsServer server;
};

std::string closing(const std::string& account)
{
    return "Acct(\"" + account + "\",\"2\",\"\",\"2025\",\"1\",\"2\")";
}

/// Accounts 5001 to 5399, each with its number as closing balance.
void addAccounts(const test::TestLedger& ledger)
{
    ledger.run("insert into tblAccount(fitemid,fNumber,fName) with recursive n(i) as (select 5001 union all "
               "select i+1 from n where i<5399) select i,cast(i as text),'科目' from n");
    ledger.run("insert into tblAccountBal(faccountid,fDetailId,fYear,fPeriod,fCurrencyid,fEndBal) "
               "select fitemid,0,2025,2,1,fitemid from tblAccount where fitemid>5000");
}

TEST(ServerRoundTrips, AThousandCellsTakeFour)
{
    ServedLedger ledger;
    addAccounts(ledger);
    Workbook workbook;
    constexpr int distinct = 400;
    for (int row = 1; row <= 1000; ++row) {
        const int which = row % distinct;
        demand(workbook.sheet(1).setFormula(
            {1, row}, closing(which == 0 ? "1122|客户|001" : std::to_string(5000 + which))));
    }
    ReportEvaluation evaluation(workbook, sharedContext.database);
    evaluation.addSelfFunction();
    openConnection(gConnString); // the session lies in the pool
    for (int recalculation = 0; recalculation < 2; ++recalculation) {
        ledger.server.journal.clear();
        const DatabaseCounters before = databaseCounters();
        evaluation.recalculate();
        EXPECT_EQ(databaseCounters().procedureCalls - before.procedureCalls, distinct);
        EXPECT_LE(ledger.server.journal.requests().size(), 4U);
        EXPECT_TRUE(ledger.server.journal.logins().empty());
        EXPECT_EQ(workbook.sheet(1).displayText({1, 1}), "5001.00");
        EXPECT_EQ(workbook.sheet(1).displayText({1, 400}), "120.00");
        EXPECT_EQ(workbook.sheet(1).displayText({1, 999}), "5199.00");
    }
    EXPECT_TRUE(ledger.boxes.said.empty());
}

TEST(ServerRoundTrips, EmptyCellsAskEachQuestionOnce)
{
    ServedLedger ledger;
    Workbook workbook;
    constexpr int cells = 20;
    for (int row = 1; row <= cells; ++row)
        demand(workbook.sheet(1).setFormula({1, row}, "Acct(\"" + std::to_string(8001 + row % 5) +
                                                          "\",\"2\",\"\",\"2025\",\"1\",\"" +
                                                          std::to_string(row % 4 + 1) + "\")"));
    ReportEvaluation evaluation(workbook, sharedContext.database);
    evaluation.addSelfFunction();
    openConnection(gConnString);
    ledger.server.journal.clear();
    evaluation.recalculate();
    ASSERT_EQ(evaluation.diagnostics().size(), static_cast<std::size_t>(cells));
    EXPECT_EQ(evaluation.diagnostics()[0].reason, "科目“8002”不存在");
    // The session looked after, one batch of fetches, one of questions.
    EXPECT_LE(ledger.server.journal.requests().size(), 3U);
}

/// What reports that are referred to fetch first goes out with what the cells around them fetch; a call that
/// needs the figure of another comes after it.
TEST(ServerRoundTrips, ReferencedReportsAskTheLedgerTogether)
{
    ServedLedger ledger;
    addAccounts(ledger);
    for (int id = 1; id <= 4; ++id) {
        Workbook report;
        for (int row = 1; row <= 3; ++row)
            demand(report.sheet(1).setFormula({1, row}, closing(std::to_string(5000 + id * 10 + row))));
        demand(report.sheet(1).setFormula({1, 4}, "SUM(A1:A3)"));
        if (id == 4)
            demand(report.sheet(1).setFormula({1, 5}, R"(Acct(TEXT(A1+300,"0"),"2","","2025","1","2"))"));
        ledger.addReport(id, "表" + std::to_string(id), spreadsheet::saveContent(report));
    }
    Workbook workbook;
    for (int id = 1; id <= 4; ++id)
        demand(workbook.sheet(1).setFormula({1, id}, "REF_F(\"表" + std::to_string(id) + "\",\"A4\",\"1\")"));
    demand(workbook.sheet(1).setFormula({1, 5}, R"(REF_F("表4","A5","1"))"));
    demand(workbook.sheet(1).setFormula({1, 6}, closing("1001")));
    demand(workbook.sheet(1).setFormula({1, 7}, R"(REF_F("无此表","A1","1"))"));
    ReportEvaluation evaluation(workbook, sharedContext.database);
    evaluation.addSelfFunction();
    openConnection(gConnString);
    ledger.server.journal.clear();
    evaluation.recalculate();
    // Five contents, the calls, and the one that had to wait.
    EXPECT_EQ(ledger.server.journal.requests().size(), 7U);
    for (int id = 1; id <= 4; ++id)
        EXPECT_EQ(workbook.sheet(1).displayText({1, id}), std::to_string(3 * (5000 + id * 10 + 2))) << id;
    EXPECT_EQ(workbook.sheet(1).displayText({1, 5}), "5341.00");
    EXPECT_EQ(workbook.sheet(1).displayText({1, 6}), "100.25");
    ASSERT_EQ(evaluation.diagnostics().size(), 1U);
    EXPECT_EQ(evaluation.diagnostics()[0].reason, "没有名为“无此表”的报表");
}

/// The names of what is measured, the chart with what the calls reach, and the amounts.
TEST(ServerRoundTrips, CoverageAsksForAllCallsTogether)
{
    ServedLedger ledger;
    addAccounts(ledger);
    ledger.run("update tblAccount set fIsDetail=1 where fitemid between 5001 and 5060");
    std::vector<CellCall> calls;
    std::vector<LedgerArguments> measures;
    for (int row = 1; row <= 60; ++row) {
        calls.push_back({1, row, {std::to_string(5000 + row), "2", "", "2025", "1", "2"}});
        measures.push_back(
            {"", std::to_string(row % 5), row % 2 ? "RMB" : "USD", std::to_string(2000 + row), "1", "2"});
    }
    const auto connection = openConnection(gConnString);
    ledger.server.journal.clear();
    const std::vector<std::string> words = measuresInWords(*connection, measures);
    EXPECT_LE(ledger.server.journal.requests().size(), 2U);
    ASSERT_EQ(words.size(), 60U);
    for (std::size_t at = 0; at < 5; ++at) {
        std::string whole = callInWords(*connection, measures[at]).words;
        const std::string account = ",未给科目";
        EXPECT_EQ(words[at], whole.erase(whole.find(account), account.size()));
    }
    ledger.server.journal.clear();
    const auto accounts = accountCoverage(*connection, "5001", "5060", calls[0].arguments, calls);
    ASSERT_EQ(accounts.size(), 60U);
    for (int at = 0; at < 60; ++at) {
        EXPECT_EQ(accounts[at].calls, std::vector<std::size_t>{std::size_t(at)});
        EXPECT_EQ(accounts[at].amount, 5001 + at);
    }
    EXPECT_LE(ledger.server.journal.requests().size(), 4U) << "one of them asks what the columns hold";
}

TEST(ServerRoundTrips, ARefusedBatchOfQuestionsIsAskedByHalves)
{
    ServedLedger ledger;
    Workbook workbook;
    demand(workbook.sheet(1).setFormula({1, 1}, closing("8001")));
    demand(workbook.sheet(1).setFormula({1, 2}, R"(Acct("1001","2","XXX","2025","1","2"))"));
    demand(workbook.sheet(1).setFormula({1, 3}, closing("1122|客户|999")));
    ReportEvaluation evaluation(workbook, sharedContext.database);
    evaluation.addSelfFunction();
    const auto refuseQuestions = [](tds::Reply& reply) {
        reply = {};
        reply.error(208, "对象名 'tblCurrency' 无效。");
        reply.done(tds::Reply::Done::statement, -1, true);
        reply.finish();
    };
    for (int before = 0; before < 2; ++before) // lookup of the class, calls
        ledger.server.faults.order({tds::Step::batch, tds::Cut::none, tds::Ending::closed, {}, {}});
    ledger.server.faults.order({tds::Step::batch, tds::Cut::none, tds::Ending::closed, refuseQuestions, {}});
    evaluation.recalculate();
    std::string reasons;
    for (const CellDiagnostic& diagnostic : evaluation.diagnostics())
        reasons += diagnostic.reason + ";";
    EXPECT_EQ(reasons, "科目“8001”不存在;货币“XXX”不存在;“客户”中没有项目“999”;");
}

TEST(ServerRoundTrips, AnArgumentThatTheServerWouldReplaceIsTheCallsReason)
{
    ServedLedger ledger;
    Workbook workbook;
    demand(workbook.sheet(1).setFormula({1, 1}, closing("10㐂1")));
    demand(workbook.sheet(1).setFormula({1, 2}, closing("1001")));
    demand(workbook.sheet(1).setFormula({1, 3}, R"(Acct("1001","2","人民币","2025","1","2"))"));
    ReportEvaluation evaluation(workbook, sharedContext.database);
    evaluation.addSelfFunction();
    evaluation.recalculate();
    ASSERT_EQ(evaluation.diagnostics().size(), 2U);
    EXPECT_TRUE(evaluation.diagnostics()[0].hasFailed());
    EXPECT_THAT(evaluation.diagnostics()[0].reason, testing::HasSubstr("“㐂”"));
    EXPECT_EQ(evaluation.diagnostics()[1].reason, "货币“人民币”不存在");
    EXPECT_EQ(workbook.sheet(1).displayText({1, 2}), "100.25");
    for (const tds::Request& request : ledger.server.journal.requests())
        EXPECT_EQ(request.text.find("㐂"), std::string::npos) << request.text;
}

TEST(ServerRoundTrips, ABatchThatIsRefusedIsDoneCallByCall)
{
    ServedLedger ledger;
    Workbook workbook;
    const char* accounts[] = {"1001", "1002", "1122", "2001", "1122|客户|001", "1122|客户|002"};
    int row = 0;
    for (const char* account : accounts)
        demand(workbook.sheet(1).setFormula({1, ++row}, closing(account)));
    ReportEvaluation evaluation(workbook, sharedContext.database);
    evaluation.addSelfFunction();
    const auto refuse = [](tds::Reply& reply) {
        reply = {};
        reply.error(2812, "找不到存储过程。");
        reply.done(tds::Reply::Done::statement, -1, true);
        reply.finish();
    };
    // The class lookup is the first batch of a new session.
    ledger.server.faults.order({tds::Step::batch, tds::Cut::none, tds::Ending::closed, {}, {}});
    ledger.server.faults.order({tds::Step::batch, tds::Cut::none, tds::Ending::closed, refuse, {}});
    evaluation.recalculate();
    EXPECT_EQ(ledger.server.journal.requests().size(), 2 + std::size(accounts));
    EXPECT_EQ(workbook.sheet(1).displayText({1, 1}), "100.25");
    EXPECT_EQ(workbook.sheet(1).displayText({1, 6}), "180.00");
}

TEST(ServerRoundTrips, AFetchSendsItsTextsLetterByLetter)
{
    const test::GoldenTexts golden("sql_texts.golden");
    ServedLedger ledger;
    EXPECT_EQ(changeAcctInfo({"1001:1099|客户|001:099", "2", "RMB", " 2025 ", "1", "2"}).amount,
              std::nullopt);
    const auto requests = ledger.server.journal.requests();
    ASSERT_EQ(requests.size(), 2U);
    EXPECT_EQ(requests[0].text, golden["item class"]);
    EXPECT_EQ(requests[1].text, "sp_GS_AcctProc");
    const std::vector<std::string> sent{golden["ledger from"] + golden["ledger items join"] +
                                            golden["ledger where items"] + golden["account 1001:1099"] +
                                            golden["items 001:099"],
                                        "2",
                                        "RMB",
                                        "2025",
                                        "1",
                                        "2"};
    ASSERT_EQ(requests[1].parameters.size(), sent.size());
    for (std::size_t at = 0; at < sent.size(); ++at)
        EXPECT_EQ(std::get<std::string>(requests[1].parameters[at].value), sent[at]);
}

TEST(ServerRoundTrips, ALostServerLeavesCellsWithoutAmountsAndTheNextTryWorks)
{
    for (const tds::Step step : {tds::Step::login, tds::Step::batch}) {
        ServedLedger ledger;
        Workbook workbook;
        for (int row = 1; row <= 2; ++row)
            demand(workbook.sheet(1).setFormula({1, row},
                                                closing("1122|客户|00" + std::to_string(row % 2 + 1))));
        ReportEvaluation evaluation(workbook, sharedContext.database);
        evaluation.addSelfFunction();
        for (int fault = 0; fault < 40; ++fault)
            ledger.server.faults.order({step, tds::Cut::insideToken, tds::Ending::closed, {}, {}});
        evaluation.recalculate();
        ledger.server.faults.clear();
        EXPECT_FALSE(gCnn);
        if (step == tds::Step::login) {
            ASSERT_EQ(ledger.boxes.said.size(), 1U);
            EXPECT_EQ(ledger.boxes.said[0].text, "数据库文件不存在或读取错误!");
            EXPECT_EQ(workbook.sheet(1).displayText({1, 1}), "0.00");
        }
        evaluation.recalculate();
        EXPECT_EQ(workbook.sheet(1).displayText({1, 1}), "180.00");
    }
}

TEST(ServerRoundTrips, ACallThatIsBeingWrittenWaitsForNoSilentServer)
{
    using namespace std::chrono_literals;
    const std::array<std::string, 6> texts{"1122|客户|001", "2", "", "2025", "1", "2"};
    ServedLedger ledger;
    ledger.server.faults.order({tds::Step::login, tds::Cut::beforeReply, tds::Ending::silent, {}, {}});
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(tryCall(gConnString, texts, 100ms).value, "取数超过时限,未取");
    EXPECT_EQ(tryCall(gConnString, texts, 100ms).value,
              "数据库没有应答,未取");                        // no second one waits beside it
    EXPECT_LT(std::chrono::steady_clock::now() - start, 5s); // the driver's own limit is 15 s
    ledger.server.dropConnections();
    std::string value;
    for (int tries = 0; tries < 100 && value != "120.00"; ++tries) {
        value = tryCall(gConnString, texts, 5s).value;
        std::this_thread::sleep_for(20ms);
    }
    EXPECT_EQ(value, "120.00");
    EXPECT_TRUE(ledger.boxes.said.empty());
}

} // namespace
} // namespace selfreport
