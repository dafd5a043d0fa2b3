// Times the opening of every formula dialog and picker on the demo ledger, first frame included.
#include "bench/bench_table.h"
#include "demo/demo_reports.h"
#include "demo/ledger/demo_ledger.h"
#include "fetch/call_trial.h"
#include "platform/basicdata/basic_data.h"
#include "platform/basicdata/ChooserWindow.h"
#include "platform/database/Connection.h"
#include "platform/list_grid/ListGrid.h"
#include "state/shared_state.h"
#include "windows/designer/EditorFormulas.h"
#include "windows/designer/frmEditor.h"
#include "windows/formulas/FormulaCell.h"
#include "windows/formulas/frmCoverage.h"
#include "windows/formulas/frmFunction.h"
#include "windows/formulas/frmFunctionInput.h"
#include "windows/formulas/frmFunctionInput1.h"
#include "windows/pickers/frmAccountWizard.h"
#include "windows/pickers/frmCurrency.h"
#include "windows/pickers/frmFilelList.h"

#include <filesystem>
#include <QApplication>
#include <QCheckBox>
#include <unistd.h>

using namespace selfreport;

namespace {

struct NoCell : FormulaCell {
    NoCell()
        : FormulaCell(sharedContext)
    {
    }
    spreadsheet::Refusal writeFormula(const QString&) override { return {}; }
};

const auto ignored = [](const QString&) {};

using Window = std::unique_ptr<QWidget>;

Window accountChooser()
{
    return std::make_unique<ChooserWindow>("科目", QStringList{"科目代码", "科目名称", "方向"},
                                           accountEntries(*openConnection(gConnString)), nullptr);
}

Window itemChooser()
{
    ItemList list = itemsOfClass(*openConnection(gConnString), 1, "fNumber");
    return std::make_unique<ChooserWindow>(list.className, QStringList{"代码", "名称"}, std::move(list.items),
                                           nullptr);
}

void timeDialogs(BenchTable& table)
{
    static NoCell cell;
    const std::pair<const char*, std::function<Window()>> dialogs[] = {
        {"frmFunction", [] { return std::make_unique<frmFunction>(cell); }},
        {"frmFunctionInput", [] { return std::make_unique<frmFunctionInput>(cell); }},
        {"frmFunctionInput1", [] { return std::make_unique<frmFunctionInput1>(cell); }},
        {"frmAccountWizard", [] { return std::make_unique<frmAccountWizard>(sharedContext, ignored); }},
        {"frmFilelList", [] { return std::make_unique<frmFilelList>(sharedContext, ignored); }},
        {"frmCurrency", [] { return std::make_unique<frmCurrency>(sharedContext, ignored); }},
        {"account chooser", accountChooser},
        {"item chooser", itemChooser},
    };
    for (const auto& [name, make] : dialogs) {
        Window window;
        const auto open = [&window, &make = make] {
            window = make();
            window->show();
            QCoreApplication::processEvents();
        };
        const auto close = [&] { window.reset(); };
        const double first = bestSeconds(1, close, open); // fonts and icons are loaded then
        table.row(std::string(name) + ", the first time", first, 0.1, "s");
        table.row(std::string(name) + ", again", bestSeconds(5, close, open), 0.1, "s");
    }
}

void timeCoverage(BenchTable& table)
{
    gReportId = 1; // the balance sheet
    gEditFlag = 1;
    frmEditor designer(sharedContext);
    designer.show();
    std::unique_ptr<frmCoverage> window;
    const auto open = [&] {
        window = std::make_unique<frmCoverage>(sharedContext, designer.fps1(),
                                               designer.formulas().evaluation().record());
        window->show();
        window->check();
        QCoreApplication::processEvents();
    };
    table.row("frmCoverage on the balance sheet, checked",
              bestSeconds(
                  3, [&] { window.reset(); }, open),
              0.1, "s");
    window->findChild<QCheckBox*>("chkFaults")->setChecked(false);
    std::printf("   (%d accounts)\n", window->findChild<ListGrid*>("vsf1")->rowCount() - 1);
}

} // namespace

int main(int count, char** arguments)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(count, arguments);
    const std::filesystem::path file =
        std::filesystem::temp_directory_path() / ("dialogs_bench-" + std::to_string(::getpid()) + ".db");
    createDemoLedger(file.string());
    gConnString = "Provider=SQLite;Data Source=" + file.string();
    storeDemoReports(gConnString);

    BenchTable table("formula dialogs");
    timeDialogs(table);
    timeCoverage(table);
    const double trial = bestSeconds(
        5, [] {},
        [] {
            tryCall(gConnString, {"1001:1012|部门|01:05", "2", "", "2025", "1", "3"},
                    std::chrono::milliseconds(500));
        });
    table.row("words and live value of a call", trial * 1000, 500, "ms");
    closeIdleSessions();
    std::filesystem::remove(file);
    return table.finish();
}
