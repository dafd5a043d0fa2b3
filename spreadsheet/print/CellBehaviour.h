#pragma once
#include "spreadsheet/display/CellStyle.h"
#include "spreadsheet/values/CellAddress.h"
#include "spreadsheet/values/Value.h"

#include <QRect>

#include <string>

class QColor;
class QPainter;

namespace spreadsheet {

class Sheet;
struct PageCell;

/// What the grid does for a cell that the user acts on.
class CellHost {
public:
    virtual ~CellHost() = default;
    virtual Value value(CellAddress cell) const = 0;
    /// Puts a value into the cell as one undo step. Tells the user why not where that may not be.
    virtual void put(CellAddress cell, Value value) = 0;
    /// Tells the windows of a click; a locked cell is none.
    virtual void click(CellAddress cell) = 0;
    /// Drops the list of the active cell down.
    virtual void openList() = 0;
};

/// How the cells of a type behave besides showing a text that may be typed, which is what this class itself
/// stands for: how they are painted, what presses and keys do, what room they take.
class CellBehaviour {
public:
    virtual ~CellBehaviour() = default;

    /// On screen, below the text. `cell` is the place inside the grid lines, `twip` a twip in pixels.
    virtual void paint(QPainter& painter, const PageCell& cell, const QRect& place, double twip,
                       bool isPressed) const;
    /// On paper, where a twip is `twip` long and nobody presses anything.
    /// @param colour  of the cell's text
    virtual void draw(QPainter& painter, const PageCell& cell, const QRect& place, double twip,
                      const QColor& colour) const;

    enum class Press {
        goesOn, ///< selects cells as everywhere
        acts,   ///< does what the cell is for at once
        holds,  ///< shows the cell as pressed, and does it when the mouse is let go there
    };
    virtual Press press(const QRect& place, QPoint point, double twip) const;

    enum class Key {
        space,
        open, ///< Alt and the arrow down
    };
    virtual bool takes(Key key) const;

    /// What the cell is for.
    virtual void act(CellHost& host, CellAddress cell) const;

    /// What a cell of the type on a sheet shows in place of its value; null: its value.
    virtual const std::string* caption(const Sheet& sheet, CellAddress cell) const;

    /// Width that is no text's on screen, at the right end, in the unit of which a twip is `twip` long.
    virtual int roomBeside(double twip) const;

    virtual bool mayType() const; ///< the user may put in a text
};

const CellBehaviour& behaviourOf(CellType type);

/// State of a check box with this value.
bool countsAsChecked(const Value& value);

/// Twips in pixels, but so many at least.
int pixelsAtLeast(int least, double twips, double twip);

} // namespace spreadsheet
