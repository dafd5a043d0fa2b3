#include "spreadsheet/files/exchange/print_names.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <vector>

namespace spreadsheet {

namespace {

/// Pieces between commas, without the sheet's name, "$" and brackets. Names may hold commas in quotes.
std::vector<std::string> references(std::string_view text)
{
    std::vector<std::string> pieces(1);
    bool quoted = false;
    for (const char c : text) {
        if (c == '\'')
            quoted = !quoted;
        if (quoted)
            continue;
        if (c == ',')
            pieces.emplace_back();
        else if (c == '!')
            pieces.back().clear();
        else if (c != '$' && c != '(' && c != ')' && c != ' ' && c != '=')
            pieces.back() += c;
    }
    return pieces;
}

std::optional<int> rowOf(std::string_view text)
{
    int row = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), row);
    return error == std::errc() && end == text.data() + text.size() && row >= 1 && row <= maxRows
               ? std::optional(row)
               : std::nullopt;
}

/// "A1:F20", "A1", whole columns "A:B" or whole rows "1:3".
std::optional<CellRange> rangeOf(std::string_view text)
{
    const std::size_t colon = text.find(':');
    const std::string_view from = text.substr(0, colon);
    const std::string_view to = colon == text.npos ? from : text.substr(colon + 1);
    if (const auto first = parseColumnName(from), last = parseColumnName(to); first && last)
        return CellRange{std::min(*first, *last), 1, std::max(*first, *last), maxRows};
    if (const auto first = rowOf(from), last = rowOf(to); first && last)
        return CellRange{1, std::min(*first, *last), maxColumns, std::max(*first, *last)};
    return parseRangeName(text);
}

std::string rows(int first, int last)
{
    return '$' + std::to_string(first) + ":$" + std::to_string(last);
}

std::string columns(int first, int last)
{
    return '$' + columnName(first) + ":$" + columnName(last);
}

std::string cell(int column, int row)
{
    return '$' + columnName(column) + '$' + std::to_string(row);
}

std::string rangeText(const CellRange& range)
{
    if (range.left <= 1 && range.right >= maxColumns)
        return rows(range.top, range.bottom);
    if (range.top <= 1 && range.bottom >= maxRows)
        return columns(range.left, range.right);
    return cell(range.left, range.top) + ':' + cell(range.right, range.bottom);
}

} // namespace

bool applyPrintArea(std::string_view text, SheetSettings& settings)
{
    std::vector<CellRange> area;
    for (const std::string& piece : references(text)) {
        const auto range = rangeOf(piece);
        if (!range)
            return false;
        area.push_back(*range);
        if (range->bottom < maxRows)
            settings.rowCount = std::max(settings.rowCount, range->bottom);
        if (range->right < maxColumns)
            settings.columnCount = std::max(settings.columnCount, range->right);
    }
    settings.print.area = std::move(area);
    return true;
}

bool applyPrintTitles(std::string_view text, SheetSettings& settings)
{
    PrintSettings& print = settings.print;
    bool found = false;
    for (const std::string& piece : references(text)) {
        const auto range = rangeOf(piece);
        if (!range)
            continue;
        found = true;
        if (range->right == maxColumns || range->bottom < maxRows) {
            print.titleTop = range->top;
            print.titleBottom = range->bottom;
            settings.rowCount = std::max(settings.rowCount, range->bottom);
        } else {
            print.titleLeft = range->left;
            print.titleRight = range->right;
            settings.columnCount = std::max(settings.columnCount, range->right);
        }
    }
    return found;
}

std::string printAreaText(const PrintSettings& print, const std::string& sheet)
{
    std::string text;
    for (const CellRange& range : print.area)
        text += (text.empty() ? "" : ",") + sheet + rangeText(range);
    return text;
}

std::string printTitlesText(const PrintSettings& print, const std::string& sheet)
{
    std::string text;
    if (print.titleLeft >= 1 && print.titleRight >= print.titleLeft)
        text = sheet + columns(print.titleLeft, print.titleRight);
    if (print.titleTop >= 1 && print.titleBottom >= print.titleTop)
        text += (text.empty() ? "" : ",") + sheet + rows(print.titleTop, print.titleBottom);
    return text;
}

} // namespace spreadsheet
