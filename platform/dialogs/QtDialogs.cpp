#include "platform/dialogs/QtDialogs.h"

#include <QApplication>
#include <QMessageBox>
#include <QString>

namespace selfreport {

namespace {

bool canShow()
{
    return qobject_cast<QApplication*>(QCoreApplication::instance()) != nullptr;
}

QString fromUtf8(std::string_view text)
{
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

QMessageBox::Icon toolkitIcon(Icon icon)
{
    switch (icon) {
    case Icon::information:
        return QMessageBox::Information;
    case Icon::question:
        return QMessageBox::Question;
    case Icon::exclamation:
        return QMessageBox::Warning;
    case Icon::critical:
        return QMessageBox::Critical;
    case Icon::none:
        break;
    }
    return QMessageBox::NoIcon;
}

int show(Icon icon, std::string_view title, std::string_view text, QMessageBox::StandardButtons buttons)
{
    QMessageBox box(toolkitIcon(icon), fromUtf8(title), fromUtf8(text), buttons,
                    QApplication::activeWindow());
    box.setObjectName("messageBox");
    box.setTextFormat(Qt::PlainText);                                // a server's text may look like markup
    const bool waits = QGuiApplication::overrideCursor() != nullptr; // whoever asks here waits for the user
    if (waits)
        QGuiApplication::setOverrideCursor(Qt::ArrowCursor);
    const int answer = box.exec();
    if (waits)
        QGuiApplication::restoreOverrideCursor();
    return answer;
}

} // namespace

void QtDialogs::message(Icon icon, std::string_view title, std::string_view text)
{
    if (canShow())
        show(icon, title, text, QMessageBox::Ok);
}

bool QtDialogs::ask(Icon icon, std::string_view title, std::string_view text)
{
    return canShow() && show(icon, title, text, QMessageBox::Yes | QMessageBox::No) == QMessageBox::Yes;
}

} // namespace selfreport
