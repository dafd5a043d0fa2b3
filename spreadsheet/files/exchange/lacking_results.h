#pragma once

namespace spreadsheet {

class Workbook;

/// Computes a workbook read from a file once if the file asks for it or has formulas without results, as
/// libraries write them that cannot compute; some write 0 for each, some an empty text. What cannot be
/// computed here, calls of functions that are not here, keeps what the file says.
void computeLackingResults(Workbook& workbook, bool fileAsks);

} // namespace spreadsheet
