#pragma once
#include "platform/services/ScriptedDialogs.h"
#include "platform/services/ScriptedPrintService.h"
#include "spreadsheet/workbook/Workbook.h"
#include "tests/fetch/TestLedger.h"
#include "tests/platform/WindowTest.h"
#include "windows/printing/frmPreview.h"
#include "windows/printing/print_sheet.h"
#include "windows/printing/PrintedGrid.h"

#include <QProcess>
#include <QPushButton>
#include <QTemporaryDir>

namespace selfreport::test {

/// A designer's grid that is closed when it is told to.
struct TestGrid : PrintedGrid {
    TestGrid()
        : PrintedGrid(sharedContext)
    {
    }
    spreadsheet::Workbook& workbook() override { return book; }
    spreadsheet::CellRange selectedBlock() const override { return block; }
    std::vector<spreadsheet::CellRange> selectedRanges() const override
    {
        std::vector<spreadsheet::CellRange> ranges = others;
        ranges.push_back(block);
        return ranges;
    }
    std::string reportName() const override { return "资产负债表"; }
    int diagnosticsCount() const override { return 0; }
    std::string failedFetches() const override { return failed; }
    void goToFailedFetch() override { ++wentToFailed; }
    std::vector<CellWithoutData> cellsWithoutData() const override { return withoutData; }
    void goTo(const CellWithoutData& cell) override { wentTo = spreadsheet::cellName(cell.cell); }
    void tellStatus(std::string_view text) override { status = text; }
    void closeDesigner() override
    {
        ++closed;
        frmPreview::discard();
    }

    spreadsheet::PrintSettings& print(int sheet = 1)
    {
        settings = book.sheet(sheet).settings().print;
        return settings;
    }
    /// One page for each row.
    void setPages(int pages)
    {
        book.sheet(1).changeSettings([&](spreadsheet::SheetSettings& s) {
            for (int row = 2; row <= pages; ++row)
                s.print.rowBreaks[row] = true;
        });
        for (int row = 1; row <= pages; ++row)
            book.sheet(1).setText({1, row}, "第" + std::to_string(row) + "行");
    }

    spreadsheet::Workbook book;
    spreadsheet::CellRange block{1, 1, 1, 1};
    std::vector<spreadsheet::CellRange> others; ///< selected besides
    spreadsheet::PrintSettings settings;
    std::string status;
    std::string failed; ///< "2 处取数失败，数字不可用"
    int wentToFailed = 0;
    std::vector<CellWithoutData> withoutData;
    std::string wentTo;
    int closed = 0;
};

/// A stored report with id 1, open in a designer.
struct PrintingTest : WindowTest {
    PrintingTest()
    {
        ledger.addReport(1, "资产负债表", {});
        gReportId = 1;
        gEditFlag = 1;
        gPreviewZoomIndex = -1;
        gHeaderText = gFooterText = "";
        printerSetup() = {};
        service.known = {{"甲", "", true, true}};
    }
    ~PrintingTest() override { frmPreview::discard(); }

    static std::string textOf(const std::string& pdf)
    {
        QProcess process;
        process.start("pdftotext", {"-layout", "-", "-"});
        process.write(pdf.data(), static_cast<qint64>(pdf.size()));
        process.closeWriteChannel();
        process.waitForFinished();
        return process.readAllStandardOutput().toStdString();
    }
    Recordset stored() const { return ledger.query("select * from tblCWSelfReport where noid=1"); }
    static void click(QWidget& window, const char* button) { control<QPushButton>(window, button).click(); }

    TestLedger ledger;
    TestGrid grid;
    ScriptedPrintService service;
    PrintServiceInUse serviceInUse{service};
    ScriptedPrinterSetupDialog setups;
    PrinterSetupDialogInUse setupsInUse{setups};
    ScriptedFileDialog files;
    FileDialogInUse filesInUse{files};
    QTemporaryDir folder;
};

} // namespace selfreport::test
