#include "windows/list/frmSelfReportMain.h"

#include "platform/list_grid/ListGrid.h"
#include "state/report_procedures.h"
#include "tests/fetch/TestLedger.h"
#include "tests/platform/WindowTest.h"
#include "tests/tdsserver/TdsServer.h"

#include <QLabel>
#include <QPushButton>

namespace selfreport {
namespace {

using Said = RecordingDialogs::Said;

class ReportListWindow : public test::WindowTest {
protected:
    ReportListWindow()
    {
        ledger.run("insert into tbluser(fuserid,fusername) values('wang','王会计')");
        gReportId = 0;
        gEditFlag = 5;
    }
    void addReport(int id, const std::string& name, const std::string& shown, const std::string& biller) const
    {
        ledger.run("insert into tblCWSelfReport(noid,fname,fdate,fisshow,fbillerid) values(" +
                   std::to_string(id) + ",'" + name + "','2026-03-05 08:05:09'," + shown + ",'" + biller +
                   "')");
        ledger.run("insert into tblsystemprivillenge(fitemid,fnumber,fname) values(" +
                   std::to_string(id * 10) + ",'RSelf" + std::to_string(id) + "','" + name + "')");
    }
    void addThree() const
    {
        addReport(7, "资产负债表", "1", "wang");
        addReport(2, "利润''表", "0", "nobody");
        addReport(11, "附表", "null", "wang");
    }
    void open()
    {
        window = std::make_unique<frmSelfReportMain>(sharedContext, [this] {
            designed.push_back({gEditFlag, gReportId});
            if (whileDesigned)
                whileDesigned();
        });
        show(*window);
    }
    void click(const char* button) { control<QPushButton>(*window, button).click(); }
    ListGrid& list() { return control<ListGrid>(*window, "vsf1"); }
    std::size_t stored() const
    {
        return ledger.query("select noid from tblCWSelfReport").rowCount() * 10 +
               ledger.query("select fitemid from tblsystemprivillenge").rowCount();
    }

    test::TestLedger ledger;
    std::unique_ptr<frmSelfReportMain> window;
    std::vector<std::pair<int, int>> designed; // edit flag and report at each showing of the designer
    std::function<void()> whileDesigned;
};

TEST_F(ReportListWindow, ListsReportsInTheOrderOfTheirIds)
{
    addThree();
    open();
    EXPECT_EQ(window->windowTitle(), "自定义报表");
    const std::pair<const char*, int> columns[] = {
        {"", 900}, {"报表名称", 4140}, {"上次修改人", 2910}, {"上次修改时间", 1845}, {"是否显示", 1305}};
    for (int column = 0; column < 5; ++column) {
        EXPECT_EQ(list().text(0, column), columns[column].first);
        EXPECT_NEAR(list().columnTwips(column), columns[column].second, 8);
    }
    const QString time = "2026-03-05 08:05";
    const QStringList rows[] = {{"2", "利润'表", "", time, "不显示"},
                                {"7", "资产负债表", "王会计", time, "显示"},
                                {"11", "附表", "王会计", time, "不显示"}};
    ASSERT_EQ(list().rowCount(), 4);
    for (int row = 1; row <= 3; ++row)
        for (int column = 0; column < 5; ++column) {
            EXPECT_EQ(list().text(row, column), rows[row - 1][column]) << row << ',' << column;
            const QModelIndex shown = list().model()->index(row - 1, column);
            EXPECT_EQ(shown.data(Qt::ToolTipRole).toString(), rows[row - 1][column]); // the column may cut it
        }
}

TEST_F(ReportListWindow, RowCommandsNeedACurrentRow)
{
    const auto pressAll = [this] {
        for (const char* button : {"cmd_1", "cmd_2", "cmdXPOK"})
            click(button);
    };
    open();
    pressAll(); // an empty table
    addThree();
    window->getReport();
    list().setRow(0);
    pressAll(); // the heading
    EXPECT_TRUE(designed.empty());
    EXPECT_TRUE(ledger.boxes.said.empty());
    EXPECT_EQ(gReportId, 0);
    EXPECT_EQ(gEditFlag, 5);
}

TEST_F(ReportListWindow, EveryWayIntoTheDesigner)
{
    addThree();
    open();
    list().setFocus();
    const QPoint second = list().visualRect(list().model()->index(1, 1)).center();
    const struct {
        const char* what;
        std::function<void()> act;
        std::pair<int, int> designed;
    } ways[] = {
        {"new keeps the report's id", [&] { click("cmd_0"); }, {0, 0}},
        {"change", [&] { click("cmd_1"); }, {1, 2}},
        {"open", [&] { list().setRow(3), click("cmdXPOK"); }, {1, 11}},
        {"double click",
         [&] {
             QTest::mouseClick(list().viewport(), Qt::LeftButton, {}, second);
             QTest::mouseDClick(list().viewport(), Qt::LeftButton, {}, second);
         },
         {1, 7}},
        {"down and Enter",
         [&] {
             QTest::keyClick(&list(), Qt::Key_Down);
             QTest::keyClick(&list(), Qt::Key_Return);
         },
         {1, 11}},
        {"access key", [&] { accessKey(list(), Qt::Key_N); }, {0, 11}},
        {"access key", [&] { accessKey(list(), Qt::Key_U); }, {1, 11}},
        {"access key", [&] { accessKey(list(), Qt::Key_O); }, {1, 11}},
    };
    for (const auto& [what, act, expected] : ways) {
        designed.clear();
        act();
        ASSERT_EQ(designed.size(), 1U) << what;
        EXPECT_EQ(designed[0], expected) << what;
    }
    accessKey(list(), Qt::Key_E);
    EXPECT_FALSE(window->isVisible());
}

TEST_F(ReportListWindow, TabLeadsFromTheListThroughTheButtons)
{
    addThree();
    open();
    ASSERT_EQ(QApplication::focusWidget()->objectName(), "vsf1");
    for (const char* next : {"cmd_0", "cmd_1", "cmd_2", "cmdXPOK", "cmdXPClose"}) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        EXPECT_EQ(QApplication::focusWidget()->objectName(), next);
    }
    while (QApplication::focusWidget()->objectName() != "cmd_0")
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Backtab);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Backtab);
    EXPECT_EQ(QApplication::focusWidget()->objectName(), "vsf1");
}

TEST_F(ReportListWindow, WithoutAConnectionStringItSaysSoAndStaysEmpty)
{
    gConnString.clear();
    gTitle.clear();
    open();
    EXPECT_EQ(ledger.boxes.said, (std::vector<Said>{{Icon::critical, "", "数据库文件不存在或读取错误!"}}));
    EXPECT_EQ(list().rowCount(), 1);
}

TEST_F(ReportListWindow, ADatabaseThatCannotHoldChineseIsToldUnderTheList)
{
    tds::TdsServer server(ledger.file());
    gConnString = server.connectionString();
    for (const int codePage : {936, 1252, 65001}) {
        closeIdleSessions();
        server.codePage = codePage;
        open();
        const QString warning = control<QLabel>(*window, "lblWarning").text();
        EXPECT_EQ(warning.contains("不能保存中文"), codePage == 1252) << codePage;
    }
    window.reset();
    closeIdleSessions();
}

TEST_F(ReportListWindow, DeletionAsksDeletesBothRowsAndSaysSo)
{
    addThree();
    open();
    list().setRow(2);
    const Said question{Icon::question, gTitle, "确定要删除吗?"};
    click("cmd_2");
    EXPECT_EQ(ledger.boxes.said, std::vector{question});
    EXPECT_EQ(stored(), 33U); // answered No
    EXPECT_EQ(gReportId, 0);

    ledger.boxes.said.clear();
    ledger.boxes.answer = true;
    accessKey(list(), Qt::Key_D);
    EXPECT_EQ(ledger.boxes.said, (std::vector<Said>{question, {Icon::information, gTitle, "删除成功!"}}));
    EXPECT_EQ(gReportId, 7);
    EXPECT_EQ(stored(), 22U);
    EXPECT_EQ(list().rowCount(), 3);
    EXPECT_EQ(list().text(2, 0), "11");
    EXPECT_EQ(list().row(), 2);
}

TEST_F(ReportListWindow, AReportThatIsGoneIsNeitherOpenedNorSaidToBeDeleted)
{
    addThree();
    open();
    list().setRow(2);
    ledger.run("delete from tblCWSelfReport where noid=7");
    ledger.boxes.answer = true;
    const std::pair<const char*, const char*> told[] = {
        {"cmd_2", "报表没有删除。\n报表不存在!"}, {"cmd_1", "报表不存在!"}, {"cmdXPOK", "报表不存在!"}};
    for (const auto& [button, text] : told) {
        click(button);
        ASSERT_FALSE(ledger.boxes.said.empty()) << button;
        EXPECT_EQ(ledger.boxes.said.back(), (Said{Icon::exclamation, gTitle, text})) << button;
        ledger.boxes.said.clear();
    }
    EXPECT_TRUE(designed.empty());
    EXPECT_EQ(gEditFlag, 5);
    EXPECT_EQ(list().rowCount(), 4);
    ledger.run("alter table tblCWSelfReport rename to gone");
    click("cmd_1"); // nobody knows
    EXPECT_EQ(ledger.boxes.said.size(), 1U);
    EXPECT_TRUE(designed.empty());
}

TEST_F(ReportListWindow, FailuresLeaveTheListAsItWas)
{
    addThree();
    open();
    ledger.boxes.answer = true;
    ledger.run("alter table tblsystemprivillenge rename to gone");
    click("cmd_2");
    ASSERT_EQ(ledger.boxes.said.size(), 2U); // the question and why it failed
    EXPECT_EQ(ledger.boxes.said[1].icon, Icon::exclamation);
    EXPECT_EQ(ledger.boxes.said[1].title, gTitle);
    EXPECT_EQ(list().rowCount(), 4);
    ledger.run("alter table tblCWSelfReport rename to gone2");
    ledger.boxes.said.clear();
    EXPECT_FALSE(window->getReport());
    ASSERT_EQ(ledger.boxes.said.size(), 1U);
    EXPECT_EQ(ledger.boxes.said[0].icon, Icon::exclamation);
    EXPECT_EQ(list().rowCount(), 4);
    EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
    EXPECT_FALSE(gCnn);
}

TEST_F(ReportListWindow, RefillShowsWhatWasSavedMeanwhile)
{
    addThree();
    open();
    whileDesigned = [this] {
        addReport(20, "新表", "1", "wang");
        window->getReport();
    };
    click("cmd_0");
    EXPECT_EQ(list().rowCount(), 5);
    EXPECT_EQ(list().text(4, 1), "新表");
}

} // namespace
} // namespace selfreport
