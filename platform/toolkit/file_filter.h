#pragma once
#include <QStringList>

namespace selfreport {

/// The toolkit's name filters of a filter text: "Excel files|(*.xls)" and "Excel文件(*.xls)|*.xls" both list
/// *.xls, under the description with the pattern in brackets. A pattern may hold several, separated by ";".
/// Empty if the text has no pattern.
QStringList nameFilters(const QString& filter);

/// The suffix without a point that saving under the first pattern of a name filter adds; "" for "*.*".
QString suffixOf(const QString& nameFilter);

} // namespace selfreport
