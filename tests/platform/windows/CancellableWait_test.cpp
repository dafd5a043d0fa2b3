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

    /// Types as a user does, whoever has the focus by then: a window manager moves it when it likes.
    static void type(const char* keys)
    {
        QWindow* const focus = QApplication::focusWindow();
        ASSERT_TRUE(focus);
        typeFor(*focus, keys);
    }
    static void typeFor(QWindow& window, const char* keys)
    {
        for (const char* key = keys; *key; ++key)
            QTest::keyClick(&window, *key);
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
        EXPECT_FALSE(waitingDialog());
        type("1");
        QTest::mouseClick(window.windowHandle(), Qt::LeftButton, {}, window.button->geometry().center());
        type("0");
        window.update();
    });
    QTimer::singleShot(350, &window, [&] { paintedEarly = window.paints - before; });
    std::atomic<bool> isOver = false;
    whenWaiting([&](QWidget& dialog) {
        typeFor(*window.windowHandle(), "0");    // which has the focus until the window manager moves it
        typeFor(*dialog.windowHandle(), " 1\r"); // neither blank nor Enter may press the dialog's button
        QTest::mouseClick(window.windowHandle(), Qt::LeftButton, {}, window.button->geometry().center());
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
    // At once, as keys may come; a window manager on a busy machine takes its time.
    EXPECT_TRUE(QApplication::activeWindow() == &window ||
                (QGuiApplication::platformName() == "xcb" &&
                 QTest::qWaitFor([&] { return QApplication::activeWindow() == &window; })));
    EXPECT_GT(paintedEarly, 0);
    EXPECT_EQ(window.text->text(), "") << "the action's own box would come here";
    EXPECT_TRUE(QTest::qWaitFor([&] { return window.text->text() == "100 1"; }))
        << window.text->text().toStdString();
    EXPECT_TRUE(QTest::qWaitFor([&] { return window.clicks == 2; }));
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

TEST_F(CancellableWaits, WhatIsTypedBeforeItHasArrivedComesBehind)
{
    Window window;
    show(window);
    QTimer::singleShot(200, &window, [&] { type("100"); });
    EXPECT_EQ(waitFor(window, 300ms), CallEnd::done);
    typeFor(*window.windowHandle(), "9");
    EXPECT_TRUE(QTest::qWaitFor([&] { return window.text->text() == "1009"; }))
        << window.text->text().toStdString();
}

TEST_F(CancellableWaits, CancellingLeavesASilentCallWithinHalfASecond)
{
    Window window;
    show(window);
    const auto release = std::make_shared<std::atomic<bool>>(false);
    const auto ended = std::make_shared<std::atomic<bool>>(false);
    int stops = 0;
    Clock::time_point cancelled;
    whenWaiting([&](QWidget& opened) {
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
    EXPECT_FALSE(waitingDialog());
    *release = true;
    EXPECT_TRUE(QTest::qWaitFor([&] { return ended->load(); })) << "the thread ends by itself";
}

TEST_F(CancellableWaits, KeysCancelThatCannotBeMeantForTheWindow)
{
    const struct {
        const char* keys;
        Qt::Key last;
        bool isAtWindow; ///< the focus has not been moved yet
        int after;       ///< milliseconds that the dialog has been open
        bool cancels;
    } cases[] = {
        {"", Qt::Key_Escape, false, 0, true},    {"", Qt::Key_Escape, true, 0, true},
        {"", Qt::Key_Space, false, 1200, true},  {"", Qt::Key_Return, false, 1200, true},
        {"", Qt::Key_Return, true, 1200, false}, {"1", Qt::Key_Return, false, 1200, false},
    };
    for (const auto& c : cases) {
        Window window;
        show(window);
        std::atomic<bool> isOver = false;
        whenWaiting([&](QWidget& dialog) {
            ASSERT_TRUE(QTest::qWaitFor([&] { return QApplication::activeWindow() == &dialog; }));
            QTest::qWait(c.after);
            QWindow& receiver = *(c.isAtWindow ? window : dialog).windowHandle();
            typeFor(receiver, c.keys);
            QTest::keyClick(&receiver, c.last);
            isOver = true;
        });
        CancellableWait waiting("工作", &window);
        waiting.runApart(
            [&isOver] {
                while (!isOver)
                    std::this_thread::sleep_for(1ms);
                std::this_thread::sleep_for(50ms);
            },
            {});
        EXPECT_EQ(waiting.isCancelled(), c.cancels) << c.keys << c.last << c.isAtWindow;
    }
}

TEST_F(CancellableWaits, WhatIsHeldTwiceComesInItsOrder)
{
    Window window;
    show(window);
    QObject::connect(window.button, &QPushButton::clicked, &window, [&] {
        QTimer::singleShot(50, &window, [&] { type("3"); });
        waitFor(window, 300ms);
    });
    QTimer::singleShot(200, &window, [&] {
        type("0");
        QTest::mouseClick(window.windowHandle(), Qt::LeftButton, {}, window.button->geometry().center());
        type("12");
    });
    waitFor(window, 300ms);
    EXPECT_TRUE(QTest::qWaitFor([&] { return window.text->text() == "0123"; }))
        << window.text->text().toStdString();
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
    QObject::connect(&looking, &QTimer::timeout, [&] { seen = seen || waitingDialog(); });
    looking.start(10);
    for (int call = 0; call < 3; ++call)
        calls.runApart([] { std::this_thread::sleep_for(300ms); }, {});
    EXPECT_TRUE(seen) << "the user waits for their sum";
}

} // namespace
} // namespace selfreport
