#pragma once
#include "platform/database/Connection.h"
#include "reports/page_setup.h"

#include <functional>
#include <string>
#include <vector>

namespace selfreport {

class PrintedGrid;

/// Changes margins, orientation, header or footer in the row of the report that is open, by a statement in
/// one transaction. False after telling the user why it was not done, or that nobody knows: the row is
/// gone or another report's now, the database failed, the user cancelled.
/// @param isStored  whether the row holds what the statement writes
/// @param refusal   finds out why the values do not fit their columns; owns what it uses
bool changeStoredPageSetup(PrintedGrid& grid, const std::string& statement,
                           const std::vector<SqlValue>& values,
                           const std::function<bool(const StoredPageSetup&)>& isStored,
                           const std::function<std::string(Connection&)>& refusal = {});

/// Writes a whole page set-up into the row of the report that is open; likewise.
bool storePageSetup(PrintedGrid& grid, const StoredPageSetup& setup);

} // namespace selfreport
