#pragma once

namespace selfreport {

// The two windows that a host opens. Each is modal and gone when the function returns; there is one of each
// kind at a time, and asking for one that is open does nothing.

/// The list of stored reports.
void showReportList();

/// The designer on the shared state as it is. When it closes and `gFromList` is 1 the list is refilled,
/// keeping its current row; a list that is not open is refilled unseen.
void showDesigner();

} // namespace selfreport
