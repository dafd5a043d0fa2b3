#include "tests/CommaLocale.h"

#include <QAction>
#include <QApplication>
#include <QFile>
#include <QFileDialog>
#include <QMessageBox>
#include <QPluginLoader>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <optional>

namespace {

/// The host's user: types three cells into the designer that opens, exports it, closes it.
class User : public QObject {
public:
    explicit User(QString file)
        : m_file(std::move(file))
    {
        startTimer(5);
    }
    bool isDone() const { return m_step == Step::close; }

private:
    enum class Step { type, save, close };

    /// What returns only when a further window has closed is called from outside: a timer does not run within
    /// itself.
    static void later(QObject* object, const char* call)
    {
        QMetaObject::invokeMethod(object, call, Qt::QueuedConnection);
    }
    void timerEvent(QTimerEvent*) override
    {
        QWidget* const window = QApplication::activeModalWidget();
        if (auto* const box = qobject_cast<QMessageBox*>(window)) {
            ADD_FAILURE() << box->text().toStdString();
            box->reject();
        } else if (auto* const dialog = qobject_cast<QFileDialog*>(window)) {
            m_step = Step::close;
            dialog->selectFile(m_file);
            later(dialog, "accept");
        } else if (window && m_step == Step::type) {
            auto* const grid = window->findChild<QWidget*>("fps1");
            grid->setFocus();
            if (!QApplication::focusWidget() || ++m_ticks < 5) // time for the host's timer too
                return;
            m_step = Step::save;
            type();
            later(window->findChild<QAction*>("MenuExportXlsx"), "trigger");
        } else if (window && m_step == Step::close && QFile::exists(m_file)) {
            later(window, "close");
        }
    }
    static void type()
    {
        for (const char* entry : {"1234.5", "=A1*1.001+{0.5}", "=1/3"}) {
            QTest::keyClicks(QApplication::focusWidget(), entry);
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
        }
    }

    const QString m_file;
    Step m_step = Step::type;
    int m_ticks = 0;
};

struct Heard {
    int ticks = 0, wrong = 0;
};

/// What the designer exports in a host whose timer formats a number every few milliseconds.
QByteArray exported(const QTemporaryDir& folder, bool withComma, Heard& heard)
{
    const QString file = folder.filePath("a.xlsx");
    QFile::remove(file);
    const QPluginLoader loader(QStringLiteral(SELFREPORT_LIBRARY));
    const std::unique_ptr<QObject> object(const_cast<QPluginLoader&>(loader).instance());
    const QTimer host;
    QObject::connect(&host, &QTimer::timeout, [&] {
        ++heard.ticks;
        heard.wrong += countsWithComma() != withComma;
    });
    const_cast<QTimer&>(host).start(2);
    const User user(file);
    EXPECT_TRUE(QMetaObject::invokeMethod(object.get(), "init", Q_ARG(QString, "Provider=SQLite"),
                                          Q_ARG(QString, "host"), Q_ARG(QString, "1"),
                                          Q_ARG(QString, folder.path())));
    EXPECT_TRUE(QMetaObject::invokeMethod(object.get(), "editForm", Q_ARG(qint16, 1)));
    EXPECT_EQ(object->property("lastError").toString(), "");
    EXPECT_TRUE(user.isDone());
    EXPECT_EQ(countsWithComma(), withComma);
    QFile stream(file);
    EXPECT_TRUE(stream.open(QIODevice::ReadOnly));
    return stream.readAll();
}

/// A toolkit of the host's own, which sets the user's locale when it is made.
struct Host {
    Host()
    {
        for (const char* variable : {"XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME", "HOME"})
            qputenv(variable, home.path().toLocal8Bit());
    }
    QTemporaryDir home;
    int count = 1;
    char name[5] = "host";
    char* arguments[2] = {name, nullptr};
    QApplication application{count, arguments};
};

TEST(CommaLocaleHost, CountsItsOwnWayWhileTheFilesAreTheSame)
{
    const Host host;
    const QTemporaryDir folder;
    Heard plain;
    const QByteArray expected = exported(folder, false, plain);
    EXPECT_TRUE(expected.startsWith("PK"));
    EXPECT_GT(plain.ticks, 0);
    for (const CommaLocale::Reach reach : {CommaLocale::Reach::process, CommaLocale::Reach::thread}) {
        SCOPED_TRACE(static_cast<int>(reach));
        const CommaLocale locale(reach);
        Heard heard;
        EXPECT_EQ(exported(folder, true, heard), expected);
        EXPECT_GT(heard.ticks, 2);
        EXPECT_EQ(heard.wrong, 0);
    }
}

TEST(CommaLocaleHost, KeepsWhatItSetsWhileAWindowIsOpen)
{
    const Host host;
    const QTemporaryDir folder;
    std::optional<CommaLocale> locale;
    QTimer::singleShot(1, [&] { locale.emplace(CommaLocale::Reach::process); });
    Heard heard;
    exported(folder, true, heard);
}

} // namespace
