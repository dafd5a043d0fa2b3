#pragma once
#include "spreadsheet/engine/Workbook.h"
#include "spreadsheet/files/exchange/Warnings.h"
#include "spreadsheet/files/xls/RecordWriter.h"
#include "spreadsheet/files/xls/SharedTexts.h"
#include "spreadsheet/files/xls/XlsFormulas.h"
#include "spreadsheet/files/xls/XlsStyles.h"

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
    /// A cell to be written, in one row.
    struct Cell {
        int column; ///< from 0
        std::uint16_t format;
        const CellBlock* block;
        int index;
    };
    /// Where a column is being read; rows only ascend.
    struct Cursor {
        const std::vector<Column::Slot>* slots;
        std::size_t slot = 0;
    };

    void begin();
    void printSettings();
    void pageBreaks();
    void margins();
    void setup();
    void columns();
    void columnRun(int first, int last);
    void dimensions();
    void rows();
    void rowRecord(int row, const std::vector<Cell>& cells);
    void collect(int row, std::vector<Cell>& cells);
    void cells(int row, const std::vector<Cell>& cells);
    std::size_t numberRun(int row, const std::vector<Cell>& cells, std::size_t first);
    std::size_t blankRun(int row, const std::vector<Cell>& cells, std::size_t first);
    void head(std::uint16_t id, int row, const Cell& cell);
    void constant(int row, const Cell& cell);
    bool formula(int row, const Cell& cell, std::uint32_t number);
    void formulaRecord(int row, const Cell& cell, const Value& value, Bytes tokens, Bytes extra);
    void arrayRecord(const CellRange& range, Bytes tokens, Bytes extra);
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
    std::vector<Cursor> m_cursors;
    std::vector<std::byte> m_tokens;
};

} // namespace spreadsheet
