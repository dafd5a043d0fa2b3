#include "windows/designer/EditorMenuBar.h"

#include <QKeyEvent>

namespace selfreport {

/// The toolkit notes what has the focus with each menu that is opened by its letter. After Esc in a menu that
/// is the bar, which would keep the focus for good: the bar is left first.
bool EditorMenuBar::event(QEvent* event)
{
    if (event->type() == QEvent::Shortcut && hasFocus()) {
        QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
        keyPressEvent(&escape);
    }
    return QMenuBar::event(event);
}

} // namespace selfreport
