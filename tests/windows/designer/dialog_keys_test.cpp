// Alt and a letter in the designer's own dialogs.
#include "tests/windows/designer/DesignerTest.h"
#include "windows/designer/frmFind.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QPushButton>

namespace selfreport {
namespace {

using spreadsheet::CellAddress;

using DialogKeys = test::DesignerTest;

TEST_F(DialogKeys, TableProperties)
{
    open();
    const struct {
        Qt::Key letter;
        int rows; // afterwards
    } cases[] = {{Qt::Key_C, 500}, {Qt::Key_O, 80}};
    for (const auto& [letter, rows] : cases) {
        whenModal("frmTableInfo", [letter = letter](QWidget& dialog) {
            show(dialog);
            QWidget* const first = QApplication::focusWidget();
            EXPECT_EQ(first->objectName(), "txt_0");
            control<QLineEdit>(dialog, "txt_0").setText("80");
            for (const char* next : {"txt_1", "txt_2", "txt_3", "cmdOK", "cmdClose", "txt_0"}) {
                QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
                EXPECT_EQ(QApplication::focusWidget()->objectName(), next);
            }
            accessKey(dialog, letter);
            EXPECT_FALSE(dialog.isVisible());
            dialog.close();
        });
        trigger("MenuSetTableInfo");
        EXPECT_EQ(grid().cells().rowCount(), rows);
    }
}

/// Every button has had the focus, and a box has it again.
TEST_F(DialogKeys, EnterPressesTheDefaultButtonAfterAWholeRoundOfTabs)
{
    open();
    const struct {
        const char *command, *dialog, *box, *button;
    } cases[] = {
        {"MenuSetTableInfo", "frmTableInfo", "txt_1", "cmdOK"},
        {"MenuGoTo", "frmGoTo", "txtPlace", "cmdXPOK"},
        {"MenuDataType", "frmDataType", "PC_1", "cmdXPOK"},
        {"MenuNothing", "frmNothing", "", "cmdXPOK"},
        {"MenuCellBorder", "frmCellBorder", "PC_0", "cmdXPOK"},
        {"MenuRowHeight", "frmLineSize", "size", "cmdXPOK"},
        {"MenuButtonCaption", "frmButtonCaption", "", "cmdXPOK"},
        {"MenuPrintOptions", "frmPrintOptions", "", "cmdXPOK"},
        {"MenuFormula", "frmFunction", "vsf1", "cmdXPOK"},
    };
    for (const auto& c : cases) {
        int presses = 0;
        whenModal(c.dialog, [&](QWidget& dialog) {
            show(dialog);
            auto& button = control<QPushButton>(dialog, c.button);
            button.disconnect(); // what it does is another matter
            QObject::connect(&button, &QPushButton::clicked, &dialog, [&] { ++presses; });
            QWidget* const first = *c.box ? &control<QWidget>(dialog, c.box) : QApplication::focusWidget();
            first->setFocus();
            int round = 0;
            do {
                QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
            } while (++round < 30 && QApplication::focusWidget() != first &&
                     !first->isAncestorOf(QApplication::focusWidget()));
            EXPECT_LT(round, 30) << c.dialog;
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
            dialog.close();
        });
        trigger(c.command);
        EXPECT_EQ(presses, 1) << c.dialog;
    }
}

TEST_F(DialogKeys, BoxesSelectTheirTextOnFocus)
{
    open();
    whenModal("frmTableInfo", [](QWidget& dialog) {
        show(dialog);
        const auto type = [&](const char* name, const QString& text) {
            QTest::qWait(1);
            QTest::keyClicks(QApplication::focusWidget(), text);
            EXPECT_EQ(control<QLineEdit>(dialog, name).text(), text) << name;
        };
        type("txt_0", "66"); // as the window opened
        QTest::mouseClick(&control<QLineEdit>(dialog, "txt_1"), Qt::LeftButton);
        type("txt_1", "12");
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        type("txt_2", "3");
        control<QLineEdit>(dialog, "txt_0").setFocus();
        type("txt_0", "77");
        QTest::mouseClick(&control<QLineEdit>(dialog, "txt_0"), Qt::LeftButton, {}, QPoint(3, 5));
        QTest::keyClicks(QApplication::focusWidget(), "5");
        EXPECT_EQ(control<QLineEdit>(dialog, "txt_0").text(), "577")
            << "where it had the focus, a click places the cursor";
        dialog.close();
    });
    trigger("MenuSetTableInfo");
}

TEST_F(DialogKeys, FindAndReplace)
{
    open();
    for (int row = 1; row <= 4; ++row)
        grid().cells().sheet().setText({1, row}, "资产");
    moveTo(1, 1);
    trigger("MenuReplace");
    auto& dialog = control<frmFind>(*window, "frmFind");
    show(dialog);
    control<QLineEdit>(dialog, "txt_0").setText("资产");
    control<QLineEdit>(dialog, "txt_1").setText("财产");
    const std::pair<Qt::Key, const char*> fields[] = {
        {Qt::Key_R, "txt_1"}, {Qt::Key_F, "txt_0"}, {Qt::Key_S, "cboIn"}};
    for (const auto& [letter, name] : fields) {
        accessKey(dialog, letter);
        EXPECT_EQ(QApplication::focusWidget()->objectName(), name);
    }
    const std::pair<Qt::Key, const char*> options[] = {
        {Qt::Key_C, "chkCase"}, {Qt::Key_W, "chkWhole"}, {Qt::Key_Q, "chkWildcards"}};
    for (const auto& [letter, name] : options) {
        accessKey(dialog, letter);
        EXPECT_TRUE(control<QCheckBox>(dialog, name).isChecked()) << name;
    }
    accessKey(dialog, Qt::Key_N);
    EXPECT_EQ(grid().cursor().activeCell(), (CellAddress{1, 2}));
    accessKey(dialog, Qt::Key_P);
    EXPECT_EQ(grid().cursor().activeCell(), (CellAddress{1, 1}));
    accessKey(dialog, Qt::Key_T); // here, and on to the next one
    EXPECT_EQ(grid().cells().text(1, 1) + grid().cells().text(1, 2), "财产资产");
    EXPECT_EQ(grid().cursor().activeCell(), (CellAddress{1, 2}));
    accessKey(dialog, Qt::Key_A);
    EXPECT_EQ(control<QLabel>(dialog, "lblResult").text().trimmed(), "已替换 3 个单元格");
    accessKey(dialog, Qt::Key_E);
    EXPECT_FALSE(dialog.isVisible());
}

} // namespace
} // namespace selfreport
