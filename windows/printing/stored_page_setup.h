#pragma once
#include "platform/database/Connection.h"

#include <initializer_list>
#include <string_view>

namespace selfreport {

class PrintedGrid;

/// Changes margins, orientation, header or footer in the report's row by a statement, in one transaction.
/// @throws std::runtime_error, changing nothing, if the row is another report's now
/// @throws DatabaseError
void changeStoredPageSetup(PrintedGrid& grid, Connection& connection, std::string_view statement,
                           std::initializer_list<SqlValue> values = {});

} // namespace selfreport
