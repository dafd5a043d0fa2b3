#include "spreadsheet/view/InCellEditing.h"

#include "spreadsheet/values/characters.h"
#include "spreadsheet/view/CellEditor.h"
#include "spreadsheet/view/commands/edited_text.h"
#include "spreadsheet/view/SpreadsheetControl.h"
#include "spreadsheet/workbook/typed_text.h"

#include <QApplication>
#include <QKeyEvent>

#include <algorithm>
#include <tuple>

namespace spreadsheet {

namespace {

/// Cells that Ctrl+Enter fills at most.
constexpr long long maxEnteredCells = 1'000'000;

QPalette paperOf(const CellStyle& style)
{
    const auto colour = [](Colour own, Qt::GlobalColor automatic) {
        return own == automaticColour ? QColor(automatic) : QColor(QRgb(own));
    };
    QPalette palette;
    palette.setColor(QPalette::WindowText, palette.color(QPalette::Highlight)); // the frame's
    palette.setColor(QPalette::Base, colour(style.background, Qt::white));
    palette.setColor(QPalette::Text, colour(style.foreground, Qt::black));
    return palette;
}

} // namespace

InCellEditing::InCellEditing(SpreadsheetControl& control, CellAddress cell, EditStart start,
                             const QString& typed)
    : m_control(control)
    , m_sheetId(control.workbook().sheet(control.activeSheet()).id())
    , m_cell(cell)
    , m_editor(new CellEditor(&control, control.functionHints()))
{
    const Workbook& workbook = control.workbook();
    const Sheet& own = *sheet();
    m_editor->setFont(control.screenFont(own.style(cell).font));
    m_editor->setPalette(paperOf(own.style(cell)));
    const QString text = QString::fromStdString(editedText(workbook, own, cell));
    m_editor->open({&workbook, control.activeSheet(), cell}, text,
                   start == EditStart::keep ? CellEditor::Mode::edit : CellEditor::Mode::enter,
                   control.cellRect(cell), control.cellArea());
    connect(&m_editor->assistant(), &FormulaAssistant::colouredCellsChanged, this,
            &InCellEditing::showFrames);
    connect(m_editor, &CellEditor::commitRequested, this, &InCellEditing::commitByKey);
    connect(m_editor, &CellEditor::cancelled, this, &InCellEditing::cancel);
    connect(m_editor, &CellEditor::pointingKey, this, &InCellEditing::pointByKey);
    connect(m_editor, &CellEditor::pasteRefused, &control, &SpreadsheetControl::refused);
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget*, QWidget* now) { focusMoved(now); });
    if (start == EditStart::replace) {
        m_editor->selectAll();
        m_editor->insertPlainText(typed);
    }
    showFrames();
}

InCellEditing::~InCellEditing()
{
    if (m_editor) {
        m_editor->close();
        m_editor->setObjectName({}); // who looks for the editor finds the next one
        m_editor->deleteLater();     // it may be the one that asked for the end
    }
}

Sheet* InCellEditing::sheet() const
{
    const int index = m_control.workbook().sheetIndexOfId(m_sheetId);
    return index == 0 ? nullptr : &m_control.workbook().sheet(index);
}

QString InCellEditing::text() const
{
    return m_editor->toPlainText();
}

bool InCellEditing::commit()
{
    return commitText(false);
}

bool InCellEditing::commitText(bool asArray)
{
    Sheet* own = sheet();
    if (!own || (!m_editor->isChanged() && !asArray)) {
        end(false);
        return true;
    }
    if (const auto problem = enter(*own, asArray)) {
        const std::string text = m_editor->toPlainText().toStdString();
        const std::size_t units = unitOfByte(text, std::min(problem.position(), text.size()));
        m_editor->showProblem(QString::fromStdString(problem.reason()), static_cast<int>(units));
        m_editor->setFocus();
        return false;
    }
    end(true);
    return true;
}

Refusal InCellEditing::enter(Sheet& own, bool asArray)
{
    const std::string text = m_editor->toPlainText().toStdString();
    if (asArray)
        return own.setArrayFormula(m_control.firstRange(), text);
    return enterText(m_control.workbook(), own, m_cell, text, TypedInto::cell);
}

void InCellEditing::cancel()
{
    end(false);
}

/// The control deletes this object on the way.
void InCellEditing::end(bool changed)
{
    SpreadsheetControl& control = m_control;
    const CellAddress cell = m_cell;
    control.editingEnded(changed);
    if (changed)
        control.afterEdit(cell);
}

void InCellEditing::commitByKey(int key, Qt::KeyboardModifiers modifiers)
{
    SpreadsheetControl& control = m_control;
    const bool enter = key == Qt::Key_Return || key == Qt::Key_Enter;
    const bool isFormula = m_editor->assistant().isFormula();
    const bool asArray = modifiers == (Qt::ControlModifier | Qt::ShiftModifier) && isFormula;
    if (enter && (asArray || modifiers == Qt::ControlModifier)) {
        if (control.refuseEdit(control.selection()))
            return;
        if (asArray)
            std::ignore = commitText(true); // the editor has shown why not
        else
            fillSelection();
        return;
    }
    if (!commit())
        return;
    QKeyEvent move(QEvent::KeyPress, key, modifiers);
    QCoreApplication::sendEvent(&control, &move);
}

/// The selected cells besides that of the editor: merged ones once, by their first cell.
std::vector<CellAddress> InCellEditing::cellsToFill(const Sheet& own) const
{
    std::vector<CellAddress> cells;
    for (const CellRange& range : m_control.selection()) {
        for (int column = range.left; column <= range.right; ++column) {
            for (int row = range.top; row <= range.bottom; ++row) {
                const CellRange extent = own.extent({column, row});
                if (CellAddress{column, row} != m_cell && extent.left == column && extent.top == row)
                    cells.push_back({column, row});
            }
        }
    }
    return cells;
}

/// Puts what a cell holds into others, each of which keeps its own look.
static Refusal putEntered(Sheet& own, CellAddress entered, const std::vector<CellAddress>& cells)
{
    const LiftedCells lifted = own.lift({entered.column, entered.row, entered.column, entered.row});
    for (const CellAddress cell : cells) {
        LiftedCells content = lifted;
        content.cells[0].style = own.styleNumber(cell);
        content.cells[0].tag = own.tag(cell);
        content.spans.clear();
        content.lists.reset();
        const std::optional<CellRange> span = own.spanAt(cell);
        if (auto problem = own.put(content, cell))
            return problem;
        if (span)
            own.addSpan(*span);
    }
    return {};
}

/// Enters the text and puts what came of it into all selected cells.
void InCellEditing::fillSelection()
{
    SpreadsheetControl& control = m_control;
    const CellAddress cell = m_cell;
    Sheet* const own = sheet();
    long long count = 0;
    for (const CellRange& range : control.selection())
        count += static_cast<long long>(range.columns()) * range.rows();
    if (!own || count > maxEnteredCells) {
        control.refuse("选定的区域太大");
        return;
    }
    const std::vector<CellAddress> cells = cellsToFill(*own);
    // Told while the text still stands in the editor. The array formula of its own cell goes with the entry.
    const auto inArray = [&](CellAddress other) {
        const auto array = own->arrayRange(other);
        return array && !array->isOneCell() && !array->contains(cell);
    };
    if (!own->settings().arrays.empty() && std::ranges::any_of(cells, inArray)) {
        control.refuse("不能更改数组公式的一部分");
        return;
    }
    UndoStep step(control.workbook(), "输入");
    if (!commit()) // from here on this object is gone
        return;
    const Refusal why = putEntered(*own, cell, cells);
    if (why)
        step.takeBack();
    control.afterEdit();
    control.refuse(why);
}

void InCellEditing::place()
{
    const bool away = m_control.workbook().sheetIndexOfId(m_sheetId) != m_control.activeSheet();
    QRect cell = m_control.cellRect(m_cell);
    if (away || cell.isEmpty()) // out of sight the text stays where it was
        cell = m_editor->geometry().adjusted(1, 1, -1, -1);
    if (const Sheet* own = sheet())
        m_editor->setFont(m_control.screenFont(own->style(m_cell).font));
    m_editor->place(cell, m_control.cellArea());
}

void InCellEditing::takeFocus()
{
    m_editor->setFocus();
}

void InCellEditing::compose(QInputMethodEvent* event)
{
    m_editor->compose(event);
    if (!m_editor->isComposing())
        m_editor->setFocus();
}

QRect InCellEditing::cursorRect() const
{
    return m_editor->cursorRect().translated(m_editor->viewport()->mapTo(&m_control, QPoint()));
}

bool InCellEditing::takesReference() const
{
    return m_editor->assistant().canPoint();
}

void InCellEditing::pointAt(int index, const CellRange& range, bool goesOn)
{
    Q_UNUSED(goesOn); // while nothing is typed, the reference just put is the one that moves
    m_editor->assistant().point({index, {range.left, range.top}, {range.right, range.bottom}});
    m_editor->setFocus();
}

void InCellEditing::pointByKey(int key, Qt::KeyboardModifiers modifiers)
{
    const bool isPage = key == Qt::Key_PageUp || key == Qt::Key_PageDown;
    if (isPage && modifiers == Qt::ControlModifier) {
        m_control.showSheetByUser(m_control.activeSheet() + (key == Qt::Key_PageDown ? 1 : -1));
        return;
    }
    FormulaAssistant& assistant = m_editor->assistant();
    const int shown = m_control.activeSheet();
    // On another sheet than the cell's own, from its cursor.
    const CellAddress from =
        shown == m_control.workbook().sheetIndexOfId(m_sheetId) ? m_cell : m_control.activeCell();
    PointedCells cells = assistant.pointed().value_or(PointedCells{shown, from, from});
    if (cells.sheet != shown)
        cells = {shown, from, from};
    const QKeyEvent event(QEvent::KeyPress, key, modifiers & ~Qt::ShiftModifier);
    const auto target = m_control.keyTarget(event, cells.head);
    if (!target)
        return;
    cells.head = *target;
    if (!modifiers.testFlag(Qt::ShiftModifier))
        cells.anchor = *target;
    assistant.point(cells);
    m_control.bringIntoSight(*target);
}

void InCellEditing::showFrames()
{
    std::vector<ReferenceFrame> frames;
    for (const ColouredCells& cells : m_editor->assistant().colouredCells())
        frames.push_back({m_control.workbook().sheet(cells.sheet).id(), cells.range, cells.colour});
    m_control.setReferenceFrames(std::move(frames));
}

/// Another widget of the same window takes the text as entered; other windows and popups do not.
void InCellEditing::focusMoved(QWidget* now)
{
    const bool within =
        !now || now == &m_control || m_control.isAncestorOf(now) || now->window() != m_control.window();
    if (!within && commit())
        now->setFocus(); // which the control has taken back
}

} // namespace spreadsheet
