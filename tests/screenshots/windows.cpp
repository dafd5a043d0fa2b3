// Saves a picture of every window into a folder: screenshots_program FOLDER [WINDOW]
#include "platform/basicdata/basic_data.h"
#include "platform/basicdata/ChooserWindow.h"
#include "platform/database/Connection.h"
#include "platform/services/RecordingDialogs.h"
#include "platform/services/ScriptedPrintService.h"
#include "platform/toolkit/QtPrinterSetupDialog.h"
#include "platform/windows/WaitingDialog.h"
#include "spreadsheet/view/SpreadsheetControl.h"
#include "state/shared_state.h"
#include "tests/screenshots/formats.h"
#include "tests/windows/formulas/RecordingCell.h"
#include "tool/frmHost.h"
#include "tool/frmRunParameters.h"
#include "tool/tool_api.h"
#include "windows/designer/frmEditor.h"
#include "windows/designer/frmFind.h"
#include "windows/designer/frmGoTo.h"
#include "windows/designer/frmTableInfo.h"
#include "windows/formatting/frmBorders.h"
#include "windows/formatting/frmButtonCaption.h"
#include "windows/formatting/frmCellBorder.h"
#include "windows/formatting/frmDataType.h"
#include "windows/formatting/frmDropDownEntries.h"
#include "windows/formatting/frmLineSize.h"
#include "windows/formatting/frmNumberFormat.h"
#include "windows/formulas/frmCoverage.h"
#include "windows/formulas/frmFunction.h"
#include "windows/formulas/frmFunctionInput.h"
#include "windows/formulas/frmFunctionInput1.h"
#include "windows/list/frmSelfReportMain.h"
#include "windows/pickers/frmAccountWizard.h"
#include "windows/pickers/frmCurrency.h"
#include "windows/pickers/frmFilelList.h"
#include "windows/printing/frmPreview.h"
#include "windows/printing/frmPrintOptions.h"
#include "windows/printing/headerfooter.h"
#include "windows/printing/pagesetup.h"
#include "windows/printing/PrintDlg.h"

#include <cstdio>
#include <functional>
#include <iostream>
#include <memory>
#include <QAction>
#include <QApplication>
#include <QDir>
#include <QEventLoop>
#include <QLineEdit>
#include <QTimer>
#include <QWidget>

using namespace selfreport;

namespace {

struct Picture {
    const char* name;
    std::function<std::unique_ptr<QWidget>()> make; ///< null: it was shown modally meanwhile
    QSize size = {};                                ///< none: as the window opens
};

const auto ignored = [](const QString&) {};

std::unique_ptr<QWidget> accountChooser(const QString& search)
{
    auto window = std::make_unique<ChooserWindow>("科目", QStringList{"科目代码", "科目名称", "方向"},
                                                  accountEntries(*openConnection(gConnString)), nullptr);
    window->findChild<QLineEdit*>("txtSearch")->setText(search);
    return window;
}

std::unique_ptr<QWidget> itemChooser()
{
    ItemList list = itemsOfClass(*openConnection(gConnString), 1, "fNumber");
    return std::make_unique<ChooserWindow>(list.className, QStringList{"代码", "名称"}, std::move(list.items),
                                           nullptr);
}

std::unique_ptr<QWidget> filledInput(test::RecordingCell& cell)
{
    auto window = std::make_unique<frmFunctionInput>(cell);
    int index = 0;
    for (const char* text : {"1001:1012|部门|01:05", "2", "RMB", "2025", "1", "3"})
        window->findChild<QLineEdit*>("txt_" + QString::number(index++))->setText(text);
    return window;
}

std::unique_ptr<QWidget> filledWizard()
{
    auto window = std::make_unique<frmAccountWizard>(sharedContext, ignored);
    window->findChild<QLineEdit*>("txt_0")->setText("1122");
    auto& grid = *window->findChild<spreadsheet::SpreadsheetControl*>("fps1");
    grid.cells().setText(1, 1, "客户");
    grid.cells().setText(3, 1, "001");
    grid.cells().setText(4, 1, "005");
    return window;
}

spreadsheet::SpreadsheetControl& emptyGrid()
{
    static spreadsheet::SpreadsheetControl grid;
    return grid;
}

/// The demo's first report, the balance sheet.
std::unique_ptr<QWidget> designer(bool running, const char* command = nullptr)
{
    gReportId = 1;
    gEditFlag = 1;
    gRunMode = running;
    auto window = std::make_unique<frmEditor>(sharedContext);
    if (command)
        window->findChild<QAction*>(command)->trigger();
    return window;
}

/// Kept open: the printing windows work on its grid.
frmEditor& openReport()
{
    static const std::unique_ptr<QWidget> window = designer(true);
    return static_cast<frmEditor&>(*window);
}

template <class Window>
std::unique_ptr<QWidget> overReport()
{
    return std::make_unique<Window>(openReport().printedGrid());
}

std::unique_ptr<QWidget> coverage()
{
    auto window = std::make_unique<frmCoverage>(sharedContext, openReport().fps1());
    window->check();
    return window;
}

std::unique_ptr<QWidget> filledHeaders()
{
    frmEditor& report = openReport();
    gHeaderText =
        "/fn\"黑体\"/fz\"14\"/fb1/fi0/fu0/fk0/c资产负债表/n/fn\"宋体\"/fz\"9\"/fb0/fi0/fu1/fk0/l单位:演示公司"
        "/fn\"宋体\"/fz\"9\"/fb0/fi0/fu0/fk0/r/p/n/fn\"宋体\"/fz\"28\"/fb0/fi1/fu0/fk0/c大字/n";
    return std::make_unique<headerfooter>(report.printedGrid());
}

/// Shown modally by what opens it; the picture is taken from inside.
std::unique_ptr<QWidget> printerSetup(const QDir& folder, const char* name, bool found)
{
    ScriptedPrintService service;
    if (found)
        service.known = {{"财务室激光", "二楼", true, true}, {"针式打印机", "", false, true}};
    const PrintServiceInUse serviceInUse(service);
    QTimer::singleShot(450, [&] {
        QWidget* const window = QApplication::activeModalWidget();
        window->grab().save(folder.filePath(QString(name) + ".png"));
        window->close();
    });
    QtPrinterSetupDialog().choose({});
    return nullptr;
}

std::vector<Picture> pictures(const QDir& folder)
{
    static test::RecordingCell cell;
    const auto list = [] { return std::make_unique<frmSelfReportMain>(sharedContext, [] {}); };
    return {
        {"frmSelfReportMain", list},
        {"frmSelfReportMain-1280x800", list, {1280, 800}},
        {"frmEditor", [] { return designer(false); }, {1280, 800}},
        {"frmEditor-formulas", [] { return designer(false, "MenuShowFormula"); }, {1280, 800}},
        {"frmEditor-run", [] { return designer(true); }, {1280, 800}},
        {"workProgress", [] { return std::make_unique<WaitingDialog>("正在重算"); }},
        {"frmFind", [] { return std::make_unique<frmFind>(emptyGrid()); }},
        {"frmGoTo", [] { return std::make_unique<frmGoTo>(emptyGrid()); }},
        {"frmTableInfo", [] { return std::make_unique<frmTableInfo>(sharedContext, emptyGrid().cells()); }},
        {"frmDataType",
         [] {
             return std::make_unique<frmDataType>(emptyGrid(), spreadsheet::CellAddress{1, 1});
         }},
        {"frmCellBorder",
         [] {
             return std::make_unique<frmCellBorder>(emptyGrid(), spreadsheet::CellAddress{1, 1});
         }},
        {"frmBorders", [] { return std::make_unique<frmBorders>(emptyGrid()); }},
        {"frmDropDownEntries", [] { return std::make_unique<frmDropDownEntries>(emptyGrid()); }},
        {"frmButtonCaption", [] { return std::make_unique<frmButtonCaption>(emptyGrid()); }},
        {"frmLineSize", [] { return std::make_unique<frmLineSize>(emptyGrid(), frmLineSize::Lines::rows); }},
        {"frmNumberFormat", [] { return std::make_unique<frmNumberFormat>(emptyGrid()); }},
        {"formats", test::formatsPage, {1000, 620}},
        {"frmHost", [] { return std::make_unique<frmHost>(frmHost::Operations{}); }},
        {"frmRunParameters", [] { return std::make_unique<frmRunParameters>(); }},
        {"frmFunction", [] { return std::make_unique<frmFunction>(cell); }},
        {"frmFunctionInput", [] { return filledInput(cell); }},
        {"frmAccountWizard", [] { return filledWizard(); }},
        {"frmFunctionInput1", [] { return std::make_unique<frmFunctionInput1>(cell); }},
        {"frmCurrency", [] { return std::make_unique<frmCurrency>(sharedContext, ignored); }},
        {"frmFilelList", [] { return std::make_unique<frmFilelList>(sharedContext, ignored); }},
        {"clsAccountChooser", [] { return accountChooser(""); }},
        {"clsAccountChooser-search", [] { return accountChooser("yh"); }},
        {"clsItemChooser", [] { return itemChooser(); }},
        {"frmCoverage", [] { return coverage(); }},
        {"frmPreview", [] { return overReport<frmPreview>(); }},
        {"PrintDlg", [] { return overReport<PrintDlg>(); }},
        {"pagesetup", [] { return overReport<pagesetup>(); }},
        {"headerfooter", [] { return filledHeaders(); }},
        {"frmPrintOptions", [] { return overReport<frmPrintOptions>(); }},
        {"printerSetup", [&folder] { return printerSetup(folder, "printerSetup", true); }},
        {"printerSetup-none", [&folder] { return printerSetup(folder, "printerSetup-none", false); }},
    };
}

bool save(const Picture& picture, const QDir& folder)
{
    const std::unique_ptr<QWidget> window = picture.make();
    if (!window)
        return true;
    if (picture.size.isValid())
        window->resize(picture.size);
    window->show();
    QEventLoop loop; // what is shown only once typing pauses comes, too
    QTimer::singleShot(450, &loop, &QEventLoop::quit);
    loop.exec();
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
    for (const Picture& picture : pictures(folder))
        if (count < 3 || QString(picture.name).contains(arguments[2]))
            failed += !save(picture, folder);
    test::saveFormatsPdf(folder.filePath("formats.pdf"));
    for (const auto& said : boxes.said)
        std::fprintf(stderr, "%s\n", said.text.c_str());
    return failed;
}
