#include "windows/designer/FormulaBox.h"

#include "spreadsheet/values/characters.h"
#include "spreadsheet/view/FormulaAssistant.h"
#include "spreadsheet/view/SpreadsheetControl.h"
#include "spreadsheet/workbook/typed_text.h"
#include "text/ascii.h"

#include <QKeyEvent>
#include <QLineEdit>

#include <tuple>

namespace selfreport {

using spreadsheet::CellAddress;
using spreadsheet::CellRange;
using spreadsheet::Sheet;

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
    bool takesReference() const override { return m_box.m_assistant->canPoint(); }
    void pointAt(int sheet, const CellRange& range, bool) override
    {
        m_box.m_assistant->point({sheet, {range.left, range.top}, {range.right, range.bottom}});
        m_box.m_edit.setFocus();
    }

private:
    FormulaBox& m_box;
};

FormulaBox::FormulaBox(QLineEdit& edit, spreadsheet::SpreadsheetControl& grid)
    : QObject(&edit)
    , m_edit(edit)
    , m_grid(grid)
{
    edit.installEventFilter(this);
    // It watches last and so sees keys first: those of its list are not this box's.
    m_assistant = new spreadsheet::FormulaAssistant(edit, grid.entry().functionHints());
    connect(m_assistant, &spreadsheet::FormulaAssistant::colouredCellsChanged, this, [this] {
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
    Sheet& shown = m_grid.cells().shownSheet();
    m_sheetId = shown.id();
    m_cell = m_grid.cursor().activeCell();
    const QString formula = QString::fromStdString(shown.formula(m_cell));
    if (m_edit.text() != formula)
        m_edit.setText(formula);
    m_assistant->setContext({&m_grid.cells().workbook(), m_grid.cells().activeSheet(), m_cell});
}

bool FormulaBox::isUnchanged(const Sheet& sheet) const
{
    const std::string typed = m_edit.text().toStdString();
    const std::string formula = sheet.formula(m_cell);
    const std::string_view text = ascii::trimmed(typed, " ");
    return text == ascii::trimmed(formula, " ") || (text.empty() && !sheet.hasFormula(m_cell));
}

bool FormulaBox::commit()
{
    Sheet* const own = sheet();
    if (!own || isUnchanged(*own))
        return true;
    if (m_grid.refuseEdit({{m_cell.column, m_cell.row, m_cell.column, m_cell.row}})) {
        fill();
        return true;
    }
    const std::string typed = m_edit.text().toStdString();
    if (const auto problem =
            spreadsheet::enterText(m_grid.cells().workbook(), *own, m_cell, ascii::trimmed(typed, " "),
                                   spreadsheet::TypedInto::formulaBox)) {
        const std::size_t place = std::min(problem.position(), typed.size());
        m_assistant->markMistake(static_cast<int>(spreadsheet::unitOfByte(typed, place)));
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

bool FormulaBox::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::FocusIn)
        begin();
    if (event->type() != QEvent::KeyPress || m_edit.isReadOnly())
        return QObject::eventFilter(watched, event);
    const int key = static_cast<QKeyEvent*>(event)->key();
    if (key != Qt::Key_Return && key != Qt::Key_Enter && key != Qt::Key_Escape)
        return QObject::eventFilter(watched, event);
    begin(); // a key may come without a focus event
    leaveFor(key != Qt::Key_Escape);
    return true;
}

} // namespace selfreport
