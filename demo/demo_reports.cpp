#include "demo/demo_reports.h"

#include "access/DatabaseAccess.h"
#include "demo/demo_report.h"
#include "failures/failure_text.h"
#include "fetch/ReportEvaluation.h"
#include "reports/ReportStore.h"

#include <stdexcept>

namespace selfreport {

namespace demo {

DemoReport startReport(const std::string& name, const std::string& sheet, bool isLandscape)
{
    DemoReport report{name, std::make_unique<spreadsheet::Workbook>(), isLandscape};
    spreadsheet::demand(report.workbook->renameSheet(1, sheet));
    return report;
}

} // namespace demo

namespace {

using demo::DemoReport;
using demo::LedgerName;

constexpr const char* headerText = "/fn\"宋体\"/fz\"9\"/fb0/fi0/fu0/fk0/l编制单位：&Comp/fn\"宋体\"/fz\"9\"/"
                                   "fb0/fi0/fu0/fk0/r截止日期：&EndDate/n";
constexpr const char* footerText =
    "/fn\"宋体\"/fz\"9\"/fb0/fi0/fu0/fk0/l制表人：&operator/fn\"宋体\"/fz\"9\"/fb0/fi0/fu0/fk0/c/p"
    "/fn\"宋体\"/fz\"9\"/fb0/fi0/fu0/fk0/r打印日期：&PrintDate/n";

int latestYear(Connection& connection)
{
    return static_cast<int>(connection.query("select max(fYear) as y from tblAccountBal").integer(0, "y"));
}

std::vector<LedgerName> namesOf(Connection& connection, const std::string& fromAndWhere)
{
    const Recordset rows =
        connection.query("select fNumber,fName from " + fromAndWhere + " order by fNumber");
    std::vector<LedgerName> names;
    for (std::size_t row = 0; row < rows.rowCount(); ++row)
        names.push_back({rows.text(row, "fNumber"), rows.text(row, "fName")});
    return names;
}

std::vector<DemoReport> builtReports(Connection& connection)
{
    const int year = latestYear(connection);
    std::vector<DemoReport> reports;
    reports.push_back(demo::balanceSheet(year));
    reports.push_back(demo::incomeStatement(year));
    reports.push_back(demo::departmentCosts(
        year,
        namesOf(connection,
                "tblAccount where fIsDetail=1 and (fNumber like '6601%' or fNumber like '6602%')"),
        namesOf(connection, "tblDepartment")));
    reports.push_back(demo::customerAnalysis(year, namesOf(connection, "tblCustomer")));
    reports.push_back(demo::goodsTurnover(year, namesOf(connection, "tblGoods")));
    reports.push_back(
        demo::financialSummary(year, reports[0], reports[1], reports[2], reports[3], reports[4]));
    return reports;
}

/// What the page set-up and the header and footer editor store.
void storePageSetup(Connection& connection, std::int32_t report, bool isLandscape)
{
    connection.execute(
        "update tblCWSelfReport set fTop=?,fBottom=?,fLeft=?,fRight=?,fDirection=?,fHeader=?,fFooter=? "
        "where noid=?",
        {0.8, 0.8, 0.6, 0.6, std::int64_t{isLandscape ? 0 : 1}, std::string(headerText),
         std::string(footerText), std::int64_t{report}});
}

/// Stored values show when a report is opened for design, so they are computed before.
void store(const DemoReport& report, DatabaseAccess& database)
{
    ReportEvaluation evaluation(*report.workbook, database);
    evaluation.addSelfFunction();
    evaluation.recalculate();
    RememberedReport stored;
    try {
        ReportStore(database, "admin").insert(report.name, *report.workbook, stored);
    } catch (const std::exception& error) {
        throw std::runtime_error("报表“" + report.name + "”无法保存：" + failures::sentenceOf(error));
    }
    storePageSetup(*OpenedDatabase(database), stored.id, report.isLandscape);
}

} // namespace

void storeDemoReports(const std::string& connectionString)
{
    DatabaseAccess database(connectionString);
    for (const DemoReport& report : builtReports(*openConnection(connectionString)))
        store(report, database);
}

} // namespace selfreport
