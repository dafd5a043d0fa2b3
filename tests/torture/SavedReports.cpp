#include "tests/torture/SavedReports.h"

#include "spreadsheet/files/content/content.h"

#include <gtest/gtest.h>

namespace selfreport::torture {

namespace {

struct WorkbookWith : spreadsheet::Workbook {
    explicit WorkbookWith(const std::string& text)
    {
        for (int row = 1; row <= 200; ++row) // more than a page of the file
            sheet(1).setText({1, row}, row == 1 ? text : text + std::to_string(row * 7919));
    }
};

std::string firstCell(const Recordset& rows, std::size_t row)
{
    try {
        spreadsheet::Workbook workbook;
        spreadsheet::loadContent(workbook, rows.binary(row, "fFileContent"));
        return workbook.sheet(1).displayText({1, 1});
    } catch (const std::exception&) {
        return "损坏";
    }
}

bool isDone(const SaveOutcome& outcome)
{
    return std::holds_alternative<ReportSaved>(outcome);
}

} // namespace

SavedReports::SavedReports()
{
    EXPECT_TRUE(insertReport(sharedContext, "甲表", WorkbookWith("旧"), &remembered));
}

void SavedReports::goThrough(const std::string& connectionString)
{
    loadThrough(connectionString);
    closeIdleSessions();
}

void SavedReports::loadThrough(const std::string& connectionString)
{
    gConnString = connectionString;
    std::string name;
    spreadsheet::Workbook workbook;
    EXPECT_TRUE(loadReport(sharedContext, name, workbook, &remembered));
}

std::string SavedReports::stored() const
{
    const Recordset rows = m_ledger.query("select * from tblCWSelfReport order by noid");
    const Recordset items = m_ledger.query("select * from tblsystemprivillenge order by fitemid");
    std::string all;
    for (std::size_t row = 0; row < rows.rowCount(); ++row)
        all += rows.text(row, "noid") + rows.text(row, "fname") + ":" + firstCell(rows, row) + " ";
    for (std::size_t row = 0; row < items.rowCount(); ++row)
        all += items.text(row, "fnumber") + items.text(row, "fname") + " ";
    return all;
}

std::string SavedReports::damage() const
{
    const auto fresh = openConnection(m_ledger.embeddedConnectionString());
    std::string all;
    for (const char* table : {"tblCWSelfReport", "tblsystemprivillenge"}) {
        const std::string found =
            fresh->query(std::string("pragma integrity_check(") + table + ")").text(0, "integrity_check");
        all += found == "ok" ? "" : found;
    }
    return all;
}

const std::vector<WayOfSaving>& waysOfSaving()
{
    static const std::vector<WayOfSaving> all{
        {"insert", [](SavedReports&) {},
         [](SavedReports&) { return insertReport(sharedContext, "乙表", WorkbookWith("新")); },
         "1甲表:旧 RSelf1甲表 ", "1甲表:旧 2乙表:新 RSelf1甲表 RSelf2乙表 "},
        {"first insert",
         [](SavedReports& reports) {
             reports.ledger().run("delete from tblCWSelfReport");
             reports.ledger().run("delete from tblsystemprivillenge");
         },
         [](SavedReports&) { return insertReport(sharedContext, "乙表", WorkbookWith("新")); }, "",
         "1乙表:新 RSelf1乙表 "},
        {"replace", [](SavedReports&) {},
         [](SavedReports& reports) {
             return isDone(updateReport(sharedContext, "甲表改", WorkbookWith("新"), reports.remembered));
         },
         "1甲表:旧 RSelf1甲表 ", "1甲表改:新 RSelf1甲表 "},
        {"restore",
         [](SavedReports& reports) {
             reports.ledger().run("delete from tblCWSelfReport");
             reports.ledger().run("delete from tblsystemprivillenge");
         },
         [](SavedReports& reports) {
             return isDone(recreateReport(sharedContext, "甲表", WorkbookWith("新"), reports.remembered));
         },
         "", "1甲表:新 RSelf1甲表 "},
        {"delete", [](SavedReports&) {}, [](SavedReports&) { return deleteInfo(sharedContext); },
         "1甲表:旧 RSelf1甲表 ", ""},
    };
    return all;
}

void expectWholeAndTold(const WayOfSaving& way, SavedReports& reports, bool done)
{
    const std::string stored = reports.stored();
    EXPECT_TRUE(stored == way.before || stored == way.after) << stored;
    EXPECT_EQ(reports.damage(), "");
    const auto& said = reports.ledger().boxes.said;
    ASSERT_EQ(said.size(), done ? 0U : 1U);
    if (done) {
        EXPECT_EQ(stored, way.after);
        return;
    }
    const std::string& text = said[0].text;
    const bool tellsUndone = text.find("没有保存") != std::string::npos ||
                             text.starts_with("报表没有删除。") || text == "数据库文件不存在或读取错误!";
    const bool tellsUnknown = text.find("无法确定") != std::string::npos;
    EXPECT_TRUE(tellsUndone || tellsUnknown) << text;
    EXPECT_TRUE(tellsUnknown || stored == way.before) << stored << text;
}

} // namespace selfreport::torture
