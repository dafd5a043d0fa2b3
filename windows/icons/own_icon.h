#pragma once
#include <QIcon>

namespace selfreport {

/// A drawing of windows/icons by its file's name without ".svg". Where the palette's texts are light, so are
/// the strokes that stand bare on the window.
QIcon ownIcon(const QString& name);

} // namespace selfreport
