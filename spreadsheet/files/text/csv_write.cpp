#include "spreadsheet/files/text/csv.h"

#include "spreadsheet/display/number_format_code.h"
#include "spreadsheet/values/decimal.h"
#include "spreadsheet/values/decimal_text.h"
#include "spreadsheet/values/number_text.h"
#include "spreadsheet/workbook/Workbook.h"
#include "text/quotes.h"

#include <algorithm>

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

/// Whether a displayed number reads as the cell's own, apart from what its decimals leave out.
bool readsAs(std::string_view shown, double number)
{
    const auto read = parseNumber(shown);
    const std::size_t point = shown.find('.');
    const auto decimals = point == shown.npos ? 0 : static_cast<int>(shown.size() - point - 1);
    return read && *read == roundDecimal(number, decimals);
}

/// Whether it shows "1 1/4", which is no figure.
bool showsFraction(const FormatSection& section)
{
    return std::ranges::find(section.parts, FormatPart::Kind::fraction, &FormatPart::kind) !=
           section.parts.end();
}

/// A file is read as figures again: a number format code that groups, scales or replaces them gives way to
/// the cell's type, a fraction to all decimals. One that only pads them, or shows a day, stays.
std::string fieldOf(const Sheet& sheet, CellAddress cell)
{
    const std::string_view code = sheet.style(cell).numberFormat.view();
    const Value value = sheet.value(cell);
    if (!sheet.shownText(cell).empty())
        return sheet.displayText(cell);
    if (code.empty() || !value.isNumber())
        return sheet.textByType(cell);
    const auto sections = parseFormatCode(code);
    if (sections && std::ranges::any_of(*sections, showsFraction))
        return generalNumberText(value.number());
    const std::string shown(trimmedBlanks(sheet.displayText(cell)));
    const bool stays = sections && (sections->front().isDate || readsAs(shown, value.number()));
    return stays ? shown : sheet.textByType(cell);
}

void appendSheet(const Sheet& sheet, std::string& csv)
{
    const int lastRow = sheet.lastDataRow();
    const int lastColumn = sheet.lastDataColumn();
    for (int row = 1; row <= lastRow; ++row) {
        for (int column = 1; column <= lastColumn; ++column) {
            if (column > 1)
                csv += ',';
            appendField(fieldOf(sheet, {column, row}), csv);
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
