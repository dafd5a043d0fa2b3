#pragma once
#include "platform/database/session/Provider.h"

#include <string>
#include <string_view>

namespace selfreport {

/// "Provider=SQLite;Data Source=<file>": the embedded database.
extern const Provider sqliteProvider;

/// The connection string of the embedded database in that file.
std::string fileConnectionString(std::string_view file);

} // namespace selfreport
