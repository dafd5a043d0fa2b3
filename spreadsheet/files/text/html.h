#pragma once
#include <string>
#include <string_view>

namespace spreadsheet {

class Workbook;

/// Every sheet's used area as a table of one HTML page (UTF-8), with spans, fonts, colours, borders,
/// alignment and sizes as styles.
/// @throws ContentError if a used area has more than 50 million cells, which no browser shows
std::string workbookHtml(const Workbook& workbook, std::string_view title);

} // namespace spreadsheet
