// 联查 as a user drives it from the designer: by keys, by the mouse, by the menu.
#include "windows/explain/frmDrill.h"

#include "explain/drill_sheet.h"
#include "platform/services/FileDialog.h"
#include "platform/toolkit/QtDialogs.h"
#include "platform/toolkit/QtFileDialog.h"
#include "spreadsheet/files/FileFormats.h"
#include "spreadsheet/view/SpreadsheetControl.h"
#include "tests/windows/designer/DesignerTest.h"
#include "text/amount_text.h"
#include "windows/designer/EditorFormulas.h"
#include "windows/printing/print_sheet.h"

#include <gmock/gmock.h>
#include <QComboBox>
#include <QFile>
#include <QLabel>
#include <QMessageBox>
#include <QProcess>
#include <QPushButton>
#include <QTreeWidget>

namespace selfreport {
namespace {

using ::testing::HasSubstr;

class Drill : public test::DesignerTest {
protected:
    void openForUse()
    {
        storeReport();
        gRunMode = true;
        open();
        QApplication::processEvents(); // the recalculation that follows the first frame
        QApplication::processEvents();
    }
    frmDrill* drill() { return window->findChild<frmDrill*>(); }
    QTreeWidget& tree() { return control<QTreeWidget>(*drill(), "tree"); }
    std::string label(const char* name) { return control<QLabel>(*drill(), name).text().toStdString(); }
    std::string current() { return tree().currentItem()->text(0).toStdString(); }
    /// "项目 系数 金额" of the rows below one.
    static std::vector<std::string> rowsOf(const QTreeWidgetItem& above)
    {
        std::vector<std::string> rows;
        for (int at = 0; at < above.childCount(); ++at) {
            const QTreeWidgetItem& row = *above.child(at);
            rows.push_back((row.text(0) + " " + row.text(2) + " " + row.text(3)).toStdString());
        }
        return rows;
    }
};

TEST_F(Drill, IsWalkedByKeysFromTheCellToTheMovementAndBack)
{
    openForUse();
    moveTo(1, 2); // A1*2
    QTest::keyClick(&grid(), Qt::Key_BracketLeft, Qt::ControlModifier);
    ASSERT_TRUE(drill() && drill()->isVisible());
    EXPECT_THAT(label("lblHead"),
                ::testing::AllOf(HasSubstr("Sheet1!A2"), HasSubstr("=A1*2"), HasSubstr("200.5")));
    EXPECT_EQ(label("lblFoot"), "合计：200.50    单元格：200.50    差额：0.00");
    EXPECT_THAT(rowsOf(*tree().invisibleRootItem()), ::testing::ElementsAre("1001 库存现金 2 100.25"));
    QTest::keyClick(&tree(), Qt::Key_Right);
    EXPECT_THAT(rowsOf(*tree().topLevelItem(0)),
                ::testing::ElementsAre("期初余额  75.25", "借方发生额  25.00", "贷方发生额 -1 0.00"));
    QTest::keyClick(&tree(), Qt::Key_Right);
    EXPECT_EQ(current(), "期初余额");
    QTest::keyClick(drill(), Qt::Key_Escape);
    EXPECT_TRUE(drill()->isVisible()) << "Esc leads to the first level before it closes";
    EXPECT_EQ(current(), "1001 库存现金");
    QTest::keyClick(&tree(), Qt::Key_Left);
    EXPECT_FALSE(tree().topLevelItem(0)->isExpanded());
    QTest::keyClick(&tree(), Qt::Key_Return);
    EXPECT_EQ(grid().cursor().activeCell().row, 1) << "the call is written in A1";
    QTest::keyClick(drill(), Qt::Key_Escape);
    EXPECT_FALSE(drill()->isVisible());
    EXPECT_TRUE(window->isVisible()) << "only this window is closed";
    trigger("MenuDrill");
    QTest::keyClick(&tree(), Qt::Key_Right);
    QTest::keyClick(&tree(), Qt::Key_Right);
    drill()->close();
    EXPECT_FALSE(drill()->isVisible()) << "the close box closes from any row";
}

/// A design opens as it was stored: there is nothing yet that its figures could be taken apart into.
TEST_F(Drill, AsksBeforeItComputesADesign)
{
    QtDialogs real;
    const DialogsInUse inUse(real);
    storeReport();
    open();
    moveTo(1, 2);
    const auto press = [](QMessageBox::StandardButton button) {
        whenModal("messageBox", [button](QWidget& shown) {
            auto& box = dynamic_cast<QMessageBox&>(shown);
            EXPECT_THAT(box.text().toStdString(), HasSubstr("还没有计算过"));
            box.button(button)->click();
        });
    };
    press(QMessageBox::No);
    QTest::keyClick(&grid(), Qt::Key_BracketLeft, Qt::ControlModifier);
    EXPECT_FALSE(drill()->isVisible());
    press(QMessageBox::Yes);
    trigger("MenuDrill");
    EXPECT_TRUE(drill()->isVisible());
    EXPECT_EQ(label("lblFoot"), "合计：200.50    单元格：200.50    差额：0.00");
    drill()->hide();
    moveTo(2, 1);
    trigger("MenuDrill"); // a text is asked about without a question
    EXPECT_TRUE(drill()->isVisible());
}

/// It stays open while the report is worked on: rows lead to where their cells have come to lie.
TEST_F(Drill, RowsFollowTheirCells)
{
    storeReport();
    open();
    trigger("MenuShowDate");
    moveTo(1, 2);
    trigger("MenuDrill");
    ASSERT_TRUE(drill()->isVisible());
    const auto goes = [&] {
        moveTo(3, 9);
        QTest::keyClick(&tree(), Qt::Key_Return);
        return spreadsheet::cellName(grid().cursor().activeCell());
    };
    EXPECT_EQ(goes(), "A1");
    moveTo(1, 1);
    trigger("MenuInsertRow");
    EXPECT_EQ(goes(), "A2");
    trigger("MenuUndo");
    EXPECT_EQ(goes(), "A1");
    moveTo(1, 1);
    trigger("MenuDeleteRows");
    EXPECT_EQ(goes(), "C9") << "its cell is gone";
    EXPECT_EQ(label("lblStatus"), "这个单元格已经删除");
}

/// Computing once more would bring nothing: a cell in a circle fetches nothing.
TEST_F(Drill, SaysThatACellIsInACircleWithoutAQuestion)
{
    storeReport();
    open();
    moveTo(3, 1);
    typeInBox(QString("=C2+") + test::closingBalance, Qt::Key_Return);
    moveTo(3, 2);
    typeInBox("=C1", Qt::Key_Return);
    trigger("MenuShowDate");
    moveTo(3, 1);
    trigger("MenuDrill");
    ASSERT_TRUE(drill()->isVisible());
    EXPECT_THAT(tree().topLevelItem(0)->text(1).toStdString(), HasSubstr("循环引用"));
}

/// One key must not lead through every period of a ledger.
TEST_F(Drill, TheStarOpensOneRow)
{
    openForUse();
    moveTo(1, 2);
    trigger("MenuDrill");
    QTest::keyClick(&tree(), Qt::Key_Asterisk);
    ASSERT_EQ(tree().topLevelItem(0)->childCount(), 3);
    for (int part = 0; part < 3; ++part)
        EXPECT_FALSE(tree().topLevelItem(0)->child(part)->isExpanded()) << part;
}

/// Each level begins further to the right.
TEST_F(Drill, DeepLevelsHaveRoomForTheirNames)
{
    constexpr int levels = 25;
    for (int level = 1; level < levels; ++level) { // accounts below each other
        const std::string id = std::to_string(100 + level);
        ledger.run("insert into tblAccount(fitemid,fNumber,fName,fParentId) values(" + id + ",'1001." + id +
                   "','科目'," + std::to_string(level == 1 ? 1 : 99 + level) + ")");
        ledger.run(
            "insert into tblAccountBal(faccountid,fDetailId,fYear,fPeriod,fCurrencyid,fBeginBal,fDebit,"
            "fEndBal) select " +
            id +
            ",fDetailId,fYear,fPeriod,fCurrencyid,fBeginBal,fDebit,fEndBal from tblAccountBal where "
            "faccountid=1");
    }
    openForUse();
    moveTo(1, 1);
    trigger("MenuDrill");
    for (int level = 1; level < levels; ++level) {
        QTest::keyClick(&tree(), Qt::Key_Right);
        QTest::keyClick(&tree(), Qt::Key_Right);
    }
    EXPECT_EQ(current(), "1001.124 科目");
    EXPECT_GE(tree().columnWidth(0), levels * tree().indentation() + tree().fontMetrics().horizontalAdvance(
                                                                         tree().currentItem()->text(0)));
}

TEST_F(Drill, OpensByADoubleClickWhereTheCellWasOnlySaidToBeLocked)
{
    openForUse();
    const QPoint place = grid().cellRect({1, 1}).center();
    QTest::mouseClick(&grid(), Qt::LeftButton, {}, place);
    QTest::mouseDClick(&grid(), Qt::LeftButton, {}, place);
    ASSERT_TRUE(drill() && drill()->isVisible());
    EXPECT_THAT(label("lblHead"), HasSubstr("Sheet1!A1"));
    drill()->hide();
    QTest::mouseDClick(&grid(), Qt::LeftButton, {}, grid().cellRect({2, 1}).center());
    EXPECT_FALSE(drill()->isVisible()) << "a text is no figure";
}

TEST_F(Drill, ShowsWhatDoesNotAddUpInRedAndThatTheLedgerHasChanged)
{
    openForUse();
    moveTo(1, 1);
    ledger.run("update tblAccountBal set fEndBal=fEndBal+0.01 where faccountid=1 and fPeriod=2");
    trigger("MenuDrill");
    EXPECT_EQ(label("lblFoot"), "合计：100.25    单元格：100.25    差额：0.00") << "of the calculation";
    QTest::keyClick(&tree(), Qt::Key_Right);
    const QTreeWidgetItem& call = *tree().topLevelItem(0);
    ASSERT_EQ(call.childCount(), 4);
    EXPECT_EQ(call.child(3)->text(0), "差额");
    EXPECT_EQ(call.child(3)->text(3), "0.01");
    EXPECT_EQ(call.child(3)->foreground(3).color(), QColor(Qt::red));
    EXPECT_THAT(label("lblHead"), HasSubstr("账已变动"));
    EXPECT_THAT(call.text(1).toStdString(), HasSubstr("现为 100.26"));
}

TEST_F(Drill, ABranchThatFailsSaysSoAndTheTreeStays)
{
    openForUse();
    moveTo(1, 2);
    trigger("MenuDrill");
    ledger.run("alter table tblAccountBal rename to gone");
    QTest::keyClick(&tree(), Qt::Key_Right);
    ASSERT_EQ(tree().topLevelItemCount(), 1);
    ASSERT_EQ(tree().topLevelItem(0)->childCount(), 1);
    EXPECT_EQ(tree().topLevelItem(0)->child(0)->foreground(0).color(), QColor(Qt::red));
    EXPECT_TRUE(tree().topLevelItem(0)->child(0)->isFirstColumnSpanned()) << "a sentence needs room";
    ledger.run("alter table gone rename to tblAccountBal"); // it was locked for a moment only
    QTest::keyClick(&tree(), Qt::Key_Left);
    QTest::keyClick(&tree(), Qt::Key_Right);
    EXPECT_EQ(tree().topLevelItem(0)->childCount(), 3) << "and may be tried again";
}

TEST_F(Drill, VouchersComeInPages)
{
    ledger.run("insert into tblVoucher values(1,2025,2,'2025-02-05','记-1','很多行',0)");
    for (int line = 1; line <= 250; ++line)
        ledger.run("insert into tblVoucherEntry values(1," + std::to_string(line) +
                   ",1,0,1,0.1,0.1,0,0,0,0)");
    openForUse();
    moveTo(1, 1);
    trigger("MenuDrill");
    QTest::keyClick(&tree(), Qt::Key_Right);
    auto& ways = control<QComboBox>(*drill(), "cboWay");
    ASSERT_EQ(ways.count(), 2);
    ways.setCurrentIndex(1);
    Q_EMIT ways.activated(1);
    QTreeWidgetItem& call = *tree().topLevelItem(0);
    ASSERT_EQ(call.childCount(), 202) << "opening, 200 lines, the next page";
    EXPECT_EQ(call.child(201)->text(0), "下一页（第 2 页，共 2 页）");
    const double opening = call.child(0)->text(3).remove(',').toDouble();
    const auto runsTo = [&](const QTreeWidgetItem& line, double moved) {
        EXPECT_THAT(line.text(1).toStdString(), ::testing::EndsWith("，余额 " + amountText(opening + moved)));
    };
    runsTo(*call.child(1), 0.1);
    runsTo(*call.child(200), 20);
    tree().setCurrentItem(call.child(201));
    QTest::keyClick(&tree(), Qt::Key_Return);
    ASSERT_EQ(call.childCount(), 52) << "opening, 50 lines, the page before";
    runsTo(*call.child(1), 20.1);
    runsTo(*call.child(50), 25);
}

TEST_F(Drill, GoesOutAsAnExcelFile)
{
    openForUse();
    moveTo(1, 2);
    trigger("MenuDrill");
    QTest::keyClick(&tree(), Qt::Key_Right);
    struct Chosen : FileDialog {
        explicit Chosen(std::string chosen)
            : path(std::move(chosen))
        {
        }
        std::optional<std::string> chooseToOpen(const FileDialogSettings&) override { return {}; }
        std::optional<std::string> chooseToSave(const FileDialogSettings&) override { return path; }
        std::string path;
    };
    for (const auto& [name, begins] : {std::pair("联查.xlsx", "PK"), std::pair("联查.xls", "\xD0\xCF")}) {
        Chosen chosen(folder.filePath(name).toStdString());
        const FileDialogInUse inUse(chosen);
        control<QPushButton>(*drill(), "cmdExport").click();
        spreadsheet::Workbook read;
        spreadsheet::loadWorkbook(read, chosen.path);
        std::string items;
        for (int row = 1; row <= 13; ++row)
            items += read.sheet(1).textByType({2, row}) + "|";
        EXPECT_THAT(items, HasSubstr("1001 库存现金|期初余额|借方发生额|贷方发生额|合计|单元格|差额|"));
        EXPECT_EQ(read.sheet(1).displayText({2, 8}), "　期初余额") << "a row's level shows";
        QFile file(folder.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        EXPECT_TRUE(file.readAll().startsWith(begins)) << "other programs mind the ending of " << name;
    }
}

/// A window manager gives the focus back to the owner of a dialog. Were that the report, the next keys would
/// go into its cells.
TEST_F(Drill, OwnsTheDialogsThatItOpensOverAModalReport)
{
    storeReport();
    gRunMode = true;
    window = std::make_unique<frmEditor>(sharedContext);
    window->setWindowModality(Qt::ApplicationModal); // as it is within a host's call
    show(*window);
    QApplication::processEvents();
    QApplication::processEvents();
    moveTo(1, 2);
    trigger("MenuDrill");
    const auto isActive = [this] { return QApplication::activeWindow() == drill(); };
    drill()->activateWindow();
    ASSERT_TRUE(QTest::qWaitFor(isActive));
    QtFileDialog real;
    const FileDialogInUse inUse(real);
    whenModal("fileDialog", [this](QWidget& dialog) {
        EXPECT_EQ(dialog.parentWidget(), drill());
        dialog.close();
    });
    control<QPushButton>(*drill(), "cmdExport").click();
    drill()->activateWindow();
    ASSERT_TRUE(QTest::qWaitFor(isActive));
    whenModal("frmPreview", [this](QWidget& preview) {
        preview.close();
        window->activateWindow(); // as some window managers would
    });
    control<QPushButton>(*drill(), "cmdPrint").click();
    EXPECT_TRUE(QTest::qWaitFor(isActive, 500));
}

TEST_F(Drill, HasRoomForAllRowsAndSaysWhichPageOfVouchersItShows)
{
    ledger.run("insert into tblVoucher values(1,2025,2,'2025-02-05','记-1','',0)"); // a line without a text
    for (int line = 1; line <= 650; ++line)
        ledger.run("insert into tblVoucherEntry values(1," + std::to_string(line) +
                   ",1,0,1,0.1,0.1,0,0,0,0)");
    openForUse();
    moveTo(1, 1);
    trigger("MenuDrill");
    DrillTree tree("现金表", grid().cells().workbook(), window->formulas().evaluation().record(), {1, 1, 1});
    tree.open(tree.root().parts.front(), sharedContext.database, 1, 1);
    const DrillNode open = tree.root().parts.front();
    tree.root().parts.insert(tree.root().parts.end(), 2, open); // more rows than a fresh sheet has
    spreadsheet::Workbook sheet;
    writeDrillSheet(sheet, tree.head(), tree.root());
    EXPECT_GT(sheet.sheet(1).lastDataRow(), 600);
    EXPECT_LE(sheet.sheet(1).lastDataRow(), sheet.sheet(1).settings().rowCount);
    std::string pages;
    for (int row = 1; row <= sheet.sheet(1).lastDataRow(); ++row)
        pages += sheet.sheet(1).textByType({2, row}) + "|";
    EXPECT_THAT(pages, HasSubstr("第 1 页，共 4 页，这里只有这一页"));
}

TEST_F(Drill, IsPrintedAsItStandsOpen)
{
    openForUse();
    moveTo(1, 2);
    ledger.run("update tblAccountBal set fEndBal=fEndBal+0.01 where faccountid=1 and fPeriod=2");
    trigger("MenuDrill");
    QTest::keyClick(&tree(), Qt::Key_Right);
    const std::string file = folder.filePath("联查.pdf").toStdString();
    printerSetup().file = file;
    whenModal("frmPreview", [](QWidget& preview) {
        whenModal("PrintDlg", [](QWidget& dialog) { control<QPushButton>(dialog, "Command2").click(); });
        control<QPushButton>(preview, "cmdHelp").click();
    });
    show(*drill()); // it is in front, as keys of the designer are the designer's
    QTest::keyClick(&tree(), Qt::Key_P, Qt::ControlModifier);
    printerSetup() = {};
    EXPECT_TRUE(window->isVisible() && drill()->isVisible()) << "printing closes neither";
    QProcess process;
    process.start("pdftotext", {"-layout", QString::fromStdString(file), "-"});
    process.waitForFinished();
    const std::string text = process.readAllStandardOutput().toStdString();
    for (const char* shown : {"现金表", "Sheet1!A2", "1001", "借方发生额", "差额", "0.01", "账已变动"})
        EXPECT_THAT(text, HasSubstr(shown));
}

/// Reports that read another: A1 that report's figure, A2 their own, A3 of a report that is gone.
class DrillIntoReports : public Drill {
protected:
    void openReader()
    {
        storeReport();
        spreadsheet::Workbook reader;
        reader.registerFunction("REF_F", 3, [](spreadsheet::FunctionCall& call) { call.decline(); });
        const char* const formulas[] = {R"(REF_F("现金表","A2","1"))", R"(REF_F("汇总","B9","1"))",
                                        R"(REF_F("没有","A1","1"))"};
        int row = 0;
        for (const char* formula : formulas)
            demand(reader.sheet(1).setFormula({1, ++row}, formula));
        reader.sheet(1).setNumber({2, 9}, 5);
        ledger.addReport(4, "汇总", spreadsheet::saveContent(reader));
        gReportId = 4;
        gRunMode = true;
        open();
        QApplication::processEvents();
        QApplication::processEvents();
    }
    /// "report!cell" of the window that opens over the tree while something is done.
    std::string shownBy(const std::function<void()>& act)
    {
        std::string shown;
        whenModal("frmEditor", [&](QWidget& other) {
            const auto& cells = control<spreadsheet::SpreadsheetControl>(other, "fps1");
            shown = control<QLineEdit>(other, "txtReportName").text().toStdString() + "!" +
                    spreadsheet::cellName(cells.cursor().activeCell()) +
                    (cells.mode() == spreadsheet::GridMode::run ? "" : " for design");
            other.close();
        });
        act();
        return shown;
    }
};

TEST_F(DrillIntoReports, EnterAndDoubleClickOpenTheReportAtItsCell)
{
    openReader();
    moveTo(1, 1);
    trigger("MenuDrill");
    const auto enter = [this] { QTest::keyClick(&tree(), Qt::Key_Return); };
    EXPECT_EQ(shownBy(enter), "现金表!A2");
    const auto doubleClick = [this] {
        const QPoint place = tree().visualItemRect(tree().topLevelItem(0)).center();
        QTest::mouseClick(tree().viewport(), Qt::LeftButton, {}, place);
        QTest::mouseDClick(tree().viewport(), Qt::LeftButton, {}, place);
    };
    EXPECT_EQ(shownBy(doubleClick), "现金表!A2");
    QTest::keyClick(&tree(), Qt::Key_Right);
    QTest::keyClick(&tree(), Qt::Key_Right);
    EXPECT_EQ(current(), "1001 库存现金");
    EXPECT_EQ(shownBy(enter), "现金表!A1") << "where the call is written";
    EXPECT_TRUE(drill()->isVisible());
    EXPECT_EQ(gReportId, 4) << "what is open below stays open";
    EXPECT_EQ(edit("txtReportName").text(), QStringLiteral("汇总"));
}

TEST_F(DrillIntoReports, AReportMayReadItselfOrOneThatIsGone)
{
    openReader();
    moveTo(1, 2);
    trigger("MenuDrill");
    const auto enter = [this] { QTest::keyClick(&tree(), Qt::Key_Return); };
    EXPECT_EQ(shownBy(enter), "汇总!B9");
    QTest::keyClick(&tree(), Qt::Key_Right);
    EXPECT_THAT(rowsOf(*tree().topLevelItem(0)), ::testing::ElementsAre("常数  5.00"));
    drill()->hide();
    moveTo(1, 3);
    trigger("MenuDrill");
    enter();
    ASSERT_FALSE(ledger.boxes.said.empty());
    EXPECT_THAT(ledger.boxes.said.back().text, HasSubstr("没有名为“没有”的报表"));
    QTest::keyClick(&tree(), Qt::Key_Right);
    EXPECT_THAT(tree().topLevelItem(0)->child(0)->text(0).toStdString(), HasSubstr("没有名为“没有”的报表"));
}

} // namespace
} // namespace selfreport
