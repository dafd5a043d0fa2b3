#pragma once
#include <array>
#include <string>
#include <string_view>

namespace spreadsheet {

/// What a field in the texts of a header or footer stands for.
enum class HeaderField { page, pages, date, time, sheet, report };

/// Every field as it stands in texts; the page number has a code of its own too.
inline constexpr struct HeaderFieldName {
    HeaderField field;
    std::string_view text; ///< UTF-8
} headerFieldNames[] = {
    {HeaderField::page, "&页数"}, {HeaderField::pages, "&总页数"}, {HeaderField::date, "&日期"},
    {HeaderField::time, "&时间"}, {HeaderField::sheet, "&表名"},   {HeaderField::report, "&报表名"},
};

/// By HeaderField.
using HeaderFieldValues = std::array<std::string, std::size(headerFieldNames)>;

/// The field that a text begins with; null if it begins with none.
const HeaderFieldName* headerFieldAt(std::string_view text);

/// The text with the values in place of the fields. Values are not looked through again.
std::string withFields(std::string_view text, const HeaderFieldValues& values);

} // namespace spreadsheet
