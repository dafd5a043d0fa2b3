#pragma once
#include "spreadsheet/view/FormulaAssistant.h"

#include <QPlainTextEdit>
#include <QPointer>

class QLabel;

namespace spreadsheet {

/// The editor that lies over a cell while it is edited. It grows with its text over the cells to the right
/// and below. It changes no cell: whoever owns it enters the text when it asks for that.
class CellEditor : public QPlainTextEdit {
    Q_OBJECT

public:
    enum class Mode {
        enter, ///< begun by typing: arrow keys end the entry, or point while a formula takes a reference
        edit,  ///< begun by F2 or a double click: arrow keys move within the text
    };

    /// @param parent  the widget that shows the cells
    CellEditor(QWidget* parent, const FunctionHints& hints);
    ~CellEditor() override;

    /// Begins with a text; the cursor stands behind it.
    /// @param cell    the cell's place in the parent
    /// @param limits  how far the editor may grow
    void open(const FormulaContext& context, const QString& text, Mode mode, const QRect& cell,
              const QRect& limits);
    /// Room in pixels that the text leaves on its left.
    void setIndent(int pixels);
    /// The cell's place after scrolling or zooming.
    void place(const QRect& cell, const QRect& limits);
    void close();
    bool isOpen() const { return m_open; }
    Mode mode() const { return m_mode; }
    /// The text was changed since it was opened.
    bool isChanged() const { return toPlainText() != m_former; }

    FormulaAssistant& assistant() { return *m_assistant; }

    /// Shows why the text was refused, below the editor ("editorProblem"), and marks the place. Arrow keys
    /// move within the text from then on.
    /// @param place  UTF-16 units; -1: no place
    void showProblem(const QString& reason, int place);

    /// Takes the events of an input method while the parent still has the focus: composing must not change
    /// the focus, which would end it.
    void compose(QInputMethodEvent* event);
    bool isComposing() const { return m_composing; }

Q_SIGNALS:
    /// Enter, Tab or, in mode enter, a key that leaves the cell: the text should be entered. A slot that
    /// ignores the event hands it on to the parent.
    void commitRequested(QKeyEvent* event);
    /// Esc: the cell keeps what it had.
    void cancelled();
    /// A key that moves what is pointed at; with Shift it makes a range.
    void pointingKey(int key, Qt::KeyboardModifiers modifiers);
    /// What was to be pasted is no text for a cell; nothing was put in.
    void pasteRefused(const QString& why);

protected:
    void insertFromMimeData(const QMimeData* source) override;
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void inputMethodEvent(QInputMethodEvent* event) override;

private:
    void fit();
    void hideProblem();
    void deleteToLineEnd();

    FormulaAssistant* m_assistant;
    QPointer<QLabel> m_problem; ///< beside the editor, and the parent's like it
    QString m_former;
    Mode m_mode = Mode::enter;
    QRect m_cell, m_limits;
    bool m_open = false;
    bool m_composing = false;
};

} // namespace spreadsheet
