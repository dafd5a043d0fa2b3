#include "platform/windows/background_work.h"
#include "tests/platform/WindowTest.h"

#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <thread>

namespace selfreport {
namespace {

using namespace std::chrono_literals;

struct BackgroundWork : test::WindowTest {};

TEST_F(BackgroundWork, ShortWorkOpensNothingAndThrowsOn)
{
    bool ran = false;
    EXPECT_TRUE(runInBackground("工作", [&](WorkProgress&) { ran = true; }));
    EXPECT_TRUE(ran);
    EXPECT_THROW(runInBackground("工作", [](WorkProgress&) { throw std::runtime_error("坏了"); }),
                 std::runtime_error);
}

TEST_F(BackgroundWork, LongWorkShowsHowFarItIsAndStopsWhenAsked)
{
    int steps = 0;
    QTimer::singleShot(600, qApp, [] {
        QWidget& window = *QApplication::activeModalWidget();
        EXPECT_EQ(window.objectName(), "workProgress");
        auto& bar = *window.findChild<QProgressBar*>();
        EXPECT_EQ(bar.maximum(), 1000);
        EXPECT_GT(bar.value(), 10);
        EXPECT_EQ(window.findChild<QLabel*>()->text(), "第二步");
        QTest::keyClick(&window, Qt::Key_Escape);
        EXPECT_TRUE(window.isVisible()) << "until the work has ended";
    });
    EXPECT_TRUE(runInBackground("工作", [&](WorkProgress& progress) {
        while (!progress.cancelled() && steps < 1000) {
            progress.tell("第二步", ++steps, 1000);
            std::this_thread::sleep_for(5ms);
        }
    }));
    EXPECT_LT(steps, 1000);
}

} // namespace
} // namespace selfreport
