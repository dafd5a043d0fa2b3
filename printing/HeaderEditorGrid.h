#pragma once
#include "spreadsheet/view/SpreadsheetControl.h"

namespace selfreport {

/// The header and footer editor's grid, with headings of its own: "Line 1" and so on, and the names of the
/// text columns.
class HeaderEditorGrid : public spreadsheet::SpreadsheetControl {
public:
    using SpreadsheetControl::SpreadsheetControl;

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace selfreport
