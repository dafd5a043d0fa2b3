// Must not compile with the include folders of the engine.
#include "spreadsheet/engine/Value.h"

#include <QString>
