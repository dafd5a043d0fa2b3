#include "tests/tdsserver/OwnServer.h"

#include "platform/database/dialect/connection_string.h"

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <thread>
#include <unistd.h>

namespace selfreport::tds {

namespace {

std::string given(const char* variable)
{
    const char* const value = std::getenv(variable);
    return value ? value : "";
}

std::string folder()
{
    return given("SELFREPORT_TEST_SERVER_FOLDER");
}

void tellProgram(const std::string& verb)
{
    const std::string command =
        "'" + given("SELFREPORT_TEST_SERVER_PROGRAM") + "' " + verb + " '" + folder() + "'";
    if (std::system(command.c_str()) != 0)
        throw std::runtime_error("failed: " + command);
}

/// Its other port is the one behind the first.
std::string otherSide(const std::string& connectionString)
{
    const std::string server = parseConnectionString(connectionString).value("Data Source");
    const int port = std::stoi(server.substr(server.find(',') + 1)) + 1;
    return "'" + folder() + "/pg/bin/psql' -X -q -v ON_ERROR_STOP=1 -h '" + folder() + "' -p " +
           std::to_string(port) + " -U tsqlserver babelfish_db >/dev/null";
}

} // namespace

bool serverIsOurs()
{
    return !folder().empty() && !given("SELFREPORT_TEST_SERVER_PROGRAM").empty();
}

void killServer()
{
    tellProgram("kill");
}

void startServerAgain()
{
    tellProgram("again");
}

LockedTable::LockedTable(const std::string& connectionString, const std::string& table)
    : m_pipe(::popen(otherSide(connectionString).c_str(), "w"))
{
    using namespace std::chrono_literals;
    const std::string schema = parseConnectionString(connectionString).value("Initial Catalog") + "_dbo";
    const std::string sign =
        (std::filesystem::temp_directory_path() / ("locked-" + std::to_string(::getpid()))).string();
    say("begin; lock table " + schema + "." + table + " in access exclusive mode;\n\\! touch '" + sign +
        "'\n");
    for (int waited = 0; !std::filesystem::exists(sign) && waited < 1000; ++waited)
        std::this_thread::sleep_for(10ms);
    if (!std::filesystem::remove(sign))
        throw std::runtime_error(table + " was not locked");
}

LockedTable::~LockedTable()
{
    say("rollback;\n");
    ::pclose(m_pipe);
}

void LockedTable::say(const std::string& text)
{
    std::fputs(text.c_str(), m_pipe);
    std::fflush(m_pipe);
}

} // namespace selfreport::tds
