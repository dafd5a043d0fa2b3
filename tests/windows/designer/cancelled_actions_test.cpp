// What a user sees of a server that does not answer, or slowly: with the real wait and its dialog.
#include "access/driver_call.h"
#include "platform/windows/CancellableWait.h"
#include "tests/tdsserver/TdsServer.h"
#include "tests/windows/designer/DesignerTest.h"
#include "windows/formulas/frmCoverage.h"
#include "windows/list/frmSelfReportMain.h"

#include <QPushButton>

#include <chrono>

namespace selfreport {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using tds::Cut;
using tds::Ending;
using tds::Step;

class CancelledActions : public test::DesignerTest {
protected:
    CancelledActions()
        : server(ledger.file())
        , former(std::exchange(UserWait::usual(), &calls))
    {
        storeReport();
        gConnString = server.connectionString();
    }
    ~CancelledActions() override
    {
        window.reset();
        UserWait::usual() = former;
        closeIdleSessions();
    }
    void fallSilentAt(Step step) { server.faults.order({step, Cut::beforeReply, Ending::silent, {}, {}}); }
    void cancelWhenAsked()
    {
        whenWaiting([this](QWidget& dialog) {
            cancelled = Clock::now();
            QTest::mouseClick(&control<QPushButton>(dialog, "cmdCancel"), Qt::LeftButton);
        });
    }
    std::string lastTold() const { return ledger.boxes.said.empty() ? "" : ledger.boxes.said.back().text; }
    std::int64_t inserted()
    {
        return ledger.query("select count(*) as n from tblCWSelfReport").integer(0, "n");
    }

    tds::TdsServer server;
    CallWait calls;
    UserWait* former;
    Clock::time_point cancelled;
};

TEST_F(CancelledActions, ASaveSaysWhatBecameOfItAndTheNextOneWorks)
{
    open();
    const struct {
        Step step;
        const char* told;
        const char* stored;
    } cases[] = {
        {Step::begin, "操作已取消，报表没有保存。", "合计"},
        {Step::batch, "操作已取消，报表没有保存。", "合计"},
        {Step::statement, "操作已取消，报表没有保存。", "合计"},
        {Step::commit, "报表修改成功!", "改过"}, // another connection finds it
    };
    const auto stored = [this] {
        spreadsheet::Workbook workbook;
        const Recordset rows = ledger.query("select * from tblCWSelfReport where noid=3");
        spreadsheet::loadContent(workbook, rows.binary(0, "fFileContent"));
        return workbook.sheet(1).displayText({2, 1});
    };
    for (const auto& c : cases) {
        grid().cells().setText(2, 1, "改过");
        fallSilentAt(c.step);
        cancelWhenAsked();
        trigger("MenuFileSave");
        EXPECT_LT(Clock::now() - cancelled, 1500ms) << int(c.step);
        EXPECT_EQ(lastTold(), c.told) << int(c.step);
        EXPECT_EQ(stored(), c.stored) << int(c.step);
        grid().cells().setText(2, 1, "合计");
        trigger("MenuFileSave");
        EXPECT_EQ(lastTold(), "报表修改成功!") << int(c.step);
        EXPECT_EQ(stored(), "合计") << int(c.step);
    }
}

/// Nobody can say what became of the commit: the server answers no other connection either for a while.
TEST_F(CancelledActions, AnUnknownInsertIsNotDoneTwice)
{
    gEditFlag = 0;
    open();
    edit("txtReportName").setText("新表");
    openConnection(gConnString); // so that the save itself need not log in
    fallSilentAt(Step::commit);
    fallSilentAt(Step::login);
    cancelWhenAsked();
    trigger("MenuFileSave");
    EXPECT_LT(Clock::now() - cancelled, 1500ms);
    EXPECT_NE(lastTold().find("无法确定更改是否已保存"), std::string::npos) << lastTold();
    trigger("MenuFileSave");
    EXPECT_EQ(lastTold(), "报表保存成功!");
    EXPECT_EQ(inserted(), 2);
}

TEST_F(CancelledActions, AListOrAReportThatIsNotReadLeavesTheWindowAlive)
{
    fallSilentAt(Step::batch);
    cancelWhenAsked();
    frmSelfReportMain list(sharedContext, [] {});
    EXPECT_LT(Clock::now() - cancelled, 1500ms);
    EXPECT_TRUE(ledger.boxes.said.empty());
    EXPECT_TRUE(list.getReport());

    fallSilentAt(Step::batch);
    cancelWhenAsked();
    window = std::make_unique<frmEditor>(sharedContext);
    EXPECT_EQ(lastTold(), "操作已取消，报表没有读出。");
    show(*window);
    edit("txtReportName").setText("现金表");
    trigger("MenuFileSave"); // nothing was read: it asks before it replaces
    EXPECT_NE(lastTold().find("打开时没有读出这张报表"), std::string::npos);
}

TEST_F(CancelledActions, WhatIsTypedForTheSlowCoverageGoesThereAndNotIntoTheSheet)
{
    open();
    moveTo(1, 1);
    const std::string before = formula(1, 1);
    server.replyDelay = std::chrono::milliseconds(700);
    QTimer early; // types as soon as the action waits
    QObject::connect(&early, &QTimer::timeout, &early, [&early] {
        if (!isDriverCallUnderWay())
            return;
        early.stop();
        for (const char key : {'1', '0'})
            QTest::keyClick(QApplication::focusWindow(), key);
    });
    early.start(5);
    whenWaiting([](QWidget&) {
        for (const char key : {'0', '1'})
            QTest::keyClick(QApplication::focusWindow(), key);
    });
    trigger("MenuCoverage");
    server.replyDelay = 0ms;
    auto* const coverage = window->findChild<frmCoverage*>();
    ASSERT_NE(coverage, nullptr);
    EXPECT_TRUE(QTest::qWaitFor(
        [&] {
            return control<QLineEdit>(*coverage, "txt_0").text() == "1001" &&
                   QApplication::activeWindow() == coverage;
        },
        20'000));
    EXPECT_EQ(formula(1, 1), before);
    delete coverage;
}

} // namespace
} // namespace selfreport
