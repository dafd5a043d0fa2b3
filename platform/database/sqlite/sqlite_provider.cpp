#include "platform/database/sqlite/sqlite_provider.h"

#include "platform/database/dialect/connection_string.h"
#include "platform/database/dialect/sql_text.h"
#include "platform/database/session/names.h"
#include "platform/database/sqlite/SqliteSession.h"

namespace selfreport {

namespace {

constexpr std::string_view providerName = "SQLite";

bool takes(const ConnectionSettings& settings)
{
    return sameName(settings.value("Provider"), providerName);
}

std::unique_ptr<Session> open(const ConnectionSettings& settings)
{
    const std::string& file = settings.value("Data Source");
    if (file.empty())
        refuseConnectionString("没有给出数据库文件");
    return std::make_unique<SqliteSession>(file);
}

} // namespace

const Provider sqliteProvider{takes, open};

std::string fileConnectionString(std::string_view file)
{
    return "Provider=" + std::string(providerName) + ";Data Source='" + sqlQuoted(file) + "'";
}

} // namespace selfreport
