#pragma once
#include <QIcon>

namespace selfreport {

/// A drawing of component/icons by its file's name without ".svg".
QIcon ownIcon(const QString& name);

} // namespace selfreport
