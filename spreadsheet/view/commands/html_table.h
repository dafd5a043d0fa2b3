#pragma once
#include "spreadsheet/values/Refusal.h"
#include "spreadsheet/view/commands/PastedTable.h"

#include <string>
#include <string_view>
#include <variant>

namespace spreadsheet {

/// Reads the tables of an HTML text (UTF-8) as browsers and office programs put it on the clipboard, one
/// below the other. Merged cells, exact numbers behind shown ones (`sdval`, `x:num`), texts marked as such
/// and the looks of PastedLook come along, from attributes, `style` and simple class rules. Tables inside
/// a cell give their text to it. Broken mark-up is read as far as it makes sense.
/// @return the table, without cells if the text holds none, or why it cannot be pasted
[[nodiscard]] std::variant<PastedTable, Refusal> parseHtmlTable(std::string_view html);

} // namespace spreadsheet
