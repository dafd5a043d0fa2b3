#include "spreadsheet/files/exchange/unicode_text.h"
#include "spreadsheet/files/exchange/written_losses.h"
#include "spreadsheet/files/xls/cell_codes.h"
#include "spreadsheet/files/xls/records.h"
#include "spreadsheet/files/xls/SheetWriter.h"
#include "spreadsheet/files/xls/tokens.h"
#include "spreadsheet/formula/FormulaPool.h"

#include <algorithm>

namespace spreadsheet {

// Neighbouring numbers and blank cells go into one record each, and numbers that fit into 30 bits are
// written short, as other programs do: a sheet takes about half the room, and reading it back half the time.

namespace {

std::optional<std::uint32_t> shortNumber(const StoredCell& cell)
{
    if (cell.formula() != 0 || cell.kind() != ValueKind::number)
        return std::nullopt;
    return rkOfNumber(cell.block->payloads()[cell.index].number);
}

/// As files count it, from 0.
unsigned columnOf(const StoredCell& cell)
{
    return static_cast<unsigned>(cell.column - 1);
}

} // namespace

void SheetWriter::rows()
{
    constexpr int rowsTogether = 32; // readers expect the row records of so many before their cells
    std::vector<std::vector<StoredCell>> cellsOfRows(rowsTogether);
    for (int first = 1; first <= m_lastRow; first += rowsTogether) {
        const int last = std::min(first + rowsTogether - 1, m_lastRow);
        for (int row = first; row <= last; ++row) {
            auto& found = cellsOfRows[static_cast<std::size_t>(row - first)];
            m_rows.collect(row, found);
            rowRecord(row, found);
        }
        for (int row = first; row <= last; ++row)
            cells(row, cellsOfRows[static_cast<std::size_t>(row - first)]);
    }
}

void SheetWriter::rowRecord(int row, const std::vector<StoredCell>& cells)
{
    constexpr std::uint32_t usual = 0x100, isHidden = 0x20, hasHeight = 0x40, hasFormat = 0x80;
    const auto size = m_settings.rows.sizes.find(row);
    const auto style = m_settings.rowStyles.find(row);
    const bool hidden = m_settings.rows.hidden.contains(row);
    const bool sized = size != m_settings.rows.sizes.end(), styled = style != m_settings.rowStyles.end();
    if (cells.empty() && !sized && !styled && !hidden)
        return;
    const std::uint32_t format = styled ? m_parts.styles.cellFormat(style->second) : XlsStyles::usual;
    m_writer.begin(xls::row);
    m_writer.put16(static_cast<unsigned>(row - 1));
    m_writer.put16(cells.empty() ? 0 : columnOf(cells.front()));
    m_writer.put16(cells.empty() ? 0 : columnOf(cells.back()) + 1);
    m_writer.put16(
        static_cast<unsigned>(std::clamp(sized ? size->second : m_settings.rows.defaultSize, 1, 8190)));
    m_writer.put32(0);
    // The usual height is said where texts need no other: programs would fit a row without one by their own
    // measures.
    const bool follows = !sized && std::ranges::any_of(cells, [&](const StoredCell& cell) {
        return m_tallCells.mayBeTall(*cell.block, cell.index, {cell.column, row});
    });
    m_writer.put32(usual | (follows ? 0 : hasHeight) | (hidden ? isHidden : 0) | (styled ? hasFormat : 0) |
                   format << 16);
    m_writer.end();
}

void SheetWriter::cells(int row, const std::vector<StoredCell>& cells)
{
    for (const StoredCell& cell : cells)
        countLostControl(m_parts.workbook.styles()[cell.style].type, m_parts.warnings);
    for (std::size_t i = 0; i < cells.size();) {
        const StoredCell& cell = cells[i];
        if (cell.isBlank()) {
            i = blankRun(row, cells, i);
        } else if (shortNumber(cell)) {
            i = numberRun(row, cells, i);
        } else {
            const std::uint32_t number = cell.block->formula(cell.index);
            if (number == 0 || !formula(row, cell, number))
                constant(row, cell);
            ++i;
        }
    }
}

void SheetWriter::head(std::uint16_t id, int row, const StoredCell& cell)
{
    m_writer.begin(id);
    m_writer.put16(static_cast<unsigned>(row - 1));
    m_writer.put16(columnOf(cell));
    m_writer.put16(m_parts.styles.cellFormat(cell.style));
}

/// Neighbours in one record. Returns the first cell behind it.
std::size_t SheetWriter::numberRun(int row, const std::vector<StoredCell>& cells, std::size_t first)
{
    std::size_t end = first + 1;
    const auto follows = [&](std::size_t i) {
        return i < cells.size() && cells[i].column == cells[i - 1].column + 1 && shortNumber(cells[i]);
    };
    while (follows(end))
        ++end;
    const bool isSingle = end == first + 1;
    if (isSingle) {
        head(xls::rk, row, cells[first]);
        m_writer.put32(*shortNumber(cells[first]));
    } else {
        m_writer.begin(xls::multipleRk);
        m_writer.put16(static_cast<unsigned>(row - 1));
        m_writer.put16(columnOf(cells[first]));
        for (std::size_t i = first; i < end; ++i) {
            m_writer.put16(m_parts.styles.cellFormat(cells[i].style));
            m_writer.put32(*shortNumber(cells[i]));
        }
        m_writer.put16(columnOf(cells[end - 1]));
    }
    m_writer.end();
    return end;
}

std::size_t SheetWriter::blankRun(int row, const std::vector<StoredCell>& cells, std::size_t first)
{
    std::size_t end = first + 1;
    while (end < cells.size() && cells[end].column == cells[end - 1].column + 1 && cells[end].isBlank())
        ++end;
    if (end == first + 1) {
        head(xls::blank, row, cells[first]);
    } else {
        m_writer.begin(xls::multipleBlank);
        m_writer.put16(static_cast<unsigned>(row - 1));
        m_writer.put16(columnOf(cells[first]));
        for (std::size_t i = first; i < end; ++i)
            m_writer.put16(m_parts.styles.cellFormat(cells[i].style));
        m_writer.put16(columnOf(cells[end - 1]));
    }
    m_writer.end();
    return end;
}

void SheetWriter::constant(int row, const StoredCell& cell)
{
    const CellBlock& block = *cell.block;
    switch (block.kinds()[cell.index]) {
    case ValueKind::number:
        head(xls::number, row, cell);
        m_writer.put(block.payloads()[cell.index].number);
        break;
    case ValueKind::text: {
        const Text::Body* body = block.payloads()[cell.index].text;
        head(xls::sharedTextCell, row, cell);
        m_writer.put32(
            m_parts.texts.number(body ? std::string_view(body->bytes(), body->size) : std::string_view()));
        break;
    }
    case ValueKind::boolean:
    case ValueKind::error: {
        const bool isError = block.kinds()[cell.index] == ValueKind::error;
        head(xls::boolOrError, row, cell);
        m_writer.put8(isError ? codeOfError(block.payloads()[cell.index].error)
                              : static_cast<unsigned>(block.payloads()[cell.index].boolean));
        m_writer.put8(isError);
        break;
    }
    case ValueKind::empty:
        head(xls::blank, row, cell);
        break;
    }
    m_writer.end();
}

/// False if the format cannot hold the formula, after a warning.
bool SheetWriter::formula(int row, const StoredCell& cell, std::uint32_t number)
{
    const CellAddress at{cell.column, row};
    const bool isArray = m_parts.workbook.formulas()[number].isArrayFormula;
    const std::optional<CellRange> range = isArray ? m_sheet.arrayRange(at) : std::nullopt;
    const CellAddress base = range ? CellAddress{range->left, range->top} : at;
    const XlsFormula& made = m_parts.formulas.formula(number, base);
    std::string problem = made.problem;
    if (problem.empty() && !m_parts.formulas.tokensAt(made, number, base, m_tokens))
        problem = "引用超出 .xls 的行列范围";
    if (!problem.empty()) {
        m_parts.warnings.add("表“" + m_sheet.name() + "”的 " + cellName(at) +
                             " 写为上次算出的值: " + problem);
        return false;
    }
    const Value value = cell.block->value(cell.index);
    if (!isArray || !range) {
        formulaRecord(row, cell, value, m_tokens, made.extra);
    } else {
        std::vector<std::byte> pointer{std::byte(xls::tokenExpression)};
        appendNumber(pointer, static_cast<std::uint16_t>(range->top - 1));
        appendNumber(pointer, static_cast<std::uint16_t>(range->left - 1));
        formulaRecord(row, cell, value, pointer, {});
        if (at == base)
            arrayRecord(*range, m_tokens, made.extra);
    }
    if (!value.isText() || value.textView().empty())
        return true;
    m_writer.begin(xls::formulaText);
    m_writer.putLongText(value.textView());
    m_writer.end();
    return true;
}

void SheetWriter::formulaRecord(int row, const StoredCell& cell, const Value& value, Bytes tokens,
                                Bytes extra)
{
    head(xls::formula, row, cell);
    result(value);
    endFormula(tokens, extra);
}

void SheetWriter::arrayRecord(const CellRange& range, Bytes tokens, Bytes extra)
{
    m_writer.begin(xls::array);
    m_writer.put16(static_cast<unsigned>(range.top - 1));
    m_writer.put16(static_cast<unsigned>(range.bottom - 1));
    m_writer.put8(static_cast<unsigned>(range.left - 1));
    m_writer.put8(static_cast<unsigned>(range.right - 1));
    endFormula(tokens, extra);
}

/// The end of a record that holds a formula.
void SheetWriter::endFormula(Bytes tokens, Bytes extra)
{
    m_writer.put16(0);
    m_writer.put32(0);
    m_writer.put16(static_cast<unsigned>(tokens.size()));
    m_writer.putBytes(tokens);
    m_writer.putBytes(extra);
    m_writer.end();
}

/// Eight bytes: a number, or a kind and a code behind which 0xFFFF stands.
void SheetWriter::result(const Value& value)
{
    if (value.isNumber())
        return m_writer.put(value.number());
    unsigned kind = 3, code = 0; // an empty text
    if (value.isText() && !value.textView().empty()) {
        kind = 0;
    } else if (value.isBoolean()) {
        kind = 1;
        code = value.boolean();
    } else if (value.isError()) {
        kind = 2;
        code = codeOfError(value.error());
    }
    m_writer.put8(kind);
    m_writer.put8(0);
    m_writer.put8(code);
    m_writer.putZeros(3);
    m_writer.put16(0xFFFF);
}

} // namespace spreadsheet
