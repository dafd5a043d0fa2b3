#include "tests/tdsserver/RealServer.h"

#include "platform/database/Connection.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <unistd.h>

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

RealServer::RealServer()
{
    static int count = 0;
    m_name = "selfreport_test_" + std::to_string(::getpid()) + "_" + std::to_string(++count);
    openConnection(givenString())->execute("create database " + m_name);
    const auto connection = openConnection(connectionString());
    for (const char* script : {"tables.sql", "sp_GS_SelfReportAmount.sql", "sp_GS_SelfReportAmounts.sql",
                               "sp_GS_AcctProc.sql", "field_keys.sql"})
        runServerScript(*connection, script);
}

RealServer::~RealServer()
{
    closeIdleSessions();
    try {
        openConnection(givenString())->execute("drop database " + m_name);
    } catch (const std::exception&) {
        // The server went away: nothing is left to be dropped.
    }
}

std::string RealServer::connectionString() const
{
    return givenString() + ";Initial Catalog=" + m_name;
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
