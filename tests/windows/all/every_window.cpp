#include "tests/windows/all/every_window.h"

#include "platform/basicdata/basic_data.h"
#include "platform/basicdata/ChooserWindow.h"
#include "platform/database/Connection.h"
#include "platform/windows/WaitingDialog.h"
#include "spreadsheet/view/SpreadsheetControl.h"
#include "state/shared_state.h"
#include "tests/windows/formulas/RecordingCell.h"
#include "tool/frmHost.h"
#include "tool/frmRunParameters.h"
#include "windows/designer/EditorFormulas.h"
#include "windows/designer/frmEditor.h"
#include "windows/designer/frmFind.h"
#include "windows/designer/frmGoTo.h"
#include "windows/designer/frmNothing.h"
#include "windows/designer/frmTableInfo.h"
#include "windows/explain/frmDrill.h"
#include "windows/explain/frmProve.h"
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

#include <QAction>
#include <QLineEdit>

namespace selfreport::test {

namespace {

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

std::unique_ptr<QWidget> filledInput(RecordingCell& cell)
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

/// The first report, in the demo ledger the balance sheet.
std::unique_ptr<frmEditor> designer(bool running, const char* command = nullptr)
{
    gReportId = 1;
    gEditFlag = 1;
    gRunMode = running;
    auto window = std::make_unique<frmEditor>(sharedContext);
    if (command)
        window->findChild<QAction*>(command)->trigger();
    return window;
}

} // namespace

struct EveryWindow::Ground {
    RecordingCell cell;
    spreadsheet::SpreadsheetControl grid;
    std::unique_ptr<frmEditor> report; ///< made when it is asked for: the printing windows work on its grid

    frmEditor& openReport()
    {
        if (!report)
            report = designer(true);
        return *report;
    }

    template <class Window>
    std::unique_ptr<QWidget> overReport()
    {
        return std::make_unique<Window>(openReport().printedGrid());
    }

    std::unique_ptr<QWidget> coverage()
    {
        frmEditor& designer = openReport();
        auto window = std::make_unique<frmCoverage>(sharedContext, designer.fps1(),
                                                    designer.formulas().evaluation().record());
        window->check();
        return window;
    }

    /// Of the first figure of the report.
    std::unique_ptr<QWidget> drill()
    {
        frmEditor& editor = openReport();
        editor.finishOpening();
        editor.fps1().cursor().moveTo({4, 5});
        auto window = std::make_unique<frmDrill>(sharedContext, editor.fps1());
        if (!window->explain("资产负债表", editor.formulas().evaluation().record()))
            throw std::runtime_error("the report was not computed");
        return window;
    }

    std::unique_ptr<QWidget> filledHeaders()
    {
        gHeaderText =
            "/fn\"黑体\"/fz\"14\"/fb1/fi0/fu0/fk0/c资产负债表/n/fn\"宋体\"/fz\"9\"/fb0/fi0/fu1/fk0/l单位:"
            "演示公司/fn\"宋体\"/fz\"9\"/fb0/fi0/fu0/fk0/r/p/n/fn\"宋体\"/fz\"28\"/fb0/fi1/fu0/fk0/c大字/n";
        return std::make_unique<headerfooter>(openReport().printedGrid());
    }
};

EveryWindow::EveryWindow()
    : m_ground(std::make_unique<Ground>())
{
}

EveryWindow::~EveryWindow() = default;

std::vector<ShownWindow> EveryWindow::windows()
{
    Ground& on = *m_ground;
    const auto list = [] { return std::make_unique<frmSelfReportMain>(sharedContext, [] {}); };
    return {
        {"frmSelfReportMain", list},
        {"frmSelfReportMain-1280x800", list, {1280, 800}},
        {"frmEditor", [] { return designer(false); }, {1280, 800}},
        {"frmEditor-formulas", [] { return designer(false, "MenuShowFormula"); }, {1280, 800}},
        {"frmEditor-run", [] { return designer(true); }, {1280, 800}},
        {"workProgress", [] { return std::make_unique<WaitingDialog>("正在重算"); }},
        {"frmFind", [&on] { return std::make_unique<frmFind>(on.grid); }},
        {"frmGoTo", [&on] { return std::make_unique<frmGoTo>(on.grid); }},
        {"frmNothing", [&on] { return std::make_unique<frmNothing>(on.grid); }},
        {"frmTableInfo", [&on] { return std::make_unique<frmTableInfo>(sharedContext, on.grid.cells()); }},
        {"frmDataType",
         [&on] {
             return std::make_unique<frmDataType>(on.grid, spreadsheet::CellAddress{1, 1});
         }},
        {"frmCellBorder",
         [&on] {
             return std::make_unique<frmCellBorder>(on.grid, spreadsheet::CellAddress{1, 1});
         }},
        {"frmBorders", [&on] { return std::make_unique<frmBorders>(on.grid); }},
        {"frmDropDownEntries", [&on] { return std::make_unique<frmDropDownEntries>(on.grid); }},
        {"frmButtonCaption", [&on] { return std::make_unique<frmButtonCaption>(on.grid); }},
        {"frmLineSize", [&on] { return std::make_unique<frmLineSize>(on.grid, frmLineSize::Lines::rows); }},
        {"frmNumberFormat", [&on] { return std::make_unique<frmNumberFormat>(on.grid); }},
        {"frmHost", [] { return std::make_unique<frmHost>(frmHost::Operations{}); }},
        {"frmRunParameters", [] { return std::make_unique<frmRunParameters>(); }},
        {"frmFunction", [&on] { return std::make_unique<frmFunction>(on.cell); }},
        {"frmFunctionInput", [&on] { return filledInput(on.cell); }},
        {"frmAccountWizard", [] { return filledWizard(); }},
        {"frmFunctionInput1", [&on] { return std::make_unique<frmFunctionInput1>(on.cell); }},
        {"frmCurrency", [] { return std::make_unique<frmCurrency>(sharedContext, ignored); }},
        {"frmFilelList", [] { return std::make_unique<frmFilelList>(sharedContext, ignored); }},
        {"clsAccountChooser", [] { return accountChooser(""); }},
        {"clsAccountChooser-search", [] { return accountChooser("yh"); }},
        {"clsItemChooser", [] { return itemChooser(); }},
        {"frmCoverage", [&on] { return on.coverage(); }},
        {"frmDrill", [&on] { return on.drill(); }},
        {"frmProve", [] { return std::make_unique<frmProve>(sharedContext); }},
        {"frmPreview", [&on] { return on.overReport<frmPreview>(); }},
        {"PrintDlg", [&on] { return on.overReport<PrintDlg>(); }},
        {"pagesetup", [&on] { return on.overReport<pagesetup>(); }},
        {"headerfooter", [&on] { return on.filledHeaders(); }},
        {"frmPrintOptions", [&on] { return on.overReport<frmPrintOptions>(); }},
    };
}

} // namespace selfreport::test
