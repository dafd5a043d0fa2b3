#include "platform/toolkit/file_filter.h"

#include <QRegularExpression>

namespace selfreport {

namespace {

QStringList patternsOf(QString text)
{
    text = text.trimmed();
    if (text.startsWith('(') && text.endsWith(')'))
        text = text.mid(1, text.size() - 2);
    QStringList patterns = text.split(';', Qt::SkipEmptyParts);
    for (QString& pattern : patterns)
        pattern = pattern.trimmed();
    return patterns;
}

/// Without a pattern in brackets at its end, as the toolkit would take it for the patterns.
QString described(const QString& text)
{
    static const QRegularExpression bracketsAtEnd(QStringLiteral("\\s*\\([^()]*\\)\\s*$"));
    return QString(text).remove(bracketsAtEnd).trimmed();
}

} // namespace

QStringList nameFilters(const QString& filter)
{
    const QStringList parts = filter.split('|');
    QStringList filters;
    for (qsizetype part = 0; part + 1 < parts.size(); part += 2) {
        const QStringList patterns = patternsOf(parts[part + 1]);
        if (!patterns.isEmpty())
            filters.append(described(parts[part]) + " (" + patterns.join(' ') + ')');
    }
    return filters;
}

QString suffixOf(const QString& nameFilter)
{
    static const QRegularExpression firstSuffix(QStringLiteral("\\(\\*\\.([^\\s*?()]+)[^()]*\\)\\s*$"));
    return firstSuffix.match(nameFilter).captured(1);
}

} // namespace selfreport
