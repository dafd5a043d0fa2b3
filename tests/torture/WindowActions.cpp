#include "tests/torture/WindowActions.h"

#include "reports/report_list.h"
#include "spreadsheet/files/content/content.h"
#include "state/fetch_procedures.h"
#include "state/mdlMain.h"
#include "windows/printing/page_setup_statements.h"
#include "windows/printing/PrintedGrid.h"
#include "windows/printing/stored_page_setup.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

namespace selfreport::torture {

namespace {

std::vector<std::byte> contentWith(const std::string& text)
{
    spreadsheet::Workbook workbook;
    workbook.sheet(1).setText({1, 1}, text);
    return spreadsheet::saveContent(workbook);
}

struct NewWorkbook : spreadsheet::Workbook {
    NewWorkbook() { sheet(1).setText({1, 1}, "新"); }
};

/// The grid of a designer that has the report open.
struct OpenGrid : PrintedGrid {
    explicit OpenGrid(const RememberedReport& report)
        : PrintedGrid(sharedContext)
        , remembered(report)
    {
        sharedContext.report.id = report.id;
    }
    spreadsheet::Workbook& workbook() override { return book; }
    spreadsheet::CellRange selectedBlock() const override { return {1, 1, 1, 1}; }
    std::string reportName() const override { return "甲表"; }
    int diagnosticsCount() const override { return 0; }
    std::string failedFetches() const override { return {}; }
    void goToFailedFetch() override {}
    void tellStatus(std::string_view) override {}
    void closeDesigner() override {}
    std::function<bool(Connection&)> ownershipOfRow() const override
    {
        return [report = remembered](Connection& open) { return isRowOf(open, report); };
    }

    spreadsheet::Workbook book;
    RememberedReport remembered;
};

std::string wordsOf(const SaveOutcome& outcome)
{
    if (std::holds_alternative<ReportSaved>(outcome))
        return "保存";
    const auto* const conflict = std::get_if<SaveConflict>(&outcome);
    if (!conflict)
        return "";
    switch (conflict->kind) {
    case SaveConflict::Kind::savedMeanwhile:
        return "问：他人已保存";
    case SaveConflict::Kind::deleted:
        return "问：已被删除";
    case SaveConflict::Kind::otherReport:
        break;
    }
    return "问：编号属于另一张报表";
}

std::string list(OpenedReport&)
{
    const auto reports =
        sharedContext.database.read<std::vector<ListedReport>>(Icon::exclamation, storedReports);
    return reports ? std::to_string(reports->size()) + "张" : "";
}

std::string load(OpenedReport&)
{
    std::string name;
    spreadsheet::Workbook workbook;
    return loadReport(sharedContext, name, workbook)
               ? name + workbook.sheet(1).displayText({1, 1})
               : workbook.sheet(1).displayText({1, 1}); // stays as it was
}

std::string insert(OpenedReport&)
{
    return insertReport(sharedContext, "乙表", NewWorkbook()) ? "保存" : "";
}

std::string update(OpenedReport& reports)
{
    return wordsOf(updateReport(sharedContext, "甲表", NewWorkbook(), reports.remembered));
}

std::string remove(OpenedReport&)
{
    return deleteInfo(sharedContext) ? "删除" : "";
}

std::string storePageSetup(OpenedReport& reports)
{
    OpenGrid grid(reports.remembered);
    const auto isStored = [](const StoredPageSetup& setup) { return setup.top == 3; };
    return changeStoredPageSetup(grid, savePageSetupStatement(1, {1, 2, 3, 4}, true), {}, isStored) ? "存入"
                                                                                                    : "";
}

std::string storeHeader(OpenedReport& reports)
{
    OpenGrid grid(reports.remembered);
    const auto isStored = [](const StoredPageSetup& setup) { return setup.header == "新页眉"; };
    return changeStoredPageSetup(grid, saveHeaderStatement(1, false), {"新页眉"}, isStored) ? "存入" : "";
}

std::string open(OpenedReport&)
{
    try {
        const bool isOpen = openDB();
        closeDB();
        return isOpen ? "打开" : "";
    } catch (const WorkCancelled&) {
        return "";
    }
}

std::string fetch(OpenedReport&)
{
    try {
        const LedgerAnswer answer = changeAcctInfo({"1122|客户|001", "2", "", "2025", "1", "2"});
        const std::string why = answer.failure.substr(0, answer.failure.find("："));
        return answer.amount && why.empty() ? numberText(*answer.amount) : why;
    } catch (const WorkCancelled&) {
        return "";
    }
}

} // namespace

const std::vector<WindowAction>& windowActions()
{
    static const std::vector<WindowAction> all{
        {"list", list},          {"load", load},     {"insert", insert},
        {"update", update},      {"delete", remove}, {"page setup", storePageSetup},
        {"header", storeHeader}, {"open", open},     {"fetch", fetch},
    };
    return all;
}

std::string OpenedReport::everything() const
{
    const Recordset rows = ledger().query("select noid,fHeader,fTop from tblCWSelfReport order by noid");
    std::string all = stored();
    for (std::size_t row = 0; row < rows.rowCount(); ++row)
        if (!rows.isNull(row, "fHeader") || !rows.isNull(row, "fTop"))
            all += rows.text(row, "noid") + "{" + rows.text(row, "fHeader") + "," + rows.text(row, "fTop") +
                   "} ";
    return all;
}

std::string OpenedReport::told() const
{
    std::string all;
    for (const auto& box : ledger().boxes.said) {
        const std::string text = box.text.substr(0, box.text.find('\n'));
        all += (all.empty() ? "" : "|") + text.substr(0, text.find("："));
    }
    return all;
}

bool otherUserDoes(const OpenedReport& reports, const std::string& what)
{
    const std::vector<std::byte> content = contentWith("他");
    const SqliteDatabase database(reports.ledger().file());
    sqlite3_busy_timeout(database.handle(), 0);
    try {
        database.run("begin immediate");
        const auto run = [&](const char* sql) {
            const std::vector<SqlValue> values{std::span<const std::byte>(content)};
            SqliteStatement statement = database.prepare(sql);
            statement.bind(values);
            statement.step();
        };
        if (what == "save") {
            run("update tblCWSelfReport set fbillerid='li',fdate='2030-01-01 08:00:00',fFileContent=? where "
                "noid=1");
        } else if (what == "delete") {
            database.run("delete from tblCWSelfReport where noid=1");
            database.run("delete from tblsystemprivillenge where fnumber='RSelf1'");
        } else {
            run("insert into tblCWSelfReport(noid,fname,fFileContent) select ifnull(max(noid),0)+1,'丙表',? "
                "from "
                "tblCWSelfReport");
            database.run(
                "insert into tblsystemprivillenge(fitemid,fnumber,fname,fparentid) select "
                "ifnull(max(fitemid),0)+10,'RSelf'||(select max(noid) from tblCWSelfReport),'丙表',521 "
                "from tblsystemprivillenge");
        }
        database.run("commit");
        return true;
    } catch (const DatabaseError&) {
        return false;
    }
}

} // namespace selfreport::torture
