// Saves a picture of every window into a folder: screenshots_program FOLDER [WINDOW]
#include "platform/services/RecordingDialogs.h"
#include "platform/services/ScriptedPrintService.h"
#include "platform/toolkit/ChineseTexts.h"
#include "platform/toolkit/QtPrinterSetupDialog.h"
#include "state/shared_state.h"
#include "tests/screenshots/formats.h"
#include "tests/windows/all/every_window.h"
#include "tool/tool_api.h"

#include <QApplication>
#include <QDir>
#include <QEventLoop>
#include <QTimer>

#include <cstdio>
#include <iostream>

using namespace selfreport;

namespace {

constexpr int settled = 450; // milliseconds: what is shown only once typing pauses comes, too

/// Shown modally by what opens it; the picture is taken from inside.
bool savePrinterSetup(const QDir& folder, const char* name, bool found)
{
    ScriptedPrintService service;
    if (found)
        service.known = {{"财务室激光", "二楼", true, true}, {"针式打印机", "", false, true}};
    const PrintServiceInUse serviceInUse(service);
    bool saved = false;
    QTimer::singleShot(settled, [&] {
        QWidget* const window = QApplication::activeModalWidget();
        saved = window->grab().save(folder.filePath(QString(name) + ".png"));
        window->close();
    });
    QtPrinterSetupDialog().choose({});
    return saved;
}

bool save(const test::ShownWindow& picture, const QDir& folder)
{
    const std::unique_ptr<QWidget> window = picture.make();
    if (picture.size.isValid())
        window->resize(picture.size);
    window->show();
    QEventLoop loop;
    QTimer::singleShot(settled, &loop, &QEventLoop::quit);
    loop.exec();
    return window->grab().save(folder.filePath(QString(picture.name) + ".png"));
}

int saveAll(const QDir& folder, const QString& wanted)
{
    int failed = 0;
    test::EveryWindow every;
    std::vector<test::ShownWindow> windows = every.windows();
    windows.push_back({"formats", test::formatsPage, {1000, 620}});
    for (const test::ShownWindow& window : windows)
        if (QString(window.name).contains(wanted))
            failed += !save(window, folder);
    for (const bool found : {true, false}) {
        const char* const name = found ? "printerSetup" : "printerSetup-none";
        if (QString(name).contains(wanted))
            failed += !savePrinterSetup(folder, name, found);
    }
    test::saveFormatsPdf(folder.filePath("formats.pdf"));
    return failed;
}

} // namespace

int main(int count, char** arguments)
{
    QApplication application(count, arguments);
    useChineseTexts(ChineseFor::wholeProgram);
    const QDir folder(count > 1 ? arguments[1] : "screenshots");
    QDir().mkpath(folder.path());
    const std::string ledger = folder.filePath("ledger.db").toStdString();
    if (toolDemo(ledger, true, {std::cout, std::cerr}) != 0)
        return 1;
    RecordingDialogs boxes;
    const DialogsInUse inUse(boxes);
    gConnString = "Provider=SQLite;Data Source=" + ledger;
    gTitle = "演示账套";
    gLoginUserId = "admin";
    const int failed = saveAll(folder, count > 2 ? arguments[2] : "");
    for (const auto& said : boxes.said)
        std::fprintf(stderr, "%s\n", said.text.c_str());
    return failed;
}
