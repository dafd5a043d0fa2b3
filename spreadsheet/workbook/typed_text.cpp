#include "spreadsheet/workbook/typed_text.h"

#include "spreadsheet/formula/FormulaPool.h"
#include "spreadsheet/functions/FunctionTable.h"
#include "spreadsheet/values/case_fold.h"
#include "spreadsheet/values/date_text.h"
#include "spreadsheet/values/number_text.h"
#include "spreadsheet/workbook/Workbook.h"

namespace spreadsheet {

namespace {

/// True for "Acct(…" or "sum (…": a name that the sheet or the program knows, and a bracket.
bool beginsWithCall(const Workbook& workbook, std::string_view text)
{
    const std::size_t bracket = text.find('(');
    if (bracket == std::string_view::npos)
        return false;
    const std::string_view name = trimmedBlanks(text.substr(0, bracket));
    return findFunction(name) || workbook.formulas().customs().isRegistered(name);
}

std::optional<double> moneyAmount(std::string_view text)
{
    bool negative = false;
    if (text.starts_with('-')) {
        negative = true;
        text.remove_prefix(1);
    }
    for (const std::string_view sign : {"￥", "¥", "$"}) {
        if (!text.starts_with(sign))
            continue;
        text.remove_prefix(sign.size());
        if (negative && text.find_first_of("+-") == 0)
            return std::nullopt;
        const auto amount = numberOfGroupedText(text);
        return amount && negative ? -*amount : amount;
    }
    return std::nullopt;
}

/// "12月" or "2026年12月": a heading, which would be lost if it turned into the first day of the month.
bool namesMonth(std::string_view text)
{
    return text.ends_with("月");
}

/// Why a call of a registered function cannot be meant: it has another number of arguments.
Refusal wrongCall(const FormulaPool& pool, std::uint32_t number)
{
    const Formula& formula = pool[number];
    for (const Instruction& instruction : formula.code) {
        if (instruction.op != Op::callCustom)
            continue;
        const CustomFunctions::Entry& function =
            pool.customs()[formula.customs[static_cast<std::size_t>(instruction.index)]];
        if (function.handler && instruction.count != function.parameterCount)
            return Refusal(function.name + " 有 " + std::to_string(function.parameterCount) +
                           " 个参数,这里给了 " + std::to_string(instruction.count) + " 个");
    }
    return {};
}

/// The same for a text that would come into the cell. Nothing for what is no formula, and for the one that
/// the cell holds.
Refusal wrongCallIn(Workbook& workbook, const Sheet& sheet, CellAddress cell, std::string_view text,
                    bool isArray)
{
    const std::string_view typed = trimmedBlanks(text);
    const auto sheetId = [&](std::string_view name) {
        const int index = workbook.sheetIndex(name);
        return index == 0 ? 0 : workbook.sheet(index).id();
    };
    const auto parsed =
        workbook.formulas().intern(typed.substr(typed.starts_with('=') ? 1 : 0), cell, sheetId, isArray);
    const auto* number = std::get_if<std::uint32_t>(&parsed);
    const Column* const cells = sheet.column(cell.column);
    if (!number || (cells && cells->formula(cell.row) == *number))
        return {};
    return wrongCall(workbook.formulas(), *number);
}

} // namespace

Refusal enterFormula(Workbook& workbook, Sheet& sheet, CellAddress cell, std::string_view text)
{
    if (auto problem = wrongCallIn(workbook, sheet, cell, text, false))
        return problem;
    return sheet.setFormula(cell, text); // which says where a mistake is
}

Refusal enterArrayFormula(Workbook& workbook, Sheet& sheet, const CellRange& range, std::string_view text)
{
    if (auto problem = wrongCallIn(workbook, sheet, {range.left, range.top}, text, true))
        return problem;
    return sheet.setArrayFormula(range, text);
}

TypedConstant typedConstant(std::string_view text)
{
    const std::string_view typed = trimmedBlanks(text);
    if (const auto number = numberOfGroupedText(typed))
        return {Value(*number), std::nullopt};
    if (typed.ends_with('%')) {
        if (const auto number = numberOfGroupedText(typed.substr(0, typed.size() - 1)))
            return {Value(*number / 100), CellType::percent};
    }
    if (const auto amount = moneyAmount(typed))
        return {Value(*amount), CellType::currency};
    if (const auto moment = namesMonth(typed) ? std::nullopt : parseDateTime(typed))
        return {Value(*moment), *moment < 1 ? CellType::time : CellType::date};
    const std::string folded = foldedName(typed);
    if (folded == "TRUE" || folded == "FALSE")
        return {Value::boolean(folded == "TRUE"), std::nullopt};
    return {Value::text(text), std::nullopt};
}

Refusal enterText(Workbook& workbook, Sheet& sheet, CellAddress cell, std::string_view text, TypedInto where)
{
    const std::string_view typed = trimmedBlanks(text);
    const UndoStep step(workbook, "输入");
    if (sheet.style(cell).numberFormat.view() == textFormat && !text.empty()) {
        sheet.setText(cell, text);
        return {};
    }
    if (typed.starts_with('=') && typed.size() > 1)
        return enterFormula(workbook, sheet, cell, text);
    if (text.starts_with('\'')) {
        sheet.setText(cell, text.substr(1));
        return {};
    }
    TypedConstant constant = typedConstant(text);
    const bool heldFormula = where == TypedInto::formulaBox && sheet.hasFormula(cell);
    if (constant.value.isText() && !typed.empty() && (heldFormula || beginsWithCall(workbook, typed)))
        return enterFormula(workbook, sheet, cell, text);
    if (text.empty()) {
        sheet.setValue(cell, {});
        return {};
    }
    if (constant.type && sheet.style(cell).type == CellType::edit) {
        CellStyle style = sheet.style(cell);
        style.type = *constant.type;
        sheet.setStyle(cell, style);
    }
    sheet.setValue(cell, std::move(constant.value));
    return {};
}

} // namespace spreadsheet
