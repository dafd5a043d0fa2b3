#include "spreadsheet/view/GridEntry.h"

#include "spreadsheet/print/CellBehaviour.h"
#include "spreadsheet/view/CellEditor.h"
#include "spreadsheet/view/entry_keys.h"
#include "spreadsheet/view/InCellEditing.h"
#include "spreadsheet/view/SheetView.h"
#include "spreadsheet/view/SpreadsheetControl.h"

#include <QApplication>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QScopedValueRollback>

#include <tuple>
#include <utility>

namespace spreadsheet {

// An entry can end by a key, a click elsewhere, a command, another sheet or the end of the window, and each
// may find the text refused. All of them come here: the editor says what became of its text, and only its
// owner closes it, so no editor goes away while one of its own events is still being handled.

GridEntry::GridEntry(SpreadsheetControl& control, SheetView& view)
    : m_control(control)
    , m_view(view)
{
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget*, QWidget* now) { focusMoved(now); });
}

GridEntry::~GridEntry()
{
    m_inCell = nullptr; // the focus that its editor loses enters nothing
    const std::unique_ptr<CellEditing> ended = std::move(m_editing);
}

// --- opening and closing

bool GridEntry::begin(EditStart start, const QString& typed)
{
    if (isOpen())
        return true;
    InCellEditing* const opened = openInCell(start, typed);
    if (opened)
        opened->editor().setFocus();
    return opened != nullptr;
}

/// The new editor, without the focus; null if the cell may not be edited.
InCellEditing* GridEntry::openInCell(EditStart start, const QString& typed)
{
    const Sheet& shown = m_view.sheet();
    const CellRange extent = shown.extent(m_control.cursor().activeCell());
    const CellAddress cell{extent.left, extent.top};
    if (!behaviourOf(shown.style(cell).type).mayType())
        return nullptr;
    if (m_control.refuse(m_control.editRefusal(extent)))
        return nullptr;
    m_control.cursor().bringIntoSight(cell);
    auto editing = std::make_unique<InCellEditing>(m_control, cell, start, typed);
    m_inCell = editing.get();
    CellEditor& editor = editing->editor();
    connect(&editor.assistant(), &FormulaAssistant::colouredCellsChanged, this, &GridEntry::showFrames);
    connect(&editor, &CellEditor::commitRequested, this, &GridEntry::endByKey);
    connect(&editor, &CellEditor::cancelled, this, &GridEntry::cancel);
    connect(&editor, &CellEditor::pointingKey, this, &GridEntry::pointByKey);
    connect(&editor, &CellEditor::pasteRefused, &m_control, &SpreadsheetControl::refused);
    showFrames();
    open(std::move(editing));
    return m_inCell;
}

void GridEntry::open(std::unique_ptr<CellEditing> editing)
{
    m_editing = std::move(editing);
    m_editing->place();
    Q_EMIT m_control.editModeChanged(true, false);
}

bool GridEntry::commit()
{
    if (!isOpen())
        return true;
    const EntryOutcome outcome = m_editing->commit();
    close(outcome);
    return outcome != EntryOutcome::refused;
}

bool GridEntry::commitHere()
{
    const int chosen = m_control.cells().activeSheet();
    return commit() && m_control.cells().activeSheet() == chosen;
}

void GridEntry::cancel()
{
    if (!isOpen())
        return;
    m_editing->discard();
    close(EntryOutcome::unchanged);
}

/// Windows hear that the editor is closed before they hear what the cell holds now.
void GridEntry::close(EntryOutcome outcome)
{
    if (outcome == EntryOutcome::refused || !isOpen())
        return;
    const CellAddress cell = m_editing->cell();
    {
        const std::unique_ptr<CellEditing> ended = std::move(m_editing);
        m_inCell = nullptr;
        setReferenceFrames({});
        m_control.setFocus();
        Q_EMIT m_control.editModeChanged(false, outcome != EntryOutcome::unchanged);
        CellOperations& cells = m_control.cells();
        const int own = cells.workbook().sheetIndexOfId(std::exchange(m_ownSheetId, 0));
        if (own != 0 && own != cells.activeSheet())
            cells.setActiveSheet(own); // back from pointing at another one
    }
    if (outcome == EntryOutcome::entered)
        m_control.afterEdit(cell);
}

/// Another widget of the same window takes the text as entered; other windows and popups do not.
void GridEntry::focusMoved(QWidget* now)
{
    if (!m_inCell)
        return;
    const bool within =
        !now || now == &m_control || m_control.isAncestorOf(now) || now->window() != m_control.window();
    if (!within && commit())
        now->setFocus(); // which the control has taken back
}

void GridEntry::sheetSwitched()
{
    if (m_keeps)
        return;
    m_ownSheetId = 0; // the sheet that is shown now stays
    cancel();
}

// --- keys

bool GridEntry::pressKey(const QKeyEvent& event)
{
    const bool plain = event.modifiers() == Qt::NoModifier;
    if (event.key() == Qt::Key_F2 && plain)
        return begin(EditStart::keep) || true;
    if (event.key() == Qt::Key_Backspace && plain)
        return begin(EditStart::replace) || true;
    if (const QString moment = momentOf(event); !moment.isEmpty())
        return begin(EditStart::replace, moment) || true;
    const QString text = event.text();
    const Qt::KeyboardModifiers held = chord(event.modifiers());
    // Some layouts type with Ctrl and Alt together.
    const bool types = held == Qt::NoModifier || held == (Qt::ControlModifier | Qt::AltModifier);
    return types && !text.isEmpty() && text[0].isPrint() && (begin(EditStart::replace, text) || true);
}

/// A key that ends the entry goes on to the control, where it moves the cursor.
void GridEntry::endByKey(QKeyEvent* event)
{
    const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    const bool asArray = event->modifiers() == (Qt::ControlModifier | Qt::ShiftModifier) &&
                         m_inCell->editor().assistant().isFormula();
    if (!enter || (!asArray && event->modifiers() != Qt::ControlModifier)) {
        if (commit())
            event->ignore();
    } else if (!m_control.offersCommands()) {
        std::ignore = commit();
    } else if (asArray && m_control.cursor().selection().size() > 1) {
        m_control.refuse("不能对多个选定区域输入数组公式");
    } else if (!m_control.refuseEdit(m_control.cursor().selection())) {
        asArray ? close(m_inCell->commitAsArray()) : fillSelection();
    }
}

void GridEntry::compose(QInputMethodEvent* event)
{
    const bool brings = !event->preeditString().isEmpty() || !event->commitString().isEmpty();
    if (isOpen() || (brings && openInCell(EditStart::replace, {})))
        m_editing->compose(event);
}

// --- pointing

void GridEntry::pointAt(const CellRange& range, bool goesOn)
{
    if (isOpen())
        m_editing->pointAt(m_control.cells().activeSheet(), range, goesOn);
}

void GridEntry::pointAtSheet(int index)
{
    const QScopedValueRollback keeps(m_keeps, true);
    if (m_ownSheetId == 0)
        m_ownSheetId = m_view.sheet().id();
    m_control.cells().setActiveSheet(index);
    m_editing->place();
}

void GridEntry::pointByKey(int key, Qt::KeyboardModifiers modifiers)
{
    const int shown = m_control.cells().activeSheet();
    GridCursor& cursor = m_control.cursor();
    const bool isPage = key == Qt::Key_PageUp || key == Qt::Key_PageDown;
    if (isPage && modifiers == Qt::ControlModifier)
        return cursor.showSheet(shown + (key == Qt::Key_PageDown ? 1 : -1));
    FormulaAssistant& assistant = m_inCell->editor().assistant();
    // On another sheet than the cell's own, from its cursor.
    const bool isOwn = m_inCell->sheet() == &m_control.cells().shownSheet();
    const CellAddress from = isOwn ? m_inCell->cell() : cursor.activeCell();
    PointedCells cells = assistant.pointed().value_or(PointedCells{shown, from, from});
    if (cells.sheet != shown)
        cells = {shown, from, from};
    const auto target = cursor.keyTarget(key, modifiers, cells.head);
    if (!target)
        return;
    cells.head = *target;
    if (!modifiers.testFlag(Qt::ShiftModifier))
        cells.anchor = *target;
    assistant.point(cells);
    cursor.bringIntoSight(*target);
}

void GridEntry::showFrames()
{
    if (!m_inCell)
        return;
    std::vector<ReferenceFrame> frames;
    for (const ColouredCells& cells : m_inCell->editor().assistant().colouredCells())
        frames.push_back({m_control.cells().workbook().sheet(cells.sheet).id(), cells.range, cells.colour});
    setReferenceFrames(std::move(frames));
}

void GridEntry::setReferenceFrames(std::vector<ReferenceFrame> frames)
{
    m_view.setReferences(std::move(frames));
}

// --- what the control tells of

void GridEntry::place()
{
    if (isOpen())
        m_editing->place();
}

void GridEntry::takeFocus()
{
    if (isOpen())
        m_editing->takeFocus();
}

QRect GridEntry::cursorRect() const
{
    return isOpen() ? m_editing->cursorRect() : m_control.cellRect(m_control.cursor().activeCell());
}

} // namespace spreadsheet
