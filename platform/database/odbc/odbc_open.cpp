#include "platform/database/odbc/odbc_open.h"

#include "platform/database/DatabaseError.h"
#include "platform/database/Session.h"

namespace selfreport {

std::unique_ptr<Session> openOdbcSession(const ConnectionSettings& /*settings*/)
{
    throw DatabaseError(unspecifiedError, "ODBC");
}

} // namespace selfreport
