#pragma once
#include <string>
#include <string_view>

/// Names that the parts of .xlsx files go by.
namespace spreadsheet::xlsx {

inline constexpr std::string_view mainSpace = "http://schemas.openxmlformats.org/spreadsheetml/2006/main";
inline constexpr std::string_view relationSpace =
    "http://schemas.openxmlformats.org/officeDocument/2006/relationships";
inline constexpr std::string_view packageSpace =
    "http://schemas.openxmlformats.org/package/2006/relationships";
inline constexpr std::string_view contentTypeSpace =
    "http://schemas.openxmlformats.org/package/2006/content-types";

/// "xl/worksheets/sheet2.xml" of "xl/worksheets/sheet" and 2.
inline std::string numberedPart(std::string_view start, int number, std::string_view ending = ".xml")
{
    return std::string(start) + std::to_string(number) + std::string(ending);
}

} // namespace spreadsheet::xlsx
