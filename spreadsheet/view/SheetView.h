#pragma once
#include "spreadsheet/view/BackingStore.h"
#include "spreadsheet/view/CellGeometry.h"
#include "spreadsheet/view/CellPainter.h"
#include "spreadsheet/view/FittedRows.h"
#include "spreadsheet/view/HeadingPainter.h"
#include "spreadsheet/view/Selection.h"
#include "spreadsheet/view/SelectionPainter.h"
#include "spreadsheet/view/ShownCells.h"

#include <map>
#include <memory>
#include <optional>

class QWidget;

namespace spreadsheet {

class Workbook;

/// What a widget shows of the active sheet of a workbook: places, selection and pictures. It asks the widget
/// for repainting and never for anything else.
class SheetView {
public:
    SheetView(QWidget& widget, Workbook& workbook);

    void setWorkbook(Workbook& workbook);
    Workbook& workbook() { return *m_workbook; }
    const Sheet& sheet() const;
    const CellGeometry& geometry() const { return m_geometry; }
    const Selection& selection() const { return m_selection; }
    double zoom() const { return m_zoom; }

    /// The active sheet is another one: it shows where and how it was left.
    void showSheet();
    void setZoom(double zoom);
    void setArea(QSize area); ///< of the widget, headings and cells
    void setHeadings(bool columns, bool rows);
    void setColumnTexts(const QStringList& texts); ///< shown instead of the first columns' letters
    void setGridLines(bool shown);
    void setNotes(std::function<QString(int, CellAddress)> notes,
                  std::function<CornerMark(int, CellAddress)> marks);
    QString noteAt(CellAddress cell) const;
    void setPressed(std::optional<CellAddress> cell);
    /// True if the view moved.
    bool scrollTo(CellAddress topLeft);

    /// Lays out texts as they are on screen.
    PageText& text() { return m_cells.text(); }

    /// Changes the selection and repaints what that touches.
    void changeSelection(const std::function<void(Selection&, const Sheet&)>& change);
    void changeOverlays(const std::function<void(CellOverlays&)>& change);
    const CellOverlays& overlays() const { return m_overlays; }
    void setReferences(std::vector<ReferenceFrame> frames); ///< of all sheets
    /// The border of copied cells, which belongs to one sheet.
    void setCopied(int sheetId, std::optional<CellRange> range);
    bool hasCopied() const { return m_overlays.copied.has_value(); }
    void march();
    QRect fillHandle() const { return painter().fillHandle(); }

    /// Finds out what has changed in the sheet and repaints that.
    /// @return  true if rows, columns or spans have changed: places are others now
    bool update();
    void repaintAll();
    void paint(QPainter& painter, const QRegion& region);
    /// How many cells it has painted since the zoom was set.
    std::uint64_t paintedCells() const { return m_cells.paintedCells(); }

private:
    SelectionPainter painter() const { return {sheet(), m_geometry, m_selection}; }
    std::function<CornerMark(CellAddress)> noteMarks() const;
    void measure();
    bool fitRows();
    void keepSheetState();
    void refreshPlaces();
    void freshenStore();
    void paintSurroundings(QPainter& painter, const QRect& part) const;
    void paintPane(QPainter& painter, const Pane& pane, const QRect& part);
    void paintFreezeLines(QPainter& painter) const;
    void paintPageBreaks(QPainter& painter) const;
    void spoilRow(int row);
    void scrollStore(int down);
    int lineReach() const;
    void updateArea();

    QWidget& m_widget;
    Workbook* m_workbook;
    int m_sheetId = 0;
    std::uint64_t m_settingsRevision = 0;
    CellGeometry m_geometry;
    FittedRows m_fitted;
    Selection m_selection;
    CellOverlays m_overlays;
    std::optional<std::pair<int, CellRange>> m_copied; ///< sheet id and range
    std::vector<ReferenceFrame> m_frames;
    BackingStore m_store;
    ShownCells m_shown;
    CellPainter m_cells;
    HeadingPainter m_headings;
    QStringList m_columnTexts;
    std::function<QString(int, CellAddress)> m_notes;
    std::function<CornerMark(int, CellAddress)> m_marks;
    double m_zoom = 1;
    bool m_gridLines = true;

    struct SheetState {
        Selection selection;
        CellAddress topLeft;
    };
    std::map<int, SheetState> m_states; ///< of sheets that are not shown, by id
};

} // namespace spreadsheet
