#pragma once

class QWidget;

namespace selfreport {

/// What a window ends its construction with. Its boxes select their text when they get the focus, however
/// they get it, so that what is typed replaces it. And it opens within the screen, its title in sight,
/// smaller than it asked for if need be.
void settle(QWidget& window);

/// The second half of it alone.
void openOnScreen(QWidget& window);

} // namespace selfreport
