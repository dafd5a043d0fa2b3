#include "spreadsheet/formula/LookupIndexes.h"

#include "spreadsheet/functions/Call.h"

#include <bit>

namespace spreadsheet {

namespace {

std::uint64_t bitsOf(double number)
{
    return std::bit_cast<std::uint64_t>(number == 0 ? 0.0 : number); // -0 equals 0
}

std::uint64_t columnKey(int sheet, int column, int row)
{
    return (static_cast<std::uint64_t>(sheet) << 48) ^ (static_cast<std::uint64_t>(column) << 32) ^
           static_cast<std::uint32_t>(row);
}

template <typename Map, typename Key>
const ColumnIndex::Rows* find(const Map& map, const Key& key)
{
    const auto found = map.find(key);
    return found == map.end() ? nullptr : &found->second;
}

} // namespace

ColumnIndex::ColumnIndex(const Workbook& workbook, int sheet, int column, int top)
    : m_workbook(workbook)
    , m_area{sheet, {column, top, column, top - 1}}
{
}

void ColumnIndex::extend(int bottom)
{
    if (bottom <= m_area.cells.bottom)
        return;
    Area fresh = m_area;
    fresh.cells.top = m_area.cells.bottom + 1;
    fresh.cells.bottom = bottom;
    forEachStretch(m_workbook, fresh, [this](const CellStretch& stretch) { add(stretch); });
    m_area.cells.bottom = bottom;
}

void ColumnIndex::add(const CellStretch& stretch)
{
    for (int i = 0; i < stretch.count; ++i) {
        const Payload& payload = stretch.payloads[i];
        const int row = stretch.firstRow + i;
        if (stretch.kinds[i] == ValueKind::number)
            m_numbers[bitsOf(payload.number)].rows.push_back(row);
        else if (stretch.kinds[i] == ValueKind::text)
            addText(payload.text, row);
        else if (stretch.kinds[i] == ValueKind::boolean)
            m_booleans[payload.boolean].rows.push_back(row);
    }
}

void ColumnIndex::addText(const Text::Body* text, int row)
{
    const std::string_view view = text ? std::string_view(text->bytes(), text->size) : std::string_view();
    m_texts[foldedText(view)].rows.push_back(row);
    const auto number = text && text->countsAsNumber ? std::optional(text->number) : numberOfText(view);
    if (number)
        m_numericTexts[bitsOf(*number)].rows.push_back(row);
}

const ColumnIndex::Rows* ColumnIndex::number(double wanted) const
{
    return find(m_numbers, bitsOf(wanted));
}

const ColumnIndex::Rows* ColumnIndex::text(std::string_view folded) const
{
    return find(m_texts, folded);
}

const ColumnIndex::Rows* ColumnIndex::numericText(double wanted) const
{
    return find(m_numericTexts, bitsOf(wanted));
}

const ColumnIndex::Rows* ColumnIndex::boolean(bool wanted) const
{
    return m_booleans[wanted].rows.empty() ? nullptr : &m_booleans[wanted];
}

std::size_t ColumnIndex::BesideHash::operator()(const BesideKey& key) const
{
    return std::hash<const void*>()(key.rows) ^ (std::hash<std::uint64_t>()(key.column) * 0x9E37'79B9);
}

const Total& ColumnIndex::totalBeside(const Rows& rows, int bottom, int sheet, int column, int shift)
{
    Beside& beside = m_beside[{&rows, columnKey(sheet, column, shift)}];
    if (beside.rows > 0 && rows.rows[beside.rows - 1] > bottom)
        beside = Beside(); // a shorter range than before
    const Sheet& cells = m_workbook.sheet(sheet);
    const Column* const numbers = column <= cells.storedColumns() ? cells.column(column) : nullptr;
    for (; beside.rows < rows.rows.size() && rows.rows[beside.rows] <= bottom; ++beside.rows) {
        const int row = rows.rows[beside.rows] + shift;
        const Column::Slot* slot = numbers ? numbers->find(row) : nullptr;
        if (!slot)
            continue;
        const int at = row - slot->firstRow;
        beside.total.add(
            CellStretch{slot->block->payloads() + at, slot->block->kinds() + at, 1, row, column});
    }
    return beside.total;
}

ColumnIndex* LookupIndexes::index(const Area& column)
{
    const CellRange& cells = column.cells;
    if (cells.rows() < shortestRange)
        return nullptr;
    Entry& entry = m_indexes[columnKey(column.sheet, cells.left, cells.top)];
    if (!entry.asked) {
        entry.asked = true;
        return nullptr;
    }
    if (!entry.index)
        entry.index = std::make_unique<ColumnIndex>(m_workbook, column.sheet, cells.left, cells.top);
    entry.index->extend(cells.bottom);
    return entry.index.get();
}

} // namespace spreadsheet
