#pragma once
#include "platform/database/session/Provider.h"

namespace selfreport {

/// A server's own providers, "Driver=", "DSN=" and the bridge MSDASQL, and strings that name no provider.
extern const Provider odbcProvider;

} // namespace selfreport
