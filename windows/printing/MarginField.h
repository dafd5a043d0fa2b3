#pragma once
#include "windows/printing/margin_text.h"

#include <functional>
#include <QLineEdit>

namespace selfreport {

/// A field for inches: one digit, a point, two digits, "_" for an empty place. A number that does not fit is
/// refused with a hint, never changed into another.
class MarginField : public QLineEdit {
public:
    explicit MarginField(QWidget* parent = nullptr);

    void showInches(const std::string& text); ///< as marginText() gives it

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void inputMethodEvent(QInputMethodEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;

private:
    void edit(const std::function<bool(MarginText&)>& change);
    bool typeAll(MarginText& field, const QString& text) const;
    bool eraseSelected(MarginText& field) const;

    MarginText m_field; ///< as the last key left it: what was typed before decides what a point means
    QString m_shown;    ///< before an edit that knows no mask
};

} // namespace selfreport
