#include "spreadsheet/workbook/SheetStructure.h"

#include "spreadsheet/calculation/Recalculation.h"
#include "spreadsheet/formula/FormulaPool.h"
#include "spreadsheet/workbook/UndoJournal.h"
#include "spreadsheet/workbook/Workbook.h"

#include <algorithm>

namespace spreadsheet {

// Inserting rows must not touch a million formulas one by one. References are kept relative to their cell, so
// a formula that moves together with what it reads stays the same; only stretches of rows whose references
// cross the place get another formula, and one formula for each such stretch.

namespace {

/// References through several sheets stand for the same cells of each, so edits of one leave them.
bool slotRefersTo(const ReferenceSlot& slot, const Sheet& holder, int sheetId)
{
    if (slot.shape == ReferenceSlot::Shape::broken || slot.firstSheet != slot.lastSheet)
        return false;
    return slot.firstSheet == 0 ? holder.id() == sheetId : slot.firstSheet == sheetId;
}

bool namesSheet(const ReferenceSlot& slot, int sheetId)
{
    return slot.shape != ReferenceSlot::Shape::broken && slot.firstSheet != 0 &&
           (slot.firstSheet == sheetId || slot.lastSheet == sheetId);
}

bool allAbsolute(const ReferenceSlot& slot)
{
    return slot.top.absolute && slot.left.absolute &&
           (slot.isSingleCell() || (slot.bottom.absolute && slot.right.absolute));
}

/// Shifts the two ends of a range along the axis; what is pushed off the sheet is cut. False if nothing
/// of it is left.
bool shiftEnds(const AxisShift& shift, int& first, int& last)
{
    const bool firstCut = shift.isRemoved(first);
    const bool lastCut = shift.isRemoved(last);
    if (firstCut && lastCut)
        return false;
    first = shift.moved(first);
    last = std::min(lastCut ? shift.at - 1 : shift.moved(last), shift.limit());
    return first <= shift.limit();
}

bool shiftRange(const AxisShift& shift, CellRange& range)
{
    return shift.rows ? shiftEnds(shift, range.top, range.bottom) : shiftEnds(shift, range.left, range.right);
}

template <typename T>
std::map<int, T> shiftedKeys(const std::map<int, T>& map, const AxisShift& shift)
{
    std::map<int, T> result;
    for (const auto& [index, value] : map) {
        if (!shift.isRemoved(index) && shift.moved(index) <= shift.limit())
            result.emplace(shift.moved(index), value);
    }
    return result;
}

template <typename T>
std::map<CellAddress, T> shiftedCells(const std::map<CellAddress, T>& entries, const AxisShift& shift)
{
    std::map<CellAddress, T> result;
    for (const auto& [place, entry] : entries) {
        CellAddress cell = place;
        int& index = shift.rows ? cell.row : cell.column;
        if (shift.isRemoved(index) || shift.moved(index) > shift.limit())
            continue;
        index = shift.moved(index); // row 0, a column's own entry, lies before every shift
        result.emplace(cell, entry);
    }
    return result;
}

AxisPoint pointAt(int target, int base, bool absolute)
{
    return {absolute ? target : target - base, absolute};
}

} // namespace

std::vector<SheetStructure::Stretch>
SheetStructure::stretches(const std::function<bool(const Sheet&, std::uint32_t)>& wanted)
{
    std::vector<Stretch> found;
    for (const auto& sheet : m_workbook.m_sheets) {
        for (int column = 1; column <= sheet->storedColumns(); ++column) {
            for (const Column::Slot& slot : sheet->column(column)->slots()) {
                const std::uint32_t* formulas = slot.block->formulas();
                for (int i = 0; formulas && i < slot.block->count(); ++i) {
                    if (formulas[i] == 0)
                        continue;
                    const int row = slot.firstRow + i;
                    if (!found.empty() && found.back().formula == formulas[i] &&
                        found.back().sheet == sheet.get() && found.back().column == column &&
                        found.back().lastRow == row - 1)
                        found.back().lastRow = row;
                    else if (wanted(*sheet, formulas[i]))
                        found.push_back({sheet.get(), column, row, row, formulas[i]});
                }
            }
        }
    }
    return found;
}

bool SheetStructure::refersTo(const Sheet& holder, std::uint32_t formula, int sheetId) const
{
    return std::ranges::any_of(m_workbook.formulas()[formula].slots, [&](const ReferenceSlot& slot) {
        return slotRefersTo(slot, holder, sheetId);
    });
}

Refusal SheetStructure::shift(Sheet& sheet, const AxisShift& shift)
{
    const int limit = shift.limit();
    if (shift.at < 1 || shift.at > limit || shift.inserted < 0 || shift.removed < 0 ||
        shift.inserted > limit || shift.removed > limit || shift.inserted + shift.removed == 0)
        return "行列号超出范围";
    const int last = shift.rows ? sheet.lastDataRow() : sheet.lastDataColumn();
    if (last >= shift.at && last + shift.inserted - shift.removed > limit)
        return "表的末尾有数据,不能再插入";
    for (const CellRange& array : sheet.settings().arrays) {
        const int first = shift.rows ? array.top : array.left;
        const int end = shift.rows ? array.bottom : array.right;
        const bool cut = shift.removed > 0 ? end >= shift.at && first < shift.at + shift.removed &&
                                                 !(first >= shift.at && end < shift.at + shift.removed)
                                           : first < shift.at && end >= shift.at;
        if (cut)
            return "不能更改数组公式的一部分";
    }
    const UndoStep step(m_workbook, shift.inserted > 0 ? (shift.rows ? "插入行" : "插入列")
                                                       : (shift.rows ? "删除行" : "删除列"));
    const int end = std::min(shift.at + std::max(shift.inserted, shift.removed) - 1, limit);
    m_workbook.journal().noteLines(sheet, shift.rows ? CellRange{1, shift.at, maxColumns, end}
                                                     : CellRange{shift.at, 1, end, maxRows});
    std::vector<Rewrite> rewrites;
    // Formulas of the sheet itself move, so that what they mean elsewhere is another distance away.
    const auto concerned = [&](const Sheet& holder, std::uint32_t formula) {
        return refersTo(holder, formula, sheet.id()) ||
               (&holder == &sheet && !m_workbook.formulas()[formula].slots.empty());
    };
    for (const Stretch& stretch : stretches(concerned))
        collectRewrites(stretch, sheet, shift, rewrites);
    rewriteNames(sheet, shift);
    shiftCells(sheet, shift);
    shiftSettings(sheet, shift);
    for (const Rewrite& rewrite : rewrites)
        apply(rewrite);
    m_workbook.recalculation().noteMoved();
    m_workbook.journal().noteMove(CellMove::ofShift(sheet.id(), shift));
    return {};
}

/// Cuts a stretch where a reference or the cells themselves cross the place of the shift, so that all
/// cells of a piece get the same new formula.
void SheetStructure::collectRewrites(const Stretch& stretch, const Sheet& sheet, const AxisShift& shift,
                                     std::vector<Rewrite>& rewrites)
{
    std::vector<int> cuts{stretch.firstRow, stretch.lastRow + 1};
    const Formula& formula = m_workbook.formulas()[stretch.formula];
    const auto cutAt = [&](int row) {
        if (row > stretch.firstRow && row <= stretch.lastRow)
            cuts.push_back(row);
    };
    if (shift.rows && !formula.isArrayFormula) {
        if (stretch.sheet == &sheet) {
            cutAt(shift.at);
            cutAt(shift.at + shift.removed);
        }
        for (const ReferenceSlot& slot : formula.slots) {
            for (const AxisPoint& point : {slot.top, slot.bottom}) {
                if (point.absolute || !slotRefersTo(slot, *stretch.sheet, sheet.id()))
                    continue;
                cutAt(shift.at - point.value);
                for (int row = 0; row <= shift.removed; ++row) { // each removed row is cut off differently
                    if (shift.removed > 0 && shift.at + row - point.value <= stretch.lastRow)
                        cutAt(shift.at + row - point.value);
                    else
                        break;
                }
                // … and so is each row that is pushed off the sheet.
                for (int row = shift.limit() - shift.inserted + 1 - point.value;
                     shift.inserted > 0 && row <= std::min(shift.limit() - point.value, stretch.lastRow);
                     ++row)
                    cutAt(row);
            }
        }
        std::ranges::sort(cuts);
        cuts.erase(std::ranges::unique(cuts).begin(), cuts.end());
    }
    for (std::size_t i = 0; i + 1 < cuts.size(); ++i) {
        Stretch piece = stretch;
        piece.firstRow = cuts[i];
        piece.lastRow = cuts[i + 1] - 1;
        const bool vanishes =
            piece.sheet == &sheet && shift.isRemoved(shift.rows ? piece.firstRow : piece.column);
        if (vanishes)
            continue;
        Rewrite rewrite = rewritten(piece, sheet, shift);
        if (rewrite.stretch.formula != stretch.formula || rewrite.changesValue)
            rewrites.push_back(rewrite);
    }
}

/// The piece's formula and place after the shift. Distances say nothing about what moves where, so every
/// reference is taken as the cells that it means from the piece's first row, these are shifted, and the
/// distance is taken again from where that row comes to lie. One row speaks for the piece: it was cut
/// wherever rows would not agree.
SheetStructure::Rewrite SheetStructure::rewritten(const Stretch& stretch, const Sheet& sheet,
                                                  const AxisShift& shift)
{
    const Formula& formula = m_workbook.formulas()[stretch.formula];
    CellAddress base = stretch.sheet->formulaBase({stretch.column, stretch.firstRow}, stretch.formula);
    CellAddress newBase = base;
    Rewrite result{stretch};
    if (stretch.sheet == &sheet) {
        newBase = shift.rows ? CellAddress{base.column, shift.moved(base.row)}
                             : CellAddress{shift.moved(base.column), base.row};
        if (shift.rows) {
            result.stretch.firstRow = shift.moved(stretch.firstRow);
            result.stretch.lastRow = result.stretch.firstRow + (stretch.lastRow - stretch.firstRow);
        } else {
            result.stretch.column = shift.moved(stretch.column);
        }
    }
    std::vector<ReferenceSlot> slots = formula.slots;
    for (ReferenceSlot& slot : slots) {
        const auto range = slot.range(base);
        if (!range)
            continue;
        CellRange cells = *range;
        const bool wholeAxis =
            slot.shape == (shift.rows ? ReferenceSlot::Shape::columns : ReferenceSlot::Shape::rows);
        const bool concerned = slotRefersTo(slot, *stretch.sheet, sheet.id());
        // What whole columns hold changes with rows that come or go, though they stay the same columns.
        result.changesValue = result.changesValue || (concerned && wholeAxis);
        if (concerned && !wholeAxis) {
            const CellRange before = cells;
            if (!shiftRange(shift, cells)) {
                slot.shape = ReferenceSlot::Shape::broken;
                result.changesValue = true;
                continue;
            }
            // A range that grew matters too: INDEX and its like count from its edge.
            result.changesValue =
                result.changesValue || cells.rows() != before.rows() || cells.columns() != before.columns();
        }
        // Corners keep their order as written: a range typed from below to above stays so.
        const bool rowsTurned = slot.top.at(base.row) > slot.bottom.at(base.row);
        const bool columnsTurned = slot.left.at(base.column) > slot.right.at(base.column);
        const bool single = slot.isSingleCell();
        slot.top = pointAt(rowsTurned && !single ? cells.bottom : cells.top, newBase.row, slot.top.absolute);
        slot.left =
            pointAt(columnsTurned && !single ? cells.right : cells.left, newBase.column, slot.left.absolute);
        if (!single) {
            slot.bottom = pointAt(rowsTurned ? cells.top : cells.bottom, newBase.row, slot.bottom.absolute);
            slot.right =
                pointAt(columnsTurned ? cells.left : cells.right, newBase.column, slot.right.absolute);
        }
        if (slot.shape == ReferenceSlot::Shape::columns)
            slot.top = slot.bottom = {};
        if (slot.shape == ReferenceSlot::Shape::rows)
            slot.left = slot.right = {};
    }
    result.stretch.formula = m_workbook.formulas().withSlots(stretch.formula, std::move(slots));
    return result;
}

void SheetStructure::apply(const Rewrite& rewrite)
{
    const Stretch& stretch = rewrite.stretch;
    Column& cells = stretch.sheet->editableColumn(stretch.column);
    for (int row = stretch.firstRow; row <= stretch.lastRow; ++row) {
        const Column::Place place = cells.writable(row);
        place.block.setFormula(place.index, stretch.formula);
    }
    if (rewrite.changesValue)
        m_workbook.recalculation().noteChanged(stretch.sheet->id(), stretch.column, stretch.firstRow,
                                               stretch.lastRow);
}

void SheetStructure::shiftCells(Sheet& sheet, const AxisShift& shift)
{
    if (!shift.rows) {
        m_workbook.journal().keepAllColumns(sheet);
        auto& columns = sheet.m_cells->columns;
        if (static_cast<int>(columns.size()) < shift.at)
            return;
        const auto place = columns.begin() + (shift.at - 1);
        if (shift.inserted > 0)
            columns.insert(place, static_cast<std::size_t>(shift.inserted), Column());
        else
            columns.erase(place, columns.size() - static_cast<std::size_t>(shift.at - 1) >
                                         static_cast<std::size_t>(shift.removed)
                                     ? place + shift.removed
                                     : columns.end());
        if (columns.size() > static_cast<std::size_t>(maxColumns))
            columns.resize(static_cast<std::size_t>(maxColumns));
        return;
    }
    for (int column = 1; column <= sheet.storedColumns(); ++column) {
        const Column& cells = *sheet.column(column);
        if (cells.lowerSlot(shift.at) == cells.slots().size())
            continue;
        if (shift.inserted > 0)
            sheet.editableColumn(column).insertRows(shift.at, shift.inserted);
        else
            sheet.editableColumn(column).removeRows(shift.at, shift.removed);
    }
}

void SheetStructure::shiftSettings(Sheet& sheet, const AxisShift& shift)
{
    SheetSettings& settings = sheet.editableSettings();
    AxisSizes& axis = shift.rows ? settings.rows : settings.columns;
    axis.sizes = shiftedKeys(axis.sizes, shift);
    axis.hidden = shiftedKeys(axis.hidden, shift);
    auto& styles = shift.rows ? settings.rowStyles : settings.columnStyles;
    styles = shiftedKeys(styles, shift);
    settings.dropDowns = shiftedCells(settings.dropDowns, shift);
    settings.captions = shiftedCells(settings.captions, shift);
    settings.notes = shiftedCells(settings.notes, shift);
    std::erase_if(settings.arrays, [&](CellRange& range) { return !shiftRange(shift, range); });
    std::erase_if(settings.spans, [&](CellRange& range) {
        const bool wasOneCell = range.isOneCell();
        return !shiftRange(shift, range) || (!wasOneCell && range.isOneCell());
    });
    PrintSettings& print = settings.print;
    int& firstTitle = shift.rows ? print.titleTop : print.titleLeft;
    int& lastTitle = shift.rows ? print.titleBottom : print.titleRight;
    if (firstTitle > 0 && !shiftEnds(shift, firstTitle, lastTitle))
        firstTitle = lastTitle = 0;
    std::erase_if(print.area, [&](CellRange& range) { return !shiftRange(shift, range); });
    auto& breaks = shift.rows ? print.rowBreaks : print.columnBreaks;
    breaks = shiftedKeys(breaks, shift);
    int& frozen = shift.rows ? settings.frozenRows : settings.frozenColumns;
    int first = 1, last = frozen; // what stands in the frozen part goes on standing there
    frozen = frozen > 0 && shiftEnds(shift, first, last) ? last : 0;
    int& count = shift.rows ? settings.rowCount : settings.columnCount;
    const int removed = std::clamp(count - (shift.at - 1), 0, shift.removed);
    count = std::clamp(count + shift.inserted - removed, 1, shift.limit());
}

void SheetStructure::rewriteNames(const Sheet& sheet, const AxisShift& shift)
{
    rewriteEachName([&](std::uint32_t formula) {
        std::vector<ReferenceSlot> slots = m_workbook.formulas()[formula].slots;
        for (ReferenceSlot& slot : slots) {
            const bool wholeAxis =
                slot.shape == (shift.rows ? ReferenceSlot::Shape::columns : ReferenceSlot::Shape::rows);
            if (slot.firstSheet == 0 || !slotRefersTo(slot, sheet, sheet.id()))
                continue;
            if (wholeAxis) {
                m_workbook.recalculation().noteNames();
                continue;
            }
            const bool single = slot.isSingleCell();
            AxisPoint& first = shift.rows ? slot.top : slot.left;
            AxisPoint& last = single ? first : shift.rows ? slot.bottom : slot.right;
            if (!first.absolute || !last.absolute)
                continue; // relative to the cell that mentions the name
            const bool turned = first.value > last.value;
            auto [from, to] = std::minmax({first.value, last.value});
            if (!shiftEnds(shift, from, to)) {
                slot.shape = ReferenceSlot::Shape::broken;
            } else {
                last.value = turned ? from : to;
                first.value = turned ? to : from;
            }
        }
        return m_workbook.formulas().withSlots(formula, std::move(slots));
    });
}

/// A reference to the sheet is lost; one from it to others, or the other way, goes on with its neighbour.
void SheetStructure::detach(ReferenceSlot& slot, int sheetId) const
{
    if (!namesSheet(slot, sheetId))
        return;
    if (slot.firstSheet == slot.lastSheet) {
        slot.shape = ReferenceSlot::Shape::broken;
        slot.firstSheet = slot.lastSheet = 0;
        slot.sheetText.clear();
        return;
    }
    const bool isFirst = slot.firstSheet == sheetId;
    const int gone = m_workbook.sheetIndexOfId(sheetId);
    const int other = m_workbook.sheetIndexOfId(isFirst ? slot.lastSheet : slot.firstSheet);
    const Sheet& neighbour = m_workbook.sheet(other > gone ? gone + 1 : gone - 1);
    (isFirst ? slot.firstSheet : slot.lastSheet) = neighbour.id();
    const bool single = slot.firstSheet == slot.lastSheet;
    const auto nameOf = [this](int id) { return m_workbook.sheet(m_workbook.sheetIndexOfId(id)).name(); };
    slot.sheetText = sheetPrefix(nameOf(slot.firstSheet), single ? std::string() : nameOf(slot.lastSheet),
                                 slot.sheetQuoted);
}

void SheetStructure::breakReferences(int sheetId)
{
    const auto detached = [&](std::uint32_t formula) {
        std::vector<ReferenceSlot> slots = m_workbook.formulas()[formula].slots;
        for (ReferenceSlot& slot : slots)
            detach(slot, sheetId);
        return m_workbook.formulas().withSlots(formula, std::move(slots));
    };
    const auto concerned = [&](const Sheet& holder, std::uint32_t formula) {
        return holder.id() != sheetId &&
               std::ranges::any_of(m_workbook.formulas()[formula].slots,
                                   [&](const ReferenceSlot& slot) { return namesSheet(slot, sheetId); });
    };
    for (Stretch& stretch : stretches(concerned)) {
        stretch.formula = detached(stretch.formula);
        apply({stretch, true});
    }
    rewriteEachName(detached);
    m_workbook.recalculation().noteNames();
}

void SheetStructure::rewriteEachName(const std::function<std::uint32_t(std::uint32_t)>& rewritten)
{
    NameTable& names = m_workbook.formulas().names();
    for (int name = 0; name < names.size(); ++name) {
        const std::uint32_t formula = names[name].formula;
        const std::uint32_t changed = formula == 0 ? 0 : rewritten(formula);
        if (changed == formula)
            continue;
        m_workbook.journal().keepNames();
        names.define(name, changed);
        m_workbook.recalculation().noteNames();
    }
}

void SheetStructure::followMove(const Sheet& source, const CellRange& from, const Sheet& target,
                                CellAddress to)
{
    const auto followed = [&](std::uint32_t formula, const Sheet& holder, CellAddress base, bool inName) {
        std::vector<ReferenceSlot> slots = m_workbook.formulas()[formula].slots;
        for (ReferenceSlot& slot : slots) {
            const auto range = slot.range(base);
            if (!range || !slotRefersTo(slot, holder, source.id()) || !from.contains(*range) ||
                (inName && (slot.firstSheet == 0 || !allAbsolute(slot))))
                continue; // in a name, the rest is relative to the cell that mentions it
            for (AxisPoint* point : {&slot.top, &slot.bottom})
                point->value += to.row - from.top;
            for (AxisPoint* point : {&slot.left, &slot.right})
                point->value += to.column - from.left;
            if (&source != &target) {
                slot.firstSheet = slot.lastSheet = target.id();
                slot.sheetText = sheetPrefix(target.name(), {}, slot.sheetQuoted);
            }
        }
        return m_workbook.formulas().withSlots(formula, std::move(slots));
    };
    const auto concerned = [&](const Sheet& holder, std::uint32_t formula) {
        return refersTo(holder, formula, source.id());
    };
    for (const Stretch& stretch : stretches(concerned)) {
        for (int row = stretch.firstRow; row <= stretch.lastRow; ++row) {
            const CellAddress base = stretch.sheet->formulaBase({stretch.column, row}, stretch.formula);
            Stretch cell = stretch;
            cell.firstRow = cell.lastRow = row;
            cell.formula = followed(stretch.formula, *stretch.sheet, base, false);
            if (cell.formula != stretch.formula)
                apply({cell, true});
        }
    }
    rewriteEachName([&](std::uint32_t formula) { return followed(formula, source, {1, 1}, true); });
}

Refusal Sheet::insertRows(int row, int count)
{
    return SheetStructure(m_workbook).shift(*this, {true, row, count, 0});
}

Refusal Sheet::deleteRows(int row, int count)
{
    return SheetStructure(m_workbook).shift(*this, {true, row, 0, count});
}

Refusal Sheet::insertColumns(int column, int count)
{
    return SheetStructure(m_workbook).shift(*this, {false, column, count, 0});
}

Refusal Sheet::deleteColumns(int column, int count)
{
    return SheetStructure(m_workbook).shift(*this, {false, column, 0, count});
}

} // namespace spreadsheet
