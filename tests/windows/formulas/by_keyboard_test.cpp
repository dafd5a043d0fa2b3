// The whole way from the key in a cell to the value that the cell fetches, by keys alone.
#include "spreadsheet/files/content/content.h"
#include "spreadsheet/view/SpreadsheetControl.h"
#include "tests/fetch/TestLedger.h"
#include "tests/platform/KeyScript.h"
#include "tests/platform/WindowTest.h"
#include "windows/designer/frmEditor.h"
#include "windows/formulas/frmFunctionInput.h"
#include "windows/pickers/frmAccountWizard.h"

#include <QLineEdit>

namespace selfreport {
namespace {

class ByKeyboard : public test::WindowTest {
protected:
    ByKeyboard()
    {
        gEditFlag = 0;
        gRunMode = false;
        gReportId = 0;
        ledger.run("insert into tblAccountHSDetail(fDetailId,fitemclassid) values(3,1)");
        ledger.run("insert into tblAccountHSDetail(fDetailId,fitemclassid) values(3,2)");
    }
    void openDesigner()
    {
        designer = std::make_unique<frmEditor>(sharedContext);
        show(*designer);
    }
    spreadsheet::SpreadsheetControl& grid()
    {
        return control<spreadsheet::SpreadsheetControl>(*designer, "fps1");
    }
    /// Whether the grid would get the next key; a window manager gives the designer the focus back.
    bool gridHasFocus()
    {
        show(*designer);
        return grid().hasFocus();
    }
    std::string formula(int column, int row) { return grid().cells().sheet().formula({column, row}); }

    test::TestLedger ledger;
    std::unique_ptr<frmEditor> designer;
};

TEST_F(ByKeyboard, AcctThroughEveryPicker)
{
    openDesigner();
    test::KeyScript keys(*designer, "Right Down Ctrl+G Return "       // the first function
                                    "F7 F7 'kcxj' Return Alt+Q Wait " // wizard and chooser: 库存现金
                                    "Tab F7 Down Return "             // closing balance
                                    "Tab F7 Return "                  // RMB
                                    "Tab '2025' Tab '1' Tab '2' Return");
    ASSERT_TRUE(keys.run());
    EXPECT_EQ(formula(2, 2), R"(Acct("1001" ,"2" , "RMB", "2025","1","2"))");
    EXPECT_EQ(grid().cells().text(2, 2), "100.25");
    EXPECT_EQ(control<QLineEdit>(*designer, "txtFormula").text().toStdString(), formula(2, 2));
    EXPECT_TRUE(gridHasFocus()); // ready for the next cell
    EXPECT_TRUE(ledger.boxes.said.empty());
}

TEST_F(ByKeyboard, AcctWithAnItemOfTheAccount)
{
    openDesigner();
    // The class from its list, the code from the item chooser; it fills the empty end of the range, too.
    test::KeyScript keys(*designer, "Ctrl+G Return F7 '1122' Tab Tab Alt+Down Home Return Right F7 Down "
                                    "Return Alt+Q Wait Tab '2' Tab Tab '2025' Tab '1' Tab '2' Return");
    ASSERT_TRUE(keys.run());
    EXPECT_EQ(formula(1, 1), R"(Acct("1122|客户|002" ,"2" , "", "2025","1","2"))");
    EXPECT_EQ(grid().cells().text(1, 1), "180.00");
}

TEST_F(ByKeyboard, ReferenceToACellOfAnotherReport)
{
    spreadsheet::Workbook report;
    report.registerFunction("Acct", 6, [](spreadsheet::FunctionCall& call) { call.decline(); });
    demand(report.sheet(1).setFormula({2, 3}, R"(Acct("1002" ,"2" , "", "2025","1","2"))"));
    ledger.addReport(1, "R1", spreadsheet::saveContent(report));
    openDesigner();
    test::KeyScript keys(*designer, "Down Ctrl+G Down Return 'R1' Tab 'B3' Tab '1' Return");
    ASSERT_TRUE(keys.run());
    EXPECT_EQ(formula(1, 2), R"(REF_F("R1" ,"B3" , "1"))");
    EXPECT_EQ(grid().cells().text(1, 2), "2000.50");
    EXPECT_TRUE(gridHasFocus());
}

TEST_F(ByKeyboard, EscLeavesEverythingAsItWas)
{
    openDesigner();
    test::KeyScript keys(*designer, "'7' Return Up Ctrl+G Return F7 F7 Esc '1001' Esc '1002' Esc");
    ASSERT_TRUE(keys.run());
    EXPECT_EQ(grid().cells().text(1, 1), "7");
    EXPECT_EQ(formula(1, 1), "");
    EXPECT_TRUE(gridHasFocus());
}

TEST_F(ByKeyboard, EachResultOfTheWizard)
{
    const struct {
        const char *keys, *argument;
    } cases[] = {
        {"Return", ""},
        {"'1001' Tab '1002' Return", "1001:1002"},
        {"Space '1001' Space Return", "1001"},
        {"Tab '1002' Return", "1002"},
        {"'1001' Tab '1001' Space Return", "1001"},
        {"'a1' Tab 'A1' Return", "a1"},
        {"'1\"0' Tab '1\\'1:' Return", "1\"0:1\\'1:"},
        // In the grid: class and both codes, one code, none
        {"'1122' Tab Tab Alt+Down Home Return Right '01' Tab '05' Return Alt+Q Wait", "1122|客户|01:05"},
        {"'1122' Tab Tab Alt+Down End Return Right '01' Return Alt+Q Wait", "1122|部门|01"},
        {"'1122' Tab Tab Alt+Down End Return Right Right '05' Return Alt+Q Wait", "1122|部门|05"},
        {"'1122' Tab Tab Alt+Down End Return Right 'a' Tab 'A' Return Alt+Q Wait", "1122|部门|a"},
        {"'1122' Tab Tab Alt+Down End Return Alt+Q Wait", "1122|部门|"},
        // Codes without a class, an empty row before: nothing corrects what they shift
        {"'1122' Tab Tab Right '01' Tab '02' Return Alt+Q Wait", "1122|01:02"},
        {"'1122' Tab Tab Down Alt+Down Home Return Right '01' Return Alt+Q Wait", "1122||客户|01"},
    };
    for (const auto& [script, argument] : cases) {
        QStringList handedBack;
        frmAccountWizard wizard(sharedContext, [&](const QString& text) { handedBack.append(text); });
        show(wizard);
        test::KeyScript keys(wizard, QString::fromUtf8(script));
        keys.run(); // the last key closes the window that would take a further one
        EXPECT_EQ(handedBack, QStringList(QString::fromUtf8(argument))) << script;
    }
    EXPECT_TRUE(ledger.boxes.said.empty());
}

} // namespace
} // namespace selfreport
