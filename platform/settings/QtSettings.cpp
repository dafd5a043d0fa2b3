#include "platform/settings/QtSettings.h"

#include <QSettings>
#include <QStringList>
#include <QVariant>

namespace selfreport {

std::string QtSettings::value(std::string_view group, std::string_view key) const
{
    const QSettings settings(QSettings::IniFormat, QSettings::UserScope, "QnCW");
    const QString name = QString::fromUtf8(group.data(), static_cast<qsizetype>(group.size())) + '/' +
                         QString::fromUtf8(key.data(), static_cast<qsizetype>(key.size()));
    // A value with bare commas reads as a list.
    return settings.value(name).toStringList().join(',').toStdString();
}

} // namespace selfreport
