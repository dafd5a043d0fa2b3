#include "windows/list/report_rows.h"

#include "platform/list_grid/ListGrid.h"
#include "platform/windows/time_text.h"
#include "reports/report_list.h"

#include <QDateTime>
#include <QStringList>

namespace selfreport {

namespace {

QString savedText(const std::string& savedAt)
{
    const QString stored = ListGrid::columnText(savedAt);
    const QDateTime time = QDateTime::fromString(stored.left(19), QStringLiteral("yyyy-MM-dd HH:mm:ss"));
    return time.isValid() ? timeText(time) : stored;
}

} // namespace

QString reportRow(const ListedReport& report)
{
    return QStringList{QString::number(report.id), ListGrid::columnText(report.name),
                       ListGrid::columnText(report.savedBy), savedText(report.savedAt),
                       QString::fromUtf8(report.shownText())}
        .join('\t');
}

QString reportSortRow(const ListedReport& report)
{
    return "\t\t\t" + ListGrid::columnText(report.savedAt);
}

} // namespace selfreport
