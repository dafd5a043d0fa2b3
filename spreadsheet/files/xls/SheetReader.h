#pragma once
#include "spreadsheet/files/exchange/CodePage.h"
#include "spreadsheet/files/exchange/drop_down_lists.h"
#include "spreadsheet/files/exchange/Warnings.h"
#include "spreadsheet/files/xls/FormulaReader.h"
#include "spreadsheet/files/xls/NoteReader.h"
#include "spreadsheet/files/xls/RecordStream.h"
#include "spreadsheet/files/xls/StyleTable.h"
#include "spreadsheet/formula/Lexer.h"
#include "spreadsheet/workbook/Workbook.h"

#include <map>
#include <vector>

namespace spreadsheet {

/// What the sheets of an .xls file share.
struct XlsGlobals {
    XlsGlobals(StylePool& pool, Warnings& collected)
        : warnings(collected)
        , styles(pool, collected)
    {
    }

    Warnings& warnings;
    std::uint16_t version = 0x0600;
    CodePage codePage{1252};
    StyleTable styles;
    XlsLinks links;
    std::vector<Text> texts; ///< the shared ones
};

/// Reads one sheet of an .xls file, its records from BOF to EOF, into a fresh sheet.
class SheetReader {
public:
    SheetReader(Workbook& workbook, Sheet& sheet, XlsGlobals& globals);

    /// @throws ContentError if a record is damaged
    void read(RecordStream& stream);

private:
    using CellPosition = std::pair<int, int>; ///< row and column from 0

    /// A formula that several cells stand in.
    struct Group {
        CellRange range; ///< of an array formula
        Bytes tokens, extra;
        bool isArray = false;
        std::size_t cells = 0;    ///< that refer to it
        std::uint32_t number = 0; ///< in the formula pool, once it is known
    };

    void record(RecordStream& stream);
    bool cellRecord(RecordStream& stream);
    bool settingRecord(RecordStream& stream);
    bool printRecord(RecordStream& stream);
    void finish();

    // Cells.
    Column::Place cell(int row, int column, std::uint16_t cellFormat);
    void put(int row, int column, std::uint16_t cellFormat, Value value);
    void putAt(const XlsRecord& record, Value value);
    void sharedTextCell(const XlsRecord& record);
    void label(RecordStream& stream);
    void multipleRk(const XlsRecord& record);
    void multipleBlank(const XlsRecord& record);
    void boolOrError(const XlsRecord& record);
    void formula(RecordStream& stream);
    Value formulaValue(const XlsRecord& record, RecordStream& stream);
    void readGroup(const XlsRecord& record, CellPosition first);
    void placeFormula(const XlsRecord& record, const Column::Place& place, CellAddress at);
    std::uint32_t groupFormula(const XlsRecord& record, CellAddress at);
    std::uint32_t interned(Bytes tokens, Bytes extra, CellAddress at, bool isArray = false);
    void placeArrays();

    // Settings.
    void row(const XlsRecord& record);
    void columnInfo(const XlsRecord& record);
    void mergedCells(const XlsRecord& record);
    void pane(const XlsRecord& record);
    void setup(const XlsRecord& record);
    void breaks(const XlsRecord& record, std::map<int, bool>& starts) const;
    std::string headerText(const XlsRecord& record);
    void setDefaultWidth();

    Workbook& m_workbook;
    Sheet& m_sheet;
    XlsGlobals& m_globals;
    FormulaReader m_formulaReader;
    SheetSettings m_settings;
    NoteReader m_notes;
    std::vector<OfferedList> m_lists;
    std::map<CellPosition, Group> m_groups; ///< by the cell that the others name
    SheetResolver m_sheetId;
    double m_digitPixels;
    int m_defaultDigits = 8;
    double m_standardWidth = 0; ///< in digits; 0: not given
    bool m_isProtected = false;
    bool m_isFrozen = false;
    bool m_fitsPage = false;
    int m_lastRow = 0; ///< from 1, of what the file holds
    int m_lastColumn = 0;
    Column* m_column = nullptr; ///< the column of the last cell
    int m_columnNumber = 0;
};

} // namespace spreadsheet
