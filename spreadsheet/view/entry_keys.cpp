#include "spreadsheet/view/entry_keys.h"

#include <QDateTime>
#include <QKeyEvent>

#include <algorithm>
#include <array>

namespace spreadsheet {

Qt::KeyboardModifiers chord(Qt::KeyboardModifiers modifiers)
{
    return modifiers & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier);
}

bool belongsToWindow(const QKeyEvent& event)
{
    static constexpr std::array keys{Qt::Key_B, Qt::Key_G, Qt::Key_I, Qt::Key_J, Qt::Key_N,
                                     Qt::Key_O, Qt::Key_P, Qt::Key_S, Qt::Key_U};
    return event.modifiers() == Qt::ControlModifier && std::ranges::count(keys, event.key()) > 0;
}

QString momentOf(const QKeyEvent& event)
{
    const bool shift = event.modifiers().testFlag(Qt::ShiftModifier);
    const bool isKey = event.key() == Qt::Key_Semicolon || (shift && event.key() == Qt::Key_Colon);
    if (!isKey || (event.modifiers() & ~Qt::ShiftModifier) != Qt::ControlModifier)
        return {};
    const QDateTime now = QDateTime::currentDateTime();
    return shift ? now.time().toString(QStringLiteral("HH:mm"))
                 : now.date().toString(QStringLiteral("yyyy-MM-dd"));
}

} // namespace spreadsheet
