#include "spreadsheet/cells/BookSheet.h"

#include <algorithm>

namespace spreadsheet {

namespace {

/// The cell's own entry, else its column's; null if neither is there.
template <typename Entry>
const Entry* entryOf(const std::map<CellAddress, Entry>& entries, CellAddress cell)
{
    if (entries.empty())
        return nullptr;
    auto found = entries.find(cell);
    if (found == entries.end())
        found = entries.find({cell.column, 0});
    return found == entries.end() ? nullptr : &found->second;
}

} // namespace

BookSheet::BookSheet(int sheetId, std::string name)
    : id(sheetId)
{
    settings.name = std::move(name);
}

Column& BookSheet::writableColumn(int number)
{
    if (storedColumns() < number)
        columns.resize(static_cast<std::size_t>(number));
    return columns[static_cast<std::size_t>(number) - 1];
}

std::uint32_t BookSheet::formula(CellAddress cell) const
{
    const Column* cells = column(cell.column);
    return cells ? cells->formula(cell.row) : 0;
}

std::optional<CellRange> BookSheet::arrayRange(CellAddress cell) const
{
    const auto found = std::ranges::find_if(settings.arrays,
                                            [cell](const CellRange& range) { return range.contains(cell); });
    return found == settings.arrays.end() ? std::nullopt : std::optional(*found);
}

CellAddress BookSheet::formulaBase(CellAddress cell, bool isArrayFormula) const
{
    const auto range = isArrayFormula ? arrayRange(cell) : std::nullopt;
    return range ? CellAddress{range->left, range->top} : cell;
}

Text BookSheet::tag(CellAddress cell) const
{
    const Column* cells = column(cell.column);
    const Column::Slot* slot = cells ? cells->find(cell.row) : nullptr;
    return slot ? slot->block->tag(cell.row - slot->firstRow) : Text();
}

Text BookSheet::shownText(CellAddress cell) const
{
    const Column* cells = column(cell.column);
    const Column::Slot* slot = cells ? cells->find(cell.row) : nullptr;
    return slot ? slot->block->shown(cell.row - slot->firstRow) : Text();
}

bool BookSheet::hasShownTexts() const
{
    const auto hasOne = [](const CellBlock& block) {
        for (int index = 0; block.hasShown() && index < block.count(); ++index)
            if (!block.shown(index).empty())
                return true;
        return false;
    };
    return std::ranges::any_of(columns, [&](const Column& cells) {
        return std::ranges::any_of(cells.slots(),
                                   [&](const Column::Slot& slot) { return hasOne(*slot.block); });
    });
}

std::uint32_t BookSheet::styleNumber(CellAddress cell) const
{
    const Column* cells = column(cell.column);
    if (const std::uint32_t own = cells ? cells->style(cell.row) : 0)
        return own;
    return lineStyle(cell);
}

std::uint32_t BookSheet::lineStyle(CellAddress cell) const
{
    if (const auto row = settings.rowStyles.find(cell.row); row != settings.rowStyles.end())
        return row->second;
    const auto whole = settings.columnStyles.find(cell.column);
    return whole == settings.columnStyles.end() ? 0 : whole->second;
}

int BookSheet::lastDataRow() const
{
    int last = 0;
    for (const Column& cells : columns)
        last = std::max(last, cells.lastDataRow());
    return last;
}

int BookSheet::lastDataColumn() const
{
    for (int last = storedColumns(); last > 0; --last) {
        if (column(last)->lastDataRow() > 0)
            return last;
    }
    return 0;
}

const std::vector<std::string>* BookSheet::dropDownEntries(CellAddress cell) const
{
    const DropDownEntries* found = entryOf(settings.dropDowns, cell);
    return found ? &**found : nullptr;
}

const std::string* BookSheet::buttonCaption(CellAddress cell) const
{
    return entryOf(settings.captions, cell);
}

std::optional<CellRange> BookSheet::spanAt(CellAddress cell) const
{
    const auto found =
        std::ranges::find_if(settings.spans, [cell](const CellRange& range) { return range.contains(cell); });
    return found == settings.spans.end() ? std::nullopt : std::optional(*found);
}

} // namespace spreadsheet
