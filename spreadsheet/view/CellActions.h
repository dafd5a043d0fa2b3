#pragma once
#include "spreadsheet/values/CellAddress.h"

class QKeyEvent;

namespace spreadsheet {

class DateEntry;
class DropDownList;
class SheetView;
class SpreadsheetControl;

/// What cells of some types do when users act on them: buttons, check boxes, drop-downs, calendars. They work
/// in run mode too, unless they are locked.
class CellActions {
public:
    CellActions(SpreadsheetControl& control, SheetView& view);

    bool mayAct(CellAddress cell) const;
    void toggleCheckBox(CellAddress cell);
    void clickButton(CellAddress cell); ///< a locked one does nothing
    void openDropDown();                ///< of the active cell; the calendar of a date cell
    void cancelDropDown();              ///< see SpreadsheetControl::comboDropDown
    /// The space bar on a button or check box. False for other keys and cells.
    bool pressKey(const QKeyEvent& event);

private:
    void closeDropDown(int index);

    SpreadsheetControl& m_control;
    SheetView& m_view;
    DropDownList* m_dropDown;
    DateEntry* m_dateEntry;
    CellAddress m_dropDownCell;
    bool m_dropDownCancelled = false;
};

} // namespace spreadsheet
