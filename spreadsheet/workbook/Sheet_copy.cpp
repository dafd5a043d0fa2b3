#include "spreadsheet/calculation/Recalculation.h"
#include "spreadsheet/formula/FormulaPool.h"
#include "spreadsheet/workbook/Sheet.h"
#include "spreadsheet/workbook/SheetStructure.h"
#include "spreadsheet/workbook/UndoJournal.h"
#include "spreadsheet/workbook/Workbook.h"

#include <algorithm>

namespace spreadsheet {

// Copying and moving look alike and are opposites: a copied formula keeps its distances and so reads other
// cells, a moved one keeps its cells and so changes its distances, and others that read the moved cells
// follow them. Hence a copy is a state lifted from the sheet and put down anywhere, while a move first mends
// every reference and then carries the cells over.

namespace {

CellContent contentOf(const Sheet& sheet, CellAddress cell)
{
    const Column* column = sheet.column(cell.column);
    const Column::Slot* slot = column ? column->find(cell.row) : nullptr;
    const std::uint32_t style = sheet.styleNumber(cell);
    if (!slot)
        return {{}, 0, style, {}, {}};
    const int index = cell.row - slot->firstRow;
    return {slot->block->value(index), slot->block->formula(index), style, slot->block->tag(index),
            slot->block->shown(index)};
}

Refusal outside(CellAddress to, int columns, int rows)
{
    if (to.column < 1 || to.row < 1 || to.column + columns - 1 > maxColumns || to.row + rows - 1 > maxRows)
        return "目标区域超出表的范围";
    return {};
}

CellRange shifted(const CellRange& range, int columns, int rows)
{
    return {range.left + columns, range.top + rows, range.right + columns, range.bottom + rows};
}

/// An array formula that the range meets but does not hold whole.
bool cutsArray(const Sheet& sheet, const CellRange& range)
{
    return std::ranges::any_of(sheet.settings().arrays, [&](const CellRange& array) {
        return array.intersects(range) && !range.contains(array);
    });
}

bool holdsArray(const Sheet& sheet, const CellRange& range)
{
    return std::ranges::any_of(sheet.settings().arrays,
                               [&](const CellRange& array) { return array.intersects(range); });
}

std::vector<CellContent> contentsOf(const Sheet& sheet, const CellRange& range)
{
    std::vector<CellContent> contents;
    for (int column = range.left; column <= range.right; ++column) {
        for (int row = range.top; row <= range.bottom; ++row)
            contents.push_back(contentOf(sheet, {column, row}));
    }
    return contents;
}

void write(const Column::Place& place, const CellContent& content)
{
    place.block.setValue(place.index, content.value);
    place.block.setFormula(place.index, content.formula);
    place.block.setStyle(place.index, content.style);
    place.block.setTag(place.index, content.tag);
    place.block.setShown(place.index, content.shown);
}

/// A formula copied to another cell: references that would leave the sheet are broken for good.
std::uint32_t copiedFormula(FormulaPool& pool, std::uint32_t formula, CellAddress to)
{
    if (formula == 0)
        return 0;
    const auto& slots = pool[formula].slots;
    const auto leaves = [to](const ReferenceSlot& slot) {
        return slot.shape != ReferenceSlot::Shape::broken && !slot.range(to);
    };
    if (std::ranges::none_of(slots, leaves))
        return formula;
    std::vector<ReferenceSlot> changed = slots;
    for (ReferenceSlot& slot : changed) {
        if (leaves(slot))
            slot.shape = ReferenceSlot::Shape::broken;
    }
    return pool.withSlots(formula, std::move(changed));
}

/// A formula moved to another cell keeps meaning the same cells.
std::uint32_t movedFormula(FormulaPool& pool, std::uint32_t formula, const Sheet& source, CellAddress from,
                           const Sheet& target, CellAddress to)
{
    std::vector<ReferenceSlot> slots = pool[formula].slots;
    for (ReferenceSlot& slot : slots) {
        for (AxisPoint* point : {&slot.top, &slot.bottom})
            point->value -= point->absolute ? 0 : to.row - from.row;
        for (AxisPoint* point : {&slot.left, &slot.right})
            point->value -= point->absolute ? 0 : to.column - from.column;
        if (slot.isSingleCell())
            slot.bottom = slot.right = {};
        if (slot.shape == ReferenceSlot::Shape::columns)
            slot.top = slot.bottom = {};
        if (slot.shape == ReferenceSlot::Shape::rows)
            slot.left = slot.right = {};
        if (&source != &target && slot.firstSheet == 0 && slot.shape != ReferenceSlot::Shape::broken) {
            slot.firstSheet = slot.lastSheet = source.id();
            slot.sheetText = sheetPrefix(source.name());
        }
    }
    return pool.withSlots(formula, std::move(slots));
}

/// What cells of a range have, their columns' left out; counted from the range's first cell.
template <typename Entry>
std::map<CellAddress, Entry> within(const std::map<CellAddress, Entry>& entries, const CellRange& range)
{
    std::map<CellAddress, Entry> found;
    for (const auto& [cell, entry] : entries) {
        if (range.contains(cell))
            found.emplace(CellAddress{cell.column - range.left + 1, cell.row - range.top + 1}, entry);
    }
    return found;
}

/// … and what their columns give to cells of this type.
template <typename Entry>
void addFromColumns(std::map<CellAddress, Entry>& found, const std::map<CellAddress, Entry>& entries,
                    const Sheet& sheet, const CellRange& range, CellType type)
{
    for (const auto& [place, entry] : entries) {
        if (place.row != 0 || place.column < range.left || place.column > range.right)
            continue;
        for (int row = range.top; row <= range.bottom; ++row) {
            if (sheet.style({place.column, row}).type == type)
                found.emplace(CellAddress{place.column - range.left + 1, row - range.top + 1}, entry);
        }
    }
}

/// Takes the entries of a range away and puts others in; they count from the range's first cell.
template <typename Entry>
void replaceWithin(std::map<CellAddress, Entry>& entries, const CellRange& range,
                   const std::map<CellAddress, Entry>& others)
{
    std::erase_if(entries, [&](const auto& entry) { return range.contains(entry.first); });
    for (const auto& [cell, entry] : others)
        entries.insert_or_assign({cell.column + range.left - 1, cell.row + range.top - 1}, entry);
}

} // namespace

void Sheet::dropArrays(const CellRange& range)
{
    if (holdsArray(*this, range))
        std::erase_if(editableSettings().arrays, [&](const CellRange& a) { return range.contains(a); });
}

CellLists Sheet::listsOf(const CellRange& range) const
{
    CellLists lists{within(m_cells->settings.dropDowns, range), within(m_cells->settings.captions, range)};
    addFromColumns(lists.dropDowns, m_cells->settings.dropDowns, *this, range, CellType::dropDown);
    addFromColumns(lists.captions, m_cells->settings.captions, *this, range, CellType::button);
    return lists;
}

void Sheet::replaceLists(const CellRange& range, const CellLists& lists)
{
    SheetSettings& settings = editableSettings();
    replaceWithin(settings.dropDowns, range, lists.dropDowns);
    replaceWithin(settings.captions, range, lists.captions);
}

LiftedCells Sheet::lift(const CellRange& range) const
{
    LiftedCells lifted(range.columns(), range.rows());
    lifted.cells = contentsOf(*this, range);
    for (const CellRange& array : m_cells->settings.arrays) {
        if (range.contains(array))
            lifted.arrays.push_back(shifted(array, 1 - range.left, 1 - range.top));
    }
    for (const CellRange& span : m_cells->settings.spans) {
        if (range.contains(span))
            lifted.spans.push_back(shifted(span, 1 - range.left, 1 - range.top));
    }
    lifted.lists = listsOf(range);
    return lifted;
}

Refusal Sheet::put(const LiftedCells& lifted, CellAddress to)
{
    if (auto problem = outside(to, lifted.columns, lifted.rows))
        return problem;
    const CellRange goal{to.column, to.row, to.column + lifted.columns - 1, to.row + lifted.rows - 1};
    if (cutsArray(*this, goal))
        return "不能更改数组公式的一部分";
    const UndoStep step(m_workbook, "粘贴");
    removeSpans(goal);
    dropArrays(goal);
    // Where whole rows or columns have a look, the fresh look has to be said.
    const bool looksAround = !m_cells->settings.rowStyles.empty() || !m_cells->settings.columnStyles.empty();
    const std::uint32_t fresh = looksAround ? m_workbook.styles().intern({}) : 0;
    auto next = lifted.cells.begin();
    for (int column = goal.left; column <= goal.right; ++column) {
        Column& cells = editableColumn(column);
        for (int row = goal.top; row <= goal.bottom; ++row) {
            CellContent content = *next++;
            if (content.isBlank() && fresh == 0 && !cells.find(row))
                continue;
            content.formula = copiedFormula(m_workbook.formulas(), content.formula, {column, row});
            content.style = content.style == 0 ? fresh : content.style;
            write(cells.writable(row), content);
        }
    }
    SheetSettings& settings = editableSettings();
    for (const CellRange& array : lifted.arrays)
        settings.arrays.push_back(shifted(array, goal.left - 1, goal.top - 1));
    for (const CellRange& span : lifted.spans)
        settings.spans.push_back(shifted(span, goal.left - 1, goal.top - 1));
    if (lifted.lists)
        replaceLists(goal, *lifted.lists);
    m_workbook.recalculation().noteFormulas();
    noteChanged(goal);
    return {};
}

Refusal Sheet::copyCells(const CellRange& from, Sheet& target, CellAddress to)
{
    if (cutsArray(*this, from))
        return "不能更改数组公式的一部分";
    return target.put(lift(from), to);
}

Refusal Sheet::moveCells(const CellRange& from, Sheet& target, CellAddress to)
{
    if (auto problem = outside(to, from.columns(), from.rows()))
        return problem;
    const CellRange goal{to.column, to.row, to.column + from.columns() - 1, to.row + from.rows() - 1};
    const auto cutAtGoal = [&](const CellRange& array) { // arrays that move along are out of the way
        const bool moves = &target == this && from.contains(array);
        return !moves && array.intersects(goal) && !goal.contains(array);
    };
    if (cutsArray(*this, from) || std::ranges::any_of(target.m_cells->settings.arrays, cutAtGoal))
        return "不能更改数组公式的一部分";
    const UndoStep step(m_workbook, "移动");
    // First everything that points into the range, its own formulas included, then the cells.
    SheetStructure(m_workbook).followMove(*this, from, target, to);
    std::vector<CellContent> contents = contentsOf(*this, from);
    const auto moves = [&](const CellRange& range) { return from.contains(range); };
    std::vector<CellRange> arrays, spans;
    std::ranges::copy_if(m_cells->settings.arrays, std::back_inserter(arrays), moves);
    std::ranges::copy_if(m_cells->settings.spans, std::back_inserter(spans), moves);
    std::erase_if(editableSettings().arrays, moves);
    std::erase_if(editableSettings().spans, moves);
    const CellLists lists = listsOf(from);
    const auto notes = within(m_cells->settings.notes, from);
    replaceLists(from, {});
    replaceWithin(editableSettings().notes, from, {});
    for (int column = from.left; column <= from.right; ++column)
        editableColumn(column).clearRows(from.top, from.bottom);
    target.removeSpans(goal);
    target.dropArrays(goal);
    std::size_t next = 0;
    for (int column = goal.left; column <= goal.right; ++column) {
        Column& cells = target.editableColumn(column);
        for (int row = goal.top; row <= goal.bottom; ++row) {
            CellContent& content = contents[next++];
            const CellAddress source{column - goal.left + from.left, row - goal.top + from.top};
            if (content.formula != 0)
                content.formula = movedFormula(m_workbook.formulas(), content.formula, *this, source, target,
                                               {column, row});
            write(cells.writable(row), content);
        }
    }
    const auto moved = [&](const CellRange& range) {
        return shifted(range, goal.left - from.left, goal.top - from.top);
    };
    std::ranges::transform(arrays, std::back_inserter(target.editableSettings().arrays), moved);
    std::ranges::transform(spans, std::back_inserter(target.editableSettings().spans), moved);
    target.replaceLists(goal, lists);
    replaceWithin(target.editableSettings().notes, goal, notes);
    m_workbook.recalculation().noteMoved();
    noteChanged(from);
    target.noteChanged(goal);
    m_workbook.journal().noteMove(CellMove::ofBlock(id(), from, {target.id(), to}));
    return {};
}

Refusal Sheet::fillDown(const CellRange& range)
{
    if (cutsArray(*this, range) || holdsArray(*this, {range.left, range.top, range.right, range.top}))
        return "不能更改数组公式的一部分";
    const UndoStep step(m_workbook, "向下填充");
    dropArrays(range);
    const CellLists lists = listsOf({range.left, range.top, range.right, range.top});
    if (!lists.dropDowns.empty() || !lists.captions.empty())
        for (int row = range.top + 1; row <= range.bottom; ++row)
            replaceLists({range.left, row, range.right, row}, lists);
    for (int column = range.left; column <= range.right; ++column) {
        CellContent content = contentOf(*this, {column, range.top});
        const std::uint32_t formula = content.formula;
        Column& cells = editableColumn(column);
        for (int row = range.top + 1; row <= range.bottom; ++row) {
            content.formula = copiedFormula(m_workbook.formulas(), formula, {column, row});
            write(cells.writable(row), content);
        }
    }
    m_workbook.recalculation().noteFormulas();
    if (range.rows() > 1)
        noteChanged({range.left, range.top + 1, range.right, range.bottom});
    return {};
}

Refusal Sheet::fillRight(const CellRange& range)
{
    if (cutsArray(*this, range) || holdsArray(*this, {range.left, range.top, range.left, range.bottom}))
        return "不能更改数组公式的一部分";
    const UndoStep step(m_workbook, "向右填充");
    dropArrays(range);
    const CellLists lists = listsOf({range.left, range.top, range.left, range.bottom});
    if (!lists.dropDowns.empty() || !lists.captions.empty())
        for (int column = range.left + 1; column <= range.right; ++column)
            replaceLists({column, range.top, column, range.bottom}, lists);
    for (int row = range.top; row <= range.bottom; ++row) {
        CellContent content = contentOf(*this, {range.left, row});
        const std::uint32_t formula = content.formula;
        for (int column = range.left + 1; column <= range.right; ++column) {
            content.formula = copiedFormula(m_workbook.formulas(), formula, {column, row});
            write(editableColumn(column).writable(row), content);
        }
    }
    m_workbook.recalculation().noteFormulas();
    if (range.columns() > 1)
        noteChanged({range.left + 1, range.top, range.right, range.bottom});
    return {};
}

} // namespace spreadsheet
