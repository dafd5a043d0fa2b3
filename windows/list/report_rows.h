#pragma once
#include <QString>

class QLocale;

namespace selfreport {

struct ListedReport;

/// A report as a row of the list, its columns joined by tabs: id, name, who saved it, when, whether it is
/// shown. The time is in the locale's short form; a text that is no time stands as it is.
QString reportRow(const ListedReport& report, const QLocale& locale);

/// What the row's columns sort by where that is not what they show.
QString reportSortRow(const ListedReport& report);

} // namespace selfreport
