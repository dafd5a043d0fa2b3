#include "platform/toolkit/QtDialogs.h"

#include "platform/windows/text_room.h"

#include <QApplication>
#include <QGridLayout>
#include <QMessageBox>
#include <QPushButton>
#include <QString>

#include <algorithm>
#include <utility>

namespace selfreport {

namespace {

bool canShow()
{
    return qobject_cast<QApplication*>(QCoreApplication::instance()) != nullptr;
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

/// While focus goes from one window to another none is active.
QWidget* windowInFront()
{
    QWidget* const active = QApplication::activeWindow();
    return active ? active : QApplication::activeModalWidget();
}

/// Ours whatever language the system or the host speaks.
constexpr std::pair<QMessageBox::StandardButton, const char*> captions[] = {
    {QMessageBox::Ok, "确定"}, {QMessageBox::Yes, "是(&Y)"}, {QMessageBox::No, "否(&N)"}};

/// A box over the active window.
struct Box : QMessageBox {
    Box(selfreport::Icon icon, std::string_view title, std::string_view text, StandardButtons buttons)
        : QMessageBox(toolkitIcon(icon), QString::fromUtf8(title), QString::fromUtf8(text), buttons,
                      windowInFront())
    {
        setObjectName("messageBox");
        setTextFormat(Qt::PlainText); // a server's text may look like markup
        for (const auto& [standard, caption] : captions)
            if (QAbstractButton* const shown = button(standard))
                shown->setText(QString::fromUtf8(caption));
        makeRoomForTitle();
    }

private:
    /// The toolkit makes it as wide as its layout asks for, and nothing else counts.
    void makeRoomForTitle()
    {
        auto& grid = dynamic_cast<QGridLayout&>(*layout());
        grid.addItem(new QSpacerItem(titleRoom(*this), 0, QSizePolicy::Minimum, QSizePolicy::Fixed),
                     grid.rowCount(), 0, 1, grid.columnCount());
    }
};

int show(QMessageBox& box)
{
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
    if (!canShow())
        return;
    Box box(icon, title, text, QMessageBox::Ok);
    show(box);
}

bool QtDialogs::ask(Icon icon, std::string_view title, std::string_view text)
{
    if (!canShow())
        return false;
    Box box(icon, title, text, QMessageBox::Yes | QMessageBox::No);
    return show(box) == QMessageBox::Yes;
}

std::optional<std::size_t> QtDialogs::choose(Icon icon, std::string_view title, std::string_view text,
                                             const std::vector<std::string_view>& choices)
{
    if (!canShow())
        return {};
    Box box(icon, title, text, QMessageBox::NoButton);
    std::vector<QAbstractButton*> buttons;
    for (const std::string_view choice : choices)
        buttons.push_back(box.addButton(QString::fromUtf8(choice), QMessageBox::AcceptRole));
    QPushButton* const cancel = box.addButton(QStringLiteral("取消"), QMessageBox::RejectRole);
    box.setDefaultButton(cancel);
    box.setEscapeButton(cancel);
    show(box);
    const auto found = std::ranges::find(buttons, box.clickedButton());
    return found == buttons.end() ? std::nullopt : std::optional<std::size_t>(found - buttons.begin());
}

} // namespace selfreport
