#pragma once
#include "spreadsheet/display/header_footer.h"
#include "spreadsheet/print/page_bands.h"
#include "spreadsheet/values/CellAddress.h"

#include <optional>
#include <stdexcept>
#include <vector>

namespace spreadsheet {

class Sheet;

/// The pages cannot be laid out; what() is one Chinese sentence for the user.
struct PageLayoutError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// What is to be laid out; all else comes from the sheet's print settings.
struct PageRequest {
    int paperWidth = 11906; ///< twips of the upright sheet of paper; A4
    int paperHeight = 16838;
    std::optional<CellRange> range; ///< only these cells
    std::string notice;             ///< UTF-8; the first line of every page, above the header; empty: none
    std::string stamp;              ///< UTF-8; the last line of every page where the sheet asks for a stamp
};

/// A rectangle on the page in twips, from the paper's top left corner.
struct PageBox {
    int left = 0;
    int top = 0;
    int width = 0;
    int height = 0;
    int right() const { return left + width; }
    int bottom() const { return top + height; }
    friend bool operator==(const PageBox&, const PageBox&) = default;
};

/// One row or column on a page.
struct PageTrack {
    int index = 0; ///< from 1
    /// Twips from the paper's edge; a row continued from the page before starts above its area.
    int start = 0;
    int size = 0; ///< twips, whole
    int end() const { return start + size; }
    friend bool operator==(const PageTrack&, const PageTrack&) = default;
};

/// Everything about one page but what the cells hold.
struct PrintedPage {
    int number = 1;
    PageBand rows, columns;
    std::vector<PageTrack> rowTracks; ///< shown rows from top to bottom, repeated rows first; no hidden ones
    std::vector<PageTrack> columnTracks;
    PageBox cells; ///< of the rows and columns, without headings
};

/// Which cells stand where on which page: one layout for printer, PDF and preview. Pages go across,
/// then down. Making it costs a pass over row and column sizes and a look at the cells of rows without a
/// height of their own; nothing is drawn. It keeps to the sheet as it was when made.
class PageLayout {
public:
    /// @throws PageLayoutError if the margins leave no room for cells
    PageLayout(const Sheet& sheet, const PageRequest& request);

    /// At least 1: a sheet without data gives one page, which still has header and footer.
    int pageCount() const;
    /// @param number  1 to pageCount()  @throws std::out_of_range
    PrintedPage page(int number) const;

    int paperWidth() const { return m_paperWidth; } ///< twips, as turned for printing
    int paperHeight() const { return m_paperHeight; }
    /// Cells and headings are drawn this much smaller, from the top left corner of body(); 1 unless all
    /// columns are fitted to one page. Tracks and boxes of a page are in twips before that.
    double scale() const { return m_scale; }
    /// Where cells and headings may stand, in twips before scale().
    const PageBox& body() const { return m_body; }
    /// The paper without its margins: header, cells, footer.
    const PageBox& printable() const { return m_printable; }
    /// Cells that are printed; nothing if the sheet holds no data.
    const std::optional<CellRange>& range() const { return m_range; }
    /// The notice's line included.
    const std::vector<HeaderLine>& header() const { return m_header; }
    /// The stamp's line included.
    const std::vector<HeaderLine>& footer() const { return m_footer; }
    /// Twips of a row that is printed, here or as a title; nothing of others.
    std::optional<int> rowSize(int row) const;
    int rowHeadingWidth() const { return m_rowHeadingWidth; } ///< twips; 0: no row headings
    int columnHeadingHeight() const { return m_columnHeadingHeight; }

private:
    void measurePaper(const Sheet& sheet, const PageRequest& request);
    void dealOut(const Sheet& sheet);
    void fitWidth();
    void centre(PrintedPage& page) const;

    int m_paperWidth = 0;
    int m_paperHeight = 0;
    PageBox m_printable;
    PageBox m_body;
    double m_scale = 1;
    bool m_centredAcross = false;
    bool m_centredDown = false;
    std::vector<HeaderLine> m_header, m_footer;
    std::optional<CellRange> m_range;
    int m_rowHeadingWidth = 0;
    int m_columnHeadingHeight = 0;
    int m_titleTop = 1;
    std::vector<int> m_titleSizes;
    std::vector<int> m_rowSizes, m_columnSizes; ///< of the range, twips
    std::vector<PageBand> m_rowBands, m_columnBands;
};

} // namespace spreadsheet
