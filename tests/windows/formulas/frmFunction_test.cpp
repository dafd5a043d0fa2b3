#include "windows/formulas/frmFunction.h"

#include "platform/list_grid/ListGrid.h"
#include "tests/fetch/TestLedger.h"
#include "tests/platform/WindowTest.h"
#include "tests/windows/formulas/RecordingCell.h"
#include "windows/formulas/edit_call.h"
#include "windows/formulas/frmFunctionInput.h"
#include "windows/formulas/frmFunctionInput1.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QToolButton>

namespace selfreport {
namespace {

class FormulaDialogs : public test::WindowTest {
protected:
    /// Opens the chooser, acts in it, then in the dialog that it opens.
    void choose(std::function<void(QWidget&)> inChooser, const char* dialog,
                std::function<void(QWidget&)> inDialog)
    {
        frmFunction chooser(cell);
        whenModal("frmFunction", [=, this, &chooser](QWidget& window) {
            whenModal(dialog, [=, this, &chooser](QWidget& input) {
                opened = input.objectName();
                EXPECT_FALSE(chooser.isVisible());
                inDialog(input);
                input.close();
            });
            inChooser(window);
        });
        chooser.exec();
        EXPECT_FALSE(chooser.isVisible());
    }
    static void type(QWidget& window, std::initializer_list<const char*> texts)
    {
        int index = 0;
        for (const char* text : texts)
            control<QLineEdit>(window, ("txt_" + std::to_string(index++)).c_str())
                .setText(QString::fromUtf8(text));
    }
    static void press(QWidget& window, const char* button) { control<QPushButton>(window, button).click(); }

    test::TestLedger ledger;
    test::RecordingCell cell;
    QString opened;
};

TEST_F(FormulaDialogs, ChooserOpensTheDialogOfItsRow)
{
    const auto list = [](QWidget& chooser) -> ListGrid& { return control<ListGrid>(chooser, "vsf1"); };
    const struct {
        const char* what;
        std::function<void(QWidget&)> act;
        const char* dialog;
    } cases[] = {
        {"Enter on the first row", [&](QWidget& w) { QTest::keyClick(&list(w), Qt::Key_Return); },
         "frmFunctionInput"},
        {"second row",
         [&](QWidget& w) {
             QTest::keyClick(&list(w), Qt::Key_Down);
             QTest::keyClick(&list(w), Qt::Key_Return);
         },
         "frmFunctionInput1"},
        {"heading", [&](QWidget& w) { list(w).setRow(0), press(w, "cmdXPOK"); }, "frmFunctionInput1"},
        {"double click",
         [&](QWidget& w) {
             const QPoint place = list(w).visualRect(list(w).model()->index(0, 2)).center();
             QTest::mouseClick(list(w).viewport(), Qt::LeftButton, {}, place);
             QTest::mouseDClick(list(w).viewport(), Qt::LeftButton, {}, place);
         },
         "frmFunctionInput"},
    };
    for (const auto& [what, act, dialog] : cases) {
        opened.clear();
        choose(act, dialog, [](QWidget&) {});
        EXPECT_EQ(opened, dialog) << what;
    }
    EXPECT_TRUE(cell.written.isEmpty());
}

TEST_F(FormulaDialogs, OkWritesTheCallAndCancelNothing)
{
    const auto chooseSecond = [](QWidget& w) { control<ListGrid>(w, "vsf1").setRow(2), press(w, "cmdXPOK"); };
    const auto chooseFirst = [](QWidget& w) { press(w, "cmdXPOK"); };
    choose(chooseFirst, "frmFunctionInput", [](QWidget& input) {
        type(input, {"1001", "1", "0", "2009", "1", "3"});
        press(input, "cmdXPOK");
        EXPECT_FALSE(input.isVisible());
    });
    choose(chooseSecond, "frmFunctionInput1", [](QWidget& input) {
        type(input, {"利润表", "B2", ""});
        QTest::keyClick(&control<QLineEdit>(input, "txt_2"), Qt::Key_Return);
    });
    choose(chooseFirst, "frmFunctionInput", [](QWidget& input) {
        EXPECT_EQ(control<QLineEdit>(input, "txt_0").text(), ""); // afresh
        type(input, {"1002"});
        press(input, "cmdXPClose");
        EXPECT_FALSE(input.isVisible());
    });
    EXPECT_EQ(cell.written,
              QStringList({R"(Acct("1001" ,"1" , "0", "2009","1","3"))", R"(REF_F("利润表" ,"B2" , ""))"}));
}

TEST_F(FormulaDialogs, RefusedTextIsToldAndTheDialogStays)
{
    cell.refusal = "第 7 个字符处缺少 )";
    frmFunctionInput dialog(cell);
    show(dialog);
    type(dialog, {"10\"01"});
    press(dialog, "cmdXPOK");
    EXPECT_TRUE(dialog.isVisible());
    EXPECT_EQ(control<QLineEdit>(dialog, "txt_0").text(), "10\"01");
    const RecordingDialogs::Said said{Icon::critical, gTitle, "第 7 个字符处缺少 )"};
    EXPECT_EQ(ledger.boxes.said, std::vector{said});
}

TEST_F(FormulaDialogs, PickersFillTheBoxThatAskedForThem)
{
    ledger.run("delete from tblSelfReportFieldKey");
    ledger.run("insert into tblSelfReportFieldKey(noid,fKey,fKeyName) values(1,'K9','期末余额')");
    frmFunctionInput dialog(cell);
    show(dialog);
    type(dialog, {"旧", "旧", "旧", "旧", "旧", "旧"});
    const auto box = [&](int index) -> QLineEdit& {
        return control<QLineEdit>(dialog, ("txt_" + std::to_string(index)).c_str());
    };
    whenModal("frmAccountWizard", [](QWidget& wizard) {
        EXPECT_EQ(control<QLineEdit>(wizard, "txt_0").text(), "");
        control<QLineEdit>(wizard, "txt_0").setText("1001");
        press(wizard, "cmdXPOK");
    });
    QTest::keyClick(&box(0), Qt::Key_F7);
    EXPECT_EQ(box(0).text(), "1001"); // replaces what was there
    whenModal("frmFilelList", [](QWidget& picker) { press(picker, "cmdXPOK"); });
    QTest::keyClick(&box(1), Qt::Key_F7);
    EXPECT_EQ(box(1).text(), "K9");

    whenModal("frmCurrency", [](QWidget& picker) { press(picker, "cmdXPOK"); });
    control<QToolButton>(dialog, "ImgSeek_2").click();
    EXPECT_EQ(box(2).text(), "RMB");
    EXPECT_EQ(dialog.focusWidget(), &box(2));

    whenModal("frmCurrency", [](QWidget& picker) { press(picker, "cmdXPClose"); });
    QTest::keyClick(&box(2), Qt::Key_F7);
    EXPECT_EQ(box(2).text(), "RMB");
    for (const int index : {3, 4, 5}) {
        QTest::keyClick(&box(index), Qt::Key_F7); // would wait for ever if it opened something
        EXPECT_EQ(box(index).text(), "旧");
    }
}

TEST_F(FormulaDialogs, CallIsPutIntoWordsAndFetchedOnceTypingPauses)
{
    frmFunctionInput dialog(cell);
    show(dialog);
    const auto text = [&](const char* label) { return control<QLabel>(dialog, label).text(); };
    auto& account = control<QLineEdit>(dialog, "txt_0");
    type(dialog, {"", "2", "RMB", "2025", "2", "2"});
    QTest::keyClicks(&account, "1001");
    EXPECT_EQ(text("lblWords"), ""); // not at every key
    ASSERT_TRUE(QTest::qWaitFor([&] { return !text("lblWords").isEmpty(); }));
    EXPECT_EQ(text("lblWords"), "期末余额,1001 库存现金,人民币,2025 年 2 期");
    EXPECT_EQ(text("lblValue"), "当前取数：100.25");
    EXPECT_EQ(control<ListGrid>(dialog, "vsfAccounts").text(1, 1), "库存现金");
    QTest::keyClicks(&account, "0");
    ASSERT_TRUE(QTest::qWaitFor([&] { return text("lblValue").contains("不存在"); }));
    EXPECT_TRUE(text("lblValue").startsWith("科目“10010”不存在,最接近的是“1001”"))
        << text("lblValue").toStdString();
    EXPECT_EQ(control<ListGrid>(dialog, "vsfAccounts").rowCount(), 1);
    for (const char* code : {"6\"管", "6\"\"管"}) { // as typed and as a formula has it
        type(dialog, {code});
        ASSERT_TRUE(QTest::qWaitFor([&] { return text("lblValue").contains("管"); }));
        EXPECT_TRUE(text("lblValue").startsWith("科目“6\"管”不存在")) << text("lblValue").toStdString();
        type(dialog, {"1001"});
        ASSERT_TRUE(QTest::qWaitFor([&] { return text("lblValue").contains("100.25"); }));
    }
    EXPECT_TRUE(ledger.boxes.said.empty());
}

TEST_F(FormulaDialogs, CallOpensAgainWithItsArguments)
{
    const std::string acct = R"(Acct("1001" ,"1" , "0", "2009","1","3"))";
    whenModal("frmFunctionInput", [](QWidget& input) {
        EXPECT_EQ(control<QLineEdit>(input, "txt_3").text(), "2009");
        control<QLineEdit>(input, "txt_0").setText("1002");
        press(input, "cmdXPOK");
    });
    EXPECT_TRUE(editCall(cell, "=" + acct, nullptr));
    whenModal("frmFunctionInput1", [](QWidget& input) { press(input, "cmdXPOK"); });
    EXPECT_TRUE(editCall(cell, R"(REF_F("a","b","c"))", nullptr));
    EXPECT_FALSE(editCall(cell, acct + "*2", nullptr));
    EXPECT_EQ(cell.written,
              QStringList({R"(Acct("1002" ,"1" , "0", "2009","1","3"))", R"(REF_F("a" ,"b" , "c"))"}));
}

} // namespace
} // namespace selfreport
