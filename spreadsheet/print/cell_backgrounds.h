#pragma once

class QPainter;

namespace spreadsheet {

class PageCells;

/// The background colours of cells that have one.
void drawBackgrounds(QPainter& painter, const PageCells& cells, bool inColour);

} // namespace spreadsheet
