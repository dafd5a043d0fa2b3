#pragma once
#include <QDateTime>

namespace selfreport {

/// A time as lists show it, in this form whatever language the machine speaks: "2026-11-26 09:05".
inline QString timeText(const QDateTime& time)
{
    return time.toString(QStringLiteral("yyyy-MM-dd HH:mm"));
}

} // namespace selfreport
