// Saves a picture of every window into a folder: screenshots_program FOLDER [WINDOW]
#include "catalogue/frmSelfReportMain.h"
#include "component/state/shared_state.h"
#include "component/tool_api.h"
#include "platform/dialogs/RecordingDialogs.h"

#include <cstdio>
#include <functional>
#include <iostream>
#include <memory>
#include <QApplication>
#include <QDir>
#include <QWidget>

using namespace selfreport;

namespace {

struct Picture {
    const char* name;
    std::function<std::unique_ptr<QWidget>()> make;
    QSize size = {}; ///< none: as the window opens
};

std::vector<Picture> pictures()
{
    const auto list = [] { return std::make_unique<frmSelfReportMain>([] {}); };
    return {
        {"frmSelfReportMain", list},
        {"frmSelfReportMain-1280x800", list, {1280, 800}},
    };
}

bool save(const Picture& picture, const QDir& folder)
{
    const std::unique_ptr<QWidget> window = picture.make();
    if (picture.size.isValid())
        window->resize(picture.size);
    window->show();
    for (int round = 0; round < 5; ++round)
        QCoreApplication::processEvents();
    return window->grab().save(folder.filePath(QString(picture.name) + ".png"));
}

} // namespace

int main(int count, char** arguments)
{
    QApplication application(count, arguments);
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
    int failed = 0;
    for (const Picture& picture : pictures())
        if (count < 3 || QString(picture.name).contains(arguments[2]))
            failed += !save(picture, folder);
    for (const auto& said : boxes.said)
        std::fprintf(stderr, "%s\n", said.text.c_str());
    return failed;
}
