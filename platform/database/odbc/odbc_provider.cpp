#include "platform/database/odbc/odbc_provider.h"

#include "platform/database/dialect/connection_string.h"
#include "platform/database/odbc/odbc_string.h"
#include "platform/database/odbc/timed_opening.h"
#include "platform/database/session/names.h"

#include <algorithm>
#include <array>

namespace selfreport {

namespace {

bool takes(const ConnectionSettings& settings)
{
    static constexpr std::array<std::string_view, 4> names{bridgeProvider, "SQLOLEDB", "SQLNCLI",
                                                           "MSOLEDBSQL"};
    const std::string& provider = settings.value("Provider");
    return provider.empty() ||
           std::ranges::any_of(names, [&](std::string_view name) { return beginsWithName(provider, name); });
}

std::unique_ptr<Session> open(const ConnectionSettings& settings)
{
    return openedInTime(odbcTarget(settings));
}

} // namespace

const Provider odbcProvider{takes, open};

} // namespace selfreport
