#include "catalogue/report_store.h"

#include "catalogue/placeholders.h"
#include "component/state/mdlMain.h"
#include "component/state/shared_state.h"
#include "formula/content_bytes.h"
#include "formula/ledger_query.h"
#include "platform/database/sql_text.h"
#include "platform/settings/SettingsStore.h"

#include <cmath>
#include <cstdint>
#include <stdexcept>
#include <vector>

namespace selfreport {

namespace {

constexpr double defaultMargin = 0.6; // inches
constexpr double twipsPerInch = 1440;

struct StoredPageSetup {
    std::string header, footer;
    double top = defaultMargin, bottom = defaultMargin, left = defaultMargin, right = defaultMargin; // inches
    std::int64_t direction = 1;
};

std::int64_t nextNumber(Connection& connection, std::string_view statement, std::int64_t step)
{
    const Recordset rows = connection.query(statement);
    return rows.isEmpty() ? step : rows.integer(0, "noid1") + step;
}

std::string deleteReportStatement()
{
    return "delete from tblCWSelfReport where noid=" + std::to_string(gReportId);
}

StoredPageSetup keptPageSetup(Connection& connection)
{
    const Recordset rows =
        connection.query("select isnull(fHeader,'') as fHeader,isnull(fFooter,'') as fFooter "
                         ",isnull(fLeft,0.6) as fLeft,isnull(fRight,0.6) as fRight"
                         ",isnull(fTop,0.6) as fTop,isnull(fBottom,0.6) as fBottom "
                         ",isnull(fDirection,1) as fDirection from tblCWSelfReport where noid=" +
                         std::to_string(gReportId));
    if (rows.isEmpty())
        return {};
    return {rows.text(0, "fHeader"),      rows.text(0, "fFooter"), rows.number(0, "fTop"),
            rows.number(0, "fBottom"),    rows.number(0, "fLeft"), rows.number(0, "fRight"),
            rows.integer(0, "fDirection")};
}

double marginOf(const Recordset& rows, std::string_view column)
{
    return rows.isNull(0, column) ? defaultMargin : rows.number(0, column);
}

int twips(double inches)
{
    return static_cast<int>(std::lround(inches * twipsPerInch));
}

spreadsheet::PrintSettings withPageSetup(spreadsheet::PrintSettings print, const Recordset& rows)
{
    print.marginTop = twips(marginOf(rows, "fTop"));
    print.marginBottom = twips(marginOf(rows, "fBottom"));
    print.marginLeft = twips(marginOf(rows, "fLeft"));
    print.marginRight = twips(marginOf(rows, "fRight"));
    print.landscape = !rows.isNull(0, "fDirection") && rows.integer(0, "fDirection") != 1;
    print.header = placeholdersFilled(rows.text(0, "fHeader"), settingsStore());
    print.footer = placeholdersFilled(rows.text(0, "fFooter"), settingsStore());
    return print;
}

void applyPageSetup(spreadsheet::Workbook& workbook, const Recordset& rows)
{
    for (int index = 1; index <= workbook.sheetCount(); ++index)
        workbook.sheet(index).changeSettings([&](spreadsheet::SheetSettings& settings) {
            settings.print = withPageSetup(settings.print, rows);
        });
}

} // namespace

bool insertReport(const std::string& name, const spreadsheet::Workbook& workbook)
{
    return databaseProcedure(Icon::exclamation, [&](Connection& connection) {
        const std::int64_t id =
            nextNumber(connection, "select isnull(max(noid),0) as noid1 from tblCWSelfReport", 1);
        const std::vector<std::byte> content = spreadsheet::saveContent(workbook);
        connection.execute(
            "insert into tblCWSelfReport(noid,fname,fdate,fisshow,fbillerid,fFileContent) "
            "values(?,?,?,?,?,?)",
            {id, name, localNow(), std::int64_t{1}, gLoginUserId, std::span<const std::byte>(content)});
        const std::int64_t item =
            nextNumber(connection, "select isnull(max(fitemid),0) as noid1 from tblsystemprivillenge ", 10);
        connection.execute(
            "insert into tblsystemprivillenge(fitemid,fnumber,fname,fisdetail,fparentid) values(" +
            std::to_string(item) + ",'RSelf" + std::to_string(id) + "','" + sqlQuoted(trimmed(name)) +
            "',1,521)");
        gReportId = static_cast<std::int32_t>(id);
    });
}

bool loadReport(std::string& name, spreadsheet::Workbook& workbook)
{
    return databaseProcedure(Icon::exclamation, [&](Connection& connection) {
        const Recordset rows = connection.query(
            "select * from tblCWSelfReport where noid=" + std::to_string(gReportId), BinaryColumns::fetched);
        if (rows.isEmpty())
            throw std::runtime_error("报表不存在!");
        spreadsheet::loadContent(workbook, rows.binary(0, "fFileContent"));
        name = rows.text(0, "fname");
        applyPageSetup(workbook, rows);
        gHeaderText = rows.text(0, "fHeader");
        gFooterText = rows.text(0, "fFooter");
    });
}

bool updateReport(const std::string& name, const spreadsheet::Workbook& workbook)
{
    return databaseProcedure(Icon::exclamation, [&](Connection& connection) {
        Transaction transaction(connection);
        const StoredPageSetup kept = keptPageSetup(connection);
        connection.execute(deleteReportStatement());
        const std::vector<std::byte> content = spreadsheet::saveContent(workbook);
        connection.execute(
            "insert into tblCWSelfReport(noid,fname,fdate,fisshow,fbillerid,fFileContent,fHeader,fFooter,"
            "fTop,fBottom,fLeft,fRight,fDirection) values(?,?,?,?,?,?,?,?,?,?,?,?,?)",
            {std::int64_t{gReportId}, name, localNow(), std::int64_t{1}, gLoginUserId,
             std::span<const std::byte>(content), kept.header, kept.footer, kept.top, kept.bottom, kept.left,
             kept.right, kept.direction});
        transaction.commit();
    });
}

bool deleteInfo()
{
    return databaseProcedure(Icon::exclamation, [](Connection& connection) {
        Transaction transaction(connection);
        connection.execute(deleteReportStatement());
        connection.execute("delete from tblsystemprivillenge where fnumber='RSelf" +
                           std::to_string(gReportId) + "' ");
        transaction.commit();
    });
}

} // namespace selfreport
