#pragma once
#include "spreadsheet/files/exchange/SharedTexts.h"
#include "spreadsheet/files/exchange/Warnings.h"
#include "spreadsheet/files/xlsx/XlsxStyleSheet.h"
#include "spreadsheet/formula/Lexer.h"
#include "spreadsheet/workbook/Workbook.h"

namespace spreadsheet {

/// What the sheets of a written .xlsx file share.
struct XlsxParts {
    const Workbook& workbook;
    Warnings& warnings;
    XlsxStyleSheet styles;
    SharedTexts texts;
    SheetResolver sheetId;

    XlsxParts(const Workbook& book, Warnings& collected)
        : workbook(book)
        , warnings(collected)
        , styles(book.styles(), collected)
        , sheetId([&book](std::string_view name) {
            const int index = book.sheetIndex(name);
            return index == 0 ? 0 : book.sheet(index).id();
        })
    {
    }
};

} // namespace spreadsheet
