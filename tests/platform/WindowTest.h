#pragma once
#include <gtest/gtest.h>
#include <QApplication>
#include <QTest>
#include <QTimer>

#include <functional>
#include <memory>

namespace selfreport::test {

/// An application object for one test, unless the program has one already.
class WindowTest : public ::testing::Test {
protected:
    /// What is to be deleted later is deleted while the application object lives.
    ~WindowTest() override { QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); }

    /// Shows a widget and waits for it.
    static void show(QWidget& widget)
    {
        widget.show();
        widget.activateWindow(); // access keys work in the active window only
        // The toolkit calls a dialog active as soon as its owner is.
        ASSERT_TRUE(QTest::qWaitFor([&widget] { return QApplication::activeWindow() == widget.window(); }));
    }

    /// Acts on the next modal window of that name as soon as it is there, whatever is waited for before. Must
    /// be called before what opens it.
    static void whenModal(const char* objectName, std::function<void(QWidget&)> act)
    {
        awaitWindow(
            [objectName] {
                QWidget* const modal = QApplication::activeModalWidget();
                return modal && modal->objectName() == objectName ? modal : nullptr;
            },
            objectName, std::move(act), 0);
    }

    /// The dialog in which the user waits for the database; null if it is not open. It is not modal.
    static QWidget* waitingDialog()
    {
        for (QWidget* const window : QApplication::topLevelWidgets())
            if (window->isVisible() && window->objectName() == "workProgress")
                return window;
        return nullptr;
    }
    /// The same as whenModal() for it.
    static void whenWaiting(std::function<void(QWidget&)> act)
    {
        awaitWindow(waitingDialog, "workProgress", std::move(act), 0);
    }

    /// Alt and a letter. A button that is reached so clicks a tenth of a second later.
    static void accessKey(QWidget& window, Qt::Key letter)
    {
        QTest::keyClick(&window, letter, Qt::AltModifier);
        QTest::qWait(150);
    }

    template <class Control>
    static Control& control(QWidget& window, const char* name)
    {
        auto* const found = window.findChild<Control*>(name);
        if (found == nullptr)
            throw std::runtime_error(std::string("no control ") + name);
        return *found;
    }

private:
    static void awaitWindow(std::function<QWidget*()> find, const char* name,
                            std::function<void(QWidget&)> act, int waited)
    {
        constexpr int pause = 10;         // milliseconds
        constexpr int longestWait = 5000; // milliseconds
        QTimer::singleShot(waited == 0 ? 0 : pause, qApp, [=, act = std::move(act)]() mutable {
            QWidget* const window = find();
            if (!window && waited < longestWait)
                return awaitWindow(std::move(find), name, std::move(act), waited + pause);
            ASSERT_NE(window, nullptr) << name << " did not open; " << QApplication::activeModalWidget();
            act(*window);
        });
    }

    int m_count = 1;
    char m_name[6] = "tests";
    char* m_arguments[2] = {m_name, nullptr};
    std::unique_ptr<QApplication> m_application{
        QCoreApplication::instance() ? nullptr : new QApplication(m_count, m_arguments)};
};

} // namespace selfreport::test
