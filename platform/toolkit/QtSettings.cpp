#include "platform/toolkit/QtSettings.h"

#include <QFile>
#include <QSettings>
#include <QString>
#include <QStringList>

namespace selfreport {

// The toolkit writes the file, and knows its place. It is read here: the toolkit tells letter case of keys
// apart and makes a list of a value with bare commas, which loses the blanks around them.

namespace {

bool isSame(QStringView left, QStringView right)
{
    return left.trimmed().compare(right, Qt::CaseInsensitive) == 0;
}

/// The character that "\\n" and its like stand for, from behind the backslash at `at`, which moves to its
/// end.
QChar escaped(QStringView value, qsizetype& at)
{
    static constexpr char letters[] = "abfnrtv0";
    static constexpr char meant[] = "\a\b\f\n\r\t\v\0";
    const QChar letter = value[at];
    if (letter == 'x') {
        const qsizetype first = at + 1;
        while (at + 1 < value.size() && at - first < 3 &&
               QStringView(u"0123456789abcdefABCDEF").contains(value[at + 1]))
            ++at;
        return QChar(value.sliced(first, at + 1 - first).toUShort(nullptr, 16));
    }
    const auto found = std::string_view(letters).find(letter.toLatin1());
    return found == std::string_view::npos ? letter : QChar(QLatin1Char(meant[found]));
}

/// The whole text of a value: quotation marks go, what they enclose and what stands bare stays.
QString unescaped(QStringView value)
{
    QString text;
    for (qsizetype at = 0; at < value.size(); ++at) {
        if (value[at] == '\\' && at + 1 < value.size())
            text += escaped(value, ++at);
        else if (value[at] != '"')
            text += value[at];
    }
    return text;
}

/// The last value of the key in the text of a settings file.
QString valueIn(const QString& file, const QString& group, const QString& key)
{
    QString found;
    bool isInGroup = false;
    for (const QStringView line : QStringView(file).split('\n')) {
        const QStringView entry = line.trimmed();
        const qsizetype equals = entry.indexOf('=');
        if (entry.startsWith('['))
            isInGroup = entry.endsWith(']') && isSame(entry.sliced(1).chopped(1), group);
        else if (isInGroup && equals > 0 && !entry.startsWith(';') && isSame(entry.first(equals), key))
            found = unescaped(entry.sliced(equals + 1).trimmed());
    }
    return found;
}

} // namespace

std::string QtSettings::value(std::string_view group, std::string_view key) const
{
    QFile file(QSettings(QSettings::IniFormat, QSettings::UserScope, "QnCW").fileName());
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QString text = QString::fromUtf8(file.readAll());
    if (text.startsWith(QChar::ByteOrderMark))
        text.remove(0, 1);
    return valueIn(text, QString::fromUtf8(group), QString::fromUtf8(key)).toStdString();
}

void QtSettings::write(std::string_view group, std::string_view key, std::string_view value)
{
    const QString name = QString::fromUtf8(key);
    QSettings settings(QSettings::IniFormat, QSettings::UserScope, "QnCW");
    settings.beginGroup(QString::fromUtf8(group));
    for (const QString& known : settings.childKeys())
        if (isSame(known, name))
            settings.remove(known); // in another letter case it would stand beside this one
    settings.setValue(name, QString::fromUtf8(value));
}

} // namespace selfreport
