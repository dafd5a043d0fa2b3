#include "platform/toolkit/QtPreferences.h"

#include <QSettings>
#include <QString>

namespace selfreport {

namespace {

/// A file of ini form, as the host's.
class OwnFile : public QSettings {
public:
    OwnFile()
        : QSettings(QSettings::IniFormat, QSettings::UserScope, "QnCW", "SelfReport")
    {
    }
};

} // namespace

std::string QtPreferences::value(std::string_view key) const
{
    return OwnFile().value(QString::fromUtf8(key)).toString().toStdString();
}

void QtPreferences::keep(std::string_view key, std::string_view value)
{
    OwnFile().setValue(QString::fromUtf8(key), QString::fromUtf8(value));
}

} // namespace selfreport
