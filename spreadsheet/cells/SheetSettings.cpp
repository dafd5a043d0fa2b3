#include "spreadsheet/cells/SheetSettings.h"

namespace spreadsheet {

int AxisSizes::size(int index) const
{
    if (hidden.contains(index))
        return 0;
    const auto own = sizes.find(index);
    return own == sizes.end() ? defaultSize : own->second;
}

} // namespace spreadsheet
