#pragma once
#include "spreadsheet/print/PageCells.h"
#include "spreadsheet/values/CellAddress.h"
#include "spreadsheet/values/twips.h"
#include "spreadsheet/view/AxisPositions.h"

#include <QRect>

#include <map>
#include <vector>

namespace spreadsheet {

class Sheet;

/// A part of the view whose cells hang together: there are up to four where rows and columns are frozen.
struct Pane {
    QRect rect;        ///< in the widget
    PrintedPage cells; ///< rows and columns that show in it, by tracks in the widget's pixels
};

/// Which cells of a sheet stand where in a widget: headings, frozen rows and columns, scrolling, zoom. Pixels
/// are the toolkit's device-independent ones, from the widget's top left corner.
class CellGeometry {
public:
    /// Takes sizes, counts and frozen rows and columns of a sheet.
    /// @param grown  heights in twips of rows that follow their texts
    void setSheet(const Sheet& sheet, double zoom, const std::map<int, int>& grown = {});
    /// @param area  headings and cells together
    void setArea(QSize area);
    void setHeadings(bool columns, bool rows);
    /// First scrolled row and column; what does not fit becomes the nearest place that does.
    void scrollTo(CellAddress topLeft);

    QSize area() const { return m_area; }
    double twip() const { return m_twip; } ///< pixels that a twip is long
    const AxisPositions& rows() const { return m_rows; }
    const AxisPositions& columns() const { return m_columns; }
    CellAddress topLeft() const { return {m_firstColumn, m_firstRow}; }
    /// The largest topLeft(): the sheet's last cells are in sight there.
    CellAddress lastTopLeft() const;
    /// False if so many frozen rows or columns leave the others no room: nobody could get at these.
    bool holdsFrozen(int rows, int columns) const;
    /// None while the area does not hold those of the sheet.
    int frozenRows() const { return m_frozenRows; }
    int frozenColumns() const { return m_frozenColumns; }
    int headingHeight() const { return m_headingHeight; }
    int headingWidth() const { return m_headingWidth; }
    /// Headings left out, without the emptiness beyond the last row and column.
    QRect cellArea() const;
    /// The scrolled part of it.
    QRect scrolledArea() const;
    /// Shown rows and columns that lie wholly in the scrolled part, at least one.
    int wholeRows() const;
    int wholeColumns() const;

    /// Those that show anything, frozen ones first.
    std::vector<Pane> panes() const;
    std::vector<PageTrack> rowTracks() const; ///< of all panes, frozen ones first
    std::vector<PageTrack> columnTracks() const;

    /// Where an edge of the sheet lies, whether it is in sight or not. An edge between frozen and scrolled
    /// cells counts to the cells that begin there.
    std::int64_t rowStart(int row) const;
    std::int64_t columnStart(int column) const;
    /// What of a range is in sight, one rectangle over all panes; empty if nothing is.
    QRect visibleRect(const CellRange& range) const;
    /// A range's rectangle as a pane sees it: cut far outside of the pane only.
    QRect rectIn(const Pane& pane, const CellRange& range) const;

    /// The cell at a place of the widget; over headings and outside, the nearest one in sight.
    CellAddress nearestCell(QPoint place) const;
    int rowAt(int y) const;
    int columnAt(int x) const;
    TrackLengths lengths() const;

private:
    std::vector<PageTrack> tracks(const AxisPositions& axis, int frozen, int first, int start, int end) const;
    void measureHeadings();
    void freeze();
    void keepFull();

    AxisPositions m_rows, m_columns;
    double m_twip = 1 / twipsPerPixel;
    QSize m_area;
    int m_wantedRows = 0, m_wantedColumns = 0; ///< frozen in the sheet
    int m_frozenRows = 0, m_frozenColumns = 0;
    int m_frozenHeight = 0, m_frozenWidth = 0;
    int m_firstRow = 1, m_firstColumn = 1;
    bool m_columnHeadings = true, m_rowHeadings = true;
    int m_headingHeight = 0, m_headingWidth = 0;
};

} // namespace spreadsheet
