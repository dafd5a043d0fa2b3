#include "reports/report_saving.h"

#include "state/report_procedures.h"
#include "tests/fetch/TestLedger.h"
#include "tests/tdsserver/StatementWatch.h"

#include <array>
#include <atomic>
#include <gtest/gtest.h>
#include <set>
#include <string_view>
#include <thread>

namespace selfreport {
namespace {

using Kind = SaveConflict::Kind;
using spreadsheet::Workbook;

struct WorkbookWith : Workbook {
    explicit WorkbookWith(const std::string& text) { sheet(1).setText({1, 1}, text); }
};

/// A ledger with a stored report that somebody has open.
struct OpenReport {
    OpenReport() { EXPECT_TRUE(insertReport(sharedContext, "利润表", WorkbookWith("旧"), &remembered)); }

    SaveOutcome save(const std::string& text, const std::string& name = "利润表")
    {
        return updateReport(sharedContext, name, WorkbookWith(text), remembered);
    }
    std::string stored() const
    {
        std::string all;
        const Recordset rows = ledger.query("select * from tblCWSelfReport order by noid");
        for (std::size_t row = 0; row < rows.rowCount(); ++row) {
            Workbook workbook;
            gReportId = static_cast<std::int32_t>(rows.integer(row, "noid"));
            std::string name;
            all += loadReport(sharedContext, name, workbook)
                       ? std::to_string(gReportId) + name + ":" + workbook.sheet(1).displayText({1, 1}) + " "
                       : "? ";
        }
        return all;
    }

    const test::TestLedger ledger;
    RememberedReport remembered;
};

/// Takes the primary keys of the tables that saving writes away.
void dropKeys(const test::TestLedger& ledger)
{
    for (const char* table : {"tblCWSelfReport", "tblsystemprivillenge"})
        ledger.database().dropPrimaryKey(table);
}

std::optional<Kind> kindOf(const SaveOutcome& outcome)
{
    const auto* const conflict = std::get_if<SaveConflict>(&outcome);
    return conflict ? std::optional(conflict->kind) : std::nullopt;
}

TEST(ReportSaving, WhatIsNoLongerRememberedIsLeftAlone)
{
    const struct {
        const char* change;
        std::optional<Kind> conflict;
    } cases[] = {
        {"update tblCWSelfReport set fdate='2009-12-31 08:05:09'", Kind::savedMeanwhile},
        {"update tblCWSelfReport set fbillerid='li'", Kind::savedMeanwhile},
        {"update tblCWSelfReport set fbillerid=null", Kind::savedMeanwhile},
        {"update tblCWSelfReport set fFileContent=x'00'", Kind::savedMeanwhile},
        {"update tblCWSelfReport set fFileContent=null", Kind::savedMeanwhile},
        {"update tblCWSelfReport set fname='利润表 '", Kind::otherReport},
        {"update tblCWSelfReport set fname='别的',fdate='2009-12-31'", Kind::otherReport},
        {"delete from tblCWSelfReport", Kind::deleted},
        {"update tblCWSelfReport set noid=2", Kind::deleted},
        {"update tblCWSelfReport set fTop=2,fDirection=0,fHeader='眉',fFooter='脚'", std::nullopt},
        {"update tblsystemprivillenge set fname='改名'", std::nullopt},
    };
    for (const auto& c : cases) {
        OpenReport open;
        open.ledger.run(c.change);
        const std::string before = open.stored();
        const SaveOutcome outcome = open.save("新");
        EXPECT_EQ(kindOf(outcome), c.conflict) << c.change;
        if (c.conflict)
            EXPECT_EQ(open.stored(), before) << c.change;
        else
            EXPECT_EQ(open.stored(), "1利润表:新 ") << c.change;
    }
}

TEST(ReportSaving, OwnSavesAreRemembered)
{
    OpenReport open;
    for (const char* text : {"一", "二", "三"}) // in one moment, as fast as it goes
        EXPECT_EQ(kindOf(open.save(text)), std::nullopt);
    EXPECT_EQ(kindOf(open.save("四", "改名")), std::nullopt);
    EXPECT_EQ(open.stored(), "1改名:四 ");
    RememberedReport loaded;
    std::string name;
    Workbook workbook;
    ASSERT_TRUE(loadReport(sharedContext, name, workbook, &loaded));
    EXPECT_EQ(loaded.version, open.remembered.version); // exactly as the database holds it
}

TEST(ReportSaving, ASaveOfTheSameUserAndLengthInTheSameMomentIsAnotherVersion)
{
    OpenReport open;
    RememberedReport second = open.remembered;
    for (int round = 0; round < 20; ++round) {
        ASSERT_EQ(kindOf(updateReport(sharedContext, "利润表", WorkbookWith("甲"), second)), std::nullopt);
        // no column of times rounds whole hundredths, up to those of a save that follows
        ASSERT_LE(second.version->savedAt.size(), std::string_view("2009-12-31 08:05:09.12").size());
        ASSERT_EQ(kindOf(open.save("乙")), Kind::savedMeanwhile) << round;
        open.remembered = second;
    }
}

TEST(ReportSaving, ConflictTellsWhoAndWhen)
{
    OpenReport open;
    open.ledger.run("insert into tbluser values('li','李会计')");
    open.ledger.run("update tblCWSelfReport set fbillerid='li',fdate='2026-12-31 08:05:09'");
    const SaveOutcome outcome = open.save("新");
    ASSERT_EQ(kindOf(outcome), Kind::savedMeanwhile);
    const auto& conflict = std::get<SaveConflict>(outcome);
    EXPECT_EQ(conflict.savedBy, "李会计");
    EXPECT_EQ(conflict.found->savedAt, "2026-12-31 08:05:09");
    open.ledger.run("drop table tbluser"); // or it may not be read
    EXPECT_EQ(std::get<SaveConflict>(open.save("新")).savedBy, "li");
}

TEST(ReportSaving, WithoutAKeyTwoRowsOfOneIdAreNotReplaced)
{
    OpenReport open;
    dropKeys(open.ledger);
    EXPECT_EQ(kindOf(open.save("新")), std::nullopt);
    open.ledger.run("insert into tblCWSelfReport select * from tblCWSelfReport");
    EXPECT_EQ(kindOf(open.save("新新")), Kind::otherReport);
    EXPECT_EQ(open.ledger.query("select * from tblCWSelfReport").rowCount(), 2U);
}

TEST(ReportSaving, ADeletedReportComesBackWhole)
{
    OpenReport open;
    open.ledger.run("update tblCWSelfReport set fTop=1,fDirection=0,fHeader='眉'");
    EXPECT_EQ(kindOf(open.save("中")), std::nullopt);
    EXPECT_EQ(kindOf(recreateReport(sharedContext, "利润表", WorkbookWith("新"), open.remembered)),
              Kind::savedMeanwhile);
    EXPECT_TRUE(deleteInfo(sharedContext));
    ASSERT_EQ(kindOf(open.save("新")), Kind::deleted);
    EXPECT_EQ(kindOf(recreateReport(sharedContext, " 利润表", WorkbookWith("新"), open.remembered)),
              std::nullopt);
    EXPECT_EQ(open.stored(), "1 利润表:新 ");
    const Recordset row = open.ledger.query("select * from tblCWSelfReport");
    EXPECT_EQ(row.number(0, "fTop"), 1);
    EXPECT_EQ(row.integer(0, "fDirection"), 0);
    EXPECT_EQ(row.text(0, "fHeader"), "眉");
    const Recordset item = open.ledger.query("select * from tblsystemprivillenge");
    ASSERT_EQ(item.rowCount(), 1U);
    EXPECT_EQ(item.text(0, "fnumber") + item.text(0, "fname"), "RSelf1利润表");
    EXPECT_EQ(kindOf(open.save("再")), std::nullopt); // what came back is remembered

    open.ledger.run("delete from tblCWSelfReport"); // the item stays: there is no second one
    EXPECT_EQ(kindOf(recreateReport(sharedContext, "利润表", WorkbookWith("新"), open.remembered)),
              std::nullopt);
    EXPECT_EQ(open.ledger.query("select * from tblsystemprivillenge").rowCount(), 1U);
}

/// A second saver begins when the first has checked and is about to delete.
TEST(ReportSaving, ASecondSaverBetweenCheckAndDeleteWaitsAndIsAsked)
{
    OpenReport open;
    RememberedReport secondRemembers = open.remembered;
    std::optional<SaveConflict> secondMet;
    std::atomic<bool> secondIsDone = false;
    std::thread second;
    const tds::StatementWatch watch("delete from tblCWSelfReport", [&] {
        second = std::thread([&] {
            const auto content = std::to_array({std::byte{7}});
            secondMet = replaceReport(*openConnection(gConnString), secondRemembers, {"别名", "li", content});
            secondIsDone = true;
        });
        std::this_thread::sleep_for(std::chrono::milliseconds(150));
        EXPECT_FALSE(secondIsDone); // the row's lock is held
    });
    closeIdleSessions(); // so that the watch sees all statements
    EXPECT_EQ(kindOf(open.save("新")), std::nullopt);
    ASSERT_TRUE(second.joinable()) << "the first saver deleted nothing";
    second.join();
    ASSERT_TRUE(secondMet);
    EXPECT_EQ(secondMet->kind, Kind::savedMeanwhile);
    EXPECT_EQ(open.stored(), "1利润表:新 ");
}

/// Ids and items of what many writers store at once are all different, with keys and without.
TEST(ReportSaving, ManyWritersStoreReportsOfTheirOwn)
{
    for (const bool hasKeys : {true, false}) {
        const test::TestLedger ledger;
        if (!hasKeys)
            dropKeys(ledger);
        constexpr int writers = 6;
        constexpr int reportsEach = 5;
        std::atomic<int> failures = 0;
        std::vector<std::thread> threads;
        for (int writer = 0; writer < writers; ++writer)
            threads.emplace_back([&, writer] {
                const auto content = std::to_array({static_cast<std::byte>(writer)});
                for (int report = 0; report < reportsEach; ++report)
                    try {
                        RememberedReport stored;
                        storeReport(*openConnection(gConnString), stored, {"表", "wang", content},
                                    std::nullopt);
                    } catch (const DatabaseError& error) {
                        ++failures;
                        ADD_FAILURE() << error.description;
                    }
            });
        for (std::thread& thread : threads)
            thread.join();
        EXPECT_EQ(failures, 0);
        for (const char* count : {"select count(distinct noid) as n from tblCWSelfReport",
                                  "select count(distinct fitemid) as n from tblsystemprivillenge",
                                  "select count(distinct fnumber) as n from tblsystemprivillenge"})
            EXPECT_EQ(ledger.query(count).integer(0, "n"), writers * reportsEach) << count << hasKeys;
    }
}

/// An id that is taken again and again, as the key says, or the count where there is no key: told in the end,
/// with ours before the driver's words.
TEST(ReportSaving, RepeatingIsBounded)
{
    const struct {
        const char* table;
        const char* embedded; ///< what happens at each insert
        const char* server;
        bool hasKeys;
    } cases[] = {
        {"tblCWSelfReport", "insert into clash values(1);", "insert into clash values(1)", true},
        {"tblCWSelfReport", "insert into tblCWSelfReport(noid) values(new.noid);",
         "if exists(select 1 from inserted where fname is not null) insert into tblCWSelfReport(noid) select "
         "noid from inserted",
         false},
        {"tblsystemprivillenge",
         "insert into tblsystemprivillenge(fitemid,fnumber) values(new.fitemid,'RSelf9');",
         "if exists(select 1 from inserted where fname is not null) insert into tblsystemprivillenge(fitemid,"
         "fnumber) select fitemid,'RSelf9' from inserted",
         false},
    };
    for (const auto& c : cases) {
        test::TestLedger ledger;
        ledger.run("create table clash(n int primary key)");
        ledger.run("insert into clash values(1)");
        if (!c.hasKeys)
            dropKeys(ledger);
        const std::string trigger = "create trigger taken ";
        ledger.run(tds::road() == tds::Road::realServer
                       ? trigger + "on " + c.table + " for insert as " + c.server
                       : trigger + "before insert on " + c.table + " begin " + c.embedded + " end");
        EXPECT_FALSE(insertReport(sharedContext, "表", Workbook())) << c.embedded;
        ASSERT_EQ(ledger.boxes.said.size(), 1U);
        EXPECT_TRUE(ledger.boxes.said[0].text.starts_with("其他用户正在保存报表, 报表没有保存。"))
            << ledger.boxes.said[0].text;
        EXPECT_TRUE(ledger.query("select * from tblsystemprivillenge").isEmpty());
        EXPECT_TRUE(ledger.query("select * from tblCWSelfReport").isEmpty());
    }
}

} // namespace
} // namespace selfreport
