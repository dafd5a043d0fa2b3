#include "windows/list/report_rows.h"

#include "platform/windows/time_text.h"
#include "reports/report_list.h"

#include <QDateTime>
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

QString savedText(const std::string& savedAt)
{
    const QString stored = columnText(savedAt);
    const QDateTime time = QDateTime::fromString(stored.left(19), QStringLiteral("yyyy-MM-dd HH:mm:ss"));
    return time.isValid() ? timeText(time) : stored;
}

} // namespace

QString reportRow(const ListedReport& report)
{
    return QStringList{QString::number(report.id), columnText(report.name), columnText(report.savedBy),
                       savedText(report.savedAt), QString::fromUtf8(report.shownText())}
        .join('\t');
}

QString reportSortRow(const ListedReport& report)
{
    return "\t\t\t" + columnText(report.savedAt);
}

} // namespace selfreport
