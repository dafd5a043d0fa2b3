#include "tests/tdsserver/TestedDatabase.h"

#include "tests/tdsserver/RealServer.h"
#include "tests/tdsserver/TdsServer.h"

#include <cstdlib>
#include <regex>

namespace selfreport::tds {

Road road()
{
    const char* const provider = std::getenv("SELFREPORT_TEST_PROVIDER");
    if (provider && std::string_view(provider) == "server")
        return Road::testServer;
    return RealServer::isThere() ? Road::realServer : Road::embedded;
}

TestedDatabase::TestedDatabase(std::string file)
    : m_file(std::move(file))
{
    if (road() == Road::testServer)
        m_server = std::make_unique<TdsServer>(m_file);
    if (road() == Road::realServer) {
        m_real = &RealServer::ofProgram();
        m_real->restore();
    }
}

TestedDatabase::~TestedDatabase() = default;

std::string TestedDatabase::connectionString() const
{
    return m_real     ? m_real->connectionString()
           : m_server ? m_server->connectionString()
                      : embeddedConnectionString();
}

void TestedDatabase::run(const std::string& sql, std::span<const SqlValue> values) const
{
    if (!m_real) {
        openConnection(embeddedConnectionString())->execute(sql, values);
        return;
    }
    static const std::regex bytes("x'([0-9A-Fa-f]*)'");
    m_real->direct().execute(std::regex_replace(sql, bytes, "0x$1"), values);
}

Recordset TestedDatabase::query(const std::string& sql) const
{
    return m_real ? m_real->direct().query(sql, BinaryColumns::fetched)
                  : openConnection(connectionString())->query(sql, BinaryColumns::fetched);
}

void TestedDatabase::rename(const std::string& table, const std::string& name) const
{
    run(m_real ? "exec sp_rename '" + table + "','" + name + "','OBJECT'"
               : "alter table " + table + " rename to " + name);
}

void TestedDatabase::refuse(const std::string& event, const std::string& table, const std::string& text) const
{
    const std::string trigger = "create trigger refuse_" + event + "_" + table;
    run(m_real ? trigger + " on " + table + " for " + event + " as raiserror(N'" + text +
                     "',16,1) rollback transaction"
               : trigger + " before " + event + " on " + table + " begin select raise(abort,'" + text +
                     "'); end");
}

void TestedDatabase::allow(const std::string& event, const std::string& table) const
{
    run("drop trigger refuse_" + event + "_" + table);
}

void TestedDatabase::dropPrimaryKey(const std::string& table) const
{
    if (m_real) {
        const Recordset key = m_real->direct().query(
            "select name as f from sys.objects where type='PK' and parent_object_id=object_id('" + table +
            "')");
        run("alter table " + table + " drop constraint " + key.text(0, "f"));
        return;
    }
    std::string made = openConnection(embeddedConnectionString())
                           ->query("select sql from sqlite_schema where name='" + table + "'")
                           .text(0, "sql");
    const std::string_view key = " primary key";
    made.erase(made.find(key), key.size());
    rename(table, "keyed");
    run(made);
    run("insert into " + table + " select * from keyed");
    run("drop table keyed");
}

std::string_view endlessQuery()
{
    return "select count(*) from tblSelfReportFieldKey as a,tblSelfReportFieldKey as b,tblSelfReportFieldKey "
           "as c,tblSelfReportFieldKey as d,tblSelfReportFieldKey as e,tblSelfReportFieldKey as f,"
           "tblSelfReportFieldKey as g,tblSelfReportFieldKey as h,tblSelfReportFieldKey as i where "
           "a.noid+b.noid+c.noid+d.noid+e.noid+f.noid+g.noid+h.noid+i.noid<>-1";
}

void TestedDatabase::makeEndless(const std::string& table) const
{
    rename(table, table + "Kept");
    run("create view " + table + " as select * from " + table + "Kept where (" + std::string(endlessQuery()) +
        ")>0");
}

void TestedDatabase::makeQuick(const std::string& table) const
{
    if (m_real) // which need not have noticed yet that nobody waits any more
        m_real->endOtherSessions();
    run("drop view " + table);
    rename(table + "Kept", table);
}

} // namespace selfreport::tds
