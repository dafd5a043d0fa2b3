#include "catalogue/report_store.h"

#include "catalogue/commit_outcome.h"
#include "catalogue/placeholders.h"
#include "catalogue/report_statements.h"
#include "component/state/mdlMain.h"
#include "component/state/shared_state.h"
#include "platform/settings/SettingsStore.h"
#include "spreadsheet/files/content.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <span>
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

double marginOf(const Recordset& rows, std::string_view column)
{
    return rows.isNull(0, column) ? defaultMargin : rows.number(0, column);
}

StoredPageSetup pageSetupOf(const Recordset& rows)
{
    if (rows.isEmpty())
        return {};
    return {rows.text(0, "fHeader"),
            rows.text(0, "fFooter"),
            marginOf(rows, "fTop"),
            marginOf(rows, "fBottom"),
            marginOf(rows, "fLeft"),
            marginOf(rows, "fRight"),
            rows.isNull(0, "fDirection") ? 1 : rows.integer(0, "fDirection")};
}

bool holdsReport(Connection& connection, const std::string& name, std::span<const std::byte> content)
{
    const Recordset rows = connection.query(reportStatement(gReportId), BinaryColumns::fetched);
    return !rows.isEmpty() && rows.text(0, "fname") == name &&
           std::ranges::equal(rows.binary(0, "fFileContent"), content);
}

int twips(double inches)
{
    constexpr double mostInches = 100; // more fits no paper
    return static_cast<int>(std::lround(std::clamp(inches, 0.0, mostInches) * twipsPerInch));
}

void applyPageSetup(spreadsheet::Workbook& workbook, const StoredPageSetup& setup)
{
    const std::string header = placeholdersFilled(setup.header, settingsStore());
    const std::string footer = placeholdersFilled(setup.footer, settingsStore());
    for (int index = 1; index <= workbook.sheetCount(); ++index)
        workbook.sheet(index).changeSettings([&](spreadsheet::SheetSettings& settings) {
            spreadsheet::PrintSettings& print = settings.print;
            print.marginTop = twips(setup.top);
            print.marginBottom = twips(setup.bottom);
            print.marginLeft = twips(setup.left);
            print.marginRight = twips(setup.right);
            print.landscape = setup.direction != 1;
            print.header = header;
            print.footer = footer;
        });
}

} // namespace

bool insertReport(const std::string& name, const spreadsheet::Workbook& workbook)
{
    return databaseProcedure(Icon::exclamation, [&](Connection& connection) {
        const std::int64_t id = nextNumber(connection, lastReportIdStatement, 1);
        const std::vector<std::byte> content = spreadsheet::saveContent(workbook);
        connection.execute(
            "insert into tblCWSelfReport(noid,fname,fdate,fisshow,fbillerid,fFileContent) "
            "values(?,?,?,?,?,?)",
            {id, name, localNow(), std::int64_t{1}, gLoginUserId, std::span<const std::byte>(content)});
        const std::int64_t item = nextNumber(connection, lastMenuItemStatement, 10);
        connection.execute(insertMenuItemStatement(item, id, name));
        gReportId = static_cast<std::int32_t>(id);
    });
}

bool loadReport(std::string& name, spreadsheet::Workbook& workbook)
{
    return databaseProcedure(Icon::exclamation, [&](Connection& connection) {
        const Recordset rows = connection.query(reportStatement(gReportId), BinaryColumns::fetched);
        if (rows.isEmpty())
            throw std::runtime_error("报表不存在!");
        const StoredPageSetup setup = pageSetupOf(rows);
        spreadsheet::loadContent(workbook, rows.binary(0, "fFileContent"));
        name = rows.text(0, "fname");
        applyPageSetup(workbook, setup);
        gHeaderText = setup.header;
        gFooterText = setup.footer;
    });
}

bool updateReport(const std::string& name, const spreadsheet::Workbook& workbook)
{
    return databaseProcedure(Icon::exclamation, [&](Connection& connection) {
        Transaction transaction(connection);
        const StoredPageSetup kept = pageSetupOf(connection.query(pageSetupStatement(gReportId)));
        connection.execute(deleteReportStatement(gReportId));
        const std::vector<std::byte> content = spreadsheet::saveContent(workbook);
        connection.execute(
            "insert into tblCWSelfReport(noid,fname,fdate,fisshow,fbillerid,fFileContent,fHeader,fFooter,"
            "fTop,fBottom,fLeft,fRight,fDirection) values(?,?,?,?,?,?,?,?,?,?,?,?,?)",
            {std::int64_t{gReportId}, name, localNow(), std::int64_t{1}, gLoginUserId,
             std::span<const std::byte>(content), kept.header, kept.footer, kept.top, kept.bottom, kept.left,
             kept.right, kept.direction});
        commitOrFindOut(transaction, [&](Connection& fresh) { return holdsReport(fresh, name, content); });
    });
}

bool deleteInfo()
{
    return databaseProcedure(Icon::exclamation, [](Connection& connection) {
        Transaction transaction(connection);
        connection.execute(deleteReportStatement(gReportId));
        connection.execute(deleteMenuItemStatement(gReportId));
        commitOrFindOut(transaction, [](Connection& fresh) {
            return fresh.query(pageSetupStatement(gReportId)).isEmpty();
        });
    });
}

} // namespace selfreport
