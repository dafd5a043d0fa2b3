#pragma once
#include "access/DatabaseAccess.h"

#include <functional>
#include <string_view>

namespace selfreport {

// The shared context's way to the database, under the names that the suite knows.

/// Makes sure that `gCnn` holds an open connection to `gConnString`. False after telling the user why it
/// failed; no object is kept then. Within one recalculation a failed opening is told once and not tried
/// again. @throws WorkCancelled if the user waits for it and cancels
bool openDB();

/// Closes `gCnn` and leaves none. Nothing happens if there is none.
void closeDB();

/// Runs `work`, which owns what it uses, on the open connection and closes it. False if the user cancelled,
/// or after telling why it failed: the error's own description under `icon`. What `work` left open in a
/// transaction is rolled back.
bool databaseProcedure(Icon icon, std::function<void(Connection&)> work);

/// Shows a box titled `gTitle`; within one recalculation each text once.
void tellUser(Icon icon, std::string_view text);

} // namespace selfreport
