#pragma once
#include "spreadsheet/values/twips.h"

#include <QPaintDevice>

#include <cmath>

namespace selfreport {

/// A length in twips (1/1440 inch) as whole pixels of the device that a widget is on.
inline int pixelsOf(int twips, const QPaintDevice& device)
{
    return static_cast<int>(std::lround(twips * device.logicalDpiX() / spreadsheet::twipsPerInch));
}

/// The nearest number of twips of a length in pixels.
inline int twipsOf(int pixels, const QPaintDevice& device)
{
    return static_cast<int>(std::lround(pixels * spreadsheet::twipsPerInch / device.logicalDpiX()));
}

} // namespace selfreport
