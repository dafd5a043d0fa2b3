#pragma once
#include "spreadsheet/print/PageLayout.h"

#include <QRect>

namespace spreadsheet {

/// A box of the layout as the toolkit's rectangle, in twips.
inline QRect rectOf(const PageBox& box)
{
    return {box.left, box.top, box.width, box.height};
}

} // namespace spreadsheet
