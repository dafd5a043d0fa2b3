// Also run under a window manager, whose titles stand outside the windows.
#include "platform/windows/settle.h"

#include "tests/platform/WindowTest.h"

#include <QDebug>
#include <QDialog>
#include <QScreen>
#include <QWindow>

#include <csignal>

namespace selfreport {
namespace {

class OnScreen : public test::WindowTest {
protected:
    /// A widget's own `frameGeometry` may keep what it measured while the manager put the frame round it.
    static QRect frameOf(const QWidget& window)
    {
        return window.geometry().marginsAdded(window.windowHandle()->frameMargins());
    }
};

TEST_F(OnScreen, WindowsOpenWithTheirTitlesInSight)
{
    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
    const bool hasManager = QGuiApplication::platformName() == "xcb"; // it puts the titles round windows
    QDialog parent;
    parent.setGeometry(screen.right() - 200, 0, 200, 100);
    show(parent);
    const struct {
        const char* name;
        QSize size;
        QPoint place;
        bool isChild;
    } cases[] = {
        {"small", {300, 200}, screen.center(), false},
        {"above and left", {300, 200}, {-80, -70}, false},
        {"below and right", {300, 200}, screen.bottomRight() - QPoint(20, 20), false},
        {"taller than the screen", {300, screen.height() + 200}, {40, -90}, false},
        {"wider than the screen", {screen.width() + 200, 200}, {-90, 40}, false},
        {"over its parent", {screen.width() / 2, screen.height()}, {}, true},
    };
    for (const auto& c : cases) {
        QDialog dialog(c.isChild ? &parent : nullptr);
        dialog.resize(c.size);
        if (!c.isChild)
            dialog.move(c.place);
        openOnScreen(dialog);
        show(dialog);
        const QRect opened = dialog.geometry();
        QTest::qWait(600); // the manager's answers
        if (c.isChild && hasManager) {
            EXPECT_EQ(dialog.geometry(), opened) << c.name << " jumps";
        }
        // A busy manager answers later.
        EXPECT_TRUE(QTest::qWaitFor([&] { return screen.contains(frameOf(dialog)); }))
            << c.name << ": " << QDebug::toString(frameOf(dialog)).toStdString();
        EXPECT_TRUE(QString(c.name) != "small" || dialog.size() == c.size);
    }
}

TEST_F(OnScreen, ATitleThatComesLateIsInSightToo)
{
    const int manager = qEnvironmentVariableIntValue("WINDOW_MANAGER");
    if (manager == 0)
        GTEST_SKIP() << "no window manager";
    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
    QDialog parent;
    parent.resize(screen.size());
    ::kill(manager, SIGSTOP); // as busy as a machine makes it that builds
    QDialog alone, over(&parent);
    alone.setGeometry({{40, 0}, QSize(300, 200)});
    over.resize(screen.width() / 2, screen.height());
    parent.show();
    for (QDialog* const dialog : {&alone, &over}) {
        openOnScreen(*dialog);
        dialog->show();
    }
    QTest::qWait(800);
    ::kill(manager, SIGCONT);
    for (const QDialog* const dialog : {&alone, &over}) {
        EXPECT_TRUE(QTest::qWaitFor([&] { return frameOf(*dialog).height() > dialog->height(); }));
        EXPECT_TRUE(QTest::qWaitFor([&] { return screen.contains(frameOf(*dialog)); }, 3000))
            << QDebug::toString(frameOf(*dialog)).toStdString();
    }
}

} // namespace
} // namespace selfreport
