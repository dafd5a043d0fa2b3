#include "spreadsheet/view/TextPort.h"

#include <QCoreApplication>
#include <QInputMethodEvent>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTextBlock>
#include <QTextCursor>

#include <algorithm>

namespace spreadsheet {

namespace {

/// The colours of references are dark, for the white of cells.
QColor readableOn(const QColor& ground, const QColor& colour)
{
    constexpr int middle = 128, light = 185; // of 255
    if (ground.lightness() >= middle)
        return colour;
    return QColor::fromHsl(colour.hslHue(), colour.hslSaturation(), std::max(colour.lightness(), light));
}

QTextCharFormat formatOf(const ColouredText& piece, const QWidget& edit)
{
    const QColor colour = readableOn(edit.palette().color(QPalette::Base), piece.colour);
    QTextCharFormat format;
    if (piece.isMistake) {
        format.setUnderlineStyle(QTextCharFormat::WaveUnderline);
        format.setUnderlineColor(colour);
    } else {
        format.setForeground(colour);
    }
    return format;
}

/// Offers the cursor's rectangle, which a line edit keeps to itself.
class CursorOfLineEdit : public QLineEdit {
public:
    using QLineEdit::cursorRect;
};

class LinePort : public TextPort {
public:
    explicit LinePort(QLineEdit& edit)
        : m_edit(edit)
    {
    }
    QWidget& widget() override { return m_edit; }
    EditedText edited() const override
    {
        const int cursor = m_edit.cursorPosition();
        if (!m_edit.hasSelectedText())
            return {m_edit.text(), cursor, cursor};
        const int begin = m_edit.selectionStart(), end = m_edit.selectionEnd();
        return {m_edit.text(), cursor, cursor == begin ? end : begin};
    }
    void setEdited(const EditedText& edited) override
    {
        if (edited.text != m_edit.text()) {
            m_edit.selectAll();
            m_edit.insert(edited.text);
        }
        m_edit.setSelection(edited.anchor, edited.cursor - edited.anchor);
    }
    /// A line edit shows formats only of a text that is being composed; they may lie anywhere in the text.
    void setColours(const std::vector<ColouredText>& colours) override
    {
        QList<QInputMethodEvent::Attribute> attributes;
        for (const ColouredText& piece : colours)
            attributes.append({QInputMethodEvent::TextFormat, piece.begin - m_edit.cursorPosition(),
                               piece.length, formatOf(piece, m_edit)});
        QInputMethodEvent event(QString(), attributes);
        QCoreApplication::sendEvent(&m_edit, &event);
    }
    QRect cursorRect() const override { return (m_edit.*&CursorOfLineEdit::cursorRect)(); }

private:
    QLineEdit& m_edit;
};

class PlainTextPort : public TextPort {
public:
    explicit PlainTextPort(QPlainTextEdit& edit)
        : m_edit(edit)
    {
    }
    QWidget& widget() override { return m_edit; }
    EditedText edited() const override
    {
        const QTextCursor cursor = m_edit.textCursor();
        return {m_edit.toPlainText(), cursor.position(), cursor.anchor()};
    }
    void setEdited(const EditedText& edited) override
    {
        QTextCursor cursor = m_edit.textCursor();
        if (edited.text != m_edit.toPlainText()) {
            cursor.beginEditBlock();
            cursor.select(QTextCursor::Document);
            cursor.insertText(edited.text);
            cursor.endEditBlock();
        }
        cursor.setPosition(edited.anchor);
        cursor.setPosition(edited.cursor, QTextCursor::KeepAnchor);
        m_edit.setTextCursor(cursor);
    }
    void setColours(const std::vector<ColouredText>& colours) override
    {
        QList<QTextEdit::ExtraSelection> selections;
        for (const ColouredText& piece : colours) {
            QTextEdit::ExtraSelection selection;
            selection.format = formatOf(piece, m_edit);
            selection.cursor = QTextCursor(m_edit.document());
            selection.cursor.setPosition(piece.begin);
            selection.cursor.setPosition(piece.begin + piece.length, QTextCursor::KeepAnchor);
            selections.append(selection);
        }
        m_edit.setExtraSelections(selections);
    }
    QRect cursorRect() const override
    {
        const QRect inViewport = m_edit.cursorRect();
        return inViewport.translated(m_edit.viewport()->pos());
    }

private:
    QPlainTextEdit& m_edit;
};

} // namespace

std::unique_ptr<TextPort> textPort(QLineEdit& edit)
{
    return std::make_unique<LinePort>(edit);
}

std::unique_ptr<TextPort> textPort(QPlainTextEdit& edit)
{
    return std::make_unique<PlainTextPort>(edit);
}

} // namespace spreadsheet
