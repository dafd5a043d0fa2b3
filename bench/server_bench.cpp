// Times fetches and the demo reports on a real server: the one that SELFREPORT_TEST_SERVER names, a
// connection string of a user who may create databases.
#include "access/DatabaseAccess.h"
#include "bench/acct_cells.h"
#include "bench/bench_table.h"
#include "demo/demo_reports.h"
#include "demo/ledger/demo_ledger.h"
#include "fetch/ReportEvaluation.h"
#include "platform/database/Connection.h"
#include "platform/database/dialect/connection_string.h"
#include "platform/database/dialect/sql_text.h"
#include "platform/database/odbc/odbc_string.h"
#include "platform/database/odbc/odbc_text.h"
#include "reports/ReportStore.h"
#include "tests/tdsserver/RealServer.h"

#include <filesystem>
#include <sqlext.h>
#include <unistd.h>

using namespace selfreport;

namespace {

constexpr std::size_t callsInBatch = 200;

/// The rows of a table of the embedded demo ledger, 200 with a statement.
void copyTable(Connection& from, Connection& to, const std::string& table)
{
    const Recordset rows = from.query("select * from " + table);
    std::string values;
    for (std::size_t row = 0; row < rows.rowCount(); ++row) {
        for (std::size_t column = 0; column < rows.columnCount(); ++column)
            values += (column > 0       ? ","
                       : values.empty() ? "("
                                        : ",(") +
                      (rows.isNull(row, column) ? "null" : "N'" + sqlQuoted(rows.text(row, column)) + "'");
        values += ")";
        if ((row + 1) % 200 == 0 || row + 1 == rows.rowCount())
            to.execute("insert into " + table + " values" + std::exchange(values, ""));
    }
}

void copyDemoLedger(const std::string& target)
{
    const auto file =
        std::filesystem::temp_directory_path() / ("server_bench-" + std::to_string(::getpid()) + ".db");
    createDemoLedger(file.string());
    {
        const auto from = openConnection("Provider=SQLite;Data Source=" + file.string());
        const auto to = openConnection(target);
        Transaction transaction(*to);
        for (const char* table :
             {"tblAccount", "tblCurrency", "tblItemClass", "tblItemDetailV", "tblDepartment", "tblCustomer",
              "tblSupplier", "tblGoods", "tbluser", "tblsystemprivillenge", "tblAccountHSDetail",
              "tblAccountBal", "tblQtyBalance", "tblProfitAndLoss"})
            copyTable(*from, *to, table);
        transaction.commit();
    }
    closeIdleSessions();
    std::filesystem::remove(file);
}

/// A program that knows nothing of reports: a connection, and statements whose rows are read to their end.
class PlainProgram {
public:
    explicit PlainProgram(const std::string& target)
    {
        SQLAllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &m_environment);
        SQLSetEnvAttr(m_environment, SQL_ATTR_ODBC_VERSION,
                      reinterpret_cast<SQLPOINTER>(std::intptr_t{SQL_OV_ODBC3}), 0);
        SQLAllocHandle(SQL_HANDLE_DBC, m_environment, &m_connection);
        std::vector<SQLWCHAR> text = odbcText(odbcTarget(parseConnectionString(target)).connectionString);
        if (!SQL_SUCCEEDED(SQLDriverConnectW(m_connection, nullptr, text.data(),
                                             static_cast<SQLSMALLINT>(text.size()), nullptr, 0, nullptr,
                                             SQL_DRIVER_NOPROMPT)))
            throw std::runtime_error("the plain program has no connection");
    }
    ~PlainProgram()
    {
        SQLDisconnect(m_connection);
        SQLFreeHandle(SQL_HANDLE_DBC, m_connection);
        SQLFreeHandle(SQL_HANDLE_ENV, m_environment);
    }
    PlainProgram(const PlainProgram&) = delete;
    PlainProgram& operator=(const PlainProgram&) = delete;

    /// @return  rows read
    std::size_t run(const std::string& batch)
    {
        SQLHSTMT statement = SQL_NULL_HSTMT;
        SQLAllocHandle(SQL_HANDLE_STMT, m_connection, &statement);
        std::vector<SQLWCHAR> text = odbcText(batch);
        std::size_t rows = 0;
        SQLRETURN result = SQLExecDirectW(statement, text.data(), static_cast<SQLINTEGER>(text.size()));
        for (; SQL_SUCCEEDED(result); result = SQLMoreResults(statement)) {
            SQLSMALLINT columns = 0;
            SQLNumResultCols(statement, &columns);
            char amount[64];
            for (; columns > 0 && SQL_SUCCEEDED(SQLFetch(statement)); ++rows)
                SQLGetData(statement, 1, SQL_C_CHAR, amount, sizeof amount, nullptr);
        }
        SQLFreeHandle(SQL_HANDLE_STMT, statement);
        if (result != SQL_NO_DATA)
            throw std::runtime_error("the plain program's batch failed");
        return rows;
    }

private:
    SQLHENV m_environment = SQL_NULL_HENV;
    SQLHDBC m_connection = SQL_NULL_HDBC;
};

std::vector<std::string> plainBatches(const std::vector<LedgerArguments>& fetches)
{
    std::vector<std::string> batches;
    for (std::size_t at = 0; at < fetches.size(); ++at) {
        const AccountExpression expression = parseAccountExpression(fetches[at].account);
        const std::vector<std::optional<std::string>> tables(expression.qualifiers.size(), "tblCustomer");
        std::string& batch = at % callsInBatch == 0 ? batches.emplace_back("declare @r int") : batches.back();
        batch += " exec @r=sp_GS_AcctProc";
        const char* separator = " N'";
        for (const ProcedureParameter& text :
             ledgerProcedureCall(fetches[at], ledgerQuery(expression, tables)).parameters) {
            batch += separator + sqlQuoted(text.value) + "'";
            separator = ",N'";
        }
    }
    return batches;
}

void benchCells(BenchTable& table, const std::string& target)
{
    const std::vector<LedgerArguments> fetches = fetchesOfAReport(3);
    spreadsheet::Workbook workbook;
    putAcctCells(workbook, fetches, 1000);
    DatabaseAccess database(target);
    ReportEvaluation evaluation(workbook, database);
    evaluation.addSelfFunction();
    const double cold = bestSeconds(
        1, [] {}, [&] { evaluation.recalculate(); });
    const double warm = bestSeconds(
        5, [] {}, [&] { evaluation.recalculate(); });
    if (const auto failed = firstFailed(evaluation.diagnostics()))
        throw std::runtime_error(failed->reason);
    PlainProgram program(target);
    const std::vector<std::string> batches = plainBatches(fetches);
    const double plain = bestSeconds(
        6, [] {},
        [&] {
            for (const std::string& batch : batches)
                program.run(batch);
        });
    std::printf("   (recalculated in %.3f s, the first time %.3f s; plain program %.3f s)\n", warm, cold,
                plain);
    table.row("1,000 Acct cells, 400 distinct, times a plain program's two batches", warm / plain, 1.1, "x");
}

void runReport(const std::string& target, int id)
{
    DatabaseAccess database(target);
    spreadsheet::Workbook workbook;
    RememberedReport unwanted;
    ReportStore(database, {}).load(id, workbook, unwanted);
    ReportEvaluation evaluation(workbook, database);
    evaluation.addSelfFunction();
    evaluation.startRun();
    if (const auto failed = firstFailed(evaluation.diagnostics()))
        throw std::runtime_error(failed->reason);
}

void benchReports(BenchTable& table, const std::string& target)
{
    storeDemoReports(target);
    int id = 0;
    for (const char* name :
         {"资产负债表", "利润表", "部门费用明细表", "应收账款客户分析表", "商品数量金额表", "财务摘要"}) {
        ++id;
        const double cold = bestSeconds(1, closeIdleSessions, [&] { runReport(target, id); });
        const double warm = bestSeconds(
            3, [] {}, [&] { runReport(target, id); });
        std::printf("   (in a new session %.3f s)\n", cold);
        table.row(name, warm, 0.5, "s");
    }
}

} // namespace

int main()
{
    if (!tds::RealServer::isThere()) {
        std::printf("SELFREPORT_TEST_SERVER names no server: nothing was measured\n");
        return 0;
    }
    try {
        BenchTable table("on a server");
        const tds::RealServer server;
        copyDemoLedger(server.connectionString());
        benchCells(table, server.connectionString());
        benchReports(table, server.connectionString());
        return table.finish();
    } catch (const std::exception& error) {
        std::printf("failed: %s\n", error.what());
        return 2;
    }
}
