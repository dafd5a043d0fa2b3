#pragma once

struct sqlite3;

namespace selfreport {

/// Gives an open database the server's rules: collation "chinese", `like` under it, getdate(), len().
/// @throws DatabaseError
void registerServerFunctions(sqlite3* database);

} // namespace selfreport
