#include "spreadsheet/view/InCellEditing.h"

#include "spreadsheet/display/cell_indent.h"
#include "spreadsheet/values/characters.h"
#include "spreadsheet/values/twips.h"
#include "spreadsheet/view/CellEditor.h"
#include "spreadsheet/view/commands/edited_text.h"
#include "spreadsheet/view/SpreadsheetControl.h"
#include "spreadsheet/workbook/typed_text.h"

#include <algorithm>

namespace spreadsheet {

namespace {

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
    , m_sheetId(control.cells().shownSheet().id())
    , m_cell(cell)
    , m_editor(new CellEditor(&control, control.entry().functionHints()))
{
    const Workbook& workbook = control.cells().workbook();
    const Sheet& own = *sheet();
    m_editor->setFont(control.screenFont(own.style(cell).font));
    m_editor->setPalette(paperOf(own.style(cell)));
    m_editor->setIndent(indentOnScreen());
    const QString text = QString::fromStdString(editedText(workbook, own, cell));
    m_editor->open({&workbook, control.cells().activeSheet(), cell}, text,
                   start == EditStart::keep ? CellEditor::Mode::edit : CellEditor::Mode::enter,
                   control.cellRect(cell), control.cellArea());
    if (start == EditStart::replace) {
        m_editor->selectAll();
        m_editor->insertPlainText(typed);
    }
}

InCellEditing::~InCellEditing()
{
    if (m_editor) {
        m_editor->close();
        m_editor->setObjectName({}); // who looks for the editor finds the next one
        m_editor->deleteLater();     // it may be the one that asked for the end
    }
}

CellEditor& InCellEditing::editor()
{
    return *m_editor;
}

Sheet* InCellEditing::sheet() const
{
    const int index = m_control.cells().workbook().sheetIndexOfId(m_sheetId);
    return index == 0 ? nullptr : &m_control.cells().workbook().sheet(index);
}

/// What is typed begins where the text will stand, unless that is at the right.
int InCellEditing::indentOnScreen() const
{
    const CellStyle& style = sheet()->style(m_cell);
    const bool isLeft =
        style.horizontal == HorizontalAlignment::left ||
        (style.horizontal == HorizontalAlignment::general && !sheet()->value(m_cell).isNumber());
    return isLeft ? static_cast<int>(indentOf(style, style.horizontal) * m_control.zoom() / twipsPerPixel)
                  : 0;
}

QString InCellEditing::text() const
{
    return m_editor->toPlainText();
}

EntryOutcome InCellEditing::commit()
{
    Sheet* const own = sheet();
    if (!own || !m_editor->isChanged())
        return EntryOutcome::unchanged;
    return outcomeOf(
        enterText(m_control.cells().workbook(), *own, m_cell, text().toStdString(), TypedInto::cell));
}

EntryOutcome InCellEditing::commitAsArray()
{
    Sheet* const own = sheet();
    if (!own)
        return EntryOutcome::unchanged;
    return outcomeOf(enterArrayFormula(m_control.cells().workbook(), *own, m_control.cursor().firstRange(),
                                       text().toStdString()));
}

EntryOutcome InCellEditing::outcomeOf(const Refusal& problem)
{
    if (!problem)
        return EntryOutcome::entered;
    const std::string typed = text().toStdString();
    const std::size_t units = unitOfByte(typed, std::min(problem.position(), typed.size()));
    m_editor->showProblem(QString::fromStdString(problem.reason()), static_cast<int>(units));
    m_editor->setFocus();
    return EntryOutcome::refused;
}

void InCellEditing::place()
{
    const bool away =
        m_control.cells().workbook().sheetIndexOfId(m_sheetId) != m_control.cells().activeSheet();
    QRect cell = m_control.cellRect(m_cell);
    if (away || cell.isEmpty()) // out of sight the text stays where it was
        cell = m_editor->geometry().adjusted(1, 1, -1, -1);
    if (const Sheet* own = sheet()) {
        m_editor->setFont(m_control.screenFont(own->style(m_cell).font));
        m_editor->setIndent(indentOnScreen());
    }
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

} // namespace spreadsheet
