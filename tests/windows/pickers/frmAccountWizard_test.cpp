#include "windows/pickers/frmAccountWizard.h"

#include "spreadsheet/view/SheetView.h"
#include "spreadsheet/view/SpreadsheetControl.h"
#include "tests/fetch/TestLedger.h"
#include "tests/platform/WindowTest.h"

#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QToolButton>

namespace selfreport {
namespace {

class AccountWizard : public test::WindowTest {
protected:
    AccountWizard()
    {
        ledger.run("insert into tblAccountHSDetail(fDetailId,fitemclassid) values(3,1)");
        ledger.run("insert into tblAccountHSDetail(fDetailId,fitemclassid) values(3,2)");
        show(wizard);
    }
    QLineEdit& box(int index) { return control<QLineEdit>(wizard, index == 0 ? "txt_0" : "txt_1"); }
    spreadsheet::SpreadsheetControl& grid()
    {
        return control<spreadsheet::SpreadsheetControl>(wizard, "fps1");
    }
    void press(const char* button) { control<QPushButton>(wizard, button).click(); }
    QStringList entries(int column, int row)
    {
        grid().cells().setCurrent(column, row);
        return grid().cells().dropDown();
    }
    QString row(int row)
    {
        QStringList texts;
        for (int column = 1; column <= 4; ++column)
            texts.append(grid().cells().text(column, row));
        return texts.join('|');
    }
    /// Opens a cell's drop-down and presses the keys in its list.
    void chooseEntry(int column, int row, std::initializer_list<Qt::Key> keys)
    {
        grid().cursor().setActiveCell(column, row);
        QTest::keyClick(&grid(), Qt::Key_Down, Qt::AltModifier);
        auto* list = wizard.findChild<QListWidget*>();
        ASSERT_TRUE(list != nullptr && list->isVisible());
        for (const Qt::Key key : keys)
            QTest::keyClick(list, key);
    }
    /// Picks in the next chooser with these keys.
    static void answerChooser(const char* name, std::initializer_list<Qt::Key> keys)
    {
        whenModal(name, [keys = std::vector<Qt::Key>(keys)](QWidget& chooser) {
            for (const Qt::Key key : keys)
                QTest::keyClick(&control<QLineEdit>(chooser, "txtSearch"), key);
            chooser.close();
        });
    }
    void enterReceivables()
    {
        box(0).setFocus();
        QTest::keyClicks(&box(0), "1122");
        QTest::keyClick(&box(0), Qt::Key_Tab);
    }

    test::TestLedger ledger;
    QStringList handedBack;
    frmAccountWizard wizard{sharedContext, [this](const QString& text) { handedBack.append(text); }};
};

TEST_F(AccountWizard, WholeWayByKeyboard)
{
    EXPECT_TRUE(entries(1, 1).isEmpty()); // before an account was left
    enterReceivables();
    for (const int row : {1, 10}) {
        EXPECT_EQ(entries(1, row), QStringList({"客户", "部门"}));
        EXPECT_EQ(entries(2, row), QStringList({"1", "2"}));
    }
    chooseEntry(1, 1, {Qt::Key_Home, Qt::Key_Return});
    EXPECT_EQ(row(1), "客户|1||"); // the id follows
    grid().cursor().setActiveCell(3, 1);
    answerChooser("clsItemChooser", {Qt::Key_Return});
    QTest::keyClick(&grid(), Qt::Key_F7);
    EXPECT_EQ(row(1), "客户|1|001|001"); // fills the empty end too
    grid().cursor().setActiveCell(4, 1);
    answerChooser("clsItemChooser", {Qt::Key_Down, Qt::Key_Return});
    QTest::keyClick(&grid(), Qt::Key_Down, Qt::AltModifier); // the drop-down is a button here
    EXPECT_EQ(row(1), "客户|1|001|002");
    EXPECT_EQ(control<QLabel>(wizard, "lblWords").text(), "科目 1122,客户 001 至 002");
    QTest::keyClick(&box(1), Qt::Key_Return);
    EXPECT_EQ(handedBack, QStringList("1122|客户|001:002"));
    EXPECT_FALSE(wizard.isVisible());
}

TEST_F(AccountWizard, AChosenClassDoesNotPaintTheWholeGridAnew)
{
    enterReceivables();
    grid().grab();
    const auto& geometry = grid().view().geometry();
    const std::size_t inSight = geometry.rowTracks().size() * geometry.columnTracks().size();
    const std::uint64_t before = grid().view().paintedCells();
    chooseEntry(1, 1, {Qt::Key_Home, Qt::Key_Return});
    grid().grab();
    const std::uint64_t painted = grid().view().paintedCells() - before;
    EXPECT_GE(painted, geometry.columnTracks().size());
    EXPECT_LT(painted, inSight);
}

TEST_F(AccountWizard, AccountsFillTheirBoxes)
{
    const struct {
        const char *what, *from, *to;
        int index;
        std::initializer_list<Qt::Key> keys;
        const char *fromAfter, *toAfter;
    } cases[] = {
        {"from fills an empty to", "", "", 0, {Qt::Key_Down, Qt::Key_Return}, "1002", "1002"},
        {"but no other", "", "2001", 0, {Qt::Key_Return}, "1001", "2001"},
        {"to never fills from", "", "", 1, {Qt::Key_Return}, "", "1001"},
        {"nothing chosen", "旧", "", 0, {Qt::Key_Escape}, "旧", ""},
    };
    for (const auto& [what, from, to, index, keys, fromAfter, toAfter] : cases)
        for (const bool byImage : {false, true}) {
            box(0).setText(from);
            box(1).setText(to);
            answerChooser("clsAccountChooser", keys);
            if (byImage)
                control<QToolButton>(wizard, index == 0 ? "ImgSeek_0" : "ImgSeek_1").click();
            else
                QTest::keyClick(&box(index), Qt::Key_F7);
            EXPECT_EQ(box(0).text(), fromAfter) << what;
            EXPECT_EQ(box(1).text(), toAfter) << what;
        }
}

TEST_F(AccountWizard, ChoosersStayShutWhereNothingCanBePicked)
{
    enterReceivables();
    for (const int column : {1, 2, 3, 4}) {
        grid().cursor().setActiveCell(column, 1);
        QTest::keyClick(&grid(), Qt::Key_F7); // no class in this row; would wait for ever
        EXPECT_EQ(row(1), "|||");
    }
    chooseEntry(1, 2, {Qt::Key_End, Qt::Key_Return});
    EXPECT_EQ(row(2), "部门|2||");
    for (const int column : {1, 2}) {
        grid().cursor().setActiveCell(column, 2);
        QTest::keyClick(&grid(), Qt::Key_F7);
    }
    chooseEntry(1, 2, {Qt::Key_Home, Qt::Key_Escape});
    EXPECT_EQ(row(2), "部门|2||"); // closed without a choice
    EXPECT_TRUE(ledger.boxes.said.empty());
    for (const char* id : {"32768", "-1", "一"}) {
        ledger.boxes.said.clear();
        grid().cells().setText(2, 3, id);
        grid().cursor().setActiveCell(3, 3);
        QTest::keyClick(&grid(), Qt::Key_F7);
        ASSERT_EQ(ledger.boxes.said.size(), 1U) << id;
        EXPECT_EQ(ledger.boxes.said[0].text, std::string("核算项目类别编号无效: ") + id);
        EXPECT_EQ(grid().cells().text(3, 3), "");
    }
}

TEST_F(AccountWizard, RowsAreTakenLiterallyAndCancelHandsNothingBack)
{
    press("MenuInsertRow");
    EXPECT_EQ(grid().cells().rowCount(), 11);
    grid().cells().setText(3, 2, "01");
    grid().cells().setText(1, 11, "部门");
    grid().cells().setText(4, 11, " 05 ");
    box(0).setText("1001");
    EXPECT_EQ(control<QLabel>(wizard, "lblWords").text().left(9), "科目 1001,(");
    press("cmdXPOK");
    EXPECT_EQ(handedBack, QStringList("1001||01|||||||||部门|05"));
    frmAccountWizard other(sharedContext, [this](const QString& text) { handedBack.append(text); });
    show(other);
    EXPECT_EQ(control<QLineEdit>(other, "txt_0").text(), "");
    control<QPushButton>(other, "cmdXPClose").click();
    EXPECT_EQ(handedBack.size(), 1);
}

TEST_F(AccountWizard, FailuresKeepTheListsOfClasses)
{
    enterReceivables();
    ledger.run("alter table tblAccountHSDetail rename to gone");
    box(1).setFocus();
    QTest::keyClicks(&box(1), "2001");
    QTest::keyClick(&box(1), Qt::Key_Tab);
    ASSERT_EQ(ledger.boxes.said.size(), 1U);
    EXPECT_EQ(ledger.boxes.said[0].icon, Icon::critical);
    EXPECT_EQ(ledger.boxes.said[0].title, gTitle);
    EXPECT_EQ(entries(1, 1), QStringList({"客户", "部门"}));
    ledger.run("alter table gone rename to tblAccountHSDetail");
    box(0).setFocus();
    box(0).setText("1001"); // an account without classes
    QTest::keyClick(&box(0), Qt::Key_Tab);
    EXPECT_TRUE(entries(1, 1).isEmpty());
}

} // namespace
} // namespace selfreport
