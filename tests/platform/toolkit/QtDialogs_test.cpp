#include "platform/toolkit/QtDialogs.h"

#include "platform/windows/text_room.h"

#include <gtest/gtest.h>
#include <QApplication>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <functional>

namespace selfreport {
namespace {

/// What a message box looked like before its button was pressed.
struct SeenBox {
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    QString title, text;
    bool showsTitle = false; ///< whole, beside a window manager's buttons
    QMessageBox::StandardButtons buttons;
};

/// Presses a button of the next message box.
void pressWhenShown(SeenBox& seen, QMessageBox::StandardButton button)
{
    QTimer::singleShot(0, qApp, [&seen, button] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        ASSERT_TRUE(box != nullptr && box->objectName() == "messageBox");
        seen = {box->icon(), box->windowTitle(), box->text(), box->width() >= titleRoom(*box),
                box->standardButtons()};
        box->button(button)->click();
    });
}

TEST(QtDialogs, ShowNothingWithoutAnApplicationAndTheBoxWithOne)
{
    QtDialogs boxes;
    boxes.message(Icon::critical, "标题", "没有界面");
    EXPECT_FALSE(boxes.question("标题", "没有界面?"));

    int count = 1;
    char name[] = "tests";
    char* arguments[] = {name, nullptr};
    const QApplication application(count, arguments);
    const struct {
        Icon icon;
        QMessageBox::Icon shown;
    } icons[] = {{Icon::none, QMessageBox::NoIcon},
                 {Icon::information, QMessageBox::Information},
                 {Icon::exclamation, QMessageBox::Warning},
                 {Icon::critical, QMessageBox::Critical}};
    for (const auto& [icon, shown] : icons) {
        SeenBox seen;
        pressWhenShown(seen, QMessageBox::Ok);
        boxes.message(icon, "账套", "<b>不是标记</b>!");
        EXPECT_EQ(seen.icon, shown);
        EXPECT_EQ(seen.title, "账套");
        EXPECT_TRUE(seen.showsTitle);
        EXPECT_EQ(seen.text, "<b>不是标记</b>!");
        EXPECT_EQ(seen.buttons, QMessageBox::Ok);
    }
    for (const auto button : {QMessageBox::Yes, QMessageBox::No}) {
        SeenBox seen;
        pressWhenShown(seen, button);
        EXPECT_EQ(boxes.question("账套", "确定要删除吗?"), button == QMessageBox::Yes);
        EXPECT_EQ(seen.icon, QMessageBox::Question);
        EXPECT_EQ(seen.buttons, QMessageBox::Yes | QMessageBox::No);
    }
}

TEST(QtDialogs, ChoicesAreMadeByButtonAndCancelledByDefault)
{
    QtDialogs boxes;
    EXPECT_FALSE(boxes.choose(Icon::question, "账套", "没有界面?", {"覆盖"}));

    int count = 1;
    char name[] = "tests";
    char* arguments[] = {name, nullptr};
    const QApplication application(count, arguments);
    const auto answered = [&](const std::function<void(QMessageBox&)>& act) {
        QTimer::singleShot(0, qApp, [&act] {
            auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            ASSERT_TRUE(box);
            EXPECT_EQ(box->defaultButton()->text(), "取消");
            act(*box);
        });
        return boxes.choose(Icon::question, "账套", "已由 李 保存。", {"覆盖", "另存为新报表"});
    };
    const auto pressed = [&](const QString& caption) {
        return answered([caption](QMessageBox& box) {
            for (QAbstractButton* const button : box.buttons())
                if (button->text() == caption)
                    button->click();
        });
    };
    EXPECT_EQ(pressed("覆盖"), 0u);
    EXPECT_EQ(pressed("另存为新报表"), 1u);
    EXPECT_FALSE(pressed("取消"));
    for (const Qt::Key key : {Qt::Key_Escape, Qt::Key_Return, Qt::Key_Enter})
        EXPECT_FALSE(answered([key](QMessageBox& box) { QTest::keyClick(&box, key); })) << key;
    EXPECT_FALSE(answered([](QMessageBox& box) { box.close(); }));
}

} // namespace
} // namespace selfreport
