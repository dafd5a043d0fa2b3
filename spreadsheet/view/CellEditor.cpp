#include "spreadsheet/view/CellEditor.h"

#include "spreadsheet/view/commands/clipboard.h"
#include "spreadsheet/view/entry_keys.h"

#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextLayout>

#include <algorithm>
#include <cmath>

namespace spreadsheet {

// Whether an arrow key moves within the text, ends the entry or points at a cell depends on how the entry
// began and on what stands at the cursor. The editor decides that and asks for the rest by signals: it knows
// its text and its place, and neither the sheet nor what follows when the text is refused.

namespace {

bool isMovingKey(int key)
{
    switch (key) {
    case Qt::Key_Left:
    case Qt::Key_Right:
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_Home:
    case Qt::Key_End:
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
        return true;
    default:
        return false;
    }
}

} // namespace

CellEditor::CellEditor(QWidget* parent, const FunctionHints& hints)
    : QPlainTextEdit(parent)
    , m_assistant(new FormulaAssistant(*this, hints))
    , m_problem(new QLabel(parent))
{
    setObjectName(QStringLiteral("cellEditor"));
    setFrameStyle(QFrame::Box | QFrame::Plain); // tells where the text ends that covers other cells
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setTabChangesFocus(false);
    document()->setDocumentMargin(1);
    m_problem->setObjectName(QStringLiteral("editorProblem"));
    m_problem->setAutoFillBackground(true);
    m_problem->setFrameShape(QFrame::Box);
    m_problem->setMargin(4);
    QPalette warning(QColor(0x8B0000), QColor(0xFFF0F0));
    m_problem->setPalette(warning);
    hide();
    m_problem->hide();
    connect(this, &QPlainTextEdit::textChanged, this, [this] {
        hideProblem();
        fit();
    });
}

CellEditor::~CellEditor()
{
    delete m_problem;
}

void CellEditor::open(const FormulaContext& context, const QString& text, Mode mode, const QRect& cell,
                      const QRect& limits)
{
    m_open = true;
    m_mode = mode;
    m_former = text;
    setPlainText(text);
    moveCursor(QTextCursor::End);
    m_assistant->setContext(context);
    place(cell, limits);
    show();
    raise();
}

void CellEditor::setIndent(int pixels)
{
    setViewportMargins(pixels, 0, 0, 0);
    fit();
}

void CellEditor::place(const QRect& cell, const QRect& limits)
{
    m_cell = cell;
    m_limits = limits;
    fit();
}

void CellEditor::close()
{
    m_open = false;
    m_composing = false;
    hideProblem();
    m_assistant->hidePopups();
    hide();
    clear();
}

/// As wide as the text, from the cell's width to the limits; beyond that it wraps and grows downwards.
void CellEditor::fit()
{
    if (!m_open)
        return;
    const int margins = 2 * static_cast<int>(std::ceil(document()->documentMargin())) + cursorWidth() + 4 +
                        viewportMargins().left();
    int wanted = 0;
    int lines = 0;
    const QString composed = textCursor().block().layout()->preeditAreaText();
    for (const QString& line : (toPlainText() + composed).split('\n')) {
        wanted = std::max(wanted, fontMetrics().horizontalAdvance(line) + margins);
        ++lines;
    }
    const int most = std::max(m_cell.width(), m_limits.right() - m_cell.left()); // one for the frame
    const int width = std::clamp(wanted, m_cell.width(), most);
    if (wanted > most) {
        lines = 0;
        for (const QString& line : toPlainText().split('\n'))
            lines += 1 + fontMetrics().horizontalAdvance(line) / std::max(1, most - margins);
    }
    setLineWrapMode(wanted > most ? QPlainTextEdit::WidgetWidth : QPlainTextEdit::NoWrap);
    setWordWrapMode(QTextOption::WrapAnywhere);
    const int tallest = std::max(m_cell.height(), m_limits.bottom() - m_cell.top() + 1);
    // One line fits its cell, whose height may be a pixel short of what an editor likes.
    const int needed = lines == 1 ? m_cell.height() : lines * fontMetrics().lineSpacing() + margins;
    const int height = std::clamp(needed, m_cell.height(), tallest);
    setGeometry(QRect(m_cell.left(), m_cell.top(), width, height).adjusted(-1, -1, 1, 1));
    m_problem->move(m_cell.left(), m_cell.top() + height + 2);
}

void CellEditor::showProblem(const QString& reason, int place)
{
    m_mode = Mode::edit; // the text is to be mended, not left
    if (place >= 0) {
        m_assistant->markMistake(place);
        QTextCursor cursor = textCursor();
        cursor.setPosition(std::clamp(place, 0, static_cast<int>(toPlainText().size())));
        setTextCursor(cursor);
    }
    m_problem->setText(reason);
    m_problem->adjustSize();
    fit();
    if (m_problem->geometry().bottom() > m_limits.bottom())
        m_problem->move(m_cell.left(), std::max(0, m_cell.top() - m_problem->height() - 2));
    m_problem->show();
    m_problem->raise();
}

void CellEditor::hideProblem()
{
    m_problem->hide();
}

void CellEditor::compose(QInputMethodEvent* event)
{
    inputMethodEvent(event);
}

void CellEditor::inputMethodEvent(QInputMethodEvent* event)
{
    m_composing = !event->preeditString().isEmpty();
    QPlainTextEdit::inputMethodEvent(event);
    fit();
}

void CellEditor::insertFromMimeData(const QMimeData* source)
{
    const auto text =
        clipboardText(*source, longestCellText - std::min(longestCellText, toPlainText().size()));
    if (const auto* why = std::get_if<Refusal>(&text))
        Q_EMIT pasteRefused(QString::fromStdString(why->reason()));
    else
        insertPlainText(std::get<QString>(text));
    ensureCursorVisible();
}

bool CellEditor::event(QEvent* event)
{
    // What an editor takes before the window's shortcuts may see it.
    if (event->type() == QEvent::ShortcutOverride && belongsToWindow(*static_cast<QKeyEvent*>(event))) {
        event->ignore();
        return false;
    }
    return QPlainTextEdit::event(event);
}

void CellEditor::deleteToLineEnd()
{
    QTextCursor cursor = textCursor();
    if (!cursor.hasSelection())
        cursor.movePosition(QTextCursor::EndOfBlock, QTextCursor::KeepAnchor);
    cursor.removeSelectedText();
}

void CellEditor::keyPressEvent(QKeyEvent* event)
{
    const int key = event->key();
    const Qt::KeyboardModifiers modifiers = event->modifiers();
    if (belongsToWindow(*event)) {
        event->ignore();
    } else if (key == Qt::Key_Escape) {
        Q_EMIT cancelled();
    } else if (key == Qt::Key_F2) {
        m_mode = m_mode == Mode::enter ? Mode::edit : Mode::enter;
    } else if (key == Qt::Key_Return || key == Qt::Key_Enter) {
        if (modifiers.testFlag(Qt::AltModifier))
            insertPlainText(QStringLiteral("\n"));
        else
            Q_EMIT commitRequested(event);
    } else if (key == Qt::Key_Tab || key == Qt::Key_Backtab) {
        Q_EMIT commitRequested(event);
    } else if (const QString moment = momentOf(*event); !moment.isEmpty()) {
        insertPlainText(moment);
    } else if (key == Qt::Key_Delete && modifiers == Qt::ControlModifier) {
        deleteToLineEnd();
    } else if (m_mode == Mode::enter && isMovingKey(key)) {
        if (m_assistant->canPoint())
            Q_EMIT pointingKey(key, modifiers);
        else
            Q_EMIT commitRequested(event);
    } else {
        QPlainTextEdit::keyPressEvent(event);
    }
}

} // namespace spreadsheet
