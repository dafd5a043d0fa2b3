#include "spreadsheet/files/xls/cell_codes.h"
#include "spreadsheet/files/xls/records.h"
#include "spreadsheet/files/xls/SheetReader.h"
#include "spreadsheet/files/xls/tokens.h"
#include "spreadsheet/formula/FormulaPool.h"
#include "spreadsheet/values/range_overlap.h"

#include <algorithm>
#include <cmath>

namespace spreadsheet {

// Cells of one shared formula hold only where their group begins; the group's tokens are read relative to
// each cell, once, as formulas of the pool are shared by all cells they look the same from. Array formulas
// get theirs when all cells are known, because their range must be whole.

namespace {

constexpr std::size_t formulaHead = 22; ///< bytes before a formula's tokens

/// True if no reference of the formula leaves the format's sheet when it is seen from the cell.
bool staysOnSheet(const Formula& formula, CellAddress at)
{
    return std::ranges::all_of(formula.slots, [at](const ReferenceSlot& slot) {
        if (slot.shape == ReferenceSlot::Shape::broken)
            return true;
        const auto range = slot.range(at);
        return range && (slot.shape == ReferenceSlot::Shape::columns || range->bottom <= xls::maxRows) &&
               (slot.shape == ReferenceSlot::Shape::rows || range->right <= xls::maxColumns);
    });
}

} // namespace

Column::Place SheetReader::cell(int row, int column, std::uint16_t cellFormat)
{
    if (column + 1 != m_columnNumber || !m_column) {
        m_columnNumber = column + 1;
        m_column = &m_sheet.loadColumn(m_columnNumber);
    }
    m_lastRow = std::max(m_lastRow, row + 1);
    m_lastColumn = std::max(m_lastColumn, column + 1);
    const Column::Place place = m_column->writable(row + 1);
    place.block.setStyle(place.index, m_globals.styles.style(cellFormat, m_isProtected));
    return place;
}

void SheetReader::put(int row, int column, std::uint16_t cellFormat, Value value)
{
    const Column::Place place = cell(row, column & 0xFF, cellFormat);
    if (value.isNumber() && !std::isfinite(value.number()))
        value = CellError::num;
    place.block.setValue(place.index, std::move(value));
}

/// Row, column and format stand at the beginning of every cell record.
void SheetReader::putAt(const XlsRecord& record, Value value)
{
    put(record.wordAt(0), record.wordAt(2), record.wordAt(4), std::move(value));
}

void SheetReader::sharedTextCell(const XlsRecord& record)
{
    const auto number = record.at<std::uint32_t>(6);
    const auto& texts = m_globals.texts;
    if (number >= texts.size())
        m_globals.warnings.add("有单元格的文本编号超出文本表,按空白引入");
    putAt(record, number < texts.size() ? Value(texts[number]) : Value());
}

void SheetReader::label(RecordStream& stream)
{
    const XlsRecord record = stream.record();
    RecordCursor cursor(record, stream);
    cursor.skip(6);
    const std::string text = m_globals.version == xls::version8
                                 ? cursor.longText()
                                 : m_globals.codePage.decoded(cursor.bytes(cursor.take<std::uint16_t>()));
    putAt(record, m_workbook.texts().intern(text));
}

void SheetReader::multipleRk(const XlsRecord& record)
{
    constexpr std::size_t head = 4, cellSize = 6, tail = 2;
    const int row = record.wordAt(0);
    int column = record.wordAt(2);
    for (std::size_t at = head; at + cellSize + tail <= record.size(); at += cellSize, ++column)
        put(row, column, record.wordAt(at), numberOfRk(record.at<std::uint32_t>(at + 2)));
}

void SheetReader::multipleBlank(const XlsRecord& record)
{
    constexpr std::size_t head = 4, cellSize = 2, tail = 2;
    const int row = record.wordAt(0);
    int column = record.wordAt(2);
    for (std::size_t at = head; at + cellSize + tail <= record.size(); at += cellSize, ++column)
        put(row, column, record.wordAt(at), {});
}

void SheetReader::boolOrError(const XlsRecord& record)
{
    const std::uint8_t code = record.byteAt(6);
    if (record.byteAt(7) == 0)
        return putAt(record, Value::boolean(code != 0));
    putAt(record, errorOfCode(code).value_or(CellError::value));
}

/// The value of a formula when the file was written; a text stands in a record of its own.
Value SheetReader::formulaValue(const XlsRecord& record, RecordStream& stream)
{
    if (record.wordAt(12) != 0xFFFF)
        return record.at<double>(6);
    switch (record.byteAt(6)) {
    case 0:
        if (stream.nextId() != xls::formulaText || !stream.next())
            return {};
        {
            const XlsRecord text = stream.record();
            RecordCursor cursor(text, stream);
            return Value::text(m_globals.version == xls::version8
                                   ? cursor.longText()
                                   : m_globals.codePage.decoded(cursor.bytes(cursor.take<std::uint16_t>())));
        }
    case 1:
        return Value::boolean(record.byteAt(8) != 0);
    case 2:
        return errorOfCode(record.byteAt(8)).value_or(CellError::value);
    default:
        return Value::text("");
    }
}

void SheetReader::formula(RecordStream& stream)
{
    const XlsRecord record = stream.record();
    const int row = record.wordAt(0), column = record.wordAt(2) & 0xFF;
    const bool isGroup = stream.nextId() == xls::sharedFormula || stream.nextId() == xls::array ||
                         stream.nextId() == xls::table;
    if (isGroup && stream.next())
        readGroup(stream.record(), {row, column});
    const Value value = formulaValue(record, stream);
    put(row, column, record.wordAt(4), value);
    const Column::Place place = m_column->writable(row + 1);
    placeFormula(record, place, {column + 1, row + 1});
}

void SheetReader::readGroup(const XlsRecord& record, CellPosition first)
{
    if (record.id == xls::table)
        return;
    Group group;
    group.isArray = record.id == xls::array;
    group.range = {record.byteAt(4) + 1, record.wordAt(0) + 1, record.byteAt(5) + 1, record.wordAt(2) + 1};
    const std::size_t head = group.isArray ? 12 : 8;
    const std::size_t size = record.wordAt(head);
    group.tokens = record.bytesAt(head + 2, size);
    group.extra = record.from(head + 2 + size);
    if (group.range.left <= group.range.right && group.range.top <= group.range.bottom)
        m_groups[first] = group;
}

void SheetReader::placeFormula(const XlsRecord& record, const Column::Place& place, CellAddress at)
{
    if (m_globals.version != xls::version8) {
        m_globals.warnings.add("这个版本的文件中,公式只引入上次算出的值");
        return;
    }
    const std::size_t size = record.wordAt(formulaHead - 2);
    const Bytes tokens = record.bytesAt(formulaHead, size);
    const bool inGroup = !tokens.empty() && tokens[0] == std::byte(xls::tokenExpression);
    const std::uint32_t number =
        inGroup ? groupFormula(record, at) : interned(tokens, record.from(formulaHead + size), at);
    if (number != 0)
        place.block.setFormula(place.index, number);
}

/// The formula of a cell in a group; 0 for one in an array, which gets its formula at the end.
std::uint32_t SheetReader::groupFormula(const XlsRecord& record, CellAddress at)
{
    const CellPosition first{record.wordAt(formulaHead + 1), record.wordAt(formulaHead + 3)};
    const auto found = m_groups.find(first);
    if (found == m_groups.end()) {
        m_globals.warnings.add("表“" + m_sheet.name() + "”的 " + cellName(at) +
                               " 等单元格保留了上次算出的值: 模拟运算表或缺少的公式");
        return 0;
    }
    Group& group = found->second;
    ++group.cells;
    if (group.isArray)
        return 0;
    // Seen from any other cell the formula is the same, unless a reference wraps around the sheet.
    if (group.number == 0 || !staysOnSheet(m_workbook.formulas()[group.number], at))
        group.number = interned(group.tokens, group.extra, at);
    return group.number;
}

/// The number of a formula in the pool; 0 and a warning if it cannot be kept.
std::uint32_t SheetReader::interned(Bytes tokens, Bytes extra, CellAddress at, bool isArray)
{
    const std::optional<std::string> text = m_formulaReader.read(tokens, extra, at);
    std::string problem = m_formulaReader.problem();
    if (text) {
        const auto parsed = m_workbook.formulas().intern(*text, at, m_sheetId, isArray);
        if (const auto* number = std::get_if<std::uint32_t>(&parsed))
            return *number;
        problem = std::get<Refusal>(parsed).reason();
    }
    m_globals.warnings.add("表“" + m_sheet.name() + "”的 " + cellName(at) +
                           " 保留了上次算出的值: " + problem);
    return 0;
}

/// Array formulas whose cells are all there; the others keep their values.
void SheetReader::placeArrays()
{
    std::vector<CellRange> ranges;
    for (const auto& [first, group] : m_groups) {
        const auto cells =
            static_cast<std::size_t>(group.range.rows()) * static_cast<std::size_t>(group.range.columns());
        if (group.isArray && cells == group.cells)
            ranges.push_back(group.range);
    }
    if (anyOverlap(ranges)) {
        m_globals.warnings.add("表“" + m_sheet.name() + "”的数组公式互相重叠,保留了上次算出的值");
        return;
    }
    for (const auto& [first, group] : m_groups) {
        if (!group.isArray || std::ranges::find(ranges, group.range) == ranges.end())
            continue;
        const CellAddress base{group.range.left, group.range.top};
        const std::uint32_t number = interned(group.tokens, group.extra, base, true);
        if (number == 0)
            continue;
        for (int column = group.range.left; column <= group.range.right; ++column) {
            for (int row = group.range.top; row <= group.range.bottom; ++row) {
                const Column::Place place = m_sheet.loadColumn(column).writable(row);
                place.block.setFormula(place.index, number);
            }
        }
        m_settings.arrays.push_back(group.range);
    }
}

} // namespace spreadsheet
