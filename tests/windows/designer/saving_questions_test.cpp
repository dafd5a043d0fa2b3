#include "component/windows.h"
#include "platform/toolkit/QtDialogs.h"
#include "state/report_procedures.h"
#include "tests/platform/KeyScript.h"
#include "tests/windows/designer/DesignerTest.h"
#include "windows/designer/frmSaveAs.h"
#include "windows/printing/headerfooter.h"
#include "windows/printing/pagesetup.h"

#include <QMessageBox>
#include <QPushButton>

namespace selfreport {
namespace {

using Offered = std::vector<std::vector<std::string>>;

/// A designer on the stored report 3, "现金表", while others work on the same table.
struct SavingQuestions : test::DesignerTest {
    SavingQuestions()
    {
        storeReport();
        ledger.run("insert into tblsystemprivillenge(fitemid,fnumber,fname) values(30,'RSelf3','现金表')");
        ledger.run("insert into tbluser values('li','李会计')");
        open();
        typeInBox("'本地", Qt::Key_Return); // something to save
        ledger.boxes.said.clear();
    }

    void savedByOthers() const
    {
        ledger.run("update tblCWSelfReport set fdate='2026-12-31 08:05:09',fbillerid='li' where noid=3");
    }
    void idGivenToAnother() const
    {
        ledger.run("update tblCWSelfReport set fname='费用表',fdate='2026-12-31 08:05:09',fbillerid='li'");
    }
    void deletedByOthers() const
    {
        ledger.run("delete from tblCWSelfReport");
        ledger.run("delete from tblsystemprivillenge");
    }

    std::string told() const
    {
        std::string all;
        for (const auto& said : ledger.boxes.said)
            all += said.text + "|";
        return all;
    }
    /// "3现金表:wang" of each row.
    std::string rows() const
    {
        std::string all;
        const Recordset found = ledger.query("select * from tblCWSelfReport order by noid");
        for (std::size_t row = 0; row < found.rowCount(); ++row)
            all +=
                found.text(row, "noid") + found.text(row, "fname") + ":" + found.text(row, "fbillerid") + " ";
        return all;
    }
    std::string items() const
    {
        std::string all;
        const Recordset found = ledger.query("select * from tblsystemprivillenge order by fitemid");
        for (std::size_t row = 0; row < found.rowCount(); ++row)
            all += found.text(row, "fnumber") + found.text(row, "fname") + " ";
        return all;
    }
    /// Types a name into the dialog that opens next, and confirms it.
    static void nameNext(const QString& name)
    {
        whenModal("frmSaveAs", [name](QWidget& dialog) {
            control<QLineEdit>(dialog, "txtName").setText(name);
            control<QPushButton>(dialog, "cmdXPOK").click();
        });
    }
};

TEST_F(SavingQuestions, EachAsksWithItsChoicesAndCancelChangesNothing)
{
    const struct {
        void (*others)(SavingQuestions&);
        const char* question;
        std::vector<std::string> choices;
    } cases[] = {
        {[](auto& test) { test.savedByOthers(); },
         "报表“现金表”已由 李会计 于 2026-12-31 08:05:09 保存。|",
         {"覆盖", "另存为新报表"}},
        {[](auto& test) { test.idGivenToAnother(); },
         "报表“现金表”的编号 3 现在属于报表“费用表”，由 李会计 于 2026-12-31 08:05:09 保存。|",
         {"另存为新报表"}},
        {[](auto& test) { test.deletedByOthers(); }, "报表“现金表”已被删除。|", {"重新建立"}},
    };
    for (const auto& c : cases) {
        c.others(*this);
        const std::string before = rows() + items();
        ledger.boxes.said.clear();
        ledger.boxes.offered.clear();
        trigger("MenuFileSave");
        EXPECT_EQ(told(), c.question);
        EXPECT_EQ(ledger.boxes.offered, Offered{c.choices});
        EXPECT_EQ(rows() + items(), before);
    }
}

TEST_F(SavingQuestions, OverwritingReplacesWhatTheQuestionShowed)
{
    savedByOthers();
    ledger.boxes.chosen = {"覆盖"};
    trigger("MenuFileSave");
    EXPECT_EQ(rows(), "3现金表:wang ");
    EXPECT_TRUE(told().ends_with("报表修改成功!|")) << told();

    ledger.boxes.said.clear();
    trigger("MenuFileSave"); // own saves are no conflict
    EXPECT_EQ(told(), "报表修改成功!|");
}

TEST_F(SavingQuestions, ADeletedReportIsSetUpAgain)
{
    deletedByOthers();
    ledger.boxes.chosen = {"重新建立"};
    trigger("MenuFileSave");
    EXPECT_EQ(rows(), "3现金表:wang ");
    EXPECT_EQ(items(), "RSelf3现金表 ");
    EXPECT_TRUE(told().ends_with("报表保存成功!|")) << told();
}

TEST_F(SavingQuestions, OwnPageSetupComesBackWithADeletedReport)
{
    {
        pagesetup dialog(window->printedGrid());
        for (int field = 0; field < 4; ++field)
            control<QLineEdit>(dialog, ("pagemargin_" + std::to_string(field)).c_str()).setText("1.25");
        dialog.saveToDB();
    }
    trigger("MenuFileSave");
    deletedByOthers();
    ledger.boxes.chosen = {"重新建立"};
    trigger("MenuFileSave");
    const Recordset row = ledger.query("select * from tblCWSelfReport");
    EXPECT_EQ(row.number(0, "fTop") + row.number(0, "fLeft"), 2.5);
}

TEST_F(SavingQuestions, ThePageSetupOfAReportThatIsGoneOrAnotherIsNotStored)
{
    const auto stored = [&]() -> std::string {
        pagesetup setup(window->printedGrid());
        for (int field = 0; field < 4; ++field)
            control<QLineEdit>(setup, ("pagemargin_" + std::to_string(field)).c_str()).setText("1.25");
        setup.saveToDB();
        EXPECT_TRUE(headerfooter(window->printedGrid()).SaveConfiguration());
        const Recordset row = ledger.query("select * from tblCWSelfReport");
        return row.isEmpty() ? "gone" : row.isNull(0, "fTop") ? "null" : row.text(0, "fTop");
    };
    idGivenToAnother();
    EXPECT_EQ(stored(), "null");
    EXPECT_EQ(told(), "这张报表的编号现在属于另一张报表，页面设置和页眉页脚没有存入数据库。|"
                      "这张报表的编号现在属于另一张报表，页面设置和页眉页脚没有存入数据库。|");
    ledger.run("update tblCWSelfReport set fname='现金表'"); // saved by somebody else: still the same report
    EXPECT_EQ(stored(), "1.25");
    ledger.boxes.said.clear();
    deletedByOthers();
    EXPECT_EQ(stored(), "gone");
    EXPECT_EQ(told(), "页面设置和页眉页脚没有存入数据库。\n报表不存在!|"
                      "页面设置和页眉页脚没有存入数据库。\n报表不存在!|");
}

TEST_F(SavingQuestions, SavingAsANewReportAsksForANameThatNoneHas)
{
    idGivenToAnother();
    ledger.run("update tblCWSelfReport set fTop=2");
    ledger.boxes.chosen = {"另存为新报表"};
    whenModal("frmSaveAs", [&](QWidget& dialog) {
        auto& name = control<QLineEdit>(dialog, "txtName");
        EXPECT_EQ(name.text(), "现金表");
        for (const char* refused : {" ", "费用表"}) {
            name.setText(refused);
            control<QPushButton>(dialog, "cmdXPOK").click();
            EXPECT_TRUE(dialog.isVisible()) << refused;
        }
        name.setText("现金表二");
        control<QPushButton>(dialog, "cmdXPOK").click();
    });
    trigger("MenuFileSave");
    EXPECT_EQ(rows(), "3费用表:li 4现金表二:wang ");
    EXPECT_EQ(items(), "RSelf3现金表 RSelf4现金表二 ");
    EXPECT_EQ(edit("txtReportName").text(), "现金表二");
    EXPECT_EQ(gReportId, 4);
    EXPECT_EQ(ledger.query("select fTop from tblCWSelfReport where noid=4").number(0, "fTop"),
              0.6); // as loaded
    EXPECT_NE(told().find("报表名称不能为空！|已经有名为“费用表”的报表，请换一个名称。|报表保存成功!|"),
              std::string::npos)
        << told();
    ledger.boxes.said.clear();
    trigger("MenuFileSave");
    EXPECT_EQ(told(), "报表修改成功!|");
}

/// The real boxes: Enter and Esc leave everything as it is, the buttons do what they say.
TEST_F(SavingQuestions, RealBoxesCancelUnlessAButtonIsChosen)
{
    QtDialogs real;
    const DialogsInUse inUse(real);
    savedByOthers();
    for (const char* keys : {"Ctrl+S Return", "Ctrl+S Escape"}) {
        EXPECT_TRUE(test::KeyScript(*window, keys).run()) << keys;
        EXPECT_EQ(rows(), "3现金表:li ") << keys;
    }
    const auto press = [](const QString& caption) {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        ASSERT_TRUE(box);
        for (QAbstractButton* const button : box->buttons())
            if (button->text() == caption)
                return button->click();
        ADD_FAILURE() << "no button " << caption.toStdString();
    };
    QTimer::singleShot(0, [&] {
        QTimer::singleShot(0, [] { qobject_cast<QMessageBox*>(QApplication::activeModalWidget())->close(); });
        press("覆盖");
    });
    trigger("MenuFileSave");
    EXPECT_EQ(rows(), "3现金表:wang ");
}

/// An empty sheet in its place would be saved over it.
TEST_F(SavingQuestions, AReportOfALaterProgramIsNeitherShownNorReplaced)
{
    const auto content = [this] {
        return ledger.query("select datalength(fFileContent) as n from tblCWSelfReport").text(0, "n");
    };
    ledger.run("update tblCWSelfReport set fFileContent=x'895353370D0A1A0A6300000001'");
    open();
    EXPECT_NE(told().find("由更新的版本保存(内容版本 99)"), std::string::npos) << told();
    edit("txtReportName").setText("现金表");
    ledger.boxes.said.clear();
    ledger.boxes.chosen = {"保存", "覆盖"};
    trigger("MenuFileSave");
    EXPECT_NE(told().find("没有保存"), std::string::npos) << told();
    EXPECT_EQ(content(), "13");

    frmEditor fresh(sharedContext);
    bool seen = false;
    QTimer::singleShot(0, &fresh, [&] {
        seen = fresh.isVisible();
        fresh.close();
    });
    fresh.exec();
    EXPECT_FALSE(seen);
}

/// A designer on a report whose content is cut off.
struct UnreadReport : SavingQuestions {
    UnreadReport()
    {
        ledger.run(
            "update tblCWSelfReport set fFileContent=x'53533701',fTop=2,fHeader='/c眉',fFooter='/c脚'");
        gHeaderText = gFooterText = "别的报表";
        open();
        EXPECT_EQ(ledger.boxes.said.size(), 1U); // why
        ledger.boxes.said.clear();
    }
    std::string content() const
    {
        const Recordset row = ledger.query("select datalength(fFileContent) as n from tblCWSelfReport");
        return row.text(0, "n");
    }
};

TEST_F(UnreadReport, SavingAsksFirstAndKeepsItByDefault)
{
    EXPECT_EQ(gHeaderText + gFooterText, "");
    EXPECT_EQ(formula(1, 1), "");
    edit("txtReportName").setText("现金表");
    trigger("MenuFileSave");
    EXPECT_EQ(ledger.boxes.offered, (Offered{{"保存"}}));
    EXPECT_EQ(content(), "4");

    ledger.boxes.chosen = {"保存"};
    trigger("MenuFileSave");
    EXPECT_TRUE(told().ends_with("报表修改成功!|")) << told();
    EXPECT_NE(content(), "4");
    EXPECT_EQ(gHeaderText + gFooterText, "/c眉/c脚"); // what the row kept
    EXPECT_EQ(grid().cells().workbook().sheet(1).settings().print.marginTop, 2880);
    ledger.boxes.offered.clear();
    trigger("MenuFileSave");
    EXPECT_TRUE(ledger.boxes.offered.empty());
}

TEST_F(UnreadReport, SavedMeanwhileIsStillAsked)
{
    edit("txtReportName").setText("现金表");
    savedByOthers();
    ledger.boxes.chosen = {"保存"};
    trigger("MenuFileSave");
    EXPECT_EQ(ledger.boxes.offered, (Offered{{"保存"}, {"覆盖", "另存为新报表"}}));
    EXPECT_EQ(content(), "4");
}

TEST_F(UnreadReport, PageSetupAndHeaderAreRefusedUntilItIsSaved)
{
    const auto refusals = [&] {
        ledger.boxes.said.clear();
        pagesetup setup(window->printedGrid());
        headerfooter header(window->printedGrid());
        setup.saveToDB();
        const std::size_t first = ledger.boxes.said.size();
        EXPECT_EQ(header.SaveConfiguration(), first == 0);
        return ledger.boxes.said.size();
    };
    ledger.boxes.said.clear();
    EXPECT_EQ(pagesetup(window->printedGrid()).exec(), QDialog::Rejected);
    EXPECT_EQ(headerfooter(window->printedGrid()).exec(), QDialog::Rejected);
    EXPECT_EQ(ledger.boxes.said.size(), 2U);
    EXPECT_EQ(refusals(), 2U);
    const Recordset row = ledger.query("select * from tblCWSelfReport");
    EXPECT_EQ(row.text(0, "fHeader") + row.text(0, "fFooter") + row.text(0, "fTop"), "/c眉/c脚2");

    edit("txtReportName").setText("现金表");
    ledger.boxes.chosen = {"保存"};
    trigger("MenuFileSave");
    EXPECT_EQ(refusals(), 0U);
}

} // namespace
} // namespace selfreport
