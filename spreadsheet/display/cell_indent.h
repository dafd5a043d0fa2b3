#pragma once
#include "spreadsheet/display/CellStyle.h"

namespace spreadsheet {

/// Twips of a step of an indent: three blanks of half an em in the usual font. It is the same beside every
/// font, so that steps of a report stand below each other.
inline constexpr int indentStep = 270;

/// Whether a cell's alignment heeds its indent.
inline bool takesIndent(const CellStyle& style)
{
    const bool isSpread = style.carried.across == Spread::filled || style.carried.across == Spread::justified;
    return style.horizontal != HorizontalAlignment::centre &&
           (style.horizontal != HorizontalAlignment::left || !isSpread);
}

/// Twips by which a text stands away from the side that it is aligned to.
/// @param shown  the side; general counts as left
inline int indentOf(const CellStyle& style, HorizontalAlignment shown)
{
    return takesIndent(style) && shown != HorizontalAlignment::centre ? style.carried.indent * indentStep : 0;
}

} // namespace spreadsheet
