#pragma once
#include "spreadsheet/print/PageLayout.h"
#include "spreadsheet/workbook/Sheet.h"

#include <QString>

#include <functional>
#include <optional>
#include <vector>

namespace spreadsheet {

/// A cell as a page shows it.
struct PageCell {
    CellAddress address;
    const CellStyle* style = nullptr;
    QString text;                                              ///< what it displays
    bool isFigure = false;                                     ///< a number: never cut, "####" instead
    bool isTrue = false;                                       ///< state of a check box
    Colour colour = automaticColour;                           ///< of the text
    HorizontalAlignment alignment = HorizontalAlignment::left; ///< never general
    int indent = 0; ///< twips from where the text would stand otherwise
    int span = -1;  ///< index into PageCells::spans(), -1: stands alone
};

/// A span that a page shows, wholly or in part.
struct PageSpan {
    CellRange range;
    PageCell anchor;
    PageBox whole;   ///< may reach beyond the page
    PageBox visible; ///< the rows and columns of it that the page shows
};

/// Lengths of rows and columns in the units of a page's tracks.
struct TrackLengths {
    std::function<int(int first, int last)> rows; ///< of the rows first..last, hidden ones taking none
    std::function<int(int first, int last)> columns;
    int farthestText = static_cast<int>(10 * twipsPerInch); ///< no text of one line reaches farther
};

/// Those of a sheet in twips. The sheet must outlive them.
TrackLengths lengthsInTwips(const Sheet& sheet);

/// The cells of one page, or of a part of the screen, with their texts and looks, read once for all passes of
/// drawing.
class PageCells {
public:
    PageCells(const Sheet& sheet, const PrintedPage& page);
    PageCells(const Sheet& sheet, const PrintedPage& page, TrackLengths lengths);

    const Sheet& sheet() const { return m_sheet; }
    int rows() const { return static_cast<int>(m_page.rowTracks.size()); }
    int columns() const { return static_cast<int>(m_page.columnTracks.size()); }
    const PageTrack& row(int place) const { return m_page.rowTracks[static_cast<std::size_t>(place)]; }
    const PageTrack& column(int place) const { return m_page.columnTracks[static_cast<std::size_t>(place)]; }
    /// By place on the page, both from 0.
    const PageCell& at(int row, int column) const
    {
        return m_cells[static_cast<std::size_t>(row * columns() + column)];
    }
    const std::vector<PageSpan>& spans() const { return m_spans; }
    PageBox boxOf(int row, int column) const;
    /// Repeated columns end before this one, so that texts do not run over into it.
    bool isBehindRepeated(int column) const { return column > 0 && column == m_page.repeatedColumns; }
    /// A text beside columns of the page, with its place beyond their edge.
    struct TextBeyond {
        PageCell cell;
        PageBox box;
    };
    /// The nearest one that the sheet has in a row left of a column.
    std::optional<TextBeyond> textBefore(int row, int column) const;
    /// The nearest one right of the page's columns.
    std::optional<TextBeyond> textBehind(int row) const;
    /// Nothing shows there, and no span covers it.
    bool isBlank(int row, int column) const
    {
        return at(row, column).text.isEmpty() && at(row, column).span < 0;
    }

private:
    PageCell read(CellAddress cell) const;
    void placeSpan(const CellRange& range);
    bool showsText(CellAddress cell) const;

    const Sheet& m_sheet;
    const PrintedPage& m_page;
    TrackLengths m_lengths;
    std::vector<PageCell> m_cells;
    std::vector<PageSpan> m_spans;
};

} // namespace spreadsheet
