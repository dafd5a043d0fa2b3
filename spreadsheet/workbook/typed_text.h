#pragma once
#include "spreadsheet/display/CellStyle.h"
#include "spreadsheet/values/Refusal.h"
#include "spreadsheet/workbook/Sheet.h"

#include <optional>
#include <string>
#include <string_view>

namespace spreadsheet {

/// The number format of cells that hold texts only.
inline constexpr std::string_view textFormat = "@";

enum class TypedInto {
    cell,
    formulaBox, ///< there a text stays a formula where the cell already held one
    nothing,    ///< pasted or replaced: taken as in a cell, but nothing in it is mended
};

/// Puts what a user typed into a cell, as one undo step.
///
/// With "=" it is a formula. Without, a number, percentage, amount of money, date, time or truth value
/// is a constant (an amount in brackets or before a minus a negative one), a text that begins with a call of
/// a known function is a formula, and anything else is text, a month without a day ("2026年12月") too; a
/// leading apostrophe makes text of whatever follows. A fresh cell takes the type that the constant was
/// written in (percent, currency, date, time, with a code for days with a time and hours beyond a day). An
/// empty text takes the content away. A cell whose number format is `textFormat` takes every text as it
/// stands. Brackets that a formula leaves open at its end are closed, “ ” in it are taken for plain quotation
/// marks, and what was typed in full width, "＝Ａ１＋１" or "１２．５％", for what it means.
/// @return why a formula was refused; the cell then keeps what it had.
Refusal enterText(Workbook& workbook, Sheet& sheet, CellAddress cell, std::string_view text, TypedInto where);

/// Sets a formula that a user writes, by hand or in a dialog: as Sheet::setFormula, but a call of a
/// registered function takes as many arguments as the function has parameters. The formula that the cell
/// holds already may be written back.
Refusal enterFormula(Workbook& workbook, Sheet& sheet, CellAddress cell, std::string_view text);
/// The same for an array formula of a block, as Sheet::setArrayFormula, which is always typed: brackets left
/// open are closed.
Refusal enterArrayFormula(Workbook& workbook, Sheet& sheet, const CellRange& range, std::string_view text);

/// The constant that a text stands for, and the look that it was written in if it shows one.
struct TypedConstant {
    Value value;
    std::optional<CellType> type;
    std::string_view format = {}; ///< a number format code, where the type alone would not show it
    /// Gives a look that has no type of its own yet this one.
    void dress(CellStyle& style) const;
};
TypedConstant typedConstant(std::string_view text);

/// Without blanks at its ends, those too that web pages pad figures with.
std::string_view withoutPadding(std::string_view text);

/// What an input method that is set to full width leaves, in plain characters; not within quotation marks.
std::string inPlainWidth(std::string_view typed);

/// Digits only that would not all survive as a number: "0101" (not "0"), or more than 15 of them. Such are
/// codes of accounts and numbers of identity cards.
bool isDigitCode(std::string_view text);

} // namespace spreadsheet
