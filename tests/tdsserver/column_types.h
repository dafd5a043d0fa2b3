#pragma once
#include "tests/tdsserver/Reply.h"

#include <string>
#include <vector>

struct sqlite3_stmt;

namespace selfreport::tds {

/// Runs the statement to its end and gives its columns the types that the server's tables have: the declared
/// ones, or for computed columns those of their values.
ResultSet typedRows(sqlite3_stmt* statement);

/// Type of a computed column.
TypeInfo computedType(const std::vector<std::vector<Value>>& rows, std::size_t column);

} // namespace selfreport::tds
