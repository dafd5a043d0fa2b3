#pragma once
#include <memory>

namespace selfreport {

class Session;
struct ConnectionSettings;

/// Opens a session on a server through ODBC. @throws DatabaseError
std::unique_ptr<Session> openOdbcSession(const ConnectionSettings& settings);

} // namespace selfreport
