// Times the designer: opening a stored report of 2,000 cells, 300 of them fetches, for use, and saving it.
#include "bench/bench_table.h"
#include "demo/ledger/demo_ledger.h"
#include "platform/services/RecordingDialogs.h"
#include "spreadsheet/view/SpreadsheetControl.h"
#include "state/report_procedures.h"
#include "state/shared_state.h"
#include "windows/designer/frmEditor.h"

#include <filesystem>
#include <memory>
#include <QAction>
#include <QApplication>
#include <stdexcept>
#include <unistd.h>

using namespace selfreport;

namespace {

constexpr int rowCount = 100;
constexpr int fetchColumns = 3; // of 20: 300 fetches in 2,000 cells
constexpr int columnCount = 20;

/// Account codes of the demo ledger, again and again with other periods.
std::string fetchFormula(const std::vector<std::string>& codes, int column, int row)
{
    const std::string& code = codes[static_cast<std::size_t>(row) % codes.size()];
    return "Acct(\"" + code + "\" ,\"" + std::to_string(column) + "\" , \"\", \"2025\",\"1\",\"" +
           std::to_string(row % 12 + 1) + "\")";
}

void fill(spreadsheet::Workbook& report)
{
    const Recordset accounts =
        openConnection(gConnString)->query("select fNumber from tblAccount order by 1");
    std::vector<std::string> codes;
    for (std::size_t row = 0; row < accounts.rowCount(); ++row)
        codes.push_back(accounts.text(row, 0));
    spreadsheet::Sheet& sheet = report.sheet(1);
    for (int row = 1; row <= rowCount; ++row) {
        const std::string at = std::to_string(row);
        for (int column = 1; column <= columnCount; ++column) {
            if (column <= fetchColumns)
                demand(sheet.setFormula({column, row}, fetchFormula(codes, column, row)));
            else if (column <= 10)
                demand(sheet.setFormula({column, row},
                                        "SUM(A" + at + ":C" + at + ")*" + std::to_string(column)));
            else
                sheet.setText({column, row}, "项目" + at);
        }
    }
}

void storeReport()
{
    spreadsheet::Workbook report;
    report.registerFunction("Acct", 6, [](spreadsheet::FunctionCall& call) { call.decline(); });
    fill(report);
    if (!insertReport(sharedContext, "性能", report))
        throw std::runtime_error("the report was not stored");
    gEditFlag = 1;
}

/// Whether the last row's sum has come out of fetched figures.
bool hasValues(frmEditor& window)
{
    return !window.fps1().cells().text(1, rowCount).isEmpty() &&
           !window.fps1().cells().text(10, rowCount).isEmpty();
}

bool isSaved(const RecordingDialogs& boxes)
{
    return !boxes.said.empty() && boxes.said.back().text == "报表修改成功!";
}

} // namespace

int main(int count, char** arguments)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(count, arguments);
    const std::filesystem::path file =
        std::filesystem::temp_directory_path() / ("designer_bench-" + std::to_string(::getpid()) + ".db");
    createDemoLedger(file.string());
    gConnString = "Provider=SQLite;Data Source=" + file.string();
    RecordingDialogs boxes;
    const DialogsInUse inUse(boxes);
    storeReport();

    BenchTable table("designer: a stored report of 2,000 cells with 300 Acct cells");
    std::unique_ptr<frmEditor> window;
    const auto close = [&] {
        window.reset();
        closeIdleSessions(); // as for the first report of the day
    };
    const auto showFrame = [&] {
        window = std::make_unique<frmEditor>(sharedContext);
        window->show();
        window->repaint();
    };
    const auto computeAndShow = [&] {
        while (!hasValues(*window))
            QCoreApplication::processEvents();
        window->repaint();
    };
    gRunMode = true;
    table.row("open it for use the first time, first frame", bestSeconds(1, close, showFrame), 0.3, "s");
    table.row("open it again, first frame", bestSeconds(3, close, showFrame), 0.3, "s");
    const auto openAgain = [&] {
        close();
        showFrame();
    };
    table.row("its values, behind the first frame", bestSeconds(3, openAgain, computeAndShow), 0.5, "s");
    gRunMode = false;
    openAgain();
    table.row("save it",
              bestSeconds(
                  5, [] {}, [&] { window->findChild<QAction*>("MenuFileSave")->trigger(); }),
              0.1, "s");
    const bool saved = isSaved(boxes);
    close();
    std::filesystem::remove(file);
    return saved ? table.finish() : 1;
}
