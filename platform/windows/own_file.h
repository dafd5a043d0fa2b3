#pragma once
#include <QString>

namespace selfreport {

/// The file that this component was loaded from; "" if the system does not tell.
QString ownFile();

/// Its folder, which is neither `gAppPath` nor the program's.
QString componentFolder();

} // namespace selfreport
