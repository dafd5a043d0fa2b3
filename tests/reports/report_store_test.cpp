#include "state/report_procedures.h"

#include "platform/services/SettingsStore.h"
#include "reports/report_list.h"
#include "spreadsheet/files/content/content.h"
#include "tests/fetch/TestLedger.h"

#include <gtest/gtest.h>

namespace selfreport {
namespace {

using spreadsheet::Workbook;

void setMark(Workbook& workbook, const std::string& text)
{
    workbook.sheet(1).setText({1, 1}, text);
}

std::string markOf(const Workbook& workbook)
{
    return workbook.sheet(1).displayText({1, 1});
}

/// What a report of that id holds now; "" if there is none.
std::string storedMark(std::int32_t id)
{
    gReportId = id;
    std::string name;
    Workbook workbook;
    return loadReport(sharedContext, name, workbook) ? name + ":" + markOf(workbook) : "";
}

/// Replaces report `gReportId` as a designer does that has just loaded it.
bool replaced(const std::string& name, const Workbook& workbook)
{
    std::string loadedName;
    Workbook loaded;
    RememberedReport remembered;
    return loadReport(sharedContext, loadedName, loaded, &remembered) &&
           std::holds_alternative<ReportSaved>(updateReport(sharedContext, name, workbook, remembered));
}

TEST(ReportStore, FirstReportGetsIdsOfItsOwn)
{
    const test::TestLedger ledger;
    Workbook workbook;
    setMark(workbook, "内容");
    ASSERT_TRUE(insertReport(sharedContext, "  利润'表 ", workbook));
    EXPECT_EQ(gReportId, 1);
    const Recordset report = ledger.query("select * from tblCWSelfReport");
    ASSERT_EQ(report.rowCount(), 1U);
    EXPECT_EQ(report.text(0, "fname"), "  利润'表 "); // as typed
    EXPECT_EQ(report.text(0, "fbillerid"), "wang");
    EXPECT_EQ(report.integer(0, "fisshow"), 1);
    EXPECT_NE(report.text(0, "fdate"), "");
    for (const char* column : {"fTop", "fBottom", "fLeft", "fRight", "fDirection", "fHeader", "fFooter"})
        EXPECT_TRUE(report.isNull(0, column)) << column;
    const Recordset item = ledger.query("select * from tblsystemprivillenge");
    ASSERT_EQ(item.rowCount(), 1U);
    EXPECT_EQ(item.integer(0, "fitemid"), 10);
    EXPECT_EQ(item.text(0, "fnumber"), "RSelf1");
    EXPECT_EQ(item.text(0, "fname"), "利润'表");
    EXPECT_EQ(item.integer(0, "fisdetail"), 1);
    EXPECT_EQ(item.integer(0, "fparentid"), 521);

    ledger.run("update tblsystemprivillenge set fitemid=521");
    ASSERT_TRUE(insertReport(sharedContext, "第二张", workbook));
    EXPECT_EQ(gReportId, 2);
    EXPECT_EQ(ledger.query("select * from tblsystemprivillenge where fitemid=531").text(0, "fnumber"),
              "RSelf2");
}

TEST(ReportStore, InsertsRowAndItemTogetherOrNeither)
{
    test::TestLedger ledger;
    ledger.database().rename("tblsystemprivillenge", "elsewhere");
    gReportId = 77;
    EXPECT_FALSE(insertReport(sharedContext, "表", Workbook()));
    EXPECT_EQ(gReportId, 77);
    EXPECT_TRUE(ledger.query("select * from tblCWSelfReport").isEmpty());
    ASSERT_EQ(ledger.boxes.said.size(), 1U);
    EXPECT_EQ(ledger.boxes.said[0].icon, Icon::exclamation);
    EXPECT_EQ(ledger.boxes.said[0].title, gTitle);
    EXPECT_TRUE(ledger.boxes.said[0].text.starts_with("报表没有保存。\n")) << ledger.boxes.said[0].text;

    ledger.database().rename("elsewhere", "tblsystemprivillenge");
    EXPECT_TRUE(insertReport(sharedContext, "表", Workbook())); // once more makes no second report
    EXPECT_EQ(ledger.query("select * from tblCWSelfReport").rowCount(), 1U);
}

TEST(ReportStore, LoadTakesDefaultsForNulls)
{
    const test::TestLedger ledger;
    Workbook workbook;
    setMark(workbook, "内容");
    ASSERT_TRUE(insertReport(sharedContext, "表", workbook));
    gHeaderText = gFooterText = "旧";
    std::string name;
    Workbook loaded;
    ASSERT_TRUE(loadReport(sharedContext, name, loaded));
    EXPECT_EQ(name, "表");
    EXPECT_EQ(markOf(loaded), "内容");
    const spreadsheet::PrintSettings& print = loaded.sheet(1).settings().print;
    for (const int margin : {print.marginTop, print.marginBottom, print.marginLeft, print.marginRight})
        EXPECT_EQ(margin, 864);
    EXPECT_FALSE(print.landscape);
    EXPECT_EQ(print.header + print.footer + gHeaderText + gFooterText, "");
}

TEST(ReportStore, LoadFillsPageSetupOfEverySheet)
{
    const test::TestLedger ledger;
    MemorySettings settings;
    settings.set("ParamValue", "Value2", "甲公司");
    settings.set("ParamValue", "Value4", "2026/12/31");
    const SettingsInUse inUse(settings);
    Workbook workbook;
    demand(workbook.addSheet("第二页"));
    ASSERT_TRUE(insertReport(sharedContext, "表", workbook));
    ledger.run("update tblCWSelfReport set fTop=1,fBottom=0.5,fLeft=0.75,fRight=0,fDirection=0,"
               "fHeader='/c&COMP',fFooter='/r&printdate/n'");
    std::string name;
    Workbook loaded;
    ASSERT_TRUE(loadReport(sharedContext, name, loaded));
    for (const int index : {1, 2}) {
        const spreadsheet::PrintSettings& print = loaded.sheet(index).settings().print;
        EXPECT_EQ(print.marginTop, 1440);
        EXPECT_EQ(print.marginBottom, 720);
        EXPECT_EQ(print.marginLeft, 1080);
        EXPECT_EQ(print.marginRight, 0);
        EXPECT_TRUE(print.landscape);
        EXPECT_EQ(print.header, "/c甲公司");
        EXPECT_EQ(print.footer, "/r2026/12/31/n");
    }
    EXPECT_EQ(gHeaderText, "/c&COMP"); // as stored
    EXPECT_EQ(gFooterText, "/r&printdate/n");
    for (const char* direction : {"2", "-1", "7"}) {
        ledger.run(std::string("update tblCWSelfReport set fDirection=") + direction);
        ASSERT_TRUE(loadReport(sharedContext, name, loaded));
        EXPECT_TRUE(loaded.sheet(1).settings().print.landscape) << direction;
    }
    ledger.run("update tblCWSelfReport set fDirection=1");
    ASSERT_TRUE(loadReport(sharedContext, name, loaded));
    EXPECT_FALSE(loaded.sheet(1).settings().print.landscape);
}

TEST(ReportStore, LoadThatFailsLeavesNameAndWorkbook)
{
    test::TestLedger ledger;
    std::vector<std::byte> cut = spreadsheet::saveContent(Workbook());
    cut.resize(cut.size() / 2);
    ledger.addReport(1, "截断", cut);
    ledger.addReport(2, "乱码", std::vector<std::byte>(100, std::byte{0x5A}));
    ledger.addReport(3, "空", {});
    Workbook workbook;
    setMark(workbook, "原来");
    std::string name = "原名";
    for (const int id : {1, 2, 3, 99}) {
        gReportId = id;
        gHeaderText = gFooterText = "旧";
        ledger.boxes.said.clear();
        EXPECT_FALSE(loadReport(sharedContext, name, workbook)) << id;
        EXPECT_EQ(name + markOf(workbook), "原名原来") << id;
        ASSERT_EQ(ledger.boxes.said.size(), 1U) << id;
        EXPECT_EQ(ledger.boxes.said[0].icon, Icon::exclamation) << id;
        EXPECT_EQ(gHeaderText + gFooterText, "") << id; // those of the report before would be stored here
        EXPECT_FALSE(gCnn);
    }
    EXPECT_EQ(ledger.boxes.said[0].text, "报表不存在!");
}

TEST(ReportStore, ADeletionOfWhatIsGoneSaysSoAndTakesTheMenuItemAlong)
{
    test::TestLedger ledger;
    const Workbook workbook;
    ASSERT_TRUE(insertReport(sharedContext, "表", workbook));
    ledger.run("delete from tblCWSelfReport"); // another user, who was cut off before the menu item
    ledger.boxes.said.clear();
    EXPECT_FALSE(deleteInfo(sharedContext));
    ASSERT_EQ(ledger.boxes.said.size(), 1U);
    EXPECT_EQ(ledger.boxes.said[0].text, "报表没有删除。\n报表不存在!");
    EXPECT_TRUE(ledger.query("select * from tblsystemprivillenge where fnumber like 'RSelf%'").isEmpty());
    ASSERT_TRUE(insertReport(sharedContext, "表", workbook));
    EXPECT_TRUE(deleteInfo(sharedContext));
    EXPECT_EQ(ledger.boxes.said.size(), 1U);
}

TEST(ReportStore, UpdateKeepsPageSetupAndMenuItem)
{
    const test::TestLedger ledger;
    Workbook workbook;
    ASSERT_TRUE(insertReport(sharedContext, "旧名", workbook));
    ledger.run(
        "update tblCWSelfReport set fTop=1,fBottom=0.25,fDirection=0,fHeader='眉''',fisshow=0,fbillerid='x'");
    setMark(workbook, "新内容");
    ASSERT_TRUE(replaced("新名", workbook));
    const Recordset row = ledger.query("select * from tblCWSelfReport");
    ASSERT_EQ(row.rowCount(), 1U);
    EXPECT_EQ(row.integer(0, "noid"), 1);
    EXPECT_EQ(row.text(0, "fname"), "新名");
    EXPECT_EQ(row.number(0, "fTop"), 1);
    EXPECT_EQ(row.number(0, "fBottom"), 0.25);
    EXPECT_EQ(row.number(0, "fLeft"), 0.6); // a null is kept as its default
    EXPECT_EQ(row.integer(0, "fDirection"), 0);
    EXPECT_EQ(row.text(0, "fHeader"), "眉'");
    EXPECT_EQ(row.text(0, "fFooter"), "");
    EXPECT_EQ(row.integer(0, "fisshow"), 1);
    EXPECT_EQ(row.text(0, "fbillerid"), "wang");
    EXPECT_EQ(ledger.query("select * from tblsystemprivillenge").text(0, "fname"), "旧名");
    EXPECT_EQ(storedMark(1), "新名:新内容");
}

TEST(ReportStore, UpdateThatFailsKeepsTheStoredReport)
{
    test::TestLedger ledger;
    Workbook workbook;
    setMark(workbook, "旧");
    ASSERT_TRUE(insertReport(sharedContext, "表", workbook));
    ledger.database().refuse("insert", "tblCWSelfReport", "满了");
    setMark(workbook, "新");
    EXPECT_FALSE(replaced("表", workbook));
    ASSERT_EQ(ledger.boxes.said.size(), 1U);
    EXPECT_NE(ledger.boxes.said[0].text.find("满了"), std::string::npos);
    EXPECT_EQ(storedMark(1), "表:旧");
}

TEST(ReportStore, DeletesRowAndItemTogetherOrNeither)
{
    test::TestLedger ledger;
    Workbook workbook;
    for (int report = 1; report <= 2; ++report)
        ASSERT_TRUE(insertReport(sharedContext, "表", workbook));
    ledger.database().refuse("delete", "tblsystemprivillenge", "不行");
    EXPECT_FALSE(deleteInfo(sharedContext));
    EXPECT_EQ(ledger.query("select * from tblCWSelfReport").rowCount(), 2U);
    ledger.database().allow("delete", "tblsystemprivillenge");
    gReportId = 1;
    EXPECT_TRUE(deleteInfo(sharedContext));
    EXPECT_EQ(ledger.query("select noid from tblCWSelfReport").text(0, "noid"), "2");
    EXPECT_EQ(ledger.query("select fnumber from tblsystemprivillenge").text(0, "fnumber"), "RSelf2");
}

TEST(ReportStore, ListInOrderOfIds)
{
    const test::TestLedger ledger;
    ledger.run("insert into tbluser values('wang','王会计')");
    ledger.addReport(7, "无人", {});
    ASSERT_TRUE(insertReport(sharedContext, "王的", Workbook()));
    ledger.run("insert into tblCWSelfReport(noid,fname,fisshow,fbillerid) values(3,'隐藏',0,'nobody')");
    const auto reports = storedReports(*openConnection(gConnString));
    ASSERT_EQ(reports.size(), 3U);
    const struct {
        int id;
        const char *name, *savedBy, *shown;
    } expected[] = {{3, "隐藏", "", "不显示"}, {7, "无人", "", "不显示"}, {8, "王的", "王会计", "显示"}};
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(reports[i].id, expected[i].id);
        EXPECT_EQ(reports[i].name, expected[i].name);
        EXPECT_EQ(reports[i].savedBy, expected[i].savedBy);
        EXPECT_STREQ(reports[i].shownText(), expected[i].shown);
    }
}

} // namespace
} // namespace selfreport
