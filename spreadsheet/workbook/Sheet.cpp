#include "spreadsheet/workbook/Sheet.h"

#include "spreadsheet/calculation/Recalculation.h"
#include "spreadsheet/display/display_text.h"
#include "spreadsheet/formula/FormulaPool.h"
#include "spreadsheet/values/number_text.h"
#include "spreadsheet/workbook/UndoJournal.h"
#include "spreadsheet/workbook/Workbook.h"

#include <algorithm>

namespace spreadsheet {

// Every change goes the same way: the step is open, the column or the settings are kept before they change,
// then the change, then the recalculation is told which cells are others. A writer that skips the first
// cannot be undone; one that skips the last leaves old figures on the sheet.

Sheet::Sheet(Workbook& workbook, std::shared_ptr<BookSheet> cells)
    : m_workbook(workbook)
    , m_cells(std::move(cells))
{
}

// Reading.

std::string Sheet::displayText(CellAddress cell) const
{
    const Text shown = shownText(cell);
    if (!shown.empty())
        return std::string(shown.view());
    if (m_workbook.textInstead())
        if (auto text = m_workbook.textInstead()(*this, cell))
            return *std::move(text);
    return textOfValue(cell);
}

std::string Sheet::textOfValue(CellAddress cell) const
{
    return spreadsheet::displayText(value(cell), style(cell), m_workbook.countsFrom1904());
}

std::string Sheet::textByType(CellAddress cell) const
{
    return spreadsheet::textByType(value(cell), style(cell), m_workbook.countsFrom1904());
}

std::string Sheet::formula(CellAddress cell) const
{
    const std::uint32_t number = m_cells->formula(cell);
    return number == 0 ? std::string() : m_workbook.formulas().text(number, formulaBase(cell, number));
}

CellAddress Sheet::formulaBase(CellAddress cell, std::uint32_t formula) const
{
    return m_cells->formulaBase(cell, m_workbook.formulas()[formula].isArrayFormula);
}

const CellStyle& Sheet::style(CellAddress cell) const
{
    return m_workbook.styles()[styleNumber(cell)];
}

CellRange Sheet::extent(CellAddress cell) const
{
    return spanAt(cell).value_or(CellRange{cell.column, cell.row, cell.column, cell.row});
}

// Writing.

Column& Sheet::editableColumn(int column)
{
    m_workbook.journal().keepColumn(*this, column);
    m_workbook.noteEdit();
    return m_cells->writableColumn(column);
}

SheetSettings& Sheet::editableSettings()
{
    m_workbook.journal().keepSettings(*this);
    noteSettings();
    return m_cells->settings;
}

void Sheet::noteSettings()
{
    m_workbook.noteEdit();
    m_settingsRevision = m_workbook.revision();
}

void Sheet::noteChanged(const CellRange& range)
{
    for (int column = range.left; column <= range.right; ++column)
        m_workbook.recalculation().noteChanged(id(), column, range.top, range.bottom);
}

void Sheet::changeSettings(const std::function<void(SheetSettings&)>& change)
{
    const UndoStep step(m_workbook, "表格设置");
    change(editableSettings());
}

void Sheet::dissolveArray(CellAddress cell)
{
    const auto range = arrayRange(cell);
    if (!range)
        return;
    std::erase(editableSettings().arrays, *range);
    putFormula(*range, 0);
}

/// Gives every cell of a range the formula, 0 for none; values stay until they are computed.
void Sheet::putFormula(const CellRange& range, std::uint32_t formula)
{
    for (int column = range.left; column <= range.right; ++column) {
        Column& cells = editableColumn(column);
        for (int row = range.top; row <= range.bottom; ++row) {
            const Column::Place place = cells.writable(row);
            place.block.setFormula(place.index, formula);
            place.block.setShown(place.index, {});
        }
    }
    m_workbook.recalculation().noteFormulas();
    noteChanged(range);
}

void Sheet::setValue(CellAddress cell, Value value)
{
    const UndoStep step(m_workbook, "输入");
    const Column* cells = column(cell.column);
    const Column::Slot* slot = cells ? cells->find(cell.row) : nullptr;
    if (!slot && value.isEmpty())
        return;
    if (slot && slot->block->formula(cell.row - slot->firstRow) != 0) {
        dissolveArray(cell);
        m_workbook.recalculation().noteFormulas();
    }
    const Column::Place place = editableColumn(cell.column).writable(cell.row);
    place.block.setFormula(place.index, 0);
    place.block.setShown(place.index, {});
    place.block.setValue(place.index, std::move(value));
    m_workbook.recalculation().noteChanged(id(), cell.column, cell.row, cell.row);
}

void Sheet::setText(CellAddress cell, std::string_view text)
{
    setValue(cell, Value(m_workbook.texts().intern(text)));
}

Refusal Sheet::setFormula(CellAddress cell, std::string_view text)
{
    const std::string_view trimmed = trimmedBlanks(text);
    const bool equalsSign = trimmed.starts_with('=');
    const std::string_view body = equalsSign ? trimmed.substr(1) : trimmed;
    if (trimmed.empty()) {
        if (hasFormula(cell))
            setValue(cell, {});
        return {};
    }
    const auto sheetId = [this](std::string_view name) {
        const int index = m_workbook.sheetIndex(name);
        return index == 0 ? 0 : m_workbook.sheet(index).id();
    };
    auto parsed = m_workbook.formulas().intern(body, cell, sheetId);
    if (const auto* problem = std::get_if<Refusal>(&parsed))
        return problem->movedBy(static_cast<std::size_t>(body.data() - text.data()));
    const auto number = std::get<std::uint32_t>(parsed);
    const Column* cells = column(cell.column);
    if (cells && cells->formula(cell.row) == number)
        return {}; // the same formula written back is no edit
    const UndoStep step(m_workbook, "输入公式");
    dissolveArray(cell);
    putFormula({cell.column, cell.row, cell.column, cell.row}, number);
    return {};
}

Refusal Sheet::setArrayFormula(const CellRange& range, std::string_view text)
{
    const std::string_view trimmed = trimmedBlanks(text);
    const std::string_view body = trimmed.starts_with('=') ? trimmed.substr(1) : trimmed;
    const auto sheetId = [this](std::string_view name) {
        const int index = m_workbook.sheetIndex(name);
        return index == 0 ? 0 : m_workbook.sheet(index).id();
    };
    for (const CellRange& other : m_cells->settings.arrays) {
        if (other.intersects(range) && !range.contains(other))
            return Refusal("不能更改数组公式的一部分");
    }
    auto parsed = m_workbook.formulas().intern(body, {range.left, range.top}, sheetId, true);
    if (const auto* problem = std::get_if<Refusal>(&parsed))
        return problem->movedBy(static_cast<std::size_t>(body.data() - text.data()));
    const UndoStep step(m_workbook, "输入数组公式");
    auto& arrays = editableSettings().arrays;
    std::erase_if(arrays, [&](const CellRange& other) { return range.contains(other); });
    arrays.push_back(range);
    putFormula(range, std::get<std::uint32_t>(parsed));
    return {};
}

void Sheet::setTag(CellAddress cell, std::string_view tag)
{
    const UndoStep step(m_workbook, "标记");
    if (this->tag(cell).view() == tag)
        return;
    const Column::Place place = editableColumn(cell.column).writable(cell.row);
    place.block.setTag(place.index, Text(tag));
}

void Sheet::setShownText(CellAddress cell, std::string_view text)
{
    const UndoStep step(m_workbook, "显示");
    if (shownText(cell).view() == text)
        return;
    const Column::Place place = editableColumn(cell.column).writable(cell.row);
    place.block.setShown(place.index, Text(text));
}

void Sheet::setStyle(CellAddress cell, const CellStyle& style)
{
    const std::uint32_t number = m_workbook.styles().intern(style);
    if (styleNumber(cell) == number)
        return;
    const UndoStep step(m_workbook, "格式");
    const Column::Place place = editableColumn(cell.column).writable(cell.row);
    place.block.setStyle(place.index, number);
}

void Sheet::clearContents(const CellRange& range)
{
    const UndoStep step(m_workbook, "清除");
    for (int column = range.left; column <= std::min(range.right, storedColumns()); ++column) {
        const auto& slots = this->column(column)->slots();
        for (std::size_t slot = this->column(column)->lowerSlot(range.top);
             slot < slots.size() && slots[slot].firstRow <= range.bottom; ++slot) {
            const int last = std::min(range.bottom, slots[slot].lastRow());
            for (int row = std::max(range.top, slots[slot].firstRow); row <= last; ++row) {
                const int index = row - slots[slot].firstRow;
                const CellBlock& block = *slots[slot].block;
                if (block.kinds()[index] != ValueKind::empty || block.formula(index) != 0 ||
                    !block.shown(index).empty())
                    setValue({column, row}, {});
            }
        }
    }
}

void Sheet::addSpan(const CellRange& range)
{
    const UndoStep step(m_workbook, "单元格合并");
    removeSpans(range);
    editableSettings().spans.push_back(range);
}

void Sheet::removeSpans(const CellRange& range)
{
    const UndoStep step(m_workbook, "单元格合并取消");
    const auto meets = [&](const CellRange& span) { return span.intersects(range); };
    if (std::ranges::any_of(m_cells->settings.spans, meets))
        std::erase_if(editableSettings().spans, meets);
}

} // namespace spreadsheet
