#include "platform/services/ScriptedDialogs.h"
#include "spreadsheet/files/FileFormats.h"
#include "tests/windows/designer/DesignerTest.h"
#include "windows/printing/headerfooter.h"
#include "windows/printing/MarginField.h"
#include "windows/printing/pagesetup.h"

#include <QPushButton>
#include <QRadioButton>

namespace selfreport {
namespace {

/// The stored report 3 with margins of its own, open in the designer.
class PageSetupUndo : public test::DesignerTest {
protected:
    PageSetupUndo()
    {
        storeReport();
        ledger.run("update tblCWSelfReport set fLeft=0.5,fRight=0.75,fTop=1,fBottom=1.25,fDirection=1"
                   ",fHeader='/c&Comp' where noid=3");
        open();
    }

    std::string row()
    {
        const Recordset rows = ledger.query("select * from tblCWSelfReport where noid=3");
        std::string all;
        for (const char* column : {"fLeft", "fRight", "fTop", "fBottom", "fDirection"})
            all += QString::number(rows.number(0, column)).toStdString() + ' ';
        return all + rows.text(0, "fHeader");
    }
    /// What the dialog opens with.
    std::string shown()
    {
        pagesetup dialog(window->printedGrid());
        std::string all;
        for (const char* name : {"pagemargin_0", "pagemargin_1", "pagemargin_2", "pagemargin_3"})
            all += control<MarginField>(dialog, name).text().toStdString() + ' ';
        return all + (control<QRadioButton>(dialog, "porientation_0").isChecked() ? "纵向" : "横向");
    }
    void setLandscape(const char* left)
    {
        pagesetup dialog(window->printedGrid());
        show(dialog);
        control<MarginField>(dialog, "pagemargin_0").setText(left);
        control<QRadioButton>(dialog, "porientation_1").setChecked(true);
        control<QPushButton>(dialog, "cmdXPOK").click();
        EXPECT_FALSE(dialog.isVisible());
    }
    /// A file with a left margin of two inches.
    void importLandscape()
    {
        const std::string path = folder.path().toStdString() + "/other.xlsx";
        spreadsheet::Workbook other;
        other.sheet(1).changeSettings([](spreadsheet::SheetSettings& settings) {
            settings.print.marginLeft = 2 * 1440;
            settings.print.landscape = true;
        });
        spreadsheet::saveWorkbook(other, path, spreadsheet::fileFormat(".xlsx"));
        ScriptedFileDialog files;
        const FileDialogInUse inUse{files};
        files.answers = {path};
        trigger("MenuImportXlsx");
    }
    void press(Qt::Key key) { QTest::keyClick(&grid(), key, Qt::ControlModifier); }
};

TEST_F(PageSetupUndo, TheRowFollows)
{
    const std::string before = "0.5 0.75 1 1.25 1 /c&Comp", after = "2 0.75 1 1.25 0 /c&Comp";
    setLandscape("2.00");
    ASSERT_EQ(row(), after);
    press(Qt::Key_Z);
    EXPECT_EQ(row(), before);
    EXPECT_EQ(shown(), "0.50 0.75 1.00 1.25 纵向");
    press(Qt::Key_Y);
    EXPECT_EQ(row(), after);
    EXPECT_EQ(shown(), "2.00 0.75 1.00 1.25 横向");
    press(Qt::Key_Z);
    EXPECT_EQ(row(), before);
    EXPECT_TRUE(ledger.boxes.said.empty());

    ledger.run("update tblCWSelfReport set fTop=3 where noid=3"); // a second user
    QTest::keyClick(&grid(), Qt::Key_Delete);
    ASSERT_EQ(formula(1, 1), "");
    press(Qt::Key_Z);
    EXPECT_EQ(row(), "0.5 0.75 3 1.25 1 /c&Comp") << "other steps leave it alone";
}

TEST_F(PageSetupUndo, PlaceholdersOfTheHeaderComeBack)
{
    {
        headerfooter dialog(window->printedGrid());
        show(dialog);
        auto& lines = control<spreadsheet::SpreadsheetControl>(dialog, "fpSpread1");
        lines.cells().sheet().setText({1, 2}, "附注");
        control<QPushButton>(dialog, "cmdXPOK").click();
    }
    ASSERT_NE(row().find("附注"), std::string::npos);
    press(Qt::Key_Z);
    EXPECT_EQ(row(), "0.5 0.75 1 1.25 1 /c&Comp");
    EXPECT_EQ(gHeaderText, "/c&Comp");
    press(Qt::Key_Y);
    EXPECT_NE(gHeaderText.find("附注"), std::string::npos);
    EXPECT_NE(row().find("附注"), std::string::npos);
}

TEST_F(PageSetupUndo, AnImportedSetupIsShownAndStoredByTheDialogAlone)
{
    const std::string before = row();
    importLandscape();
    EXPECT_EQ(row(), before);
    EXPECT_EQ(shown(), "2.00 0.60 0.60 0.60 横向");

    setLandscape("3.00");
    EXPECT_EQ(row(), "3 0.6 0.6 0.6 0 /c&Comp");
    press(Qt::Key_Z);
    EXPECT_EQ(row(), "2 0.6 0.6 0.6 0 /c&Comp");
    EXPECT_EQ(shown(), "2.00 0.60 0.60 0.60 横向");
    press(Qt::Key_Z);
    EXPECT_EQ(shown(), "0.50 0.75 1.00 1.25 纵向");
    EXPECT_EQ(row(), before);
}

/// Saving a new report gives its row no page set-up, whatever a file brought.
TEST_F(PageSetupUndo, OfANewReportAnImportedSetupIsShownToo)
{
    gEditFlag = 0;
    open();
    edit("txtReportName").setText("新表");
    importLandscape();
    trigger("MenuFileSave");
    ASSERT_EQ(gEditFlag, 1);
    EXPECT_EQ(shown(), "2.00 0.60 0.60 0.60 横向");
}

TEST_F(PageSetupUndo, ANewSheetIsPrintedAsTheOthers)
{
    setLandscape("2.00");
    QTest::keyClick(&grid(), Qt::Key_F11, Qt::ShiftModifier);
    spreadsheet::Workbook& workbook = grid().cells().workbook();
    ASSERT_EQ(workbook.sheetCount(), 2);
    const spreadsheet::PrintSettings print = workbook.sheet(2).settings().print;
    EXPECT_EQ(print.marginLeft, 2880);
    EXPECT_TRUE(print.landscape);
    EXPECT_EQ(print.header, workbook.sheet(1).settings().print.header);
    press(Qt::Key_Z);
    EXPECT_EQ(workbook.sheetCount(), 1) << "one step";
    demand(grid().cells().setSheetCount(3)); // as 设置表格信息 does
    for (const int index : {2, 3})
        EXPECT_EQ(workbook.sheet(index).settings().print.marginLeft, 2880) << index;
}

} // namespace
} // namespace selfreport
