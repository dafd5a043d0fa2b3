#include "platform/windows/front_window.h"

#include "platform/windows/WaitingDialog.h"

#include <QApplication>
#include <QWidget>

namespace selfreport {

/// One that is not modal may stand over the modal one, and who works in it is to come back to it: a window
/// manager gives the focus to the owner of what is closed. A waiting dialog goes by itself.
QWidget* frontWindow()
{
    QWidget* const modal = QApplication::activeModalWidget();
    QWidget* const active = QApplication::activeWindow();
    const bool isOver = active && !isBlocked(*active) && !dynamic_cast<WaitingDialog*>(active);
    return isOver || !modal ? active : modal;
}

bool isBlocked(const QWidget& window)
{
    const QWidget* const modal = QApplication::activeModalWidget();
    if (!modal)
        return false;
    for (const QWidget* at = &window; at; at = at->parentWidget())
        if (at == modal)
            return false;
    return true;
}

} // namespace selfreport
