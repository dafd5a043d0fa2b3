#include "spreadsheet/files/xlsx/structured_references.h"

#include "spreadsheet/formula/ReferenceSlot.h"
#include "text/ascii.h"

#include <algorithm>

namespace spreadsheet {

namespace {

/// What stands between a table's brackets.
struct Parts {
    bool all = false, headers = false, data = false, totals = false, thisRow = false;
    std::vector<std::string> columns; ///< one, or the first and the last of several
};

/// A heading as it stands in a formula: "'" stands before signs that would end it.
std::string heading(std::string_view text)
{
    std::string plain;
    for (std::size_t i = 0; i < text.size(); ++i) {
        i += text[i] == '\'' && i + 1 < text.size();
        plain += text[i];
    }
    return plain;
}

bool addItem(std::string_view item, Parts& parts)
{
    const struct {
        std::string_view name;
        bool Parts::*isNamed;
    } items[] = {{"#ALL", &Parts::all},
                 {"#HEADERS", &Parts::headers},
                 {"#DATA", &Parts::data},
                 {"#TOTALS", &Parts::totals},
                 {"#THIS ROW", &Parts::thisRow}};
    const std::string name = ascii::upper(item);
    const auto* const found = std::ranges::find_if(items, [&](const auto& row) { return row.name == name; });
    if (found == std::end(items))
        return false;
    parts.*found->isNamed = true;
    return true;
}

bool addPart(std::string_view text, Parts& parts)
{
    if (text.starts_with('#'))
        return addItem(text, parts);
    if (text.starts_with('@')) {
        parts.thisRow = true;
        text.remove_prefix(1);
    }
    if (!text.empty())
        parts.columns.push_back(heading(text));
    return true;
}

/// "[#Headers],[First]:[Last]", or as some programs write it "[#This Row],First"
bool addBracketed(std::string_view text, Parts& parts)
{
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] == '@') {
            parts.thisRow = true;
        } else if (text[at] == '[') {
            const std::size_t begin = ++at;
            while (at < text.size() && text[at] != ']')
                at += text[at] == '\'' ? 2 : 1;
            if (at >= text.size() || !addPart(text.substr(begin, at - begin), parts))
                return false;
        } else if (std::string_view(" ,:").find(text[at]) == std::string_view::npos) {
            const std::size_t end = std::min(text.find_first_of(",[]", at), text.size()); // a bare heading
            if (!addPart(ascii::trimmed(text.substr(at, end - at)), parts))
                return false;
            at = end - 1;
        }
    }
    return true;
}

std::optional<Parts> partsOf(std::string_view brackets)
{
    Parts parts;
    const std::string_view inside = ascii::trimmed(brackets.substr(1, brackets.size() - 2));
    const bool isNested = inside.starts_with('[') || inside.starts_with("@[");
    const bool isRead = isNested ? addBracketed(inside, parts) : addPart(inside, parts);
    return isRead && parts.columns.size() <= 2 ? std::optional(parts) : std::nullopt;
}

/// The rows that are meant; none if there are none between first and last.
std::pair<int, int> rowsOf(const XlsxTable& table, const Parts& parts)
{
    const int firstData = table.range.top + table.headerRows,
              lastData = table.range.bottom - table.totalsRows;
    if (parts.all)
        return {table.range.top, table.range.bottom};
    const bool isData = parts.data || (!parts.headers && !parts.totals);
    return {parts.headers ? table.range.top
            : isData      ? firstData
                          : lastData + 1,
            parts.totals ? table.range.bottom
            : isData     ? lastData
                         : firstData - 1};
}

/// Place of a column in the table, from 0; -1: none.
int columnOf(const XlsxTable& table, const std::string& name)
{
    const auto found = std::ranges::find_if(table.columns, [wanted = ascii::upper(name)](const auto& column) {
        return ascii::upper(column) == wanted;
    });
    return found == table.columns.end() ? -1 : static_cast<int>(found - table.columns.begin());
}

std::string corner(int column, int row, bool rowIsFixed)
{
    return "$" + columnName(column) + (rowIsFixed ? "$" : "") + std::to_string(row);
}

} // namespace

std::optional<std::string> structuredReference(const XlsxTable& table, std::string_view brackets,
                                               std::string_view sheet, CellAddress cell)
{
    const auto parts = partsOf(brackets);
    if (!parts)
        return std::nullopt;
    int left = table.range.left, right = table.range.right;
    if (!parts->columns.empty()) {
        const int first = columnOf(table, parts->columns.front()),
                  last = columnOf(table, parts->columns.back());
        if (first < 0 || last < 0)
            return std::nullopt;
        left = table.range.left + std::min(first, last);
        right = table.range.left + std::max(first, last);
    }
    auto [top, bottom] = rowsOf(table, *parts);
    if (parts->thisRow) {
        const auto [first, last] = rowsOf(table, {});
        if (cell.row < first || cell.row > last)
            return "#VALUE!";
        top = bottom = cell.row;
    }
    if (top > bottom || right > table.range.right)
        return "#REF!";
    const std::string prefix = table.sheet == sheet ? std::string() : sheetPrefix(table.sheet);
    const std::string begin = corner(left, top, !parts->thisRow),
                      end = corner(right, bottom, !parts->thisRow);
    return prefix + (begin == end ? begin : begin + ":" + end);
}

} // namespace spreadsheet
