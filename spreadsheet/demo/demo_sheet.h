#pragma once

namespace spreadsheet {

class SpreadsheetControl;

/// Fills a control with sheets that show every cell type, border style, alignment and kind of text.
void fillDemo(SpreadsheetControl& control);

} // namespace spreadsheet
