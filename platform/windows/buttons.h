#pragma once
#include <QDialogButtonBox>
#include <QPushButton>

#include <functional>

namespace selfreport {

/// The buttons `cmdXPOK`, which Enter presses, and `cmdXPClose` of a dialog, in one row.
inline QDialogButtonBox* okAndClose(const char* okCaption, std::function<void()> ok, const char* closeCaption,
                                    std::function<void()> close)
{
    auto* row = new QDialogButtonBox;
    auto* okButton = row->addButton(QString::fromUtf8(okCaption), QDialogButtonBox::ActionRole);
    okButton->setObjectName("cmdXPOK");
    okButton->setDefault(true);
    QObject::connect(okButton, &QPushButton::clicked, row, std::move(ok));
    auto* closeButton = row->addButton(QString::fromUtf8(closeCaption), QDialogButtonBox::ActionRole);
    closeButton->setObjectName("cmdXPClose");
    closeButton->setAutoDefault(false);
    QObject::connect(closeButton, &QPushButton::clicked, row, std::move(close));
    return row;
}

} // namespace selfreport
