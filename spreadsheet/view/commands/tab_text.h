#pragma once
#include "spreadsheet/values/CellAddress.h"
#include "spreadsheet/values/Refusal.h"
#include "spreadsheet/view/commands/PastedTable.h"

#include <string>
#include <string_view>
#include <variant>

namespace spreadsheet {

class Sheet;

/// A range as it is displayed: cells of a row separated by tabs, rows ended by "\n". A text that holds a
/// tab, a line end or a leading quotation mark stands in quotation marks, those inside it doubled.
std::string tabText(const Sheet& sheet, const CellRange& range);

/// Reads such a text; line ends may be "\n", "\r\n" or "\r", and the last one ends the last row. A field
/// whose opening quotation mark is never closed is taken as it stands.
/// @return the table, or why it cannot be pasted (one Chinese sentence)
[[nodiscard]] std::variant<PastedTable, Refusal> parseTabText(std::string_view text);

} // namespace spreadsheet
