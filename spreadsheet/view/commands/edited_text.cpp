#include "spreadsheet/view/commands/edited_text.h"

#include "spreadsheet/display/cell_types.h"
#include "spreadsheet/display/display_text.h"
#include "spreadsheet/formula/FormulaPool.h"
#include "spreadsheet/functions/FunctionTable.h"
#include "spreadsheet/values/decimal_text.h"
#include "spreadsheet/workbook/typed_text.h"
#include "spreadsheet/workbook/Workbook.h"
#include "text/ascii.h"

#include <array>
#include <charconv>

namespace spreadsheet {

namespace {

/// The shortest digits that read as this number again.
std::string digitsOf(double number)
{
    std::array<char, 32> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
    return {digits.data(), end};
}

std::string numberText(double number, const CellStyle& style)
{
    const auto edited = cellTypeRow(style.type).edited;
    const std::string typed = edited ? edited(number, style) : std::string();
    return edited && typedConstant(typed).value == Value(number) ? typed : digitsOf(number);
}

bool isTakenForCall(const Workbook& workbook, std::string_view text)
{
    const std::size_t bracket = text.find('(');
    if (bracket == std::string_view::npos)
        return false;
    const std::string_view name = ascii::trimmed(text.substr(0, bracket), " ");
    return findFunction(name) || workbook.formulas().customs().isRegistered(name);
}

} // namespace

std::string editedText(const Workbook& workbook, const Sheet& sheet, CellAddress cell)
{
    if (sheet.hasFormula(cell))
        return "=" + sheet.formula(cell);
    const Value value = sheet.value(cell);
    if (value.isNumber())
        return numberText(value.number(), sheet.style(cell));
    if (!value.isText())
        return displayText(value, {});
    const std::string_view text = value.textView();
    if (sheet.style(cell).numberFormat.view() == textFormat)
        return std::string(text); // an apostrophe would come into the text
    const std::size_t first = text.find_first_not_of(ascii::blanks);
    const bool likeFormula = first != std::string_view::npos && text[first] == '=' && text.size() > first + 1;
    const bool misread = text.empty() || text.starts_with('\'') || likeFormula ||
                         !typedConstant(text).value.isText() || isTakenForCall(workbook, text);
    return misread ? "'" + std::string(text) : std::string(text);
}

} // namespace spreadsheet
