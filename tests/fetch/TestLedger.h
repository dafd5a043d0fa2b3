#pragma once
#include "platform/database/Connection.h"
#include "platform/database/sqlite/SqliteDatabase.h"
#include "platform/services/RecordingDialogs.h"
#include "state/shared_state.h"
#include "tests/own_files.h"
#include "tests/tdsserver/TestedDatabase.h"

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

namespace selfreport::test {

/// A small ledger in a file of its own, under the shared connection string, with recorded message boxes. The
/// shared connection goes through the provider under test; what a test prepares goes straight into the file.
///
/// 2025, periods 1 and 2, currency RMB. Closing balances of period 2: 1001 100.25, 1002 2000.5, 1122 300 made
/// up of customers 001 (120) and 002 (180), 2001 (credit) 700. Department items exist but no balance has one.
class TestLedger {
public:
    TestLedger()
        : m_file(freshFile())
        , m_database(m_file.string())
        , m_inUse(boxes)
    {
        if (tds::road() == tds::Road::realServer) {
            std::string all;
            for (const std::string& statement : rows())
                all += statement + " ";
            m_database.run(all);
        } else {
            // Filled once: making the tables takes longer than most tests.
            static const Template filled;
            std::filesystem::copy_file(filled.file, m_file,
                                       std::filesystem::copy_options::overwrite_existing);
        }
        gConnString = connectionString();
        gTitle = "测试账套";
        gLoginUserId = "wang";
    }
    ~TestLedger()
    {
        gCnn.reset();
        if (tds::road() != tds::Road::realServer) // where the next test goes on with them
            closeIdleSessions();
        std::filesystem::remove(m_file);
    }
    TestLedger(const TestLedger&) = delete;
    TestLedger& operator=(const TestLedger&) = delete;

    std::string connectionString() const { return m_database.connectionString(); }
    std::string embeddedConnectionString() const { return m_database.embeddedConnectionString(); }
    std::string file() const { return m_file.string(); }

    void run(const std::string& sql) const { database().run(sql); }
    Recordset query(const std::string& sql) const { return database().query(sql); }
    /// For what a test does to tables and not to their rows.
    const tds::TestedDatabase& database() const { return m_database; }

    void addReport(int id, const std::string& name, const std::vector<std::byte>& content) const
    {
        const std::vector<SqlValue> values{std::int64_t{id}, name, std::span<const std::byte>(content)};
        database().run("insert into tblCWSelfReport(noid,fname,fFileContent) values(?,?,?)", values);
    }

    RecordingDialogs boxes;

private:
    static std::filesystem::path freshFile()
    {
        return ownFile("ledger-" + std::to_string(++s_count) + ".db");
    }
    struct Template {
        Template()
            : file(freshFile())
        {
            createDatabase(file.string());
            const auto connection = openConnection("Provider=SQLite;Data Source=" + file.string());
            Transaction transaction(*connection);
            for (const std::string& statement : rows())
                connection->execute(statement);
            transaction.commit();
        }
        ~Template() { std::filesystem::remove(file); }
        std::filesystem::path file;
    };

    /// The statements that fill empty tables.
    static std::vector<std::string> rows()
    {
        std::vector<std::string> statements;
        const auto add = [&](const std::string& into, const std::string& values) {
            statements.push_back("insert into " + into + " values(" + values + ")");
        };
        for (const char* row : {"1,'1001','库存现金',1", "2,'1002','银行存款',1", "3,'1122','应收账款',1",
                                "4,'2001','短期借款',-1"})
            add("tblAccount(fitemid,fNumber,fName,fDirection)", row);
        add("tblCurrency", "1,'RMB','人民币'");
        add("tblItemClass", "1,'客户','tblCustomer'");
        add("tblItemClass", "2,'部门','tblDepartment'");
        add("tblItemClass", "3,'坏表','tbl Customer;'");
        add("tblCustomer", "11,'001','甲公司'");
        add("tblCustomer", "12,'002','乙公司'");
        add("tblDepartment", "21,'01','销售部'");
        add("tblItemDetailV", "101,1,11");
        add("tblItemDetailV", "102,1,12");
        struct Row {
            int account, combination;
            double opening, movement; // of period 1 and of each period, debit-positive
        };
        for (const Row& row : {Row{1, 0, 50.25, 25}, Row{2, 0, 1000.5, 500}, Row{3, 0, 200, 50},
                               Row{3, 101, 100, 10}, Row{3, 102, 100, 40}, Row{4, 0, -700, 0}})
            for (const int period : {1, 2}) {
                const double opening = row.opening + row.movement * (period - 1);
                std::string values = std::to_string(row.account) + "," + std::to_string(row.combination) +
                                     ",2025," + std::to_string(period) + ",1";
                for (const double amount : {opening, row.movement, opening + row.movement})
                    values += "," + numberText(amount) + "," + numberText(amount);
                add("tblAccountBal(faccountid,fDetailId,fYear,fPeriod,fCurrencyid,fBeginBalFor,fBeginBal,"
                    "fDebitFor,fDebit,fEndBalFor,fEndBal)",
                    values);
            }
        return statements;
    }

    std::filesystem::path m_file;
    tds::TestedDatabase m_database;
    DialogsInUse m_inUse;
    static inline int s_count = 0;
};

} // namespace selfreport::test
