#include "platform/windows/front_window.h"

#include <QApplication>
#include <QWidget>

namespace selfreport {

QWidget* frontWindow()
{
    QWidget* const modal = QApplication::activeModalWidget();
    return modal ? modal : QApplication::activeWindow();
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
