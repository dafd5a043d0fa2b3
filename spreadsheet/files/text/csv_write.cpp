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

/// What the cell's type alone shows; an amount of money as a figure.
std::string shownByType(const Sheet& sheet, CellAddress cell)
{
    const Value value = sheet.value(cell);
    const bool isMoney = sheet.style(cell).type == CellType::currency && value.isNumber();
    return isMoney ? fixedNumberText(value.number(), 2) : sheet.textByType(cell);
}

/// Whether a displayed number reads as the cell's own, apart from what its decimals leave out.
bool readsAs(std::string_view shown, double number)
{
    if (shown.ends_with('%')) {
        Decimal share = shownDecimal(number);
        share.exponent += 2;
        return readsAs(shown.substr(0, shown.size() - 1), share.number());
    }
    const auto read = parseNumber(shown);
    if (read && shown.find('E') != shown.npos)
        return true; // its digits are as many as the code says
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
        return shownByType(sheet, cell);
    const auto sections = parseFormatCode(code);
    if (sections && std::ranges::any_of(*sections, showsFraction))
        return generalNumberText(value.number());
    const std::string shown(trimmedBlanks(sheet.displayText(cell)));
    const bool stays = sections && (sections->front().isDate || readsAs(shown, value.number()));
    return stays ? shown : shownByType(sheet, cell);
}

/// Where a line of a sheet that reaches far both ways ends: with the row's last cell. Lines of equal length
/// would be gigabytes of commas.
int lastColumnOf(const Sheet& sheet, const std::vector<int>& usedColumns, int row)
{
    const auto found = std::find_if(usedColumns.rbegin(), usedColumns.rend(),
                                    [&](int column) { return !sheet.column(column)->value(row).isEmpty(); });
    return found == usedColumns.rend() ? 1 : *found;
}

void appendSheet(const Sheet& sheet, std::string& csv)
{
    constexpr long long mostPadded = 50'000'000; // cells
    const int lastRow = sheet.lastDataRow();
    const int lastColumn = sheet.lastDataColumn();
    const bool isPadded = static_cast<long long>(lastRow) * lastColumn <= mostPadded;
    std::vector<int> usedColumns;
    for (int column = 1; column <= lastColumn && !isPadded; ++column) {
        if (sheet.column(column) && !sheet.column(column)->empty())
            usedColumns.push_back(column);
    }
    for (int row = 1; row <= lastRow; ++row) {
        const int last = isPadded ? lastColumn : lastColumnOf(sheet, usedColumns, row);
        for (int column = 1; column <= last; ++column) {
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
