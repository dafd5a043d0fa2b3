#include "tests/tdsserver/RealServer.h"

#include "platform/database/Connection.h"
#include "text/ascii.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <set>
#include <unistd.h>
#include <utility>

namespace selfreport::tds {

namespace {

std::string givenString()
{
    const char* const given = std::getenv("SELFREPORT_TEST_SERVER");
    return given ? given : "";
}

} // namespace

bool RealServer::isThere()
{
    return !givenString().empty();
}

RealServer& RealServer::ofProgram()
{
    static RealServer only;
    return only;
}

RealServer::RealServer()
{
    static int count = 0;
    m_name = "selfreport_test_" + std::to_string(::getpid()) + "_" + std::to_string(++count);
    openConnection(givenString())->execute("create database " + m_name + " collate Chinese_PRC_CI_AS");
    install();
}

RealServer::~RealServer()
{
    m_direct.reset();
    closeIdleSessions();
    try {
        openConnection(givenString())->execute("drop database " + m_name);
    } catch (const std::exception&) {
        // The server went away, or somebody is left who looks at it: what is left goes with the server.
    }
}

std::string RealServer::connectionString() const
{
    return givenString() + ";Initial Catalog=" + m_name;
}

Connection& RealServer::direct()
{
    const auto answers = [&] {
        try {
            return m_direct && m_direct->query("select 1 as f").rowCount() == 1;
        } catch (const DatabaseError&) {
            return false;
        }
    };
    if (!answers()) { // the server may have been killed meanwhile
        m_direct = openConnection(connectionString() + ";Application Name=preparing");
        m_direct->execute("set lock_timeout 5000");
    }
    return *m_direct;
}

void RealServer::install()
{
    for (const char* script :
         {"tables.sql", "indexes.sql", "sp_GS_SelfReportAmount.sql", "sp_GS_SelfReportAmounts.sql",
          "sp_GS_AcctProc.sql", "sp_GS_VoucherProc.sql", "field_keys.sql"})
        runServerScript(direct(), script);
    m_objects = objects();
}

std::vector<RealServer::Object> RealServer::objects()
{
    const Recordset found = direct().query(
        "select name,type,object_id,isnull(object_name(parent_object_id),'') as fparent from sys.objects "
        "where type in ('U','V','P','PK','TR') and is_ms_shipped=0 order by object_id");
    std::vector<Object> all;
    for (std::size_t row = 0; row < found.rowCount(); ++row)
        all.push_back({found.text(row, "name"), std::string(ascii::trimmed(found.text(row, "type"), " ")),
                       found.text(row, "object_id"), found.text(row, "fparent")});
    return all;
}

/// Drops what a test has made, and tables whose key it has taken.
void RealServer::dropChanged(const std::vector<Object>& now)
{
    const auto holds = [](const std::vector<Object>& all, const Object& object) {
        return std::ranges::find(all, object) != all.end();
    };
    std::set<std::string> dropped;
    const auto drop = [&](const std::string& word, const std::string& name) {
        if (dropped.insert(name).second)
            direct().execute("drop " + word + " " + name);
    };
    for (const auto& [type, word] : {std::pair("TR", "trigger"), std::pair("V", "view"),
                                     std::pair("P", "procedure"), std::pair("U", "table")})
        for (const Object& object : now)
            if (object.type == type && !holds(m_objects, object))
                drop(word, object.name);
    for (const Object& key : m_objects)
        if (key.type == "PK" && !holds(now, key) &&
            std::ranges::find(now, key.parent, &Object::name) != now.end())
            drop("table", key.parent);
}

void RealServer::restore()
{
    try {
        restoreUnlessLocked();
    } catch (const DatabaseError&) { // by what a test has left behind, which may run for minutes
        endOtherSessions();
        restoreUnlessLocked();
    }
}

void RealServer::endOtherSessions()
{
    const std::string own = direct().query("select @@spid as f").text(0, "f");
    const Recordset sessions = direct().query("exec sp_who");
    for (std::size_t row = 0; row < sessions.rowCount(); ++row)
        if (sessions.text(row, "dbname") == m_name && sessions.text(row, "spid") != own)
            try {
                direct().execute("kill " + sessions.text(row, "spid"));
            } catch (const DatabaseError&) {
                // It has ended by itself meanwhile.
            }
}

void RealServer::restoreUnlessLocked()
{
    if (const std::vector<Object> now = objects(); now != m_objects) {
        dropChanged(now);
        install();
    }
    std::string emptied;
    for (const char* table :
         {"tblAccountBal", "tblQtyBalance", "tblProfitAndLoss", "tblAccount", "tblAccountHSDetail",
          "tblCurrency", "tblItemClass", "tblItemDetailV", "tblDepartment", "tblCustomer", "tblSupplier",
          "tblGoods", "tblVoucher", "tblVoucherEntry", "tbluser", "tblsystemprivillenge", "tblCWSelfReport",
          "tblSelfReportFieldKey"})
        emptied += std::string("delete from ") + table + " ";
    direct().execute(emptied);
    runServerScript(direct(), "field_keys.sql");
}

void runServerScript(Connection& connection, const std::string& name)
{
    std::ifstream stream(std::filesystem::path(SERVER_SCRIPTS) / name);
    std::string batch;
    for (std::string line; std::getline(stream, line);) {
        if (line != "go") {
            batch += line + "\n";
            continue;
        }
        connection.execute(batch);
        batch.clear();
    }
}

} // namespace selfreport::tds
