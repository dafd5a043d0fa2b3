#include "spreadsheet/workbook/typed_text.h"

#include "spreadsheet/formula/FormulaPool.h"
#include "spreadsheet/functions/FunctionTable.h"
#include "spreadsheet/values/case_fold.h"
#include "spreadsheet/values/characters.h"
#include "spreadsheet/values/date_text.h"
#include "spreadsheet/values/number_text.h"
#include "spreadsheet/workbook/Workbook.h"

#include <algorithm>
#include <cmath>

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

/// "(1,234.50)", as statements write what is to be taken away, or "1,234.50-", as some ledgers do. Whole
/// numbers without commas are left alone: "(1)" numbers a heading.
std::optional<double> bracketedAmount(std::string_view text)
{
    for (const auto& [open, close] : {std::pair("(", ")"), std::pair("（", "）"), std::pair("", "-")}) {
        if (!text.starts_with(open) || !text.ends_with(close))
            continue;
        const std::string_view inside =
            text.substr(std::string_view(open).size(),
                        text.size() - std::string_view(open).size() - std::string_view(close).size());
        const bool isAmount =
            inside.find_first_of(",.") != std::string_view::npos && inside[0] >= '0' && inside[0] <= '9';
        const auto amount = isAmount ? numberOfGroupedText(inside) : std::nullopt;
        return amount ? std::optional(-*amount) : std::nullopt;
    }
    return std::nullopt;
}

/// "12月" or "2026年12月": a heading, which would be lost if it turned into the first day of the month.
bool namesMonth(std::string_view text)
{
    return text.ends_with("月");
}

/// "25:30": hours, but no day.
bool isClock(std::string_view text)
{
    return text.find_first_not_of("0123456789:.") == std::string_view::npos;
}

/// The types show a time of a day, or a day; what is both, or hours beyond a day, takes a code.
TypedConstant typedMoment(double moment, bool isClock)
{
    if (moment < 1)
        return {Value(moment), CellType::time};
    if (isClock)
        return {Value(moment), CellType::time, "[h]:mm:ss"};
    return {Value(moment), CellType::date, moment == std::floor(moment) ? "" : "yyyy-mm-dd hh:mm:ss"};
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

/// Whether something is still to come: an operand, an argument.
bool endsUnfinished(std::string_view formula)
{
    const std::string_view text = trimmedBlanks(formula);
    return text.empty() || text.ends_with("，") ||
           std::string_view("+-*/^&=<>:,").find(text.back()) != std::string_view::npos;
}

/// Brackets that a formula opens and only has to close; 0 if a text in it is not closed either.
std::size_t openBrackets(std::string_view formula)
{
    if (endsUnfinished(formula))
        return 0;
    std::size_t open = 0;
    char quote = 0;
    for (std::size_t at = 0; at < formula.size(); ++at) {
        const std::string_view rest = formula.substr(at);
        if (quote != 0)
            quote = rest[0] == quote ? '\0' : quote;
        else if (rest[0] == '"' || rest[0] == '\'')
            quote = rest[0];
        else if (rest[0] == '(' || rest.starts_with("（"))
            ++open;
        else if ((rest[0] == ')' || rest.starts_with("）")) && open > 0)
            --open;
    }
    return quote == 0 ? open : 0;
}

/// A formula whose texts stand in the quotation marks that Chinese input methods give, in plain ones. What
/// stands in plain ones already stays as it is, as does a pair with plain ones in it, or around a sheet's
/// name.
std::string withPlainQuotes(std::string_view formula)
{
    constexpr std::string_view open = "“", close = "”";
    std::string plain;
    char quote = 0;
    while (!formula.empty()) {
        if (quote == 0 && formula.starts_with(open)) {
            const std::size_t end = formula.find(close);
            const std::string_view inside = formula.substr(open.size(), end - open.size());
            const std::string_view rest = formula.substr(std::min(end, formula.size()));
            if (end != formula.npos && inside.find('"') == inside.npos && !rest.starts_with("”!")) {
                plain.append("\"").append(inside).append("\"");
                formula.remove_prefix(end + close.size());
                continue;
            }
        }
        const char c = formula.front();
        if (c == quote)
            quote = 0;
        else if (quote == 0 && (c == '"' || c == '\''))
            quote = c;
        plain += c;
        formula.remove_prefix(1);
    }
    return plain;
}

/// Enters a typed formula; if that is refused, with its brackets closed.
template <class Enter>
Refusal enterBracketed(std::string_view text, Enter enter)
{
    Refusal problem = enter(text);
    const std::size_t open = problem ? openBrackets(text) : 0;
    const bool isMended = open > 0 && !enter(std::string(text).append(open, ')'));
    return isMended ? Refusal() : problem;
}

/// Enters a typed formula, mended where that is needed. What is told is told of what was typed.
template <class Enter>
Refusal enterClosed(std::string_view text, Enter enter)
{
    const std::string plain = withPlainQuotes(text);
    return plain != text && !enterBracketed(plain, enter) ? Refusal() : enterBracketed(text, enter);
}

/// A formula or constant that was typed in full width, "＝Ａ１＋１" or "１２．５％", as it is meant.
std::optional<std::string> meantByFullWidth(std::string_view typed)
{
    constexpr std::string_view wideEquals = "＝";
    std::string plain = inPlainWidth(typed);
    const bool isFormula = typed.starts_with(wideEquals) && typed.size() > wideEquals.size();
    if (plain != typed && (isFormula || (typed.front() != '=' && !typedConstant(plain).value.isText())))
        return plain;
    return std::nullopt;
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
    return enterClosed(text, [&](std::string_view closed) {
        if (auto problem = wrongCallIn(workbook, sheet, {range.left, range.top}, closed, true))
            return problem;
        return sheet.setArrayFormula(range, closed);
    });
}

std::string_view withoutPadding(std::string_view text)
{
    constexpr std::string_view noBreak = "\u00A0";
    for (;;) {
        text = trimmedBlanks(text);
        if (text.starts_with(noBreak))
            text.remove_prefix(noBreak.size());
        else if (text.ends_with(noBreak))
            text.remove_suffix(noBreak.size());
        else
            return text;
    }
}

void TypedConstant::dress(CellStyle& style) const
{
    if (!type || style.type != CellType::edit)
        return;
    style.type = *type;
    if (!format.empty() && style.numberFormat.empty())
        style.numberFormat = Text(format);
}

std::string inPlainWidth(std::string_view typed)
{
    constexpr char32_t firstWide = U'！', lastWide = U'～', wideBlank = U'　';
    std::string text;
    char32_t quote = 0;
    for (std::size_t at = 0; at < typed.size();) {
        const char32_t c = takeCharacter(typed, at);
        const bool isWide = c >= firstWide && c <= lastWide;
        const char32_t plain = isWide ? c - firstWide + U'!' : c == wideBlank ? U' ' : c;
        appendCharacter(text, quote == 0 || plain == quote ? plain : c);
        if (quote != 0)
            quote = plain == quote ? 0 : quote;
        else if (plain == U'"' || plain == U'\'' || plain == U'“')
            quote = plain == U'“' ? U'”' : plain;
    }
    return text;
}

TypedConstant typedConstant(std::string_view text)
{
    const std::string_view typed = withoutPadding(text);
    if (const auto number = numberOfGroupedText(typed))
        return {Value(*number), std::nullopt};
    if (typed.ends_with('%')) {
        if (const auto number = numberOfGroupedText(typed.substr(0, typed.size() - 1)))
            return {Value(*number / 100), CellType::percent};
    }
    if (const auto amount = bracketedAmount(typed))
        return {Value(*amount), std::nullopt};
    if (const auto amount = moneyAmount(typed))
        return {Value(*amount), CellType::currency};
    if (const auto moment = namesMonth(typed) ? std::nullopt : parseDateTime(typed))
        return typedMoment(*moment, isClock(typed));
    const std::string folded = foldedName(typed);
    if (folded == "TRUE" || folded == "FALSE")
        return {Value::boolean(folded == "TRUE"), std::nullopt};
    return {Value::text(text), std::nullopt};
}

bool isDigitCode(std::string_view text)
{
    constexpr std::size_t digitsOfNumber = 15;
    const bool digitsOnly = std::ranges::all_of(text, [](char c) { return c >= '0' && c <= '9'; });
    return digitsOnly && (text.size() > digitsOfNumber || (text.size() > 1 && text.front() == '0'));
}

Refusal enterText(Workbook& workbook, Sheet& sheet, CellAddress cell, std::string_view text, TypedInto where)
{
    const std::string_view typed = trimmedBlanks(text);
    const UndoStep step(workbook, "输入");
    const auto enter = [&](std::string_view formula) { return enterFormula(workbook, sheet, cell, formula); };
    const auto enterTyped = [&] {
        return where == TypedInto::nothing ? enter(text) : enterClosed(text, enter);
    };
    if (sheet.style(cell).numberFormat.view() == textFormat && !text.empty()) {
        sheet.setText(cell, text);
        return {};
    }
    if (where != TypedInto::nothing && !typed.empty())
        if (const auto meant = meantByFullWidth(typed))
            return enterText(workbook, sheet, cell, *meant, where);
    if (typed.starts_with('=') && typed.size() > 1)
        return enterTyped();
    if (text.starts_with('\'')) {
        sheet.setText(cell, text.substr(1));
        return {};
    }
    TypedConstant constant = typedConstant(text);
    const bool heldFormula = where == TypedInto::formulaBox && sheet.hasFormula(cell);
    if (constant.value.isText() && !typed.empty() && (heldFormula || beginsWithCall(workbook, typed)))
        return enterTyped();
    if (text.empty()) {
        sheet.setValue(cell, {});
        return {};
    }
    if (constant.type && sheet.style(cell).type == CellType::edit) {
        CellStyle style = sheet.style(cell);
        constant.dress(style);
        sheet.setStyle(cell, style);
    }
    sheet.setValue(cell, std::move(constant.value));
    return {};
}

} // namespace spreadsheet
