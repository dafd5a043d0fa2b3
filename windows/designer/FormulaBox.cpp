#include "windows/designer/FormulaBox.h"

#include "spreadsheet/values/characters.h"
#include "spreadsheet/view/entry_keys.h"
#include "spreadsheet/view/FormulaAssistant.h"
#include "spreadsheet/view/SpreadsheetControl.h"
#include "spreadsheet/workbook/typed_text.h"
#include "text/ascii.h"

#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QSignalBlocker>

#include <algorithm>
#include <tuple>
#include <utility>

namespace selfreport {

using spreadsheet::CellAddress;
using spreadsheet::CellRange;
using spreadsheet::Sheet;

namespace {

/// From an input method; the events by which a line edit is coloured bring none.
bool bringsText(const QEvent& event)
{
    if (event.type() != QEvent::InputMethod)
        return false;
    const auto& composed = static_cast<const QInputMethodEvent&>(event);
    return !composed.preeditString().isEmpty() || !composed.commitString().isEmpty();
}

} // namespace

/// The box as the grid's open editor.
class FormulaBox::Editing : public spreadsheet::CellEditing {
public:
    explicit Editing(FormulaBox& box)
        : m_box(box)
    {
    }
    ~Editing() override { m_box.m_editing = nullptr; }

    CellAddress cell() const override { return m_box.m_cell; }
    QString text() const override { return m_box.m_edit.text(); }
    spreadsheet::EntryOutcome commit() override
    {
        return m_box.commit() ? spreadsheet::EntryOutcome::told : spreadsheet::EntryOutcome::refused;
    }
    void discard() override { m_box.fill(); }
    void place() override {}
    void takeFocus() override { m_box.m_edit.setFocus(); }
    void compose(QInputMethodEvent*) override {} // the box has the focus and composes itself
    QRect cursorRect() const override { return {}; }
    /// A click behind an empty box goes to the clicked cell.
    bool takesReference() const override { return !text().isEmpty() && m_box.m_assistant->canPoint(); }
    void pointAt(int sheet, const CellRange& range, bool) override
    {
        m_box.m_assistant->point({sheet, {range.left, range.top}, {range.right, range.bottom}});
        m_box.m_edit.setFocus();
    }

private:
    FormulaBox& m_box;
};

FormulaBox::FormulaBox(QLineEdit& edit, QWidget& equalsSign, spreadsheet::SpreadsheetControl& grid)
    : QObject(&edit)
    , m_edit(edit)
    , m_sign(equalsSign)
    , m_grid(grid)
{
    edit.installEventFilter(this);
    connect(&edit, &QLineEdit::textChanged, this, &FormulaBox::showSign);
    connect(&grid, &spreadsheet::SpreadsheetControl::editModeChanged, this,
            [this](bool isOpen, bool isChanged) {
                if (isOpen && isInCell())
                    followCell();
                else if (!isOpen && !isChanged && m_mirrors)
                    fill(); // a changed cell is entered anew
            });
    // It watches last and so sees keys first: those of its list are not this box's.
    m_assistant = new spreadsheet::FormulaAssistant(edit, grid.entry().functionHints());
    connect(m_assistant, &spreadsheet::FormulaAssistant::colouredCellsChanged, this, [this] {
        if (m_mirrors)
            return; // the cell's editor frames them
        std::vector<spreadsheet::ReferenceFrame> frames;
        if (m_editing) // a formula that is only looked at colours nothing
            for (const spreadsheet::ColouredCells& cells : m_assistant->colouredCells())
                frames.push_back(
                    {m_grid.cells().workbook().sheet(cells.sheet).id(), cells.range, cells.colour});
        m_grid.entry().setReferenceFrames(std::move(frames));
    });
    fill();
}

Sheet* FormulaBox::sheet() const
{
    const int index = m_grid.cells().workbook().sheetIndexOfId(m_sheetId);
    return index == 0 ? nullptr : &m_grid.cells().workbook().sheet(index);
}

bool FormulaBox::isOfShownSheet() const
{
    return m_grid.cells().workbook().sheetIndexOfId(m_sheetId) == m_grid.cells().activeSheet();
}

void FormulaBox::fill()
{
    if (isInCell())
        return; // it shows what is typed there
    Sheet& shown = m_grid.cells().shownSheet();
    m_sheetId = shown.id();
    m_cell = m_grid.cursor().activeCell();
    m_mirrors = m_signTaken = m_helps = false;
    const QString formula = QString::fromStdString(shown.formula(m_cell));
    m_edit.setReadOnly(false); // else it takes no colours
    {
        const QSignalBlocker once(m_edit); // the new context shows colours and hint
        if (m_edit.text() != formula)
            m_edit.setText(formula);
        m_edit.home(false); // a formula is read from its beginning
    }
    m_assistant->setContext({&m_grid.cells().workbook(), m_grid.cells().activeSheet(), m_cell});
    m_edit.setReadOnly(static_cast<bool>(m_grid.editRefusal(shown.extent(m_cell))));
    showSign();
}

bool FormulaBox::isInCell() const
{
    return m_grid.entry().isOpen() && !m_editing;
}

/// The cell's editor has just opened.
void FormulaBox::followCell()
{
    if (const auto* editor = m_grid.findChild<QPlainTextEdit*>(QStringLiteral("cellEditor")))
        connect(editor, &QPlainTextEdit::textChanged, this, [this] {
            if (isInCell()) // it is cleared once it is closed
                mirrorCell();
        });
    mirrorCell();
}

/// What was typed into the cell, without the sign that the label shows.
void FormulaBox::takeFrom(const QString& entry)
{
    qsizetype begin = 0;
    while (begin < entry.size() && entry[begin].isSpace())
        ++begin;
    m_signTaken = entry.mid(begin, 1) == '=' && begin + 1 < entry.size();
    m_edit.setText(m_signTaken ? entry.mid(begin + 1) : entry);
    showSign();
}

void FormulaBox::mirrorCell()
{
    if (!std::exchange(m_mirrors, true))
        m_assistant->setContext({&m_grid.cells().workbook(), m_grid.cells().activeSheet(), m_cell});
    takeFrom(m_grid.entry().text());
}

void FormulaBox::showSign()
{
    const std::string typed = m_edit.text().toStdString();
    const std::string_view text = ascii::trimmed(typed, " ");
    const Sheet* const own = sheet();
    const bool meansFormula =
        m_signTaken || (!m_helps && m_assistant->isFormula()) ||
        (own && !m_mirrors && own->hasFormula(m_cell) && spreadsheet::typedConstant(text).value.isText());
    m_sign.setVisible(meansFormula && !text.empty() && !text.starts_with('='));
}

bool FormulaBox::isUnchanged(const Sheet& sheet) const
{
    const std::string typed = entered().toStdString();
    const std::string formula = sheet.formula(m_cell);
    std::string_view text = ascii::trimmed(typed, " ");
    if (sheet.hasFormula(m_cell) && text.starts_with('='))
        text = ascii::trimmed(text.substr(1), " ");
    return text == ascii::trimmed(formula, " ") || (text.empty() && !sheet.hasFormula(m_cell));
}

/// With the sign of a formula that came from the cell.
QString FormulaBox::entered() const
{
    const QString text = m_edit.text();
    return m_signTaken && !text.isEmpty() && !text.startsWith('=') ? '=' + text : text;
}

bool FormulaBox::commit()
{
    Sheet* const own = sheet();
    if (!own || m_mirrors)
        return true;
    if (isUnchanged(*own)) {
        if (m_edit.text().toStdString() != own->formula(m_cell))
            fill(); // it was typed another way
        return true;
    }
    if (m_grid.refuseEdit({{m_cell.column, m_cell.row, m_cell.column, m_cell.row}})) {
        fill();
        return true;
    }
    const std::string typed = entered().toStdString();
    const std::string_view text = ascii::trimmed(typed, " ");
    if (const auto problem = spreadsheet::enterText(m_grid.cells().workbook(), *own, m_cell, text,
                                                    spreadsheet::TypedInto::formulaBox)) {
        const auto blanks = static_cast<std::size_t>(text.data() - typed.data());
        const std::size_t place = std::min(blanks + problem.position(), typed.size());
        const auto added = static_cast<int>(entered().size() - m_edit.text().size());
        m_assistant->markMistake(
            std::max(0, static_cast<int>(spreadsheet::unitOfByte(typed, place)) - added));
        if (refused)
            refused(problem.reason());
        return false;
    }
    m_grid.afterEdit(m_cell);
    return true;
}

void FormulaBox::begin()
{
    if (m_editing || m_edit.isReadOnly() || !m_grid.entry().commit())
        return;
    if (!m_edit.hasFocus())
        m_edit.setFocus(); // an entry that ended has given it to the grid
    if (m_editing)
        return; // begun with it
    auto editing = std::make_unique<Editing>(*this);
    m_editing = editing.get();
    m_grid.entry().open(std::move(editing));
}

void FormulaBox::leaveFor(bool committing)
{
    if (m_editing) {
        if (committing)
            std::ignore = m_grid.entry().commit(); // if it stays open, the box has told why
        else
            m_grid.entry().cancel();
    } else if (committing ? commit() : (fill(), true)) {
        m_grid.setFocus();
    }
}

void FormulaBox::switchOver()
{
    spreadsheet::GridEntry& entry = m_grid.entry();
    if (!m_edit.hasFocus()) {
        const bool goesAlong = isInCell();
        const QString typed = entry.text();
        if (goesAlong)
            entry.cancel();
        m_edit.setFocus();
        m_edit.end(false);
        if (goesAlong && m_editing)
            takeFrom(typed);
        return;
    }
    Sheet* const own = sheet();
    const QString typed = (m_sign.isHidden() ? QString() : QStringLiteral("=")) + m_edit.text();
    const bool goesAlong = m_editing && own && !isUnchanged(*own);
    entry.cancel();
    m_grid.setFocus();
    if (goesAlong)
        entry.begin(spreadsheet::EditStart::replace, typed);
}

/// Where the cell holds a formula, what is typed in its place is one, sign or not.
void FormulaBox::helpWithFormula()
{
    const Sheet* const own = sheet();
    if (!own || m_helps || !m_editing || (!m_signTaken && !own->hasFormula(m_cell)))
        return;
    m_helps = true;
    m_assistant->setContext(
        {&m_grid.cells().workbook(), m_grid.cells().workbook().sheetIndexOfId(m_sheetId), m_cell, true});
}

/// True for a key that would change what may not be changed, which is told.
bool FormulaBox::refuseKey(const QKeyEvent& key)
{
    const bool types =
        !key.text().isEmpty() && key.text()[0].isPrint() && !key.modifiers().testFlag(Qt::ControlModifier);
    const bool changes = types || key.key() == Qt::Key_Backspace || key.key() == Qt::Key_Delete ||
                         key.matches(QKeySequence::Paste) || key.matches(QKeySequence::Cut);
    return changes && m_grid.refuse(m_grid.editRefusal(m_grid.cells().shownSheet().extent(m_cell)));
}

bool FormulaBox::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::ShortcutOverride &&
        spreadsheet::belongsToWindow(*static_cast<QKeyEvent*>(event))) {
        event->ignore();
        return true;
    }
    if (event->type() == QEvent::FocusIn)
        begin();
    if (event->type() == QEvent::KeyPress || bringsText(*event))
        helpWithFormula();
    if (event->type() != QEvent::KeyPress)
        return QObject::eventFilter(watched, event);
    const auto& press = *static_cast<QKeyEvent*>(event);
    if (m_edit.isReadOnly() && refuseKey(press))
        return true;
    const int key = press.key();
    if (key != Qt::Key_Return && key != Qt::Key_Enter && key != Qt::Key_Escape)
        return QObject::eventFilter(watched, event);
    begin(); // a key may come without a focus event
    leaveFor(key != Qt::Key_Escape);
    return true;
}

} // namespace selfreport
