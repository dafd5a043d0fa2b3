#include "windows/icons/own_icon.h"

/// The drawings stand in a static library, whose resources nothing else makes known. Outside the namespace,
/// as the macro asks.
static void makeIconsKnown()
{
    Q_INIT_RESOURCE(icons);
}

namespace selfreport {

QIcon ownIcon(const QString& name)
{
    makeIconsKnown();
    return QIcon(":/selfreport/icons/" + name + ".svg");
}

} // namespace selfreport
