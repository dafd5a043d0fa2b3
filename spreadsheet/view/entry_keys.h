#pragma once
#include <QString>

class QKeyEvent;

namespace spreadsheet {

/// What is held down but Shift, and the keypad's mark.
Qt::KeyboardModifiers chord(Qt::KeyboardModifiers modifiers);

/// Keys of the window that owns the sheet: Ctrl with G, J, N, O, S. Neither control nor editor takes them.
bool belongsToWindow(const QKeyEvent& event);

/// What Ctrl+; (the date of today) and Ctrl+Shift+; (the time) put in; empty for other keys.
QString momentOf(const QKeyEvent& event);

} // namespace spreadsheet
