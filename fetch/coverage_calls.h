#pragma once
#include "fetch/coverage.h"

#include <optional>
#include <vector>

namespace spreadsheet {
class Workbook;
}

namespace selfreport {

class DatabaseAccess;

/// The `Acct` calls of one sheet.
struct SheetCalls {
    std::vector<CellCall>
        calls;        ///< those that its cells make, by column and row; each as often as it is made
    int unusable = 0; ///< calls whose arguments cannot be used
};

/// Finds the calls by evaluating a copy of the workbook with the ledger's figures, so that computed arguments
/// count as what they are and a branch that is not taken counts as nothing. The workbook stays as it is.
/// @param sheet  index, from 1
/// @return  nothing if the waiting user cancelled
/// @throws spreadsheet::ContentError if the workbook is too large to be copied
std::optional<SheetCalls> acctCallsOf(const spreadsheet::Workbook& workbook, int sheet,
                                      DatabaseAccess& database);

} // namespace selfreport
