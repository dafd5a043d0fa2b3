#include "platform/windows/CancellableWait.h"

#include "platform/toolkit/QtDialogs.h"
#include "tests/platform/WindowTest.h"

#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include <atomic>
#include <chrono>
#include <memory>
#include <thread>

namespace selfreport {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

struct CancellableWaits : test::WindowTest {
    /// A window with a text and a button that counts.
    struct Window : QWidget {
        Window()
        {
            auto* rows = new QVBoxLayout(this);
            rows->addWidget(text = new QLineEdit);
            rows->addWidget(button = new QPushButton("&N"));
            QObject::connect(button, &QPushButton::clicked, this, [this] { ++clicks; });
            button->setFocusPolicy(Qt::NoFocus); // a click leaves the text its keys
            text->setFocus();
        }
        void paintEvent(QPaintEvent*) override { ++paints; }
        QLineEdit* text;
        QPushButton* button;
        int clicks = 0;
        int paints = 0;
    };

    static QWidget* dialog()
    {
        QWidget* const modal = QApplication::activeModalWidget();
        return modal && modal->objectName() == "workProgress" ? modal : nullptr;
    }
    /// Types as a user does: into whatever has the focus, which a window manager moves between two windows.
    static void type(const char* keys)
    {
        ASSERT_TRUE(QTest::qWaitFor([] {
            const QWidget* const modal = QApplication::activeModalWidget();
            return QApplication::focusWindow() &&
                   (!modal || modal->windowHandle() == QApplication::focusWindow());
        }));
        for (const char* key = keys; *key; ++key)
            QTest::keyClick(QApplication::focusWindow(), *key);
    }
    static CallEnd waitFor(QWidget& window, std::chrono::milliseconds time)
    {
        CancellableWait waiting("工作", &window);
        return waiting.runApart([time] { std::this_thread::sleep_for(time); }, {});
    }
};

TEST_F(CancellableWaits, PaintsFromTheStartAndKeepsInputForItsWindow)
{
    Window window;
    show(window);
    const int before = window.paints;
    int paintedEarly = 0;
    QTimer::singleShot(200, &window, [&] { // no dialog yet
        EXPECT_FALSE(dialog());
        type("1");
        QTest::mouseClick(window.windowHandle(), Qt::LeftButton, {}, window.button->geometry().center());
        type("0");
        window.update();
    });
    QTimer::singleShot(350, &window, [&] { paintedEarly = window.paints - before; });
    std::atomic<bool> isOver = false;
    whenModal("workProgress", [&](QWidget&) {
        type("0 1\r"); // neither the blank nor Enter may press the dialog's button
        EXPECT_EQ(window.text->text(), "");
        EXPECT_EQ(window.clicks, 0);
        isOver = true;
    });
    const auto work = [&isOver] {
        while (!isOver)
            std::this_thread::sleep_for(1ms);
    };
    {
        CancellableWait waiting("工作", &window);
        EXPECT_EQ(waiting.runApart(work, {}), CallEnd::done);
    }
    EXPECT_GT(paintedEarly, 0);
    EXPECT_EQ(window.text->text(), "") << "the action's own box would come here";
    EXPECT_TRUE(QTest::qWaitFor([&] { return window.text->text() == "100 1"; }))
        << window.text->text().toStdString();
    EXPECT_EQ(window.clicks, 1);
    EXPECT_EQ(QApplication::activeWindow(), &window);
}

TEST_F(CancellableWaits, ABoxThatItOpenedGetsNoneOfIt)
{
    Window window;
    show(window);
    QTimer::singleShot(200, &window, [&] { type("7\r"); });
    EXPECT_EQ(waitFor(window, 300ms), CallEnd::done);
    bool stood = false;
    QTimer::singleShot(300, &window, [&] {
        QWidget* const box = QApplication::activeModalWidget();
        stood = box && box->objectName() == "messageBox";
        EXPECT_EQ(window.text->text(), "");
        if (box)
            QTest::keyClick(box, Qt::Key_Return); // of the user who has read it
    });
    QtDialogs().message(Icon::exclamation, "t", "没有保存");
    EXPECT_TRUE(stood) << "the held Enter closed it unread";
    EXPECT_TRUE(QTest::qWaitFor([&] { return window.text->text() == "7"; }));
}

TEST_F(CancellableWaits, WhatIsTypedForAWindowThatOpensReachesIt)
{
    Window owner;
    show(owner);
    Window opened;
    QTimer::singleShot(200, &owner, [&] { type("1001"); });
    waitFor(opened, 300ms);
    opened.show();
    EXPECT_TRUE(QTest::qWaitFor([&] { return opened.text->text() == "1001"; }));
    EXPECT_EQ(owner.text->text(), "");
}

TEST_F(CancellableWaits, CancellingLeavesASilentCallWithinHalfASecond)
{
    Window window;
    show(window);
    const auto release = std::make_shared<std::atomic<bool>>(false);
    const auto ended = std::make_shared<std::atomic<bool>>(false);
    int stops = 0;
    Clock::time_point cancelled;
    whenModal("workProgress", [&](QWidget& opened) {
        cancelled = Clock::now();
        QTest::mouseClick(opened.findChild<QPushButton*>("cmdCancel"), Qt::LeftButton);
    });
    CallEnd end{};
    {
        CancellableWait waiting("工作", &window);
        end = waiting.runApart(
            [release, ended] {
                while (!*release)
                    std::this_thread::sleep_for(1ms);
                *ended = true;
            },
            [&] { ++stops; });
        EXPECT_TRUE(waiting.isCancelled());
    }
    EXPECT_EQ(end, CallEnd::leftBehind);
    EXPECT_LT(Clock::now() - cancelled, 1200ms);
    EXPECT_GT(stops, 3);
    EXPECT_FALSE(dialog());
    *release = true;
    EXPECT_TRUE(QTest::qWaitFor([&] { return ended->load(); })) << "the thread ends by itself";
}

TEST_F(CancellableWaits, ClosingTheWindowWaitsForTheEnd)
{
    Window window;
    show(window);
    QTimer::singleShot(200, &window, [&] {
        window.windowHandle()->close();
        EXPECT_TRUE(window.isVisible());
    });
    waitFor(window, 300ms);
    EXPECT_TRUE(window.isVisible());
    EXPECT_TRUE(QTest::qWaitFor([&] { return !window.isVisible(); }));
}

TEST_F(CancellableWaits, CallsThatFollowEachOtherShareTheirPatience)
{
    Window window;
    show(window);
    CallWait calls;
    bool seen = false;
    QTimer looking;
    QObject::connect(&looking, &QTimer::timeout, [&] { seen = seen || dialog(); });
    looking.start(10);
    for (int call = 0; call < 3; ++call)
        calls.runApart([] { std::this_thread::sleep_for(300ms); }, {});
    EXPECT_TRUE(seen) << "the user waits for their sum";
}

} // namespace
} // namespace selfreport
