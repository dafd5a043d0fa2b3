#pragma once

namespace spreadsheet {

/// Takes the tool tip on screen away at once; false if there is none.
bool hideToolTip();

} // namespace spreadsheet
