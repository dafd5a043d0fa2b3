#include "spreadsheet/workbook/UndoJournal.h"

#include "spreadsheet/calculation/Recalculation.h"
#include "spreadsheet/cells/Book.h"
#include "spreadsheet/workbook/Workbook.h"
#include "spreadsheet/workbook/WorkbookContent.h"

#include <algorithm>
#include <unordered_map>

namespace spreadsheet {

// A step does not know how to undo anything: it holds what was there, and exchanging it with the present
// makes it its own redo. Sheets come back first, since what follows may belong to a sheet that only the step
// still holds, and cells last.

namespace {

/// Bytes of the blocks that `former` alone still holds.
std::size_t unsharedBytes(const Column& former)
{
    std::size_t sum = former.slots().size() * sizeof(Column::Slot);
    for (const Column::Slot& slot : former.slots()) {
        if (slot.block->references == 1)
            sum += slot.block->bytes() + slot.block->textBytes();
    }
    return sum;
}

} // namespace

bool UndoJournal::Step::empty() const
{
    return columns.empty() && allColumns.empty() && settings.empty() && !sheets && !names && !formulasShown &&
           !content;
}

void UndoJournal::setEnabled(bool enabled)
{
    m_enabled = enabled;
    m_undo.clear();
    m_redo.clear();
    m_current = {};
    m_bytes = 0;
}

void UndoJournal::open(std::string label)
{
    if (m_depth++ == 0) {
        m_current.label = std::move(label);
        m_current.lines.reset(); // of a step that changed nothing
        m_current.moves.clear();
        m_current.designRevision.reset();
    }
}

void UndoJournal::close()
{
    if (m_depth == 1 && m_workbook.m_stepEnd && !(m_enabled && m_current.empty()))
        m_workbook.m_stepEnd();
    if (--m_depth > 0 || !m_enabled || m_current.empty())
        return;
    weigh(m_current);
    m_undo.push_back(std::move(m_current));
    m_current = {};
    for (const Step& step : m_redo)
        m_bytes -= step.bytes;
    m_redo.clear();
    trim();
}

void UndoJournal::takeBack()
{
    if (!m_enabled || m_depth == 0 || m_current.empty())
        return;
    Step step = std::move(m_current);
    m_current = {};
    m_current.label = step.label;
    exchange(step);
}

void UndoJournal::trim()
{
    while (m_undo.size() > 1 && (m_bytes > maxBytes || m_undo.size() > maxSteps)) {
        m_bytes -= m_undo.front().bytes;
        m_undo.pop_front();
    }
}

/// Counts what a step holds now, which changes when its states are exchanged.
void UndoJournal::weigh(Step& step)
{
    m_bytes -= step.bytes;
    step.bytes = bytesOf(step);
    m_bytes += step.bytes;
}

std::size_t UndoJournal::bytesOf(const Step& step)
{
    std::size_t sum = sizeof(Step);
    if (step.content)
        sum += spreadsheet::bytesOf(*step.content->book, *step.content->recalculation);
    for (const auto& [place, column] : step.columns)
        sum += unsharedBytes(column);
    for (const auto& [sheet, columns] : step.allColumns) {
        for (const Column& column : columns)
            sum += sizeof(Column) + unsharedBytes(column);
    }
    for (const auto& sheet : step.sheets.value_or(std::vector<std::shared_ptr<Sheet>>())) {
        if (m_workbook.sheetIndexOfId(sheet->id()) != 0)
            continue;
        for (const Column& column : sheet->m_cells->columns) // the step alone still holds this sheet
            sum += sizeof(Column) + unsharedBytes(column);
    }
    for (const auto& [sheet, settings] : step.settings)
        sum += sizeof(SheetSettings) + 64 * (settings.rows.sizes.size() + settings.columns.sizes.size()) +
               sizeof(CellRange) * settings.spans.size();
    return sum;
}

void UndoJournal::keepColumn(const Sheet& sheet, int column)
{
    if (!recording() || m_current.allColumns.contains(sheet.id()))
        return;
    const auto [entry, fresh] = m_current.columns.try_emplace({sheet.id(), column});
    if (fresh && sheet.column(column))
        entry->second = *sheet.column(column);
}

void UndoJournal::keepAllColumns(const Sheet& sheet)
{
    if (!recording() || m_current.allColumns.contains(sheet.id()))
        return;
    std::vector<Column> columns = sheet.m_cells->columns;
    // Columns kept earlier in the step are older than what stands now.
    for (auto entry = m_current.columns.begin(); entry != m_current.columns.end();) {
        if (entry->first.first != sheet.id()) {
            ++entry;
            continue;
        }
        const auto position = static_cast<std::size_t>(entry->first.second) - 1;
        if (columns.size() <= position)
            columns.resize(position + 1);
        columns[position] = std::move(entry->second);
        entry = m_current.columns.erase(entry);
    }
    m_current.allColumns.emplace(sheet.id(), std::move(columns));
}

void UndoJournal::keepSettings(const Sheet& sheet)
{
    if (recording())
        m_current.settings.try_emplace(sheet.id(), sheet.settings());
}

void UndoJournal::keepSheets()
{
    if (recording() && !m_current.sheets)
        m_current.sheets = m_workbook.m_sheets;
}

void UndoJournal::keepNames()
{
    if (!recording() || m_current.names)
        return;
    m_current.names.emplace();
    for (int name = 0; name < m_workbook.names().size(); ++name)
        m_current.names->push_back(m_workbook.names()[name].formula);
}

void UndoJournal::keepFormulasShown()
{
    if (recording() && !m_current.formulasShown)
        m_current.formulasShown = m_workbook.formulasShown();
}

void UndoJournal::keepDesignRevision()
{
    if (recording() && !m_current.designRevision)
        m_current.designRevision = m_workbook.m_designRevision;
}

void UndoJournal::noteMove(const CellMove& move)
{
    if (recording())
        m_current.moves.push_back(move);
    tellMove(move);
}

void UndoJournal::exchangeContent(WorkbookContent& other)
{
    Workbook& workbook = m_workbook;
    other.book->formulas.customs().takeHandlers(workbook.formulas().customs());
    other.recalculation->takeHooks(*workbook.m_recalculation); // the last thing that needs memory
    std::swap(workbook.m_book, other.book);
    std::swap(workbook.m_recalculation, other.recalculation);
    std::swap(workbook.m_sheets, other.sheets);
    std::swap(m_contentNumber, other.number);
    for (const auto& sheet : workbook.m_sheets)
        sheet->noteSettings();
}

void UndoJournal::replaceContent(std::shared_ptr<WorkbookContent> content)
{
    const bool keeps = recording();
    content->number = ++m_contents;
    exchangeContent(*content);
    const CellMove move = CellMove::ofReplacedContent(keeps ? content->number : 0, m_contentNumber);
    if (keeps) {
        m_current.moves.push_back(move);
        m_current.content = std::move(content);
    } else if (!m_current.content) {
        setEnabled(m_enabled);
    }
    tellMove(move);
}

void UndoJournal::tellMove(const CellMove& move) const
{
    if (m_moved)
        m_moved(move);
}

void UndoJournal::noteLines(const Sheet& sheet, const CellRange& lines)
{
    if (recording())
        m_current.lines = ChangedCells{sheet.id(), lines};
}

const Column* UndoJournal::formerColumn(int sheetId, int column) const
{
    const auto found = m_current.columns.find({sheetId, column});
    return found == m_current.columns.end() ? nullptr : &found->second;
}

std::optional<ChangedCells> UndoJournal::undo()
{
    if (m_undo.empty() || m_depth > 0)
        return std::nullopt;
    Step step = std::move(m_undo.back());
    m_undo.pop_back();
    exchange(step);
    weigh(step);
    const auto changed = changedBy(step);
    m_redo.push_back(std::move(step));
    return changed;
}

std::optional<ChangedCells> UndoJournal::redo()
{
    if (m_redo.empty() || m_depth > 0)
        return std::nullopt;
    Step step = std::move(m_redo.back());
    m_redo.pop_back();
    exchange(step);
    weigh(step);
    const auto changed = changedBy(step);
    m_undo.push_back(std::move(step));
    return changed;
}

std::optional<ChangedCells> UndoJournal::changedBy(const Step& exchanged) const
{
    if (exchanged.lines || exchanged.formulasShown || exchanged.content)
        return exchanged.lines;
    std::map<int, CellRange> ranges; ///< by sheet id
    const auto compare = [&](int sheetId, int column, const Column& former) {
        const int index = m_workbook.sheetIndexOfId(sheetId);
        const Column* present = index == 0 ? nullptr : m_workbook.sheet(index).column(column);
        const auto rows = index == 0 ? std::nullopt : differentRows(former, present ? *present : Column());
        if (!rows)
            return;
        const CellRange found{column, rows->first, column, rows->last};
        const auto [entry, fresh] = ranges.try_emplace(sheetId, found);
        if (!fresh)
            entry->second = united(entry->second, found);
    };
    for (const auto& [place, former] : exchanged.columns)
        compare(place.first, place.second, former);
    const auto active = ranges.find(m_workbook.sheet(m_workbook.activeSheet()).id());
    const auto told = active == ranges.end() ? ranges.begin() : active;
    return told == ranges.end() ? std::nullopt : std::optional(ChangedCells{told->first, told->second});
}

Sheet* UndoJournal::sheetOfId(int id, const Step& step)
{
    if (const int index = m_workbook.sheetIndexOfId(id))
        return &m_workbook.sheet(index);
    if (!step.sheets)
        return nullptr;
    const auto held =
        std::ranges::find_if(*step.sheets, [id](const auto& sheet) { return sheet->id() == id; });
    return held == step.sheets->end() ? nullptr : held->get();
}

void UndoJournal::exchange(Step& step)
{
    const DisplayOnly formerDesign(m_workbook); // whose number comes back with it
    if (step.designRevision)
        std::swap(*step.designRevision, m_workbook.m_designRevision);
    if (step.content && !step.contentLast)
        exchangeContent(*step.content);
    exchangeCells(step);
    if (step.content && std::exchange(step.contentLast, !step.contentLast))
        exchangeContent(*step.content);
    takeMovesBack(step.moves);
    m_workbook.recalculation().noteMoved();
    m_workbook.noteEdit();
}

void UndoJournal::exchangeCells(Step& step)
{
    if (step.sheets) {
        *step.sheets = m_workbook.exchangeSheets(std::move(*step.sheets));
        m_workbook.setActiveSheet(std::min(m_workbook.activeSheet(), m_workbook.sheetCount()));
    }
    if (step.names)
        exchangeNames(*step.names);
    if (step.formulasShown)
        std::swap(*step.formulasShown, m_workbook.m_book->formulasShown);
    for (auto& [id, settings] : step.settings) {
        if (Sheet* sheet = sheetOfId(id, step)) {
            std::swap(settings, sheet->m_cells->settings);
            sheet->noteSettings();
            if (settings.name != sheet->name() && m_workbook.sheetIndexOfId(id) != 0)
                m_workbook.respell(id);
        }
    }
    for (auto& [id, columns] : step.allColumns) {
        Sheet* sheet = sheetOfId(id, step);
        if (!sheet)
            continue;
        std::swap(columns, sheet->m_cells->columns);
        const std::size_t count = std::max(columns.size(), sheet->m_cells->columns.size());
        const Column none;
        for (std::size_t i = 0; i < count; ++i)
            noteDifference(id, static_cast<int>(i) + 1, i < columns.size() ? columns[i] : none,
                           i < sheet->m_cells->columns.size() ? sheet->m_cells->columns[i] : none);
    }
    for (auto& [place, column] : step.columns) {
        if (Sheet* sheet = sheetOfId(place.first, step))
            exchangeColumn(*sheet, place.second, column);
    }
}

/// Tells them undone, the last one first, and keeps what exchanging the step once more is to tell.
void UndoJournal::takeMovesBack(std::vector<CellMove>& moves)
{
    std::ranges::reverse(moves);
    for (CellMove& move : moves) {
        move = move.undone();
        tellMove(move);
    }
}

void UndoJournal::exchangeColumn(Sheet& sheet, int column, Column& former)
{
    Column& present = sheet.loadColumn(column);
    std::swap(former, present);
    noteDifference(sheet.id(), column, former, present);
}

/// Blocks that both states share hold the same cells, even where they stand in other rows: the
/// formulas that read them were brought back too.
void UndoJournal::noteDifference(int sheetId, int column, const Column& before, const Column& after)
{
    std::unordered_map<const CellBlock*, int> shared;
    for (const Column::Slot& slot : before.slots())
        shared.emplace(slot.block.get(), 1);
    Recalculation& recalculation = m_workbook.recalculation();
    for (const Column::Slot& slot : after.slots()) {
        if (const auto found = shared.find(slot.block.get()); found != shared.end())
            found->second = 2;
        else
            recalculation.noteChanged(sheetId, column, slot.firstRow, slot.lastRow());
    }
    for (const Column::Slot& slot : before.slots()) {
        if (shared[slot.block.get()] == 1)
            recalculation.noteChanged(sheetId, column, slot.firstRow, slot.lastRow());
    }
}

void UndoJournal::exchangeNames(std::vector<std::uint32_t>& former)
{
    NameTable& names = m_workbook.formulas().names();
    former.resize(static_cast<std::size_t>(names.size()), 0);
    for (int name = 0; name < names.size(); ++name) {
        const std::uint32_t present = names[name].formula;
        names.define(name, former[static_cast<std::size_t>(name)]);
        former[static_cast<std::size_t>(name)] = present;
    }
    m_workbook.recalculation().noteNames();
}

} // namespace spreadsheet
