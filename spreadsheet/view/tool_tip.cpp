#include "spreadsheet/view/tool_tip.h"

#include <QApplication>
#include <QToolTip>
#include <QWidget>

namespace spreadsheet {

/// The toolkit's own way of hiding it takes a moment, in which it still counts as visible.
bool hideToolTip()
{
    if (!QToolTip::isVisible())
        return false;
    for (QWidget* const window : QApplication::topLevelWidgets())
        if (window->inherits("QTipLabel"))
            window->hide();
    return true;
}

} // namespace spreadsheet
