#pragma once
#include "spreadsheet/display/header_fields.h"
#include "spreadsheet/display/header_footer.h"
#include "spreadsheet/print/page_bands.h"
#include "spreadsheet/values/CellAddress.h"
#include "spreadsheet/workbook/Sheet.h"

#include <optional>
#include <stdexcept>
#include <vector>

namespace spreadsheet {

/// The pages cannot be laid out; what() is one Chinese sentence for the user.
struct PageLayoutError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// What is to be laid out; all else comes from the sheet's print settings.
struct PageRequest {
    int paperWidth = 11906; ///< twips of the upright sheet of paper, where the sheet has none of its own; A4
    int paperHeight = 16838;
    std::vector<CellRange> ranges; ///< only these cells; empty: the sheet's print area
    std::string notice;            ///< UTF-8; the first line of every page, above the header; empty: none
    std::string stamp;             ///< UTF-8; the last line of every page where the sheet asks for a stamp
    std::optional<PrintSettings> print; ///< in place of the sheet's
    std::string report;                 ///< UTF-8; what &报表名 stands for
    std::string date, time;             ///< … &日期 and &时间; empty: now
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
    CellRange range{1, 1, 0, 0};      ///< all that is printed together with these cells
    std::vector<PageTrack> rowTracks; ///< shown rows from top to bottom, repeated rows first; no hidden ones
    std::vector<PageTrack> columnTracks; ///< repeated columns first
    int repeatedColumns = 0;             ///< how many of the tracks
    PageBox cells;                       ///< of the rows and columns, without headings
};

/// Which cells stand where on which page: one layout for printer, PDF and preview. Making it costs a pass
/// over row and column sizes and a look at the cells of rows without a height of their own; nothing is drawn.
/// It keeps to the sheet as it was when made.
class PageLayout {
public:
    /// @throws PageLayoutError if the margins leave no room for cells; margins below 0 count as 0
    PageLayout(const Sheet& sheet, const PageRequest& request);

    /// At least 1: a sheet without data gives one page, which still has header and footer.
    int pageCount() const;
    /// @param number  1 to pageCount()  @throws std::out_of_range
    PrintedPage page(int number) const;

    int paperWidth() const { return m_paperWidth; } ///< twips, as turned for printing
    int paperHeight() const { return m_paperHeight; }
    /// What the pages were laid out with.
    const PrintSettings& print() const { return m_print; }
    /// Cells and headings are drawn this much smaller or larger, from the top left corner of body(). Tracks
    /// and boxes of a page are in twips before that.
    double scale() const { return m_scale; }
    /// Where cells and headings may stand, in twips before scale().
    const PageBox& body() const { return m_body; }
    /// The paper without its margins: header, cells, footer.
    const PageBox& printable() const { return m_printable; }
    /// The notice's line included.
    const std::vector<HeaderLine>& header() const { return m_header; }
    /// The stamp's line included.
    const std::vector<HeaderLine>& footer() const { return m_footer; }
    int footerTop() const; ///< where its first line begins
    /// One Chinese sentence if repeated rows or columns are left out, as they would take too much of a page.
    std::string titlesLeftOut() const;
    /// What the fields of header and footer stand for on a page.
    /// @param number  1 to pageCount()
    HeaderFieldValues fieldValues(int number) const;
    /// What the page number of a page is, by its place from 1.
    int shownNumber(int number) const { return number + m_print.firstPage - 1; }
    /// Twips of a row that is printed, here or as a title; nothing of others.
    std::optional<int> rowSize(int row) const;
    int rowHeadingWidth() const { return m_rowHeadingWidth; } ///< twips; 0: no row headings
    int columnHeadingHeight() const { return m_columnHeadingHeight; }

private:
    /// Cells that are printed together, on pages of their own.
    struct Part {
        CellRange range;
        std::vector<int> rowSizes, columnSizes; ///< of the range, twips
        std::vector<PageBand> rowBands, columnBands;
        std::size_t pages() const { return rowBands.size() * columnBands.size(); }
    };
    struct Titles {
        int first = 1;
        std::vector<int> sizes;
        int length() const;
        RepeatedRows repeated() const;
        std::optional<int> size(int index) const;
    };

    void measurePaper(const PageRequest& request);
    void measureCells(const Sheet& sheet, const std::vector<CellRange>& ranges);
    void dealOut();
    std::vector<PageBand> rowBands(const Part& part, const PageBox& body) const;
    std::vector<PageBand> columnBands(const Part& part, const PageBox& body) const;
    void fit();
    bool fits(double scale) const;
    PageBox bodyAt(double scale) const;
    void centre(PrintedPage& page) const;
    void placeTracks(PrintedPage& page, const Part& part) const;

    int m_paperWidth = 0;
    int m_paperHeight = 0;
    PageBox m_printable;
    PageBox m_body;
    PageBox m_wholeBody; ///< before the scale
    double m_scale = 1;
    PrintSettings m_print;
    std::vector<HeaderLine> m_header, m_footer;
    HeaderFieldValues m_fields; ///< those that are alike on all pages
    int m_rowHeadingWidth = 0;
    int m_columnHeadingHeight = 0;
    Titles m_titleRows, m_titleColumns;
    std::vector<Part> m_parts;
};

} // namespace spreadsheet
