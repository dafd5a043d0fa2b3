#pragma once
#include "spreadsheet/display/CellStyle.h"

#include <QPointF>
#include <QSizeF>
#include <QString>

namespace spreadsheet {

/// How the lines of a text lie in its cell.
struct TextTurn {
    double degrees = 0;     ///< against the clock, -90 to 90
    bool isStacked = false; ///< letters stand upright below each other

    bool isNone() const { return degrees == 0 && !isStacked; }
    /// Lines run up or down.
    bool isUpright() const { return degrees == 90 || degrees == -90; }
    /// What a block of lines takes in the cell.
    QSizeF extent(QSizeF block) const;
    /// Where a point of a block lies from its middle, given from the middle of the block unturned.
    QPointF turned(QPointF point) const;
    /// How long a line of this height may be in this room.
    double longestLine(QSizeF room, double height) const;
};

TextTurn turnOf(const CellStyle& style);

/// Each letter, with the marks on it, in a line of its own.
QString stackedLetters(const QString& text);

} // namespace spreadsheet
