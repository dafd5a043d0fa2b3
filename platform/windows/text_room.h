#pragma once
#include <QFontMetrics>
#include <QWidget>

namespace selfreport {

// Sizes of windows in terms of their texts: they grow with the font that the user has chosen.

/// Room for lines of text in a widget's font.
/// @param digits  in a line; a Chinese character takes about two
inline QSize textRoom(const QWidget& widget, int digits, int lines)
{
    const QFontMetrics metrics = widget.fontMetrics();
    return {digits * metrics.horizontalAdvance('0'), lines * metrics.lineSpacing()};
}

/// How wide a window must be to show its whole title beside what window managers put there: an icon and
/// three or four buttons.
inline int titleRoom(const QWidget& window)
{
    constexpr int besides = 9; // heights of a line
    QFont bold = window.font();
    bold.setBold(true);
    const QFontMetrics metrics(bold);
    return metrics.horizontalAdvance(window.windowTitle()) + besides * metrics.lineSpacing();
}

} // namespace selfreport
