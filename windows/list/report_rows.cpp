#include "windows/list/report_rows.h"

#include "reports/report_list.h"

#include <QDateTime>
#include <QLocale>
#include <QStringList>

namespace selfreport {

namespace {

/// One column's text: a tab or line end in a name would begin another column or line.
QString columnText(const std::string& text)
{
    QString column = QString::fromStdString(text);
    for (QChar& character : column)
        if (character == '\t' || character == '\n' || character == '\r')
            character = ' ';
    return column;
}

QString timeText(const std::string& savedAt, const QLocale& locale)
{
    const QString stored = columnText(savedAt);
    const QDateTime time = QDateTime::fromString(stored.left(19), QStringLiteral("yyyy-MM-dd HH:mm:ss"));
    return time.isValid() ? locale.toString(time, QLocale::ShortFormat) : stored;
}

} // namespace

QString reportRow(const ListedReport& report, const QLocale& locale)
{
    return QStringList{QString::number(report.id), columnText(report.name), columnText(report.savedBy),
                       timeText(report.savedAt, locale), QString::fromUtf8(report.shownText())}
        .join('\t');
}

QString reportSortRow(const ListedReport& report)
{
    return "\t\t\t" + columnText(report.savedAt);
}

} // namespace selfreport
