#pragma once
#include <QString>

class QKeyEvent;

namespace spreadsheet {

/// Keys of the window that owns the sheet: Ctrl with G, J, N, O, S. Neither control nor editor takes them.
bool belongsToWindow(const QKeyEvent& event);

/// What Ctrl+; (the date of today) and Ctrl+Shift+; (the time) put in; empty for other keys.
QString momentOf(const QKeyEvent& event);

} // namespace spreadsheet
