#include "platform/toolkit/QtSettings.h"

#include <QSettings>
#include <QStringList>
#include <QVariant>

namespace selfreport {

namespace {

QString text(std::string_view utf8)
{
    return QString::fromUtf8(utf8);
}

QString nameOf(std::string_view group, std::string_view key)
{
    return text(group) + '/' + text(key);
}

} // namespace

std::string QtSettings::value(std::string_view group, std::string_view key) const
{
    const QSettings settings(QSettings::IniFormat, QSettings::UserScope, "QnCW");
    // A value with bare commas reads as a list.
    return settings.value(nameOf(group, key)).toStringList().join(',').toStdString();
}

void QtSettings::write(std::string_view group, std::string_view key, std::string_view value)
{
    QSettings settings(QSettings::IniFormat, QSettings::UserScope, "QnCW");
    settings.setValue(nameOf(group, key), text(value));
}

} // namespace selfreport
