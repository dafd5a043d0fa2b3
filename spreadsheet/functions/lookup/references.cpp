#include "spreadsheet/functions/lookup/references.h"

#include "spreadsheet/calculation/Call.h"
#include "spreadsheet/calculation/Evaluator.h"
#include "spreadsheet/formula/FormulaPool.h"
#include "spreadsheet/formula/NameTable.h"
#include "spreadsheet/formula/ReferenceSlot.h"
#include "spreadsheet/values/number_text.h"

#include <array>

namespace spreadsheet {

// These functions read what no reference of their formula names, so the graph cannot know their precedents:
// here is only said which cells they mean. Their cells are computed again after the rest until nothing
// changes, and a text that leads through names to itself ends at a depth.

namespace {

/// A whole row, a whole column or everything if a number is 0.
Operand partOfArea(const Area& area, int row, int column)
{
    CellRange cells = area.cells;
    if (row > cells.rows() || column > cells.columns())
        return CellError::ref;
    if (row > 0)
        cells.top = cells.bottom = cells.top + row - 1;
    if (column > 0)
        cells.left = cells.right = cells.left + column - 1;
    return Area{area.sheet, cells};
}

Operand partOfArray(const Call& call, int row, int column)
{
    const int rows = call.rows(0);
    const int columns = call.columns(0);
    if (row > rows || column > columns)
        return CellError::ref;
    if ((row > 0 || rows == 1) && (column > 0 || columns == 1))
        return call.element(0, std::max(row, 1) - 1, std::max(column, 1) - 1);
    auto part = std::make_shared<Array>(row > 0 ? 1 : rows, column > 0 ? 1 : columns);
    for (int r = 0; r < part->rows(); ++r) {
        for (int c = 0; c < part->columns(); ++c)
            part->at(r, c) = call.element(0, row > 0 ? row - 1 : r, column > 0 ? column - 1 : c);
    }
    return std::shared_ptr<const Array>(std::move(part));
}

/// "R3C2" or "R[-1]C[2]", either part alone meaning the base's own row or column.
std::optional<CellAddress> parseRowColumnName(std::string_view text, CellAddress base)
{
    const auto part = [&text](char letter, int own) -> std::optional<int> {
        if (text.empty() || (text[0] & ~0x20) != letter)
            return std::nullopt;
        text.remove_prefix(1);
        const bool relative = text.starts_with('[');
        const std::size_t size =
            text.find_first_not_of("0123456789", relative && text.substr(1, 1) == "-" ? 2 : relative);
        const std::string_view digits = text.substr(0, size).substr(relative);
        text.remove_prefix(std::min(text.size(), digits.size() + relative));
        if (relative && !text.starts_with(']'))
            return std::nullopt;
        text.remove_prefix(relative);
        if (digits.empty())
            return relative ? std::nullopt : std::optional(own);
        const auto number = parseNumber(digits);
        if (!number || std::fabs(*number) > maxRows)
            return std::nullopt;
        return static_cast<int>(*number) + (relative ? own : 0);
    };
    const auto row = part('R', base.row);
    const auto column = row ? part('C', base.column) : std::nullopt;
    if (!column || !text.empty() || *row < 1 || *row > maxRows || *column < 1 || *column > maxColumns)
        return std::nullopt;
    return CellAddress{*column, *row};
}

std::optional<CellRange> parseRowColumnRange(std::string_view text, CellAddress base)
{
    const std::size_t colon = text.find(':');
    const auto first = parseRowColumnName(text.substr(0, colon), base);
    const auto second = colon == text.npos ? first : parseRowColumnName(text.substr(colon + 1), base);
    if (!first || !second)
        return std::nullopt;
    return CellRange{std::min(first->column, second->column), std::min(first->row, second->row),
                     std::max(first->column, second->column), std::max(first->row, second->row)};
}

/// "B:C" and "2:9", besides what parseRangeName takes; "$" is passed over.
std::optional<CellRange> parseAnyRange(std::string_view text)
{
    std::string plain;
    for (const char c : text) {
        if (c != '$')
            plain += c;
    }
    if (const auto range = parseRangeName(plain))
        return range;
    const std::size_t colon = plain.find(':');
    if (colon == plain.npos)
        return std::nullopt;
    const std::string_view first = std::string_view(plain).substr(0, colon);
    const std::string_view last = std::string_view(plain).substr(colon + 1);
    const auto left = parseColumnName(first);
    const auto right = parseColumnName(last);
    if (left && right)
        return CellRange{std::min(*left, *right), 1, std::max(*left, *right), maxRows};
    const auto top = parseNumber(first);
    const auto bottom = parseNumber(last);
    const bool whole = top && bottom && *top == std::trunc(*top) && *bottom == std::trunc(*bottom);
    if (!whole || *top < 1 || *bottom < 1 || *top > maxRows || *bottom > maxRows)
        return std::nullopt;
    return CellRange{1, static_cast<int>(std::min(*top, *bottom)), maxColumns,
                     static_cast<int>(std::max(*top, *bottom))};
}

/// The sheet that a reference names, its name taken off; the own sheet if it names none, 0 if there is no
/// such sheet.
int takeSheet(const EvaluationPlace& place, std::string_view& text)
{
    const auto name = takeSheetName(text);
    return name ? place.book.sheetIndex(*name) : place.sheet;
}

/// What a defined name refers to; #REF! if there is no such name or it stands for no reference.
Operand referenceOfName(const EvaluationPlace& place, std::string_view name)
{
    constexpr int deepest = 32; // names that lead to each other through texts
    const NameTable& names = place.book.names();
    const int number = names.find(name);
    if (number < 0 || names[number].formula == 0 || place.textDepth == deepest)
        return CellError::ref;
    EvaluationPlace inner = place;
    ++inner.textDepth;
    Evaluator evaluator(place.book);
    const Operand operand = evaluator.operandOf(place.book.formulas[names[number].formula], inner);
    return operand.isReference() ? operand : Operand(CellError::ref);
}

} // namespace

Operand indexed(Call& call)
{
    if (call[0].isValue() && call[0].value().isError())
        return call[0];
    const int row = call.integer(1, 0);
    const int column = call.integer(2, 0);
    const int part = call.integer(3, 1);
    if (call.failed())
        return call.error();
    if (row < 0 || column < 0 || part < 1)
        return CellError::value;
    const bool oneNumber = call.count() == 2;
    if (!call[0].isReference()) {
        if (oneNumber && row > 0 && call.rows(0) > 1 && call.columns(0) > 1)
            return CellError::ref;
        const bool alongRow = oneNumber && call.rows(0) == 1;
        return alongRow ? partOfArray(call, 0, row) : partOfArray(call, row, column);
    }
    const Areas areas = call[0].areas();
    if (part > static_cast<int>(areas.size()))
        return CellError::ref;
    const Area& area = areas[static_cast<std::size_t>(part - 1)];
    if (oneNumber && row > 0 && area.cells.rows() > 1 && area.cells.columns() > 1)
        return CellError::ref;               // of a block it names neither row nor column
    if (oneNumber && area.cells.rows() == 1) // it counts along the only row
        return partOfArea(area, 0, row);
    return partOfArea(area, row, column);
}

Operand moved(Call& call)
{
    if (!call[0].isArea())
        return call[0].isValue() && call[0].value().isError() ? call[0] : Operand(CellError::value);
    const Area& base = call[0].area();
    const int down = call.integer(1);
    const int right = call.integer(2, 0);
    int height = call.given(3) ? call.integer(3) : base.cells.rows();
    int width = call.given(4) ? call.integer(4) : base.cells.columns();
    if (call.failed())
        return call.error();
    long long top = static_cast<long long>(base.cells.top) + down;
    long long left = static_cast<long long>(base.cells.left) + right;
    if (height < 0)
        top += height + 1LL; // a negative size reaches up or to the left
    if (width < 0)
        left += width + 1LL;
    height = std::abs(height);
    width = std::abs(width);
    if (height == 0 || width == 0 || top < 1 || left < 1 || top + height - 1 > maxRows ||
        left + width - 1 > maxColumns)
        return CellError::ref;
    return Area{base.sheet,
                {static_cast<int>(left), static_cast<int>(top), static_cast<int>(left) + width - 1,
                 static_cast<int>(top) + height - 1}};
}

Operand referenceOfText(Call& call)
{
    const std::string whole = call.text(0);
    const bool letters = call.logical(1, true);
    if (call.failed())
        return call.error();
    std::string_view text = trimmedBlanks(whole);
    const int sheet = takeSheet(call.place(), text);
    if (sheet == 0)
        return CellError::ref;
    const auto cells = letters ? parseAnyRange(text) : parseRowColumnRange(text, call.place().cell);
    return cells ? Operand(Area{sheet, *cells}) : referenceOfName(call.place(), text);
}

Operand addressText(Call& call)
{
    const int row = call.integer(0);
    const int column = call.integer(1);
    const int kind = call.given(2) ? call.integer(2) : 1; // 5 to 8 are 1 to 4 once more
    const bool letters = call.given(3) ? call.logical(3) : true;
    const std::string sheet = call.text(4, "");
    if (call.failed())
        return call.error();
    if (row < 1 || row > maxRows || column < 1 || column > maxColumns || kind < 1 || kind > 8)
        return CellError::value;
    const int style = (kind - 1) % 4 + 1; // 1 both fixed, 2 row, 3 column, 4 neither
    const bool fixedRow = style <= 2;
    const bool fixedColumn = style == 1 || style == 3;
    std::string text = call.count() > 4 ? sheet.empty() ? "!" : sheetPrefix(sheet) : "";
    if (letters) {
        text += (fixedColumn ? "$" : "") + columnName(column) + (fixedRow ? "$" : "") + std::to_string(row);
    } else {
        const auto part = [](char letter, int number, bool fixed) {
            const std::string digits = std::to_string(number);
            return letter + (fixed ? digits : "[" + digits + "]");
        };
        text += part('R', row, fixedRow) + part('C', column, fixedColumn);
    }
    return Value::text(text);
}

} // namespace spreadsheet
