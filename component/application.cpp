#include "component/application.h"
#include "component/host_call.h"
#include "platform/toolkit/ChineseTexts.h"
#include "platform/toolkit/QtDialogs.h"
#include "platform/toolkit/QtSettings.h"
#include "platform/toolkit/toolkit_dialogs.h"
#include "platform/windows/CancellableWait.h"

#include <QApplication>
#include <QVersionNumber>

#include <atomic>
#include <clocale>
#include <cstdio>

namespace selfreport {

namespace {

std::atomic<bool> started = false;
QApplication* ours = nullptr; ///< made here; null: the host's is used

/// Puts the process's C locale back as it was.
class LocaleKept {
public:
    LocaleKept()
        : m_former(std::setlocale(LC_ALL, nullptr))
    {
    }
    ~LocaleKept() { std::setlocale(LC_ALL, m_former.c_str()); }
    LocaleKept(const LocaleKept&) = delete;
    LocaleKept& operator=(const LocaleKept&) = delete;

private:
    std::string m_former;
};

void refuseOtherToolkit()
{
    if (const auto other = foreignToolkit())
        throw HostError("主程序已装入另一版本的界面库,无法显示窗口: " + *other);
    const QVersionNumber present = QVersionNumber::fromString(QString::fromLatin1(qVersion()));
    if (present < QVersionNumber::fromString(QStringLiteral(QT_VERSION_STR)))
        throw HostError(std::string("主程序的界面库版本过低,无法显示窗口: ") + qVersion());
}

/// Leaves out a complaint about a folder that only desktop sessions have.
void passMessage(QtMsgType, const QMessageLogContext&, const QString& text)
{
    if (!text.contains(QLatin1String("XDG_RUNTIME_DIR")))
        std::fprintf(stderr, "%s\n", qPrintable(text));
}

/// The toolkit ends the process when it finds no display, so one that always works stands last in line.
void makeApplication(Display display)
{
    static int count = 1;
    static char name[] = "selfreport";
    static char* arguments[] = {name, nullptr};
    const LocaleKept locale; // the application object sets the user's
    const QByteArray asked = qgetenv("QT_QPA_PLATFORM");
    if (asked.isEmpty())
        qputenv("QT_QPA_PLATFORM", display == Display::needed ? "xcb;wayland;offscreen" : "offscreen");
    const QtMessageHandler former = display == Display::none ? qInstallMessageHandler(passMessage) : nullptr;
    ours = new QApplication(count, arguments);
    if (display == Display::none)
        qInstallMessageHandler(former);
    if (asked.isEmpty())
        qunsetenv("QT_QPA_PLATFORM"); // not for the processes that the host starts
}

/// Boxes and settings are the user's from here on, where nothing replaces them.
void useToolkitServices()
{
    static QtDialogs boxes;
    static QtSettings settings;
    static CallWait calls;
    Dialogs::usual() = &boxes;
    SettingsStore::usual() = &settings;
    UserWait::usual() = &calls;
    useToolkitDialogs();
}

bool displayReached()
{
    return QGuiApplication::platformName() != QLatin1String("offscreen") ||
           qEnvironmentVariable("QT_QPA_PLATFORM") == QLatin1String("offscreen");
}

} // namespace

void startToolkit(Display display)
{
    refuseOtherToolkit();
    if (QCoreApplication::instance() == nullptr)
        makeApplication(display);
    if (qobject_cast<QApplication*>(QCoreApplication::instance()) == nullptr)
        throw HostError("主程序的界面库没有启用窗口,无法显示报表。");
    started = true;
    if (display == Display::none)
        return;
    if (!displayReached())
        throw HostError("没有可用的显示器,无法显示窗口。");
    useToolkitServices();
    useChineseTexts(ours ? ChineseFor::wholeProgram : ChineseFor::ourWindows);
}

bool toolkitStarted()
{
    return started;
}

} // namespace selfreport
