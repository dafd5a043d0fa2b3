#include "platform/database/providers.h"

#include "platform/database/dialect/connection_string.h"
#include "platform/database/odbc/odbc_provider.h"
#include "platform/database/session/Session.h"
#include "platform/database/sqlite/sqlite_provider.h"

#include <algorithm>
#include <array>

namespace selfreport {

namespace {

/// Another database is a row, and a folder with its session. A string goes to the first that takes it.
constexpr std::array providers{
    &sqliteProvider,
    &odbcProvider,
};

} // namespace

std::unique_ptr<Session> openSession(std::string_view connectionString)
{
    const ConnectionSettings settings = parseConnectionString(connectionString);
    const auto found =
        std::ranges::find_if(providers, [&](const Provider* provider) { return provider->takes(settings); });
    if (found == providers.end())
        refuseConnectionString("不支持的提供者 " + settings.value("Provider"));
    return (*found)->open(settings);
}

} // namespace selfreport
