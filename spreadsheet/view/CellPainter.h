#pragma once
#include "spreadsheet/print/PageText.h"
#include "spreadsheet/view/CellGeometry.h"
#include "spreadsheet/view/CornerMark.h"

#include <cstdint>
#include <functional>
#include <optional>

class QPainter;

namespace spreadsheet {

class PageCells;
class Sheet;

/// Paints the cells of a sheet on screen: what pages show, and buttons, check boxes and drop-downs that look
/// as such, the grid and corner marks. Cells keep their colours whatever the surroundings' palette is.
class CellPainter {
public:
    explicit CellPainter(double twip);

    /// What lies in a part of a pane, which is the painter's clip.
    void paint(QPainter& painter, const Sheet& sheet, const CellGeometry& geometry, const Pane& pane,
               const QRect& part);

    bool gridLines = true;
    std::function<CornerMark(CellAddress)> markOf; ///< empty: no marks
    std::optional<CellAddress> pressed;            ///< that is held down

    PageText& text() { return m_text; }
    /// Cells in all parts that it has painted so far.
    std::uint64_t paintedCells() const { return m_paintedCells; }

private:
    void paintControls(QPainter& painter, const PageCells& cells);
    void paintMarks(QPainter& painter, const PageCells& cells);

    PageText m_text;
    std::uint64_t m_paintedCells = 0;
};

} // namespace spreadsheet
