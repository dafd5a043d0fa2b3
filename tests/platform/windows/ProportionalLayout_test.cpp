#include "platform/windows/ProportionalLayout.h"

#include "tests/platform/WindowTest.h"

#include <QPushButton>

namespace selfreport {
namespace {

class ProportionalLayoutTest : public test::WindowTest {};

TEST_F(ProportionalLayoutTest, ControlsKeepTheirShareOfTheWindow)
{
    QWidget window;
    auto* layout = new ProportionalLayout(&window, {6000, 4500});
    auto* list = new QWidget;
    auto* button = new QPushButton("关闭(&E)");
    layout->place(list, {150, 150, 5700, 3000});
    layout->place(button, {4500, 3600, 1350, 450});
    for (const QSize size : {QSize(800, 600), QSize(1600, 600), QSize(900, 1200)}) {
        window.resize(size);
        show(window);
        EXPECT_NEAR(list->x(), size.width() / 40.0, 1);
        EXPECT_NEAR(list->width(), size.width() * 0.95, 1);
        EXPECT_NEAR(list->height(), size.height() / 1.5, 1);
        EXPECT_NEAR(button->x(), size.width() * 0.75, 1);
        EXPECT_NEAR(button->y(), size.height() * 0.8, 1);
    }
}

TEST_F(ProportionalLayoutTest, OpensLargeEnoughForItsTexts)
{
    QWidget window;
    auto* layout = new ProportionalLayout(&window, {6000, 4500});
    auto* button = new QPushButton("很长很长很长很长很长很长的说明文字");
    layout->place(button, {0, 0, 600, 450});
    const int needed = button->minimumSizeHint().width();
    window.resize(window.sizeHint());
    show(window);
    EXPECT_GE(button->width(), needed - 1);
    window.resize(10, 10);
    EXPECT_GE(button->width(), needed - 1);
}

} // namespace
} // namespace selfreport
