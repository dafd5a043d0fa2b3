#pragma once
#include <QString>

namespace selfreport {

/// The initials by which a Chinese name is typed: "银行存款" gives "yhck". Letters and digits stand as they
/// are in lower case, everything else is left out. A character with several readings gives every spelling,
/// each on a line of its own ("长期" "cq" and "zq"), up to 16 lines; beyond that the most usual reading.
QString pinyinInitials(const QString& name);

} // namespace selfreport
