#pragma once
#include "spreadsheet/values/CellAddress.h"

#include <QBasicTimer>
#include <QObject>
#include <QPoint>

#include <optional>

class QMouseEvent;

namespace spreadsheet {

class SheetView;
class SpreadsheetControl;

/// What the mouse does in the cells and headings of a control: it selects, resizes, fills, points.
class GridMouse : public QObject {
public:
    GridMouse(SpreadsheetControl& control, SheetView& view);

    void press(const QMouseEvent& event);
    void move(const QMouseEvent& event);
    void release(const QMouseEvent& event);
    void doubleClick(const QMouseEvent& event);
    /// Gives up filling or resizing before the button is let go. False if the mouse does neither.
    bool cancel();

protected:
    void timerEvent(QTimerEvent* event) override;

private:
    enum class Doing {
        nothing,
        cells,
        rows,
        columns,
        resizingRow,
        resizingColumn,
        movingRowBreak, ///< where a page begins by hand
        movingColumnBreak,
        filling,
        pointing,
        holding ///< a cell that does something when it is let go
    };
    struct Place {
        enum class Kind {
            cells,
            columnHeading,
            rowHeading,
            corner,
            columnEdge,
            rowEdge,
            fillHandle,
            columnBreak,
            rowBreak,
            beyond
        };
        Kind kind = Kind::beyond;
        CellAddress cell; ///< row 0 or column 0 in headings
        int line = 0;     ///< column or row that an edge resizes, or that begins a page
    };

    Place placeOf(QPoint point) const;
    int edgeAt(int position, bool rows) const;
    int breakAt(int position, bool rows) const;
    int nearestStart(int position, bool rows) const;
    bool movesBreak() const
    {
        return m_doing == Doing::movingRowBreak || m_doing == Doing::movingColumnBreak;
    }
    void showCursor(const Place& place) const;
    void pressCell(const Place& place, const QMouseEvent& event);
    void pressHeading(const Place& place, Qt::KeyboardModifiers modifiers);
    bool moveToPlace(const Place& place);
    bool selectAll();
    bool selectLine(CellAddress heading, bool add);
    bool actOn(CellAddress cell, QPoint point);
    void dragTo(QPoint point);
    void pointTo(QPoint point, bool goesOn);
    bool pointsAtRows() const;
    bool pointsAtColumns() const;
    bool isAlongRows() const;
    bool isAlongColumns() const;
    void scrollIfOutside(QPoint point);
    void showGuide(QPoint point);
    void endResize(QPoint point);
    void showBreakGoal(QPoint point);
    void endFill(bool asSeries);
    void fillBesides();
    void hideMarks();

    SpreadsheetControl& m_control;
    SheetView& m_view;
    Doing m_doing = Doing::nothing;
    Place m_pressed;
    QPoint m_pressedAt, m_last;
    CellRange m_filled;
    QBasicTimer m_scroll;
};

} // namespace spreadsheet
