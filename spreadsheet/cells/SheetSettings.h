#pragma once
#include "spreadsheet/values/CellAddress.h"
#include "spreadsheet/values/twips.h"

#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace spreadsheet {

inline constexpr int defaultColumnWidth = 1080; ///< twips (1/1440 inch)
inline constexpr int defaultRowHeight = 285;    ///< twips

inline constexpr int usualTextDistance = 40;  ///< twips between a cell's edge and its text
inline constexpr int smallestPrintScale = 10; ///< percent
inline constexpr int largestPrintScale = 400;
inline constexpr int mostFittedPages = 999;
inline constexpr int largestFirstPage = 30'000;

/// Page set-up of one sheet.
struct PrintSettings {
    int marginTop = 864; ///< twips; 0.6 inch
    int marginBottom = 864;
    int marginLeft = 864;
    int marginRight = 864;
    bool landscape = false;
    std::string header; ///< code string with "/c", "/fn…" and so on; empty: none
    std::string footer;
    bool columnHeadings = false;
    bool rowHeadings = false;
    bool gridLines = false;
    bool border = false;
    bool colour = true;
    bool shadows = false;
    int titleTop = 0; ///< rows repeated on each page; 0: none
    int titleBottom = 0;
    int titleLeft = 0; ///< columns repeated on each page; 0: none
    int titleRight = 0;
    std::vector<CellRange> area; ///< only these cells are printed, each range on pages of its own; empty: all
    bool usedAreaOnly = true;    ///< up to the last row and column that show something
    int scale = 100;             ///< percent; counts while nothing is fitted
    /// Made smaller until so many pages side by side hold all columns; 0: as many as it takes.
    int fitAcross = 0;
    int fitDown = 0;        ///< … all rows
    bool downFirst = false; ///< pages go down, then across; else across, then down
    int firstPage = 1;      ///< number that the first page shows
    int paperWidth = 0;     ///< twips of the upright sheet of paper; 0: whatever the printer has
    int paperHeight = 0;
    int textDistance = usualTextDistance; ///< twips between a cell's edges left and right and its text
    bool centredAcross = false;           ///< cells stand in the middle of the page
    bool centredDown = false;
    bool stamp = false;               ///< a last line under the footer says when and by whom it was printed
    bool strict = false;              ///< figures that name what there is not are not printed without a word
    std::map<int, bool> rowBreaks;    ///< rows that begin a page; only entries that are true
    std::map<int, bool> columnBreaks; ///< columns that begin a page
    bool isFitted() const { return fitAcross > 0 || fitDown > 0; }
    friend bool operator==(const PrintSettings&, const PrintSettings&) = default;
};

/// One axis of a sheet: sizes in twips that differ from the default, and what is hidden.
struct AxisSizes {
    int defaultSize = defaultRowHeight;
    std::map<int, int> sizes;   ///< by row or column from 1
    std::map<int, bool> hidden; ///< only entries that are true

    int size(int index) const; ///< 0 for a hidden one
    friend bool operator==(const AxisSizes&, const AxisSizes&) = default;
};

/// The entries of a drop-down list; copies share them, however many cells offer them.
class DropDownEntries {
public:
    explicit DropDownEntries(std::vector<std::string> entries)
        : m_entries(std::make_shared<const std::vector<std::string>>(std::move(entries)))
    {
    }
    const std::vector<std::string>& operator*() const { return *m_entries; }
    friend bool operator==(const DropDownEntries& a, const DropDownEntries& b)
    {
        return a.m_entries == b.m_entries || *a == *b;
    }

private:
    std::shared_ptr<const std::vector<std::string>> m_entries;
};

using DropDowns = std::map<CellAddress, DropDownEntries>;

/// What a sheet has besides its cells.
struct SheetSettings {
    std::string name;
    int rowCount = 500; ///< at most maxRows
    int columnCount = 50;
    AxisSizes rows{defaultRowHeight, {}, {}};
    AxisSizes columns{defaultColumnWidth, {}, {}};
    std::map<int, std::uint32_t> rowStyles; ///< style of a whole row, by row
    std::map<int, std::uint32_t> columnStyles;
    std::vector<CellRange> spans;  ///< merged cells; they never overlap
    std::vector<CellRange> arrays; ///< ranges of array formulas; they never overlap
    /// Entries of drop-down lists by cell; row 0: of the whole column, for cells without a list of their own.
    DropDowns dropDowns;
    /// What button cells show instead of their value; row 0 as above. None is empty.
    std::map<CellAddress, std::string> captions;
    std::map<CellAddress, std::string> notes; ///< remarks on cells; none is empty
    int frozenRows = 0;
    int frozenColumns = 0;
    bool isHidden = false;     ///< carried for other programs: ours offers the tab of every sheet
    bool isVeryHidden = false; ///< beside isHidden: others do not even list it among the hidden ones
    /// What is shown in place of a figure that is nothing, by the kind of nothing, whose numbers belong to
    /// whoever computes the sheet. A kind without a text shows its figure.
    std::map<int, std::string> nothingTexts;
    PrintSettings print;
    friend bool operator==(const SheetSettings&, const SheetSettings&) = default;
};

} // namespace spreadsheet
