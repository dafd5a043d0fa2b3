#include "spreadsheet/view/FormulaAssistant.h"

#include "spreadsheet/view/tool_tip.h"

#include <QEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QScopedValueRollback>
#include <QScreen>

#include <array>

namespace spreadsheet {

// A formula is written in two kinds of text edits, in a cell and in a line, and helped in both alike: so the
// help sees the edit through a port and takes its keys by a filter, before the edit gets them. It looks at
// the text anew after each change instead of following it, as an undo or an input method may have changed
// anything.

namespace {

constexpr int shownNames = 10;

/// Below the cursor, or above it where the screen ends.
void placeAt(QWidget& popup, const QWidget& edit, const QRect& cursor, int below)
{
    const QRect screen = edit.screen()->availableGeometry();
    QPoint place = edit.mapToGlobal(cursor.bottomLeft()) + QPoint(0, below);
    if (place.y() + popup.height() > screen.bottom())
        place.setY(edit.mapToGlobal(cursor.topLeft()).y() - popup.height() - below);
    place.setX(std::clamp(place.x(), screen.left(), std::max(screen.left(), screen.right() - popup.width())));
    popup.move(place);
}

} // namespace

QColor referenceColour(int number)
{
    static constexpr std::array<QRgb, 8> colours{0x1F5FD0, 0xC0392B, 0x7D3CB5, 0x1E8449,
                                                 0xB36B00, 0x117A8B, 0xD81B60, 0x5D6D1E};
    return QColor(colours[static_cast<std::size_t>(number) % colours.size()]);
}

FormulaAssistant::FormulaAssistant(QLineEdit& edit, const FunctionHints& hints)
    : FormulaAssistant(textPort(edit), hints)
{
    connect(&edit, &QLineEdit::textChanged, this, &FormulaAssistant::textChanged);
    connect(&edit, &QLineEdit::cursorPositionChanged, this, &FormulaAssistant::refresh);
}

FormulaAssistant::FormulaAssistant(QPlainTextEdit& edit, const FunctionHints& hints)
    : FormulaAssistant(textPort(edit), hints)
{
    connect(&edit, &QPlainTextEdit::textChanged, this, &FormulaAssistant::textChanged);
    connect(&edit, &QPlainTextEdit::cursorPositionChanged, this, &FormulaAssistant::refresh);
}

FormulaAssistant::FormulaAssistant(std::unique_ptr<TextPort> port, const FunctionHints& hints)
    : QObject(&port->widget())
    , m_port(std::move(port))
    , m_hints(hints)
    , m_names(new QListWidget(&m_port->widget()))
    , m_hint(new QLabel(&m_port->widget()))
{
    // As tool tips they take no focus away from the edit.
    m_names->setWindowFlags(Qt::ToolTip);
    m_names->setObjectName(QStringLiteral("formulaCompletions"));
    m_names->setFocusPolicy(Qt::NoFocus);
    m_names->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_hint->setWindowFlags(Qt::ToolTip);
    m_hint->setObjectName(QStringLiteral("formulaHint"));
    m_hint->setTextFormat(Qt::RichText);
    m_hint->setMargin(4);
    m_hint->setFrameShape(QFrame::Box);
    m_hint->setAutoFillBackground(true);
    m_hint->setBackgroundRole(QPalette::ToolTipBase);
    m_hint->setForegroundRole(QPalette::ToolTipText);
    m_hint->setFont(m_port->widget().window()->font());
    connect(m_names, &QListWidget::itemClicked, this, &FormulaAssistant::complete);
    m_port->widget().installEventFilter(this);
}

FormulaAssistant::~FormulaAssistant() = default;

void FormulaAssistant::setContext(const FormulaContext& context)
{
    m_entry.setContext(context);
    m_mistake.reset();
    m_closedHint.clear();
    m_text = m_port->edited().text; // what stands there was not typed: no names are offered
    hidePopups();
    refresh();
}

bool FormulaAssistant::isFormula() const
{
    return FormulaText(m_port->edited().text, m_entry.context()).isFormula();
}

bool FormulaAssistant::canPoint() const
{
    return m_entry.context().workbook && m_entry.canPoint(m_port->edited());
}

std::optional<PointedCells> FormulaAssistant::pointed() const
{
    return m_entry.pointed(m_port->edited());
}

void FormulaAssistant::point(const PointedCells& cells)
{
    const QScopedValueRollback pointing(m_pointing, true);
    m_port->setEdited(m_entry.point(m_port->edited(), cells));
    m_names->hide();
}

void FormulaAssistant::markMistake(int place)
{
    m_mistake = place;
    hidePopups();
    refresh();
}

void FormulaAssistant::hidePopups()
{
    m_names->hide();
    m_hint->hide();
}

void FormulaAssistant::textChanged()
{
    const QString text = m_port->edited().text;
    if (m_busy || text == m_text)
        return; // colours count as a change for some edits
    const bool typed = m_port->widget().hasFocus() && !m_pointing && text.size() > m_text.size();
    m_text = text;
    m_mistake.reset();
    if (!m_pointing)
        m_entry.stopPointing();
    refresh();
    m_names->hide();
    if (typed)
        offer(FormulaText(text, m_entry.context()));
}

void FormulaAssistant::refresh()
{
    if (m_busy || !m_entry.context().workbook)
        return;
    const QScopedValueRollback busy(m_busy, true);
    const FormulaText formula(m_port->edited().text, m_entry.context());
    colour(formula);
    showHint(formula);
}

void FormulaAssistant::colour(const FormulaText& formula)
{
    std::vector<ColouredText> pieces;
    m_coloured.clear();
    for (const FormulaToken& token : formula.tokens()) {
        if (token.colour < 0)
            continue;
        const QColor colour = referenceColour(token.colour);
        pieces.push_back({token.begin, token.length, colour, false});
        m_coloured.push_back({token.sheet, token.range, colour});
    }
    const auto size = static_cast<int>(formula.text().size());
    if (m_mistake && size > 0) { // at the very end, the last character carries the mark
        const int place = std::clamp(*m_mistake, 0, size - 1);
        pieces.push_back({place, 1, QColor(Qt::red), true});
    }
    m_port->setColours(pieces);
    Q_EMIT colouredCellsChanged();
}

void FormulaAssistant::showHint(const FormulaText& formula)
{
    const auto call = formula.callAt(m_port->edited().cursor);
    const auto hint = call ? m_hints.hint(call->function, *m_entry.context().workbook) : std::nullopt;
    if (!call || call->function != m_closedHint)
        m_closedHint.clear();
    if (!hint || !m_port->widget().hasFocus() || m_mistake || !m_closedHint.isEmpty()) {
        m_hint->hide();
        return;
    }
    m_hint->setText(hint->richText(call->argument));
    m_hint->adjustSize();
    placeAt(*m_hint, m_port->widget(), m_port->cursorRect(), 4);
    m_hint->show();
}

void FormulaAssistant::offer(const FormulaText& formula)
{
    if (m_entry.context().workbook && !offerChoices(formula))
        offerNames(formula);
}

/// False if the argument at the cursor is none to choose, or something else is being written for it.
bool FormulaAssistant::offerChoices(const FormulaText& formula)
{
    const int cursor = m_port->edited().cursor;
    const auto call = formula.callAt(cursor);
    if (!call)
        return false;
    QString typed = formula.text().mid(call->begin, cursor - call->begin).trimmed();
    if (typed.startsWith('"'))
        typed.remove(0, 1);
    if (typed.contains('"'))
        return false; // it is closed
    const auto choices = m_hints.choices(call->function, call->argument, typed);
    m_names->clear();
    for (const ArgumentChoice& choice : choices) {
        auto* item = new QListWidgetItem(
            choice.meaning.isEmpty() ? choice.text : choice.text + "  " + choice.meaning, m_names);
        item->setData(Qt::UserRole, choice.text);
    }
    if (!choices.empty())
        showOffer();
    return !choices.empty();
}

void FormulaAssistant::offerNames(const FormulaText& formula)
{
    const auto word = formula.wordBefore(m_port->edited().cursor);
    if (!word)
        return;
    const QString beginning = formula.text().mid(word->begin, word->length);
    const QStringList names = m_hints.namesBeginning(beginning, *m_entry.context().workbook);
    if (names.isEmpty())
        return;
    m_names->clear();
    for (const QString& name : names) {
        auto* item = new QListWidgetItem(name, m_names);
        if (const auto hint = m_hints.hint(name, *m_entry.context().workbook))
            item->setToolTip(hint->help);
    }
    showOffer();
}

void FormulaAssistant::showOffer()
{
    m_names->setCurrentRow(0);
    m_chosen = false;
    const int rows = std::min(shownNames, m_names->count());
    const int width = m_names->sizeHintForColumn(0) + 2 * m_names->frameWidth() + 24;
    m_names->resize(std::max(140, width), rows * m_names->sizeHintForRow(0) + 2 * m_names->frameWidth());
    const int below = m_hint->isVisible() ? m_hint->height() + 8 : 2;
    placeAt(*m_names, m_port->widget(), m_port->cursorRect(), below);
    m_names->show();
}

void FormulaAssistant::complete()
{
    if (const QListWidgetItem* item = m_names->currentItem()) {
        const QVariant argument = item->data(Qt::UserRole);
        const QString name = item->text();
        m_names->hide();
        m_port->setEdited(argument.isValid() ? m_entry.completeArgument(m_port->edited(), argument.toString())
                                             : m_entry.complete(m_port->edited(), name));
        m_names->hide(); // the new text would offer names again
    }
}

/// True if the list of names takes the key.
bool FormulaAssistant::popupKey(int key)
{
    const int row = m_names->currentRow();
    switch (key) {
    case Qt::Key_Up:
    case Qt::Key_Down:
        m_chosen = true;
        m_names->setCurrentRow((row + (key == Qt::Key_Down ? 1 : m_names->count() - 1)) % m_names->count());
        return true;
    case Qt::Key_Tab:
        complete();
        return true;
    case Qt::Key_Return:
    case Qt::Key_Enter: // without a choice the key ends the entry
        if (m_chosen)
            complete();
        return m_chosen;
    default:
        return false;
    }
}

/// What lies over the text, the topmost first. False if nothing does.
bool FormulaAssistant::closePopup()
{
    if (hideToolTip())
        return true;
    if (m_hint->isVisible()) {
        const auto call =
            FormulaText(m_port->edited().text, m_entry.context()).callAt(m_port->edited().cursor);
        m_closedHint = call ? call->function : QString();
        m_hint->hide();
        return true;
    }
    const bool isOpen = m_names->isVisible();
    m_names->hide();
    return isOpen;
}

bool FormulaAssistant::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::FocusOut || event->type() == QEvent::Hide)
        hidePopups();
    if (event->type() == QEvent::FocusIn)
        refresh(); // an edit without it shows no hint
    if (event->type() != QEvent::KeyPress)
        return QObject::eventFilter(watched, event);
    const int key = static_cast<QKeyEvent*>(event)->key();
    if (key == Qt::Key_Escape && closePopup())
        return true;
    if (m_names->isVisible() && popupKey(key))
        return true;
    if (key == Qt::Key_F4 && isFormula()) {
        m_port->setEdited(m_entry.cycle(m_port->edited()));
        m_names->hide();
        return true;
    }
    return QObject::eventFilter(watched, event);
}

} // namespace spreadsheet
