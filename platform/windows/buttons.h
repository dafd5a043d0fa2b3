#pragma once
#include <QDialogButtonBox>
#include <QPushButton>

#include <functional>

namespace selfreport {

/// The button that Enter presses in its dialog. The toolkit's own is forgotten if it was made the default one
/// before it stood in the dialog, as soon as another button was that for a while.
class DefaultButton : public QPushButton {
public:
    explicit DefaultButton(const QString& caption)
        : QPushButton(caption)
    {
    }

protected:
    void showEvent(QShowEvent* event) override
    {
        setDefault(false); // what it is already would not be told to the dialog
        setDefault(true);
        QPushButton::showEvent(event);
    }
};

/// The buttons `cmdXPOK`, which Enter presses, and `cmdXPClose` of a dialog, in one row.
inline QDialogButtonBox* okAndClose(const char* okCaption, std::function<void()> ok, const char* closeCaption,
                                    std::function<void()> close)
{
    auto* row = new QDialogButtonBox;
    auto* okButton = new DefaultButton(QString::fromUtf8(okCaption));
    row->addButton(okButton, QDialogButtonBox::ActionRole);
    okButton->setObjectName("cmdXPOK");
    QObject::connect(okButton, &QPushButton::clicked, row, std::move(ok));
    auto* closeButton = row->addButton(QString::fromUtf8(closeCaption), QDialogButtonBox::ActionRole);
    closeButton->setObjectName("cmdXPClose");
    closeButton->setAutoDefault(false);
    QObject::connect(closeButton, &QPushButton::clicked, row, std::move(close));
    return row;
}

} // namespace selfreport
