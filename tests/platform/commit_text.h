#pragma once
#include <QAbstractSpinBox>
#include <QApplication>
#include <QInputMethodEvent>
#include <QLineEdit>

namespace selfreport::test {

/// Replaces what a field holds by what an input method gives it, as no key does.
inline void commitText(QLineEdit& line, const char* text)
{
    line.setFocus();
    line.selectAll();
    QInputMethodEvent committed;
    committed.setCommitString(QString::fromUtf8(text));
    QApplication::sendEvent(&line, &committed);
}
inline void commitText(QAbstractSpinBox& field, const char* text)
{
    commitText(*field.findChild<QLineEdit*>(), text);
}

} // namespace selfreport::test
