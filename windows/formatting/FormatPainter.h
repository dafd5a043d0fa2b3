#pragma once
#include "spreadsheet/display/CellStyle.h"
#include "spreadsheet/values/CellAddress.h"

#include <QObject>

#include <vector>

namespace spreadsheet {
class SpreadsheetControl;
}

namespace selfreport {

/// Takes the looks of the selected cells to those that are selected next: with the mouse, or with the keys
/// and Enter. Esc ends it without a change. It belongs to the grid and deletes itself.
class FormatPainter : public QObject {
    Q_OBJECT

public:
    /// A painter that is at work already ends.
    static void start(spreadsheet::SpreadsheetControl& grid);
    /// Ends the one that is at work without a change; false if there is none.
    static bool stop(spreadsheet::SpreadsheetControl& grid);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    FormatPainter(spreadsheet::SpreadsheetControl& grid, const spreadsheet::CellRange& source);
    void lift(const spreadsheet::CellRange& source);
    void paint();
    void paintOver(const spreadsheet::CellRange& goal);
    std::vector<spreadsheet::CellRange> goals() const;
    void end();

    spreadsheet::SpreadsheetControl& m_grid;
    int m_sheetId;
    int m_columns = 1, m_rows = 1;                ///< of the pattern
    std::vector<spreadsheet::CellStyle> m_styles; ///< row by row; the grid may show another workbook by then
    bool m_pressed = false;
    bool m_ended = false;
};

} // namespace selfreport
