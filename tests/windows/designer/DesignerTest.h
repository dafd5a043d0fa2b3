#pragma once
#include "spreadsheet/files/content/content.h"
#include "spreadsheet/view/SpreadsheetControl.h"
#include "tests/fetch/TestLedger.h"
#include "tests/platform/WindowTest.h"
#include "windows/designer/frmEditor.h"

#include <QAction>
#include <QApplication>
#include <QLineEdit>
#include <QTemporaryDir>
#include <QTest>

#include <memory>
#include <string>

namespace selfreport::test {

inline constexpr const char* closingBalance = R"(Acct("1001" ,"2" , "", "2025","1","2"))"; // 100.25

/// The designer on a small ledger.
class DesignerTest : public WindowTest {
protected:
    DesignerTest()
    {
        gEditFlag = 0;
        gRunMode = false;
        gReportId = 0;
        gFromList = 0;
        gAppPath = folder.path().toStdString();
    }
    ~DesignerTest() override { gRunMode = false; }

    void open()
    {
        window.reset();
        window = std::make_unique<frmEditor>(sharedContext);
        show(*window);
    }
    /// Stores a report with id 3: A1 an amount of the ledger, A2 twice that, B1 a text.
    void storeReport()
    {
        spreadsheet::Workbook report;
        report.registerFunction("Acct", 6, [](spreadsheet::FunctionCall& call) { call.decline(); });
        demand(report.sheet(1).setFormula({1, 1}, closingBalance));
        demand(report.sheet(1).setFormula({1, 2}, "A1*2"));
        report.sheet(1).setText({2, 1}, "合计");
        ledger.addReport(3, "现金表", spreadsheet::saveContent(report));
        gReportId = 3;
        gEditFlag = 1;
    }
    spreadsheet::SpreadsheetControl& grid()
    {
        return control<spreadsheet::SpreadsheetControl>(*window, "fps1");
    }
    QLineEdit& edit(const char* name) { return control<QLineEdit>(*window, name); }
    QAction& action(const char* name) { return control<QAction>(*window, name); }
    void trigger(const char* name) { action(name).trigger(); }
    std::string formula(int column, int row) { return grid().cells().sheet().formula({column, row}); }
    void moveTo(int column, int row) { grid().cursor().moveTo({column, row}); }
    /// Types into the formula box as a user does, and ends with a key.
    void typeInBox(const QString& text, Qt::Key last)
    {
        QLineEdit& box = edit("txtFormula");
        box.setFocus();
        box.selectAll();
        box.insert(text); // as an input method does: keys give ASCII only
        if (text.isEmpty())
            QTest::keyClick(&box, Qt::Key_Delete);
        QTest::keyClick(&box, last);
    }

    /// The first key opens an editor, which gets the others.
    void typeInCell(const QString& text)
    {
        grid().setFocus();
        for (const QChar key : text)
            QTest::keyClick(QApplication::focusWidget(), key.toLatin1());
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    }

    TestLedger ledger;
    QTemporaryDir folder;
    std::unique_ptr<frmEditor> window;
};

} // namespace selfreport::test
