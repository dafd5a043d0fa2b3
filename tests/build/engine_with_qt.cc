// Must not compile with the include folders of the engine.
#include "spreadsheet/values/Value.h"

#include <QString>
