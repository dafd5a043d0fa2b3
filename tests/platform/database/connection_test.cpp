#include "platform/database/Connection.h"

#include "platform/database/sqlite/binary_columns.h"
#include "platform/database/sqlite/sqlite_failure.h"
#include "tests/CommaLocale.h"
#include "tests/platform/database/database_folder.h"

#include <cstring>
#include <fstream>
#include <sqlite3.h>
#include <thread>

namespace selfreport {
namespace {

using testing::DatabaseFolder;

/// The error's description; "" if the work does not fail.
template <typename Work>
std::string failureOf(const Work& work)
{
    try {
        work();
        return "";
    } catch (const DatabaseError& error) {
        return error.description;
    }
}

TEST(EmbeddedConnection, BadFilesAreNamedAndNothingIsCreated)
{
    const DatabaseFolder folder;
    std::ofstream(folder.file("empty"));
    std::ofstream(folder.file("text")) << std::string(5000, 'x');
    std::ofstream(folder.file("short")) << "SQLite format 3";
    std::filesystem::create_directory(folder.file("folder"));
    for (const char* name : {"missing", "empty", "text", "short", "folder"}) {
        try {
            openConnection(folder.connectionString(name));
            ADD_FAILURE() << name;
        } catch (const DatabaseError& error) {
            EXPECT_EQ(error.number, unspecifiedError);
            EXPECT_NE(error.description.find(folder.file(name)), std::string::npos) << error.description;
        }
    }
    EXPECT_FALSE(std::filesystem::exists(folder.file("missing")));
    EXPECT_EQ(std::filesystem::file_size(folder.file("empty")), 0U);
    EXPECT_THROW(createDatabase(folder.file("text")), DatabaseError) << "never over another file";
    EXPECT_THROW(createDatabase(folder.file("no/folder")), DatabaseError);
    EXPECT_EQ(std::filesystem::file_size(folder.file("text")), 5000U);
}

/// A driver's or a library's own text stands behind words of ours.
TEST(Connection, FailuresAreToldInChineseFirst)
{
    const DatabaseFolder folder;
    const auto connection = folder.createTested();
    connection->execute("insert into tblCurrency values(1,'RMB','人民币')");
    for (const char* statement :
         {"select * from nowhere", "select nothing from tblCurrency", "select from where",
          "insert into tblCurrency values(1,'RMB','人民币')", "insert into nowhere values(1)"}) {
        const std::string said = failureOf([&] { connection->execute(statement); });
        ASSERT_FALSE(said.empty()) << statement;
        EXPECT_GE(static_cast<unsigned char>(said[0]), 0x80) << said;
    }
}

/// Another program saves while a long proof reads.
TEST(EmbeddedConnection, ReadsOfOneMomentKeepNobodyFromWriting)
{
    const DatabaseFolder folder;
    const auto reader = folder.create();
    const auto writer = openConnection(folder.connectionString());
    const auto name = [&] { return reader->query("select fname from tblCurrency").text(0, "fname"); };
    writer->execute("insert into tblCurrency values(1,'RMB','人民币')");
    {
        const ReadingOfOneMoment reading(*reader);
        EXPECT_TRUE(reading.isOne());
        EXPECT_EQ(name(), "人民币");
        EXPECT_EQ(failureOf([&] { writer->execute("update tblCurrency set fname='元'"); }), "");
        EXPECT_EQ(name(), "人民币");
    }
    EXPECT_EQ(name(), "元");
}

TEST(EmbeddedConnection, KindsOfFailuresHaveWordsOfTheirOwn)
{
    EXPECT_EQ(sqliteReason(SQLITE_BUSY_SNAPSHOT, "database is locked"),
              "数据库正被其他程序占用，请稍后再试：database is locked");
    EXPECT_EQ(sqliteReason(SQLITE_FULL, nullptr), "磁盘已满");
    EXPECT_EQ(sqliteReason(SQLITE_ERROR, "no such table: a"), "数据库不能执行语句：no such table: a");
}

TEST(Connection, ValuesComeBackAsTheyWereBound)
{
    const DatabaseFolder folder;
    const auto connection = folder.createTested();
    const SqlDateTime moment{2009, 12, 31, 8, 5, 9};
    connection->execute("insert into tblCWSelfReport(noid,fname,fdate,fTop,fHeader) values(?,?,?,?,?)",
                        {std::int64_t{7}, " O'Brien’s 报表 ", moment, 0.6, std::monostate()});
    const Recordset rows = connection->query("select * from tblCWSelfReport where noid=?", {std::int64_t{7}});
    EXPECT_EQ(rows.integer(0, "NOID"), 7);
    EXPECT_EQ(rows.text(0, "fName"), " O'Brien’s 报表 ");
    EXPECT_EQ(rows.text(0, "fdate"), "2009-12-31 08:05:09");
    EXPECT_EQ(rows.text(0, "ftop"), "0.6");
    EXPECT_TRUE(rows.isNull(0, "fheader"));
    EXPECT_EQ(rows.text(0, "fheader"), "");
    EXPECT_EQ(rows.number(0, "fheader"), 0);
    EXPECT_THROW(rows.text(0, "nosuch"), DatabaseError);
    EXPECT_THROW(rows.text(1, "noid"), DatabaseError);
    EXPECT_THROW(rows.number(0, "fname"), DatabaseError);
    EXPECT_THROW(connection->query("select ?", std::initializer_list<SqlValue>{}), DatabaseError);
    EXPECT_THROW(connection->execute("update tblCWSelfReport set fTop=?", {"breit"}), DatabaseError);
    EXPECT_EQ(connection->execute("update tblCWSelfReport set fTop='0.75'"), 1);
    EXPECT_EQ(connection->query("select fTop from tblCWSelfReport").number(0, "fTop"), 0.75);
}

TEST(Connection, ValuesKnowNoLocale)
{
    for (const CommaLocale::Reach reach : {CommaLocale::Reach::process, CommaLocale::Reach::thread}) {
        const CommaLocale locale(reach);
        const DatabaseFolder folder;
        const auto work = [&folder] {
            const auto connection = folder.createTested();
            connection->execute("insert into tblCWSelfReport(noid,fname,fTop,fLeft) values(7,'1,5',?,0.75)",
                                {1234.5});
            const Recordset rows = connection->query("select fname,fTop,fLeft,fTop+fLeft as s, 0.1 as t "
                                                     "from tblCWSelfReport where fTop=?",
                                                     {1234.5});
            ASSERT_EQ(rows.rowCount(), 1U);
            EXPECT_EQ(rows.text(0, "fname"), "1,5");
            EXPECT_EQ(rows.text(0, "fTop"), "1234.5");
            EXPECT_EQ(rows.number(0, "fLeft"), 0.75);
            EXPECT_EQ(rows.number(0, "s"), 1235.25);
            EXPECT_EQ(rows.number(0, "t"), 0.1);
        };
        reach == CommaLocale::Reach::process ? std::thread(work).join() : work(); // drivers run on either
        EXPECT_TRUE(countsWithComma());
    }
}

TEST(Connection, ComputedColumnsKeepTheirKind)
{
    const DatabaseFolder folder;
    const auto connection = folder.createTested();
    const std::string longText(9000, 'x');
    const Recordset rows =
        connection->query("select 9007199254740993 as big, -7 as small, 0.1 as fraction, N'现金𠀀' as "
                          "text, '" +
                              longText + "' as longText, null as missing, '' as empty",
                          BinaryColumns::fetched);
    EXPECT_EQ(rows.integer(0, "big"), 9007199254740993);
    EXPECT_EQ(rows.integer(0, "small"), -7);
    EXPECT_EQ(rows.number(0, "fraction"), 0.1);
    EXPECT_EQ(rows.text(0, "text"), "现金𠀀");
    EXPECT_EQ(rows.text(0, "longText"), longText);
    EXPECT_TRUE(rows.isNull(0, "missing"));
    EXPECT_FALSE(rows.isNull(0, "empty"));
    connection->execute(
        "insert into tblAccountBal(faccountid,fDetailId,fYear,fPeriod,fCurrencyid,fEndBal,fDebit) "
        "values(1,0,2025,1,1,-9999999999999.99,0.01)");
    const Recordset amounts = connection->query("select fEndBal,fDebit,fCredit from tblAccountBal");
    EXPECT_EQ(amounts.number(0, "fEndBal"), -9999999999999.99);
    EXPECT_EQ(amounts.text(0, "fDebit"), "0.01");
    EXPECT_EQ(amounts.number(0, "fCredit"), 0);
}

TEST(Recordset, NumbersReadAsPlainText)
{
    struct Case {
        double number;
        const char* text;
    };
    for (const Case& c : {Case{0.1 + 0.2, "0.30000000000000004"},
                          {100000, "100000"},
                          {-1.5, "-1.5"},
                          {-0.0, "0"},
                          {123456789012345.5, "123456789012345.5"},
                          {1e22, "1e+22"},
                          {1e-7, "0.0000001"}})
        EXPECT_EQ(numberText(c.number), c.text);
}

TEST(Connection, SixtyFourMebibytesTravelWhole)
{
    const DatabaseFolder folder;
    const auto connection = folder.createTested();
    std::vector<std::byte> content(64U << 20U);
    for (std::size_t at = 0; at < content.size(); ++at)
        content[at] = static_cast<std::byte>(at * 31 >> 3);
    connection->execute("insert into tblCWSelfReport(noid,fFileContent) values(1,?)",
                        {std::span<const std::byte>(content)});
    connection->execute("insert into tblCWSelfReport(noid,fFileContent) values(2,?)",
                        {std::span<const std::byte>()});
    const char* sql = "select fFileContent from tblCWSelfReport order by noid";
    const Recordset rows = connection->query(sql, BinaryColumns::fetched);
    const auto read = rows.binary(0, "fFileContent");
    ASSERT_EQ(read.size(), content.size());
    EXPECT_EQ(std::memcmp(read.data(), content.data(), read.size()), 0);
    EXPECT_FALSE(rows.isNull(1, "fFileContent"));
    EXPECT_EQ(rows.binary(1, "fFileContent").size(), 0U);
    const Recordset left = connection->query(sql);
    EXPECT_FALSE(left.isNull(0, "fFileContent"));
    EXPECT_THROW(left.binary(0, "fFileContent"), DatabaseError);
}

TEST(Connection, SessionsAreReusedOutOfAnyTransaction)
{
    const DatabaseFolder folder;
    folder.createTested();
    const auto open = [&] { return openConnection(folder.testedConnectionString()); };
    const DatabaseCounters before = databaseCounters();
    {
        const auto connection = open();
        connection->begin();
        connection->execute("insert into tbluser values('a','A')");
        EXPECT_TRUE(connection->inTransaction());
    } // given up in the middle
    EXPECT_TRUE(open()->query("select * from tbluser").isEmpty());
    EXPECT_FALSE(open()->inTransaction());
    const DatabaseCounters after = databaseCounters();
    EXPECT_EQ(after.opens - before.opens, 3);
    EXPECT_EQ(after.closes - before.closes, 3);
    EXPECT_EQ(after.sessions - before.sessions, 0);
}

TEST(EmbeddedConnection, ASessionWithATemporaryTableIsNotReused)
{
    const DatabaseFolder folder;
    folder.create()->execute("create temp table left_behind(a)");
    EXPECT_THROW(openConnection(folder.connectionString())->query("select * from left_behind"),
                 DatabaseError);
}

TEST(EmbeddedConnection, ASessionWhoseFileWasReplacedIsReplacedUnseen)
{
    const DatabaseFolder folder;
    folder.create("other")->execute("insert into tbluser values('new','N')");
    folder.create()->execute("insert into tbluser values('old','O')");
    const auto user = [&] {
        return openConnection(folder.connectionString())
            ->query("select fuserid from tbluser")
            .text(0, "fuserid");
    };
    EXPECT_EQ(user(), "old");
    std::filesystem::rename(folder.file("other"), folder.file());
    EXPECT_EQ(user(), "new");
    std::filesystem::remove(folder.file());
    EXPECT_NE(failureOf(user).find(folder.file()), std::string::npos);
}

TEST(Connection, TransactionsEndWithTheirScope)
{
    const DatabaseFolder folder;
    const auto connection = folder.createTested();
    const auto users = [&] { return connection->query("select * from tbluser").rowCount(); };
    {
        const Transaction transaction(*connection);
        connection->execute("insert into tbluser values('a','A')");
        EXPECT_EQ(users(), 1U);
    }
    EXPECT_EQ(users(), 0U);
    {
        Transaction transaction(*connection);
        connection->execute("insert into tbluser values('a','A')");
        EXPECT_THROW(connection->execute("insert into tbluser values('A ','again')"), DatabaseError);
        transaction.commit();
    }
    EXPECT_EQ(users(), 1U);
}

TEST(Connection, ARunningStatementCanBeCancelled)
{
    const DatabaseFolder folder;
    closeIdleSessions();
    const auto connection = folder.createTested();
    std::jthread canceller([&](const std::stop_token& stop) {
        while (!stop.stop_requested()) {
            connection->cancel();
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
    });
    EXPECT_THROW(connection->query(tds::endlessQuery()), DatabaseError);
    canceller.request_stop();
    canceller.join();
    EXPECT_EQ(connection->query("select 1 as one").integer(0, "one"), 1);
}

TEST(Connection, TheModulesStatementsRun)
{
    const DatabaseFolder folder;
    const auto connection = folder.createTested();
    connection->execute("insert into tbluser(fuserid,fusername) values('wang','王会计')");
    connection->execute(
        "insert into tblCWSelfReport(noid,fname,fdate,fbillerid) values(7,'表',getdate(),'WANG')");
    EXPECT_EQ(
        connection->query("select isnull(max(noid),0) as noid1 from tblcwselfreport").integer(0, "NOID1"), 7);
    const auto list =
        connection->query("select a.*,b.fusername as fbilleridname from tblCWSelfReport  as a left outer "
                          "join tbluser as b on a.fbillerid=b.fuserid order by a.noid ");
    EXPECT_EQ(list.text(0, "fbilleridname"), "王会计") << "user ids compare without letter case";
    EXPECT_EQ(connection->query("select isnull(fTop,0.6) as fTop from tblCWSelfReport where noid=7")
                  .text(0, "ftop"),
              "0.6");
    EXPECT_EQ(connection->query("select * from tblSelfReportFieldKey order by noid").rowCount(), 14U);
    EXPECT_EQ(connection->execute("delete from tblCWSelfReport where noid=7"), 1);
    EXPECT_EQ(connection->execute("delete from tblsystemprivillenge where fnumber='RSelf7' "), 0);
}

TEST(EmbeddedConnection, ListsDoNotReadBinaryColumns)
{
    const DatabaseFolder folder;
    const auto connection = folder.create();
    const std::vector<std::byte> content(1U << 20U, std::byte{7});
    for (std::int64_t id = 1; id <= 40; ++id)
        connection->execute("insert into tblCWSelfReport(noid,fname,fFileContent) values(?,?,?)",
                            {id, "报表" + std::to_string(id), std::span<const std::byte>(content)});
    const std::string sql =
        "select a.*,b.fusername as fbilleridname from tblCWSelfReport  as a left outer join tbluser "
        "as b on a.fbillerid=b.fuserid order by a.noid desc -- newest first";
    const Recordset list = connection->query(sql);
    const Recordset whole = connection->query(sql, BinaryColumns::fetched);
    ASSERT_EQ(list.columnCount(), whole.columnCount());
    ASSERT_EQ(list.rowCount(), 40U);
    for (std::size_t column = 0; column < list.columnCount(); ++column)
        EXPECT_EQ(list.columnName(column), whole.columnName(column));
    for (std::size_t row = 0; row < 40; ++row)
        EXPECT_EQ(list.integer(row, "noid"), 40 - static_cast<std::int64_t>(row));
    EXPECT_THROW(list.binary(0, "fFileContent"), DatabaseError);
    EXPECT_EQ(whole.binary(39, "fFileContent").size(), content.size());

    const SqliteDatabase database(folder.file());
    const auto pagesRead = [&](const std::string& text) {
        int read = 0;
        int unused = 0;
        sqlite3_db_release_memory(database.handle());
        sqlite3_db_status(database.handle(), SQLITE_DBSTATUS_CACHE_MISS, &read, &unused, 1);
        database.prepare(text).rows(BinaryColumns::left);
        sqlite3_db_status(database.handle(), SQLITE_DBSTATUS_CACHE_MISS, &read, &unused, 1);
        return read;
    };
    EXPECT_LT(pagesRead(withoutBinaryColumns(database, sql)), 200);
    EXPECT_GT(pagesRead(sql), 2000) << "each spills over a hundred pages or more";
    EXPECT_EQ(withoutBinaryColumns(database, "select fFileContent,fFileContent from tblCWSelfReport"),
              "select fFileContent,fFileContent from tblCWSelfReport");
}

} // namespace
} // namespace selfreport
