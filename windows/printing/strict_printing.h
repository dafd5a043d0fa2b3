#pragma once
#include "spreadsheet/workbook/Workbook.h"
#include "windows/printing/PrintedGrid.h"

#include <string>
#include <vector>

namespace selfreport {

// Sheets that are printed strictly hand out no figure without data unless the user is told, and the paper
// says so: each such cell has a ※, and every page a notice.

/// Those of the cells that strict sheets withhold: of the active sheet, or of all.
std::vector<CellWithoutData> withheldCells(const spreadsheet::Workbook& workbook,
                                           std::vector<CellWithoutData> cells, bool ofAllSheets);
std::vector<CellWithoutData> withheldCells(PrintedGrid& grid, bool ofAllSheets);

/// "※ 未取到数据 3 处"; "" for none. A cell counts once.
std::string withheldText(const std::vector<CellWithoutData>& cells);

enum class WithheldAnswer { cancel, goThere, print };

/// Lists the first of the cells, and asks.
WithheldAnswer askAboutWithheld(const PrintedGrid& grid, const spreadsheet::Workbook& workbook,
                                const std::vector<CellWithoutData>& cells);

/// While it lives, such cells show ※ before their figures.
class NotedCells {
public:
    NotedCells(spreadsheet::Workbook& workbook, const std::vector<CellWithoutData>& cells);
    ~NotedCells();
    NotedCells(const NotedCells&) = delete;
    NotedCells& operator=(const NotedCells&) = delete;

private:
    spreadsheet::Workbook& m_workbook;
    spreadsheet::Workbook::TextInstead m_former;
};

} // namespace selfreport
