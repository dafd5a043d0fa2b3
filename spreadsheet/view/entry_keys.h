#pragma once
#include <QString>

class QKeyEvent;

namespace spreadsheet {

/// What is held down but Shift, and the keypad's mark.
Qt::KeyboardModifiers chord(Qt::KeyboardModifiers modifiers);

/// Keys of the window that owns the sheet: Ctrl with B, G, I, J, N, O, P, S, U. Neither control nor editor
/// takes them, not even those that some desktops give to every text edit.
bool belongsToWindow(const QKeyEvent& event);

/// What Ctrl+; (the date of today) and Ctrl+Shift+; (the time) put in; empty for other keys.
QString momentOf(const QKeyEvent& event);

} // namespace spreadsheet
