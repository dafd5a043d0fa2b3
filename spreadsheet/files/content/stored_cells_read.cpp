#include "spreadsheet/files/content/stored_cells.h"

#include "spreadsheet/files/content/stored_vector.h"
#include "spreadsheet/files/placing/ContentError.h"
#include "spreadsheet/formula/FormulaPool.h"
#include "spreadsheet/workbook/Sheet.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace spreadsheet {

namespace {

/// More scattered cells than this would take memory out of all proportion to the file.
constexpr std::uint32_t maxStretches = 1u << 22;

/// Places that must come column by column and down each column, without meeting.
class AscendingPlaces {
public:
    explicit AscendingPlaces(const char* what)
        : m_what(what)
    {
    }

    void require(std::uint32_t column, std::uint32_t row, std::uint32_t count)
    {
        requireContent(column >= 1 && column <= maxColumns && row >= 1 && row <= maxRows && count >= 1 &&
                           count <= maxRows - row + 1,
                       m_what);
        requireContent(column > m_column || (column == m_column && row >= m_nextRow), m_what);
        m_column = column;
        m_nextRow = row + count;
    }

private:
    const char* m_what;
    std::uint32_t m_column = 0;
    std::uint32_t m_nextRow = 0;
};

Value readValue(std::uint8_t kind, std::uint64_t payload, const StoredTexts& texts)
{
    switch (static_cast<ValueKind>(kind)) {
    case ValueKind::empty:
        return {};
    case ValueKind::number:
        requireContent(std::isfinite(std::bit_cast<double>(payload)), "单元格的数值不对");
        return std::bit_cast<double>(payload);
    case ValueKind::text:
        return Value(texts[payload]);
    case ValueKind::boolean:
        requireContent(payload <= 1, "单元格的逻辑值不对");
        return Value::boolean(payload == 1);
    case ValueKind::error:
        requireContent(payload < cellErrorTexts.size(), "单元格的错误值不对");
        return static_cast<CellError>(payload);
    }
    refuseContent("单元格的值类别不对");
}

bool allFiniteNumbers(const std::uint8_t* kinds, const double* numbers, std::size_t count)
{
    constexpr std::uint64_t exponent = 0x7FF0'0000'0000'0000;
    bool all = true;
    for (std::size_t i = 0; i < count; ++i)
        all &= kinds[i] == static_cast<std::uint8_t>(ValueKind::number);
    for (std::size_t i = 0; i < count; ++i)
        all &= (std::bit_cast<std::uint64_t>(numbers[i]) & exponent) != exponent;
    return all;
}

std::unique_ptr<CellBlock> readBlock(const std::uint8_t* kinds, const double* payloads, int count,
                                     const StoredTexts& texts)
{
    auto block = std::make_unique<CellBlock>(count);
    if (allFiniteNumbers(kinds, payloads, static_cast<std::size_t>(count))) {
        block->setNumbers(0, payloads, count);
        return block;
    }
    for (int i = 0; i < count; ++i)
        block->setValue(i, readValue(kinds[i], std::bit_cast<std::uint64_t>(payloads[i]), texts));
    return block;
}

void readValues(const stored::Sheet& stored, Sheet& sheet, const StoredTexts& texts)
{
    const std::size_t cells = stored.kinds() ? stored.kinds()->size() : 0;
    requireContent(cells == (stored.payloads() ? stored.payloads()->size() : 0), "单元格的个数不符");
    requireAlignedElements(stored.payloads());
    const std::uint32_t stretches = stored.stretches() ? stored.stretches()->size() : 0;
    requireContent(stretches <= maxStretches, "单元格分布太散");
    AscendingPlaces places("单元格的位置不对");
    std::size_t done = 0;
    for (std::uint32_t i = 0; i < stretches; ++i) {
        const stored::Stretch& stretch = *stored.stretches()->Get(i);
        places.require(stretch.column(), stretch.first_row(), stretch.count());
        requireContent(stretch.count() <= cells - done, "单元格的个数不符");
        Column& column = sheet.loadColumn(stretch.column());
        for (std::uint32_t row = 0; row < stretch.count();) {
            const auto count =
                static_cast<int>(std::min<std::uint32_t>(CellBlock::maxCells, stretch.count() - row));
            const auto* payloads = reinterpret_cast<const double*>(stored.payloads()->data());
            column.appendBlock(static_cast<int>(stretch.first_row() + row),
                               readBlock(stored.kinds()->data() + done, payloads + done, count, texts));
            row += static_cast<std::uint32_t>(count);
            done += static_cast<std::size_t>(count);
        }
    }
    requireContent(done == cells, "单元格的个数不符");
}

/// Calls `put(block, index, count)` for the blocks that the rows lie in, which must be there.
template <typename Put>
void eachBlock(Sheet& sheet, int columnNumber, int row, int count, Put put)
{
    requireContent(columnNumber <= sheet.storedColumns(), "指向没有内容的单元格");
    Column& column = sheet.loadColumn(columnNumber);
    const int end = row + count;
    for (std::size_t slot = column.lowerSlot(row); row < end; ++slot) {
        const bool held = slot < column.slots().size() && column.slots()[slot].firstRow <= row;
        requireContent(held, "指向没有内容的单元格");
        const int part = std::min(end - 1, column.slots()[slot].lastRow()) - row + 1;
        put(column.computedBlock(slot), row - column.slots()[slot].firstRow, part);
        row += part;
    }
}

template <typename Put>
void readRuns(const flatbuffers::Vector<const stored::Run*>* runs, Sheet& sheet,
              std::span<const std::uint32_t> numbers, const char* what, Put put)
{
    if (!runs)
        return;
    AscendingPlaces places(what);
    for (const stored::Run* run : *runs) {
        places.require(run->column(), run->first_row(), run->count());
        requireContent(run->number() >= 1 && run->number() < numbers.size(), what);
        const std::uint32_t number = numbers[run->number()];
        eachBlock(sheet, run->column(), static_cast<int>(run->first_row()), static_cast<int>(run->count()),
                  [&](CellBlock& block, int index, int count) { put(block, index, count, number); });
    }
}

template <typename Put>
void readCellTexts(const flatbuffers::Vector<const stored::CellText*>* cells, Sheet& sheet,
                   const StoredTexts& texts, const char* what, Put put)
{
    if (!cells)
        return;
    AscendingPlaces places(what);
    for (const stored::CellText* cell : *cells) {
        places.require(cell->column(), cell->row(), 1);
        const Text& text = texts[cell->text()];
        eachBlock(sheet, cell->column(), static_cast<int>(cell->row()), 1,
                  [&](CellBlock& block, int index, int) { put(block, index, text); });
    }
}

} // namespace

void readCells(const stored::Sheet& stored, Sheet& sheet, const CellMeanings& meanings)
{
    readValues(stored, sheet, meanings.texts);
    readRuns(stored.styles(), sheet, meanings.styles, "单元格格式的位置或编号不对",
             [](CellBlock& block, int index, int count, std::uint32_t style) {
                 block.setStyles(index, count, style);
             });
    readRuns(stored.formulas(), sheet, meanings.formulas, "公式的位置或编号不对",
             [](CellBlock& block, int index, int count, std::uint32_t formula) {
                 if (formula != 0)
                     block.setFormulas(index, count, formula);
             });
    readCellTexts(stored.tags(), sheet, meanings.texts, "标记的位置不对",
                  [](CellBlock& block, int index, const Text& text) { block.setTag(index, text); });
    readCellTexts(stored.shown_texts(), sheet, meanings.texts, "显示文本的位置不对",
                  [](CellBlock& block, int index, const Text& text) { block.setShown(index, text); });
}

} // namespace spreadsheet
