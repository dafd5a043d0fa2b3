#pragma once
#include <QAbstractSpinBox>
#include <QApplication>
#include <QInputMethodEvent>
#include <QLineEdit>

namespace selfreport::test {

/// Replaces what a field holds by what an input method gives it, as no key does.
inline void commitText(QAbstractSpinBox& field, const char* text)
{
    field.setFocus();
    field.selectAll();
    QInputMethodEvent committed;
    committed.setCommitString(QString::fromUtf8(text));
    QApplication::sendEvent(field.findChild<QLineEdit*>(), &committed);
}

} // namespace selfreport::test
