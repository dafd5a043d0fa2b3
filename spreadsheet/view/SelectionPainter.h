#pragma once
#include "spreadsheet/view/CellEditing.h"
#include "spreadsheet/view/CellGeometry.h"

#include <QPalette>

#include <optional>

class QPainter;

namespace spreadsheet {

class Selection;
class Sheet;

/// Everything that lies over the cells and comes and goes without painting them anew.
struct CellOverlays {
    std::optional<CellRange> copied; ///< with a border that moves
    int copiedPhase = 0;             ///< of the border, in its dashes
    std::vector<ReferenceFrame> references;
    std::optional<CellRange> fillGoal; ///< while the fill handle is dragged
    bool hasFillHandle = true;
    std::optional<int> guideDown;   ///< y of the line that shows where a row will end
    std::optional<int> guideAcross; ///< x, of a column
};

/// Paints the selection, the cursor and the overlays of a sheet over its cells.
class SelectionPainter {
public:
    SelectionPainter(const Sheet& sheet, const CellGeometry& geometry, const Selection& selection)
        : m_sheet(sheet)
        , m_geometry(geometry)
        , m_selection(selection)
    {
    }

    void paint(QPainter& painter, const CellOverlays& overlays, const QPalette& palette) const;
    /// What paint() may touch for the selection: to be painted anew when that changes.
    QRegion touched() const;
    /// The square at the corner of the only selected range; empty if there is none in sight.
    QRect fillHandle() const;

private:
    void paintPane(QPainter& painter, const Pane& pane, const CellOverlays& overlays,
                   const QPalette& palette) const;

    const Sheet& m_sheet;
    const CellGeometry& m_geometry;
    const Selection& m_selection;
};

/// The frame around a range, wide enough for every line that is painted there.
QRegion frameRegion(const QRect& rect);

} // namespace spreadsheet
