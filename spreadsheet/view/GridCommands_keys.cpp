// Keys of commands. docs/keys.md lists all for users.
#include "spreadsheet/view/entry_keys.h"
#include "spreadsheet/view/GridCommands.h"
#include "spreadsheet/view/SheetView.h"
#include "spreadsheet/view/SpreadsheetControl.h"

#include <QKeyEvent>

#include <algorithm>
#include <array>

namespace spreadsheet {

namespace {

using Grid = SpreadsheetControl&;

/// A key and the command that it runs.
struct CommandKey {
    int key;
    Qt::KeyboardModifiers modifiers; ///< all of them, Shift too
    void (*run)(SpreadsheetControl& control);
    bool changesNothing = false;
};

constexpr Qt::KeyboardModifiers none = Qt::NoModifier, ctrl = Qt::ControlModifier, shift = Qt::ShiftModifier,
                                alt = Qt::AltModifier;

const std::array commandKeys{
    CommandKey{Qt::Key_Z, ctrl, [](Grid g) { g.commands().undo(); }},
    CommandKey{Qt::Key_Z, ctrl | shift, [](Grid g) { g.commands().redo(); }},
    CommandKey{Qt::Key_Y, ctrl, [](Grid g) { g.commands().redo(); }},
    CommandKey{Qt::Key_X, ctrl, [](Grid g) { g.commands().cut(); }},
    CommandKey{Qt::Key_Delete, shift, [](Grid g) { g.commands().cut(); }},
    CommandKey{Qt::Key_C, ctrl, [](Grid g) { g.commands().copy(); }, true},
    CommandKey{Qt::Key_Insert, ctrl, [](Grid g) { g.commands().copy(); }, true},
    CommandKey{Qt::Key_V, ctrl, [](Grid g) { g.commands().paste(); }},
    CommandKey{Qt::Key_Insert, shift, [](Grid g) { g.commands().paste(); }},
    CommandKey{Qt::Key_V, ctrl | shift, [](Grid g) { g.commands().pasteValues(); }},
    CommandKey{Qt::Key_Delete, none, [](Grid g) { g.commands().clear(); }},
    CommandKey{Qt::Key_D, ctrl, [](Grid g) { g.commands().fillDown(); }},
    CommandKey{Qt::Key_R, ctrl, [](Grid g) { g.commands().fillRight(); }},
    CommandKey{Qt::Key_9, ctrl, [](Grid g) { g.commands().hideRows(); }},
    CommandKey{Qt::Key_0, ctrl, [](Grid g) { g.commands().hideColumns(); }},
    CommandKey{Qt::Key_ParenLeft, ctrl | shift, [](Grid g) { g.commands().showRows(); }},
    CommandKey{Qt::Key_ParenRight, ctrl | shift, [](Grid g) { g.commands().showColumns(); }},
    CommandKey{Qt::Key_Down, alt, [](Grid g) { g.actions().openDropDown(); }, true},
    CommandKey{Qt::Key_Equal, alt, [](Grid g) { g.commands().sumHere(); }},
    CommandKey{Qt::Key_Down, alt | shift, [](Grid g) { g.commands().movePageBreakHere(Axis::rows, 1); }},
    CommandKey{Qt::Key_Up, alt | shift, [](Grid g) { g.commands().movePageBreakHere(Axis::rows, -1); }},
    CommandKey{Qt::Key_Right, alt | shift, [](Grid g) { g.commands().movePageBreakHere(Axis::columns, 1); }},
    CommandKey{Qt::Key_Left, alt | shift, [](Grid g) { g.commands().movePageBreakHere(Axis::columns, -1); }},
    CommandKey{Qt::Key_F11, shift, [](Grid g) { g.commands().addSheet(); }},
    CommandKey{Qt::Key_Asterisk, ctrl | shift, [](Grid g) { g.cursor().selectAround(); }, true},
    CommandKey{Qt::Key_Backspace, shift, [](Grid g) { g.cursor().selectActiveCell(); }, true},
    CommandKey{Qt::Key_Backspace, ctrl, [](Grid g) { g.cursor().bringIntoSight(g.cursor().activeCell()); },
               true},
};

} // namespace

bool GridCommands::pressKey(const QKeyEvent& event)
{
    const Qt::KeyboardModifiers modifiers =
        chord(event.modifiers()) | (event.modifiers() & Qt::ShiftModifier);
    for (const CommandKey& command : commandKeys)
        if (command.key == event.key() && command.modifiers == modifiers) {
            if (command.changesNothing || m_control.offersCommands())
                command.run(m_control);
            return true;
        }
    const bool plus = event.key() == Qt::Key_Plus || event.key() == Qt::Key_Equal;
    if (chord(event.modifiers()) != Qt::ControlModifier || (!plus && event.key() != Qt::Key_Minus))
        return false;
    if (!m_control.offersCommands())
        return true;
    const int rowCount = m_view.sheet().settings().rowCount;
    const bool columns = std::ranges::all_of(m_control.cursor().selection(), [=](const CellRange& range) {
        return range.top == 1 && range.bottom >= rowCount;
    });
    if (plus)
        columns ? insertColumns() : insertRows();
    else
        columns ? deleteColumns() : deleteRows();
    return true;
}

} // namespace spreadsheet
