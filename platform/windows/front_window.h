#pragma once

class QWidget;

namespace selfreport {

/// The window that the user works in: the modal one, or else the active one. Null if there is none.
QWidget* frontWindow();

/// Whether a modal window keeps the input from it.
bool isBlocked(const QWidget& window);

} // namespace selfreport
