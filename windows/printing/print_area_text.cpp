#include "windows/printing/print_area_text.h"

#include <algorithm>

namespace selfreport {

namespace {

/// Without blanks and "$"; with commas and colons of one byte.
std::string plain(std::string_view text)
{
    static constexpr std::pair<std::string_view, std::string_view> instead[]{
        {"，", ","}, {"、", ","}, {"；", ","}, {";", ","}, {"：", ":"}, {"　", ""}, {" ", ""}, {"$", ""}};
    std::string result(text);
    for (const auto& [from, to] : instead)
        for (std::size_t at = result.find(from); at != result.npos; at = result.find(from, at + to.size()))
            result.replace(at, from.size(), to);
    return result;
}

} // namespace

std::string areaText(const std::vector<spreadsheet::CellRange>& ranges)
{
    std::string text;
    for (const spreadsheet::CellRange& range : ranges) {
        text += (text.empty() ? "" : ",") + spreadsheet::cellName({range.left, range.top});
        if (!range.isOneCell())
            text += ':' + spreadsheet::cellName({range.right, range.bottom});
    }
    return text;
}

std::optional<std::vector<spreadsheet::CellRange>> readArea(std::string_view text)
{
    const std::string names = plain(text);
    std::vector<spreadsheet::CellRange> area;
    for (std::size_t from = 0; from < names.size();) {
        const std::size_t to = std::min(names.find(',', from), names.size());
        const auto range = spreadsheet::parseRangeName(std::string_view(names).substr(from, to - from));
        if (!range)
            return std::nullopt;
        area.push_back(*range);
        from = to + 1;
    }
    return area;
}

std::string columnsText(int first, int last)
{
    if (first < 1)
        return {};
    return spreadsheet::columnName(first) + (last > first ? ':' + spreadsheet::columnName(last) : "");
}

std::optional<std::pair<int, int>> readColumns(std::string_view text)
{
    const std::string names = plain(text);
    if (names.empty())
        return std::pair(0, 0);
    const std::size_t colon = names.find(':');
    const auto first = spreadsheet::parseColumnName(std::string_view(names).substr(0, colon));
    const auto last =
        colon == names.npos ? first : spreadsheet::parseColumnName(std::string_view(names).substr(colon + 1));
    if (!first || !last)
        return std::nullopt;
    return std::minmax(*first, *last);
}

} // namespace selfreport
