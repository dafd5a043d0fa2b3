#include "spreadsheet/files/text/csv.h"
#include "spreadsheet/workbook/Workbook.h"
#include "text/quotes.h"

namespace spreadsheet {

namespace {

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF"; // spreadsheets take UTF-8 for granted only with it

bool needsQuotes(std::string_view field)
{
    return field.find_first_of(",\"\r\n") != std::string_view::npos || field.starts_with(' ') ||
           field.ends_with(' ');
}

void appendField(const std::string& text, std::string& csv)
{
    if (!needsQuotes(text)) {
        csv += text;
        return;
    }
    csv += quotes::around(text, '"');
}

void appendSheet(const Sheet& sheet, std::string& csv)
{
    const int lastRow = sheet.lastDataRow();
    const int lastColumn = sheet.lastDataColumn();
    for (int row = 1; row <= lastRow; ++row) {
        for (int column = 1; column <= lastColumn; ++column) {
            if (column > 1)
                csv += ',';
            appendField(sheet.displayText({column, row}), csv);
        }
        csv += "\r\n";
    }
}

} // namespace

std::string sheetCsv(const Sheet& sheet)
{
    std::string csv(byteOrderMark);
    appendSheet(sheet, csv);
    return csv;
}

std::string workbookCsv(const Workbook& workbook)
{
    std::string csv(byteOrderMark);
    for (int sheet = 1; sheet <= workbook.sheetCount(); ++sheet) {
        if (sheet > 1)
            csv += "\r\n";
        appendSheet(workbook.sheet(sheet), csv);
    }
    return csv;
}

} // namespace spreadsheet
