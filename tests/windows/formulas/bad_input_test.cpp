// What the formula dialogs do with texts that break a formula, and with a database that has gone away.
#include "platform/list_grid/ListGrid.h"
#include "spreadsheet/view/SpreadsheetControl.h"
#include "tests/fetch/TestLedger.h"
#include "tests/platform/WindowTest.h"
#include "windows/designer/frmEditor.h"

#include <QAction>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

namespace selfreport {
namespace {

using Said = RecordingDialogs::Said;

class FormulaDialogsBadInput : public test::WindowTest {
protected:
    FormulaDialogsBadInput()
    {
        gEditFlag = 0;
        gRunMode = false;
        gReportId = 0;
        designer = std::make_unique<frmEditor>(sharedContext);
        show(*designer);
    }
    spreadsheet::SpreadsheetControl& grid()
    {
        return control<spreadsheet::SpreadsheetControl>(*designer, "fps1");
    }
    std::string formula() { return grid().cells().sheet().formula({1, 1}); }
    static QLineEdit& box(QWidget& window, int index)
    {
        return control<QLineEdit>(window, ("txt_" + std::to_string(index)).c_str());
    }
    /// Opens a function's dialog on A1 and acts in it.
    void inDialog(bool acct, std::function<void(QWidget&)> act)
    {
        whenModal("frmFunction", [acct, act = std::move(act)](QWidget& chooser) {
            control<ListGrid>(chooser, "vsf1").setRow(acct ? 1 : 2);
            whenModal(acct ? "frmFunctionInput" : "frmFunctionInput1", [act](QWidget& dialog) {
                act(dialog);
                dialog.close();
            });
            control<QPushButton>(chooser, "cmdXPOK").click();
        });
        control<QAction>(*designer, "MenuFormula").trigger();
    }

    test::TestLedger ledger;
    std::unique_ptr<frmEditor> designer;
};

TEST_F(FormulaDialogsBadInput, TextsAreWrittenUnchangedOrRefusedWithTheirReason)
{
    const std::string tooLong(32'760, '1');
    const struct {
        std::string text, written; ///< nothing written: refused
    } texts[] = {
        {"1'001", "1'001"}, {"'; drop table tblAccount --", "'; drop table tblAccount --"},
        {"a,b", "a,b"},     {"1001:1002|部门|", "1001:1002|部门|"},
        {"10(0", "10(0"},   {"10\"\"01", "10\"\"01"},
        {" 1 ", " 1 "},     {"“1001”，", "“1001”，"},
        {"\t", "\t"},       {"10\"01", "10\"\"01"}, // no formula as it stands
        {"\"", "\"\""},     {"\",\"", "\"\",\"\""}, // one argument too many as it stands
        {tooLong, ""},
    };
    for (const bool acct : {true, false})
        for (int index = 0; index < (acct ? 6 : 3); ++index)
            for (const auto& [text, written] : texts) {
                const std::string what =
                    std::string(acct ? "Acct " : "REF_F ") + std::to_string(index) + text.substr(0, 40);
                const bool refused = written.empty();
                grid().cells().setCurrent(1, 1);
                demand(grid().cells().setFormula("1+1"));
                ledger.boxes.said.clear();
                inDialog(acct, [&, index = index, text = text](QWidget& dialog) {
                    box(dialog, index).setText(QString::fromStdString(text));
                    control<QPushButton>(dialog, "cmdXPOK").click();
                    EXPECT_EQ(dialog.isVisible(), refused) << what;
                    EXPECT_EQ(box(dialog, index).text().toStdString(), text) << what;
                });
                if (refused) {
                    EXPECT_EQ(formula(), "1+1") << what;
                    ASSERT_EQ(ledger.boxes.said.size(), 1U) << what;
                    EXPECT_EQ(ledger.boxes.said[0].icon, Icon::critical) << what;
                    EXPECT_NE(ledger.boxes.said[0].text, "") << what;
                } else {
                    EXPECT_NE(formula().find('"' + written + '"'), std::string::npos) << what;
                    EXPECT_TRUE(ledger.boxes.said.empty()) << what;
                }
            }
    EXPECT_EQ(ledger.query("select count(*) as n from tblAccount").text(0, 0), "4");
}

TEST_F(FormulaDialogsBadInput, ALostDatabaseLeavesTheDialogsAndTheirTexts)
{
    const Said unreachable{Icon::critical, gTitle, "数据库文件不存在或读取错误!"};
    inDialog(true, [&](QWidget& dialog) {
        box(dialog, 0).setText("1001");
        const std::string good = std::exchange(gConnString, "Provider=SQLite;Data Source=/不存在/x.db");
        const std::pair<int, const char*> pickers[] = {{1, "frmFilelList"}, {2, "frmCurrency"}};
        for (const auto& [index, name] : pickers) {
            ledger.boxes.said.clear();
            whenModal(name, [](QWidget& picker) {
                EXPECT_EQ(control<ListGrid>(picker, "vsf1").rowCount(), 1);
                control<QPushButton>(picker, "cmdXPOK").click(); // nothing to hand back
                EXPECT_TRUE(picker.isVisible());
                picker.close();
            });
            QTest::keyClick(&box(dialog, index), Qt::Key_F7);
            EXPECT_EQ(ledger.boxes.said, std::vector{unreachable}) << name;
        }
        ledger.boxes.said.clear();
        whenModal("frmAccountWizard", [&](QWidget& wizard) {
            ASSERT_TRUE(QTest::qWaitForWindowActive(&wizard));
            box(wizard, 0).setFocus();
            QTest::keyClick(&box(wizard, 0), Qt::Key_F7); // no chooser; would wait for ever
            ASSERT_EQ(ledger.boxes.said.size(), 1U);
            EXPECT_EQ(ledger.boxes.said[0].icon, Icon::critical);
            box(wizard, 0).setText("1122");
            QTest::keyClick(&box(wizard, 0), Qt::Key_Tab);
            EXPECT_EQ(ledger.boxes.said.size(), 2U); // classes could not be read
            auto& items = control<spreadsheet::SpreadsheetControl>(wizard, "fps1");
            items.cells().setText(1, 1, "客户");
            items.cells().setText(2, 1, "1");
            items.cursor().setActiveCell(3, 1);
            QTest::keyClick(&items, Qt::Key_F7);
            EXPECT_EQ(ledger.boxes.said.size(), 3U);
            EXPECT_EQ(items.cells().text(3, 1), "");
            control<QPushButton>(wizard, "cmdXPOK").click();
        });
        QTest::keyClick(&box(dialog, 0), Qt::Key_F7);
        EXPECT_EQ(box(dialog, 0).text(), "1122|客户|");
        ledger.boxes.said.clear();
        auto& value = control<QLabel>(dialog, "lblValue");
        ASSERT_TRUE(QTest::qWaitFor([&] { return !value.text().isEmpty(); }));
        EXPECT_EQ(value.text(), "当前取数：数据库文件不存在或读取错误!");
        EXPECT_TRUE(ledger.boxes.said.empty()); // said in the dialog, not in a box
        gConnString = good;
        const std::pair<int, const char*> rest[] = {{1, "2"}, {3, "2025"}, {4, "1"}, {5, "2"}};
        for (const auto& [index, text] : rest)
            box(dialog, index).setText(text);
        control<QPushButton>(dialog, "cmdXPOK").click();
        EXPECT_FALSE(dialog.isVisible());
    });
    EXPECT_EQ(grid().cells().text(1, 1), "300.00");
}

} // namespace
} // namespace selfreport
