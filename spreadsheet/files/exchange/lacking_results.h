#pragma once

namespace spreadsheet {

class Workbook;

/// Computes a workbook read from a file once if the file asks for it or has formulas without results, as
/// libraries write them that cannot compute; some write 0 for each, some an empty text. What cannot be
/// computed here, calls of functions that are not here, keeps what the file says, and what reads it reads
/// that. `Acct` and `REF_F` stay empty where the file says nothing and does not ask.
void computeLackingResults(Workbook& workbook, bool fileAsks);

} // namespace spreadsheet
