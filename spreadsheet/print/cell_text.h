#pragma once
#include "spreadsheet/print/PageCells.h"

#include <QSizeF>
#include <vector>

class QPainter;

namespace spreadsheet {

class PageText;
struct TextLine;
struct TextTurn;

/// A text that ran out of its cell: no grid line is drawn between the places first..last of its row.
struct TextOverflow {
    int row = 0; ///< places on the page, from 0
    int first = 0;
    int last = 0;
};

/// Draws what the cells of a page hold.
///
/// Figures that do not fit show as "####". Other single-line texts run into blank neighbours on the side
/// away from their alignment, over the page's edge onto the page beside it too, and are cut where a neighbour
/// is in use; wrapped texts break at the cell's width and are cut at its height, their end first. Turned
/// texts stay in their cell. In a span that goes on over several pages the text stands in each page's part.
/// Units are those of `text` and of the cells' tracks.
/// @param rightLimit  how far texts may run beyond the page's last column
class CellTextPainter {
public:
    CellTextPainter(QPainter& painter, PageText& text, const PageCells& cells, bool inColour, int rightLimit)
        : m_painter(painter)
        , m_text(text)
        , m_cells(cells)
        , m_inColour(inColour)
        , m_rightLimit(rightLimit)
    {
    }

    /// On a screen controls have looks of their own, which may take room, and the text of a span stands in
    /// its whole, in sight or not.
    void drawForScreen() { m_isOnScreen = true; }

    std::vector<TextOverflow> draw();

private:
    struct TextEdges { ///< between which a text is aligned
        double left, right;
    };
    struct Room { ///< horizontal room of a text
        int left, right;
        int firstColumn, lastColumn; ///< places on the page
    };

    void drawCell(const PageCell& cell, const PageBox& box, const Room* neighbours);
    void drawText(const PageCell& cell, const PageBox& box, const Room* neighbours);
    void drawTurned(const PageCell& cell, const PageBox& box, const TextTurn& turn);
    std::vector<TextLine> turnedLines(const PageCell& cell, QSizeF room, const TextTurn& turn);
    void drawTextFromPageBefore();
    void drawTextFromPageBehind();
    TextOverflow reached(double left, double right, const Room& room) const;
    Room roomOf(int row, int column) const;
    double paddingAcross() const;
    TextEdges edgesOf(const PageCell& cell, const PageBox& box) const;

    QPainter& m_painter;
    PageText& m_text;
    const PageCells& m_cells;
    bool m_inColour;
    int m_rightLimit;
    bool m_isOnScreen = false;
    int m_row = 0, m_column = 0; ///< place of the cell being drawn
    std::vector<TextOverflow> m_overflows;
};

} // namespace spreadsheet
