#pragma once
#include "spreadsheet/display/CellStyle.h"
#include "spreadsheet/values/CellAddress.h"

#include <optional>
#include <vector>

namespace spreadsheet {

class Sheet;
class Workbook;

/// The lines that a command draws in and around a range; where it names none the present ones stay. A line of
/// style `none` takes the present one away.
struct BorderLines {
    std::optional<BorderLine> left, right, top, bottom; ///< of the range's outline
    std::optional<BorderLine> betweenColumns, betweenRows;

    static BorderLines outline(const BorderLine& line) { return {line, line, line, line, {}, {}}; }
    static BorderLines inside(const BorderLine& line) { return {{}, {}, {}, {}, line, line}; }
    static BorderLines all(const BorderLine& line) { return {line, line, line, line, line, line}; }
};

/// Draws the lines, as one undo step: the cells on both sides of an edge get the same one, so that what was
/// drawn last is what shows. Nothing else of any cell changes, and no lock matters. A span has its outline
/// alone; whole rows and columns keep their lines by row or column.
void drawBorders(Workbook& workbook, Sheet& sheet, const CellRange& range, const BorderLines& lines);

/// The cells around a range take over what the range's own show at the edges between them, as one undo step.
/// @param origin  cells that stay as they are: those that the range was filled from
void bringSides(Workbook& workbook, Sheet& sheet, const CellRange& range,
                const std::optional<CellRange>& origin = std::nullopt);

/// Rows or columns were inserted between two lines of the sheet that shared an edge: its border stays with
/// the one that it belongs to, which has the like or alone any on its other side. If neither or both do, both
/// keep it.
/// @param inserted  whole rows or columns
void partSharedEdge(Workbook& workbook, Sheet& sheet, const CellRange& inserted);

/// Rows or columns are about to be deleted: lines that are theirs by the same signs go with them.
/// @param leaving  whole rows or columns
void takeSharedEdges(Workbook& workbook, Sheet& sheet, const CellRange& leaving);

/// Lines that cells share with those beside them, and take along when they go elsewhere.
class SharedLines {
public:
    /// Of cells that are about to leave.
    SharedLines(const Workbook& workbook, const Sheet& sheet, const CellRange& leaving);
    /// Takes them away.
    /// @param taken  cells of the same sheet that stand elsewhere now, with lines of their own
    void clear(Workbook& workbook, Sheet& sheet, const std::optional<CellRange>& taken) const;

private:
    struct Run {
        CellRange cells; ///< a strip along one side
        std::size_t side;
    };
    std::vector<Run> m_runs;
};

} // namespace spreadsheet
