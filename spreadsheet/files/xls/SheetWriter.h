#pragma once
#include "spreadsheet/files/exchange/SharedTexts.h"
#include "spreadsheet/files/exchange/StoredRows.h"
#include "spreadsheet/files/exchange/Warnings.h"
#include "spreadsheet/files/xls/RecordWriter.h"
#include "spreadsheet/files/xls/XlsFormulas.h"
#include "spreadsheet/files/xls/XlsStyles.h"
#include "spreadsheet/workbook/TallCells.h"
#include "spreadsheet/workbook/Workbook.h"

#include <vector>

namespace spreadsheet {

/// What the sheets of a written .xls file share.
struct XlsParts {
    const Workbook& workbook;
    Warnings& warnings;
    XlsStyles styles;
    SharedTexts texts;
    LinkTable links;
    XlsFormulas formulas;

    XlsParts(const Workbook& book, Warnings& collected)
        : workbook(book)
        , warnings(collected)
        , styles(book.styles(), collected)
        , links(book)
        , formulas(book, links)
    {
    }
};

/// Writes one sheet as the records from BOF to EOF.
class SheetWriter {
public:
    /// @param index  of the sheet, from 1
    SheetWriter(XlsParts& parts, int index, RecordWriter& writer);
    void write();

private:
    void begin();
    void printSettings();
    void pageBreaks();
    void margins();
    void setup();
    void columns();
    void columnRun(int first, int last);
    void dimensions();
    void rows();
    void rowRecord(int row, const std::vector<StoredCell>& cells);
    void cells(int row, const std::vector<StoredCell>& cells);
    std::size_t numberRun(int row, const std::vector<StoredCell>& cells, std::size_t first);
    std::size_t blankRun(int row, const std::vector<StoredCell>& cells, std::size_t first);
    void head(std::uint16_t id, int row, const StoredCell& cell);
    void constant(int row, const StoredCell& cell);
    bool formula(int row, const StoredCell& cell, std::uint32_t number);
    void formulaRecord(int row, const StoredCell& cell, const Value& value, Bytes tokens, Bytes extra);
    void arrayRecord(const CellRange& range, Bytes tokens, Bytes extra);
    void endFormula(Bytes tokens, Bytes extra);
    void result(const Value& value);
    void window();
    void spans();
    bool isProtected() const;

    XlsParts& m_parts;
    int m_index;
    const Sheet& m_sheet;
    const SheetSettings& m_settings;
    RecordWriter& m_writer;
    double m_digitPixels;
    int m_lastRow = 0, m_lastColumn = 0; ///< of cells that are written
    StoredRows m_rows;
    TallCells m_tallCells;
    std::vector<std::byte> m_tokens;
};

} // namespace spreadsheet
