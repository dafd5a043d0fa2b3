#pragma once
#include <string>
#include <string_view>

namespace spreadsheet {

/// Appends a text as it is to show in HTML, also inside an attribute; line ends become "<br>".
void appendHtml(std::string& html, std::string_view text);

} // namespace spreadsheet
