#pragma once
#include <QString>

namespace selfreport {

struct ListedReport;

/// A report as a row of the list, its columns joined by tabs: id, name, who saved it, when, whether it is
/// shown. A text that is no time stands as it is.
QString reportRow(const ListedReport& report);

/// What the row's columns sort by where that is not what they show.
QString reportSortRow(const ListedReport& report);

} // namespace selfreport
