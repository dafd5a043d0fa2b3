#include "windows/printing/MarginField.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QToolTip>

namespace selfreport {

MarginField::MarginField(QWidget* parent)
    : QLineEdit(QString::fromUtf8(MarginText::empty.data()), parent)
    , m_shown(text())
{
    setContextMenuPolicy(Qt::NoContextMenu); // its entries would go past the mask
    setDragEnabled(false);
    setAcceptDrops(false);
    // So would keys that delete to an end, and a selection that a middle button drops.
    connect(this, &QLineEdit::textEdited, this, [this] {
        const int place = cursorPosition();
        setText(m_shown);
        setCursorPosition(place);
    });
    connect(this, &QLineEdit::textChanged, this, [this] { m_shown = text(); });
}

void MarginField::showInches(const std::string& text)
{
    setText(QString::fromStdString(text));
    setCursorPosition(0);
}

/// Works on the field's text; refused input gives a hint.
void MarginField::edit(const std::function<bool(MarginText&)>& change)
{
    if (m_field.text() != text().toStdString() && !m_field.setText(text().toStdString()))
        m_field = MarginText();
    if (m_field.cursor() != cursorPosition())
        m_field.setCursor(cursorPosition());
    const bool taken = change(m_field);
    setText(QString::fromStdString(m_field.text()));
    setCursorPosition(m_field.cursor());
    if (!taken)
        QToolTip::showText(mapToGlobal(rect().bottomLeft()), QStringLiteral("请输入 0.00 到 9.99 英寸"),
                           this);
}

bool MarginField::eraseSelected(MarginText& field) const
{
    if (!hasSelectedText())
        return false;
    field.erase(selectionStart(), selectionEnd());
    field.setCursor(selectionStart());
    return true;
}

/// Digits and points one after the other; full-width ones, as Chinese input gives them, count too.
bool MarginField::typeAll(MarginText& field, const QString& text) const
{
    bool taken = true;
    for (const QChar c : text.normalized(QString::NormalizationForm_KC))
        taken = field.type(c == QChar(0x3002) ? '.' : c.toLatin1()) && taken;
    return taken;
}

void MarginField::keyPressEvent(QKeyEvent* event)
{
    if (event->matches(QKeySequence::Paste)) {
        const std::string pasted = QGuiApplication::clipboard()->text().toStdString();
        edit([&](MarginText& field) { return field.paste(pasted); });
    } else if (event->key() == Qt::Key_Backspace || event->key() == Qt::Key_Delete ||
               event->matches(QKeySequence::Cut)) {
        if (event->matches(QKeySequence::Cut))
            copy();
        edit([&](MarginText& field) {
            if (!eraseSelected(field))
                event->key() == Qt::Key_Backspace ? field.eraseBefore() : field.eraseAfter();
            return true;
        });
    } else if (!event->text().isEmpty() && event->text().front().isPrint() &&
               !(event->modifiers() & (Qt::ControlModifier | Qt::AltModifier))) {
        edit([&](MarginText& field) {
            eraseSelected(field);
            return typeAll(field, event->text());
        });
    } else {
        QLineEdit::keyPressEvent(event); // movement, selection, Enter
    }
}

void MarginField::inputMethodEvent(QInputMethodEvent* event)
{
    if (!event->commitString().isEmpty())
        edit([&](MarginText& field) {
            eraseSelected(field);
            return typeAll(field, event->commitString());
        });
    event->accept();
}

void MarginField::focusInEvent(QFocusEvent* event)
{
    QLineEdit::focusInEvent(event);
    if (event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason)
        setCursorPosition(0);
}

} // namespace selfreport
