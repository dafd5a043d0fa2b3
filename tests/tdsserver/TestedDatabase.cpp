#include "tests/tdsserver/TestedDatabase.h"

#include "tests/tdsserver/TdsServer.h"

#include <cstdlib>
#include <string_view>

namespace selfreport::tds {

bool testsRunOnServer()
{
    const char* const provider = std::getenv("SELFREPORT_TEST_PROVIDER");
    return provider && std::string_view(provider) == "server";
}

TestedDatabase::TestedDatabase(std::string file)
    : m_file(std::move(file))
{
    if (testsRunOnServer())
        m_server = std::make_unique<TdsServer>(m_file);
}

TestedDatabase::~TestedDatabase() = default;

std::string TestedDatabase::connectionString() const
{
    return m_server ? m_server->connectionString() : embeddedConnectionString();
}

} // namespace selfreport::tds
