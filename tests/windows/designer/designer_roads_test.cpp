// The designer from the host's call to its closing, and what goes wrong between.
#include "component/clsSelfReport.h"
#include "component/windows.h"
#include "platform/list_grid/ListGrid.h"
#include "platform/services/ScriptedDialogs.h"
#include "state/report_procedures.h"
#include "tests/windows/designer/DesignerTest.h"

#include <QLabel>
#include <QPushButton>

#include <filesystem>

namespace selfreport {
namespace {

using Said = RecordingDialogs::Said;

class DesignerRoads : public test::DesignerTest {
protected:
    Said said(Icon icon, const char* text) const { return {icon, "测试账套", text}; }
    std::string storedName() const
    {
        return ledger.query("select fname from tblCWSelfReport").text(0, "fname");
    }
};

TEST_F(DesignerRoads, TheHostRunsAReportAndOpensItAgain)
{
    storeReport();
    clsSelfReport host;
    host.init(gConnString, gTitle, gLoginUserId, gAppPath);
    int opened = 0;
    const auto lookAndSave = [&](QWidget& designer) {
        ++opened;
        auto& editor = dynamic_cast<frmEditor&>(designer);
        EXPECT_TRUE(QTest::qWaitFor([&] { return editor.fps1().cells().text(1, 1) == "100.25"; }));
        EXPECT_EQ(control<QLabel>(designer, "lblStatusMode").text(), "使用");
        control<QAction>(designer, "MenuFileSave").trigger();
        designer.close();
    };
    const DialogsInUse recorded(ledger.boxes);
    whenModal("frmEditor", lookAndSave);
    EXPECT_FALSE(host.cwSelfReportExe(3));
    whenModal("frmEditor", lookAndSave);
    EXPECT_FALSE(host.editForm(0)); // mode, flag and report have stayed
    EXPECT_EQ(opened, 2);
    const Said refusal = said(Icon::exclamation, "请在报表编辑状态下进行保存,保存不成功!");
    EXPECT_EQ(ledger.boxes.said, (std::vector{refusal, refusal}));
}

TEST_F(DesignerRoads, ANewReportFromTheListToTheStoreAndBack)
{
    gFromList = 1;
    whenModal("frmSelfReportMain", [](QWidget& list) {
        whenModal("frmEditor", [](QWidget& designer) {
            control<QLineEdit>(designer, "txtReportName").setText("新表");
            auto& box = control<QLineEdit>(designer, "txtFormula");
            box.setFocus();
            box.insert(test::closingBalance);
            QTest::keyClick(&box, Qt::Key_Return);
            control<QAction>(designer, "Save").trigger();
            control<QAction>(designer, "MenuFileExit").trigger();
        });
        control<QPushButton>(list, "cmd_0").click();
        auto& rows = control<ListGrid>(list, "vsf1");
        ASSERT_EQ(rows.rowCount(), 2);
        EXPECT_EQ(rows.text(1, 1), "新表");
        list.close();
    });
    showReportList();
    EXPECT_EQ(ledger.boxes.said, std::vector{said(Icon::information, "报表保存成功!")});
    EXPECT_EQ(ledger.query("select fnumber from tblsystemprivillenge where fname='新表'").text(0, 0),
              "RSelf1");
}

TEST_F(DesignerRoads, AReportThatIsGoneOrUnreadableOpensAnEmptyDesigner)
{
    const struct {
        const char* what;
        std::function<void()> spoil;
        const char* text; // null: the reader's own
    } cases[] = {
        {"gone", [this] { ledger.run("delete from tblCWSelfReport"); }, "报表不存在!"},
        {"unreadable",
         [this] {
             ledger.run("delete from tblCWSelfReport");
             ledger.addReport(3, "坏表", std::vector<std::byte>(100, std::byte{7}));
         },
         nullptr},
    };
    storeReport();
    for (const auto& [what, spoil, text] : cases) {
        spoil();
        for (const bool running : {false, true}) {
            gRunMode = running;
            ledger.boxes.said.clear();
            open();
            ASSERT_EQ(ledger.boxes.said.size(), 1u) << what;
            EXPECT_EQ(ledger.boxes.said[0].icon, Icon::exclamation) << what;
            EXPECT_EQ(ledger.boxes.said[0].title, "测试账套") << what;
            if (text) {
                EXPECT_EQ(ledger.boxes.said[0].text, text);
            }
            EXPECT_FALSE(ledger.boxes.said[0].text.empty()) << what;
            EXPECT_EQ(edit("txtReportName").text(), "") << what;
            EXPECT_EQ(grid().cells().lastDataRow(), 0) << what;
            window.reset();
        }
    }
}

TEST_F(DesignerRoads, ADatabaseGoneBeforeSavingLosesNothing)
{
    ScriptedFileDialog files;
    const FileDialogInUse inUse(files);
    storeReport();
    open();
    typeInBox("=7", Qt::Key_Return);
    const std::string good = std::exchange(gConnString, "Provider=SQLite;Data Source=/不存在/x.db");
    trigger("Save");
    EXPECT_EQ(ledger.boxes.said, std::vector{said(Icon::critical, "数据库文件不存在或读取错误!")});
    EXPECT_EQ(formula(1, 1), "7");
    const std::string file = (folder.path() + "/救出.ss7").toStdString();
    files.answers = {file};
    trigger("MenuEmportSpreadFile");
    EXPECT_TRUE(std::filesystem::exists(file));
    gConnString = good;
    ledger.boxes.said.clear();
    trigger("Save");
    EXPECT_EQ(ledger.boxes.said, std::vector{said(Icon::information, "报表修改成功!")});
}

TEST_F(DesignerRoads, AStoreThatRefusesIsToldAndChangesNoState)
{
    ledger.run("alter table tblCWSelfReport rename to gone");
    for (const int flag : {0, 1}) {
        gEditFlag = 0;
        open();
        edit("txtReportName").setText("表");
        typeInBox("=7", Qt::Key_Return);
        ledger.boxes.said.clear();
        gEditFlag = static_cast<std::int16_t>(flag);
        trigger("MenuFileSave");
        ASSERT_EQ(ledger.boxes.said.size(), 1u) << flag;
        EXPECT_EQ(ledger.boxes.said[0].icon, Icon::exclamation) << flag;
        EXPECT_EQ(ledger.boxes.said[0].title, "测试账套") << flag;
        EXPECT_NE(ledger.boxes.said[0].text.find("tblCWSelfReport"), std::string::npos) << flag;
        EXPECT_EQ(gEditFlag, flag);
        EXPECT_EQ(formula(1, 1), "7") << flag;
    }
}

TEST_F(DesignerRoads, NamesAsTheyAreTyped)
{
    const QString names[] = {QString(4000, QChar(u'表')), "O'Neil''s \"表\"; drop table x --", "  两边空白 ",
                             QString::fromUtf8("𠮷野家 & 百分之50%")};
    for (const QString& name : names) {
        ledger.run("delete from tblCWSelfReport");
        ledger.boxes.said.clear();
        gEditFlag = 0;
        open();
        edit("txtReportName").setText(name);
        trigger("MenuFileSave");
        ASSERT_EQ(ledger.boxes.said, std::vector{said(Icon::information, "报表保存成功!")})
            << name.left(40).toStdString();
        EXPECT_EQ(storedName(), name.toStdString());
        EXPECT_EQ(ledger.query("select fname from tblsystemprivillenge where fnumber='RSelf1'").text(0, 0),
                  name.trimmed().toStdString());
        ledger.run("delete from tblsystemprivillenge where fnumber='RSelf1'");
        window.reset();
        open();
        EXPECT_EQ(edit("txtReportName").text(), name);
        window.reset();
    }
}

} // namespace
} // namespace selfreport
