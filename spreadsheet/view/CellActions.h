#pragma once
#include "spreadsheet/print/CellBehaviour.h"

class QKeyEvent;

namespace spreadsheet {

class DateEntry;
class DropDownList;
class SheetView;
class SpreadsheetControl;

/// What cells of some types do when users act on them: buttons, check boxes, drop-downs, calendars. They work
/// in run mode too, unless they are locked.
class CellActions : private CellHost {
public:
    CellActions(SpreadsheetControl& control, SheetView& view);

    void act(CellAddress cell); ///< does what the cell is for
    void openDropDown();        ///< of the active cell; the calendar of a date cell
    void cancelDropDown();      ///< see SpreadsheetControl::comboDropDown
    /// The space bar on a button or check box. False for other keys and cells.
    bool pressKey(const QKeyEvent& event);

private:
    Value value(CellAddress cell) const override;
    void put(CellAddress cell, Value value) override;
    void click(CellAddress cell) override;
    void openList() override;

    bool mayAct(CellAddress cell) const;
    const CellBehaviour& behaviourAt(CellAddress cell) const;
    void closeDropDown(int index);

    SpreadsheetControl& m_control;
    SheetView& m_view;
    DropDownList* m_dropDown;
    DateEntry* m_dateEntry;
    CellAddress m_dropDownCell;
    bool m_dropDownCancelled = false;
};

} // namespace spreadsheet
