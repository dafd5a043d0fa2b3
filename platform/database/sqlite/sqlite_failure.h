#pragma once
#include "platform/database/session/DatabaseError.h"

struct sqlite3;

namespace selfreport {

/// What an embedded database's failure is called: our words for its kind, the library's own behind them.
/// @param code  a result code of the library, extended or not
std::string sqliteReason(int code, const char* said);

/// The error of the call that has just failed.
DatabaseError sqliteError(sqlite3* database);

} // namespace selfreport
