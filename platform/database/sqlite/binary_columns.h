#pragma once
#include <string>

namespace selfreport {

class SqliteDatabase;

/// A query that gives the same rows but an empty binary value for each column that is declared binary, so
/// that stored reports of many megabytes are not read for a list of their names. The query itself if it has
/// none.
/// @param sql  in the embedded database's own SQL. @throws DatabaseError if it is refused
std::string withoutBinaryColumns(const SqliteDatabase& database, const std::string& sql);

} // namespace selfreport
