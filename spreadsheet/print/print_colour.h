#pragma once
#include "spreadsheet/display/CellStyle.h"

#include <QColor>

namespace spreadsheet {

/// A colour on paper; without colour printing the grey of the same brightness.
/// @param automatic  0xRRGGBB that stands for the automatic colour
inline QColor printColour(Colour colour, Colour automatic, bool inColour)
{
    const QColor shown(static_cast<QRgb>(0xFF000000u | (colour == automaticColour ? automatic : colour)));
    if (inColour)
        return shown;
    const int grey = qGray(shown.rgb());
    return {grey, grey, grey};
}

} // namespace spreadsheet
