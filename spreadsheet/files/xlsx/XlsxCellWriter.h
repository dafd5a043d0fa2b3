#pragma once
#include "spreadsheet/files/exchange/StoredRows.h"
#include "spreadsheet/files/xlsx/XlsxParts.h"
#include "spreadsheet/files/xlsx/XmlWriter.h"
#include "spreadsheet/workbook/TallCells.h"

#include <optional>
#include <string>
#include <vector>

namespace spreadsheet {

/// Writes the rows of one sheet with their cells into a written .xlsx file. Every value, also that of a
/// formula, is written as the kind that it is.
class XlsxCellWriter {
public:
    XlsxCellWriter(XlsxParts& parts, const Sheet& sheet, XmlWriter& xml);
    void write();
    /// True if a cell was marked as locked, which says that somebody meant it.
    bool hasLocked() const { return m_hasLocked; }

private:
    bool followsTexts(int row, const std::vector<StoredCell>& cells);
    void row(int row, const std::vector<StoredCell>& cells);
    void cell(CellAddress at, const StoredCell& cell);
    std::optional<CellRange> arrayRange(CellAddress at, std::uint32_t formula) const;
    std::optional<std::string> formulaText(CellAddress base, std::uint32_t formula);
    void value(const Value& value, bool isResult);
    void resultText(std::string_view text);
    void addCovered(int row, std::vector<StoredCell>& cells);

    XlsxParts& m_parts;
    const Sheet& m_sheet;
    const SheetSettings& m_settings;
    XmlWriter& m_xml;
    StoredRows m_rows;
    TallCells m_tallCells;
    std::vector<CellRange> m_spans;     ///< by first row
    std::size_t m_nextSpan = 0;         ///< the first one that begins further down
    std::vector<CellRange> m_openSpans; ///< those that reach the row
    CellBlock m_blank{1};
    bool m_hasLocked = false;
};

} // namespace spreadsheet
