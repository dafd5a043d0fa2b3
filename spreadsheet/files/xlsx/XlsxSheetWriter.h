#pragma once
#include "spreadsheet/engine/Workbook.h"
#include "spreadsheet/files/exchange/Warnings.h"
#include "spreadsheet/formula/Lexer.h"

#include <string>
#include <vector>

struct lxw_format;
struct lxw_workbook;
struct lxw_worksheet;

namespace spreadsheet {

/// Gives styles their formats in a written .xlsx file.
class XlsxFormats {
public:
    XlsxFormats(const StylePool& pool, lxw_workbook* book, Warnings& warnings);
    lxw_format* format(std::uint32_t style);

private:
    lxw_format* made(const CellStyle& style);

    const StylePool& m_pool;
    lxw_workbook* m_book;
    Warnings& m_warnings;
    std::vector<lxw_format*> m_formats; ///< by style; null: none yet
};

struct XlsxSheetSource {
    const Workbook& workbook;
    const Sheet& sheet;
    XlsxFormats& formats;
    const SheetResolver& sheetId;
    Warnings& warnings;
};

/// Writes one sheet into a written .xlsx file.
class XlsxSheetWriter {
public:
    XlsxSheetWriter(const XlsxSheetSource& source, lxw_worksheet* target);
    void write();

private:
    void sizes();
    void columns();
    std::vector<bool> namedRows() const;
    void rows();
    void spans();
    void cells();
    void cell(CellAddress at, const CellBlock& block, int index);
    void constant(CellAddress at, const Value& value, lxw_format* format);
    void formula(CellAddress at, std::uint32_t number, const Value& value, lxw_format* format);
    void print();
    void headers();
    void breaks();
    void notes();
    void lists();
    void protect();

    const XlsxSheetSource m_source;
    const SheetSettings& m_settings;
    lxw_worksheet* m_target;
    double m_digitPixels;
    bool m_hasLocked = false;
};

} // namespace spreadsheet
