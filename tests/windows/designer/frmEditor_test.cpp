#include "windows/designer/frmEditor.h"

#include "component/windows.h"
#include "platform/list_grid/ListGrid.h"
#include "platform/services/ScriptedDialogs.h"
#include "spreadsheet/files/content/content.h"
#include "spreadsheet/view/SpreadsheetControl.h"
#include "spreadsheet/workbook/UndoJournal.h"
#include "state/report_procedures.h"
#include "tests/windows/designer/DesignerTest.h"

#include <QClipboard>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QStatusBar>
#include <QToolBar>

namespace selfreport {
namespace {

using Said = RecordingDialogs::Said;
using spreadsheet::CellType;
using test::closingBalance;

using Designer = test::DesignerTest;

/// A host's own windows share one context; another one's report, user and messages are its own.
TEST_F(Designer, WorksOnTheContextThatItIsHanded)
{
    std::vector<std::string> told;
    ReportContext own(gConnString, [&](Icon, std::string_view text) { told.emplace_back(text); });
    own.user = "li";
    own.folder = gAppPath;
    frmEditor editor(own);
    editor.fps1().cells().setText(1, 1, "5");
    control<QAction>(editor, "MenuFileSave").trigger();
    control<QLineEdit>(editor, "txtReportName").setText("另一张");
    control<QAction>(editor, "MenuFileSave").trigger();
    EXPECT_EQ(told, (std::vector<std::string>{"报表名称不能为空！", "报表保存成功!"}));
    const Recordset stored = ledger.query("select * from tblCWSelfReport");
    ASSERT_EQ(stored.rowCount(), 1);
    EXPECT_EQ(stored.text(0, "fbillerid"), "li");
    EXPECT_EQ(stored.integer(0, "noid"), own.report.id);
    EXPECT_EQ(own.report.editFlag, 1);
    EXPECT_EQ(gReportId, 0);
    EXPECT_EQ(gEditFlag, 0);
    EXPECT_TRUE(ledger.boxes.said.empty());
}

TEST_F(Designer, MenusInTheirOrder)
{
    open();
    const struct {
        const char *menu, *title;
        QStringList entries; // the given ones; "-" is a separator
    } menus[] = {
        {"MenuFile",
         "文件(&F)",
         {"新建|Ctrl+N", "打开|Ctrl+O", "保存|Ctrl+S", "关闭|", "-", "引入Excel文件|", "引出为Excel文件|",
          "-", "引入Spread文件|", "引出为Spread文件|", "-", "打印预览|", "打印|Ctrl+P", "-", "退出|"}},
        {"MenuEdit",
         "编辑(&E)",
         {"模向插入单元格|",
          "纵向插入单元格|",
          "-",
          "横向删除单元格|",
          "纵向删除单元格|",
          "-",
          "整行插入|",
          "整列插入|",
          "-",
          "粗体|Ctrl+B",
          "斜体|Ctrl+I",
          "-",
          "左对齐|",
          "居中|",
          "右对齐|",
          "对齐顶端|",
          "垂直居中|",
          "对齐底端|",
          "-",
          "单元格合并|",
          "单元格合并取消|",
          "-",
          "前景色|",
          "背景色|",
          "锁定/解锁|",
          "设置表格信息|",
          "设置数据类型|",
          "设置边框|"}},
        {"MenuInsert", "插入(&I)", {"公式|Ctrl+G"}},
        {"MenuItem", "选项(&I)", {"重算|Ctrl+J", "显示数据|", "显示公式|"}},
    };
    for (const auto& [name, title, entries] : menus) {
        auto& menu = control<QMenu>(*window, name);
        EXPECT_EQ(menu.title(), title);
        QStringList shown;
        for (const QAction* entry : menu.actions())
            shown += entry->isSeparator() ? "-" : entry->text() + '|' + entry->shortcut().toString();
        EXPECT_EQ(shown.mid(0, entries.size()), entries) << name;
    }
    const QList<QAction*> buttons = control<QToolBar>(*window, "Toolbar1").actions();
    const std::pair<int, const char*> places[] = {
        {12, "Bold"}, {13, "Italic"}, {15, "Left"}, {16, "Middle"}, {17, "Right"}};
    for (const auto& [place, key] : places)
        EXPECT_EQ(buttons.at(place - 1)->objectName(), key);
    EXPECT_TRUE(buttons.at(17)->isSeparator()) << "further ones stand apart";
    EXPECT_EQ(control<QComboBox>(*window, "list2").count(), 68);
    EXPECT_EQ(control<QComboBox>(*window, "list2").itemText(67), "72");
}

TEST_F(Designer, SavingANewReportTwice)
{
    open();
    edit("txtReportName").setText("  ");
    trigger("MenuFileSave");
    EXPECT_EQ(ledger.boxes.said, (std::vector<Said>{{Icon::exclamation, "测试账套", "报表名称不能为空！"}}));
    EXPECT_TRUE(edit("txtReportName").hasFocus());

    ledger.boxes.said.clear();
    edit("txtReportName").setText("现金'表");
    typeInBox("=1+1", Qt::Key_Return);
    trigger("Save");
    EXPECT_EQ(gEditFlag, 1);
    trigger("MenuFileSave");
    EXPECT_EQ(ledger.boxes.said, (std::vector<Said>{{Icon::information, "测试账套", "报表保存成功!"},
                                                    {Icon::information, "测试账套", "报表修改成功!"}}));
    EXPECT_EQ(ledger.query("select fname from tblCWSelfReport").rowCount(), 1u);
    std::string name;
    spreadsheet::Workbook stored;
    ASSERT_TRUE(loadReport(sharedContext, name, stored));
    EXPECT_EQ(name, "现金'表");
    EXPECT_EQ(stored.sheet(1).formula({1, 1}), "1+1");
}

TEST_F(Designer, AFailedSaveLeavesTheDesignOnScreen)
{
    open();
    edit("txtReportName").setText("现金表");
    typeInBox("12.5", Qt::Key_Return);
    const std::string good = std::exchange(gConnString, "Provider=SQLite;Data Source=/不存在/x.db");
    trigger("MenuFileSave");
    gConnString = good;
    EXPECT_EQ(ledger.boxes.said,
              (std::vector<Said>{{Icon::critical, "测试账套", "数据库文件不存在或读取错误!"}}));
    EXPECT_EQ(gEditFlag, 0);
    ledger.boxes.said.clear();
    trigger("MenuFileSave");
    EXPECT_EQ(ledger.boxes.said.at(0).text, "报表保存成功!");
}

TEST_F(Designer, RunModeShowsDataAndRefusesToSave)
{
    storeReport();
    gRunMode = true;
    open();
    EXPECT_EQ(edit("txtReportName").text(), "现金表");
    EXPECT_TRUE(
        QTest::qWaitFor([this] { return grid().cells().text(1, 1) == "100.25"; })); // after the first frame
    EXPECT_EQ(grid().cells().text(1, 2), "200.5");
    for (const char* way : {"MenuFileSave", "Save"})
        trigger(way);
    const Said refusal{Icon::exclamation, "测试账套", "请在报表编辑状态下进行保存,保存不成功!"};
    EXPECT_EQ(ledger.boxes.said, (std::vector<Said>{refusal, refusal}));
    EXPECT_TRUE(edit("txtFormula").isReadOnly());
    typeInCell("5");
    trigger("MenuBold");
    EXPECT_EQ(formula(1, 1), closingBalance);
    EXPECT_FALSE(grid().cells().sheet().style({1, 1}).font.bold);
}

TEST_F(Designer, DesignModeShowsStoredValuesUntilRecalculated)
{
    storeReport();
    open();
    EXPECT_EQ(edit("txtFormula").text(), closingBalance);
    EXPECT_EQ(control<QLabel>(*window, "Label1").text(), "A1单元格公式为：");
    EXPECT_EQ(ledger.query("select noid from tblCWSelfReport").rowCount(), 1u);
    trigger("MenuRecalculate");
    EXPECT_EQ(grid().cells().text(1, 1), "100.25");
}

TEST_F(Designer, FormulaBoxWritesWhatItsCellGets)
{
    open();
    const struct {
        const char* what;
        QString typed;
        std::string formula;
        QString shown;
    } cases[] = {
        {"a formula", "=1+2", "1+2", "3"},
        {"a formula without its sign, by a known function", "SUM(1,2)", "SUM(1,2)", "3"},
        {"the cell held a formula, so a text stays one", "4*2", "4*2", "8"},
        {"emptied: the formula goes", "", "", ""},
        {"a number", "12.5", "", "12.5"},
        {"an emptied box leaves a constant", "", "", "12.5"},
        {"a text", "合计", "", "合计"},
    };
    for (const auto& [what, typed, formula, shown] : cases) {
        moveTo(2, 3);
        typeInBox(typed, Qt::Key_Return);
        EXPECT_EQ(this->formula(2, 3), formula) << what;
        EXPECT_EQ(grid().cells().text(2, 3), shown) << what;
    }
    const std::size_t steps = grid().cells().workbook().journal().steps();
    moveTo(2, 4);
    moveTo(2, 3); // equal texts are no edits
    EXPECT_EQ(grid().cells().workbook().journal().steps(), steps);
    typeInBox("=9", Qt::Key_Escape);
    EXPECT_EQ(grid().cells().text(2, 3), "合计");
}

TEST_F(Designer, ARefusedTextIsToldAndReachesNoOtherCell)
{
    open();
    moveTo(1, 2);
    edit("txtFormula").setText("=1+*");
    moveTo(1, 3);
    ASSERT_EQ(ledger.boxes.said.size(), 1u);
    EXPECT_EQ(ledger.boxes.said[0].icon, Icon::critical);
    EXPECT_EQ(ledger.boxes.said[0].title, "测试账套");
    EXPECT_EQ(grid().cursor().activeCell(), (spreadsheet::CellAddress{1, 2}));
    EXPECT_EQ(edit("txtFormula").text(), "=1+*"); // to be mended
    typeInBox("=1+1", Qt::Key_Return);
    moveTo(1, 3);
    EXPECT_EQ(grid().cells().text(1, 2), "2");
    EXPECT_EQ(grid().cells().text(1, 3), "");
}

TEST_F(Designer, FormulaBoxFollowsTheCell)
{
    open();
    typeInBox("=1+2", Qt::Key_Return);
    const struct {
        const char* what;
        std::function<void()> act;
        QString box;
    } cases[] = {
        {"typed in the cell", [&] { typeInCell("=5"), moveTo(1, 1); }, "5"},
        {"undone", [&] { trigger("MenuUndo"); }, "1+2"},
        {"cleared", [&] { QTest::keyClick(&grid(), Qt::Key_Delete); }, ""},
        {"undone again", [&] { trigger("MenuUndo"); }, "1+2"},
        {"a row above", [&] { trigger("MenuInsertRow"); }, ""},
        {"another sheet", [&] { grid().commands().addSheet(), grid().cells().setActiveSheet(2); }, ""},
    };
    for (const auto& [what, act, box] : cases) {
        act();
        EXPECT_EQ(edit("txtFormula").text(), box) << what;
    }
    grid().cells().setActiveSheet(1);
    EXPECT_EQ(formula(1, 2), "1+2"); // nothing stale was written on the way
    EXPECT_EQ(grid().cells().sheet().formula({1, 1}), "");
}

TEST_F(Designer, CaptionAndLooksOfTheEnteredCell)
{
    open();
    const std::pair<int, const char*> captions[] = {
        {2, "B3单元格公式为："}, {26, "Z3单元格公式为："}, {27, "AA3单元格公式为："}};
    for (const auto& [column, caption] : captions) {
        moveTo(column, 3);
        EXPECT_EQ(control<QLabel>(*window, "Label1").text(), caption);
    }
    grid().cells().changeStyle({4, 4, 4, 4}, [](spreadsheet::CellStyle& style) {
        style.font.bold = true;
        style.font.points = 10.5;
        style.horizontal = spreadsheet::HorizontalAlignment::centre;
    });
    moveTo(4, 4);
    EXPECT_EQ(control<QComboBox>(*window, "list2").currentText(), "11"); // rounded
    EXPECT_EQ(grid().cells().sheet().style({4, 4}).font.points, 10.5f);
    const std::pair<const char*, bool> pressed[] = {
        {"Bold", true}, {"Italic", false}, {"Left", false}, {"Middle", true}, {"Right", false}};
    for (const auto& [key, is] : pressed)
        EXPECT_EQ(action(key).isChecked(), is) << key;
}

TEST_F(Designer, FormulasShownAndBack)
{
    storeReport();
    open();
    trigger("MenuRecalculate");
    trigger("MenuShowFormula");
    trigger("MenuShowFormula"); // once more does nothing
    EXPECT_EQ(grid().cells().text(1, 1), closingBalance);
    EXPECT_EQ(grid().cells().sheet().tag({1, 1}).view(), "13");
    trigger("MenuFileSave");
    window.reset();
    open();
    EXPECT_EQ(grid().cells().text(1, 1), closingBalance);
    trigger("MenuShowDate");
    EXPECT_EQ(grid().cells().text(1, 1), "100.25");
    EXPECT_EQ(grid().cells().sheet().style({1, 1}).type, CellType::number);
    EXPECT_EQ(grid().cells().text(2, 1), "合计");
}

TEST_F(Designer, DiagnosticsNameCellAndReason)
{
    open();
    typeInBox(R"(=Acct("9999","2","","2025","1","2"))", Qt::Key_Return);
    EXPECT_EQ(grid().cells().text(1, 1), "0.00");
    auto& list = control<ListGrid>(*window, "listDiagnostics");
    ASSERT_EQ(list.rowCount(), 2);
    EXPECT_EQ(list.text(1, 1), "Acct");
    EXPECT_FALSE(list.text(1, 2).isEmpty());
    EXPECT_EQ(control<QStatusBar>(*window, "statusBar").currentMessage(), list.text(1, 2));
    moveTo(3, 3);
    list.setRow(1);
    Q_EMIT list.dblClick();
    EXPECT_EQ(grid().cursor().activeCell(), (spreadsheet::CellAddress{1, 1}));
}

TEST_F(Designer, TableProperties)
{
    open();
    const auto answer = [this](const std::vector<QString>& texts, const char* button) {
        whenModal("frmTableInfo", [=](QWidget& dialog) {
            for (std::size_t box = 0; box < texts.size(); ++box)
                control<QLineEdit>(dialog, ("txt_" + std::to_string(box)).c_str()).setText(texts[box]);
            control<QPushButton>(dialog, button).click();
            dialog.close();
        });
        trigger("MenuSetTableInfo");
    };
    answer({"80", "１２", "3", "一月"}, "cmdOK");
    EXPECT_EQ(grid().cells().rowCount(), 80);
    EXPECT_EQ(grid().cells().columnCount(), 12);
    EXPECT_EQ(grid().cells().sheetCount(), 3);
    EXPECT_EQ(grid().cells().sheetName(), "一月");
    trigger("MenuUndo"); // one step
    EXPECT_EQ(grid().cells().sheetCount(), 1);
    EXPECT_EQ(grid().cells().rowCount(), 500);
    for (const char* wrong : {"", "x", "0", "1.5", "1048577"}) {
        ledger.boxes.said.clear();
        answer({wrong, "9", "9", "二月"}, "cmdOK");
        EXPECT_EQ(ledger.boxes.said, (std::vector<Said>{{Icon::exclamation, "测试账套",
                                                         "总行数：请输入 1 到 1048576 的整数。"}}))
            << wrong;
        EXPECT_EQ(grid().cells().columnCount(), 50) << wrong;
    }
    answer({"7", "7", "7", "三月"}, "cmdClose");
    EXPECT_EQ(grid().cells().rowCount(), 500);
}

TEST_F(Designer, OwnFilesOutAndIn)
{
    ScriptedFileDialog files;
    const FileDialogInUse inUse(files);
    const std::string file = (folder.path() + "/导出.ss7").toStdString();
    storeReport();
    open();
    files.answers = {file};
    trigger("MenuEmportSpreadFile");
    ASSERT_EQ(files.asked.size(), 1u);
    EXPECT_TRUE(files.asked[0].toSave);
    EXPECT_EQ(files.asked[0].settings.filter, "报表文件(*.ss7)|*.ss7");
    EXPECT_EQ(files.asked[0].settings.flags, 32770);

    window.reset();
    gEditFlag = 0;
    open();
    trigger("MenuImpoertSpreadFile"); // cancelled
    EXPECT_EQ(formula(1, 1), "");
    EXPECT_EQ(files.asked[1].settings.fileName, "*.ss7");
    EXPECT_EQ(files.asked[1].settings.title, "选择报表文件");
    EXPECT_EQ(files.asked[1].settings.filter, "ss7 files|(*.ss7)");
    EXPECT_EQ(files.asked[1].settings.flags, 4);
    files.answers = {file};
    trigger("MenuImpoertSpreadFile");
    EXPECT_EQ(formula(1, 1), closingBalance);
    EXPECT_EQ(edit("txtFormula").text(), closingBalance);
    trigger("MenuRecalculate");
    EXPECT_EQ(grid().cells().text(1, 1), "100.25");

    files.answers = {(folder.path() + "/不存在.ss7").toStdString()};
    trigger("MenuImpoertSpreadFile");
    EXPECT_EQ(formula(1, 1), closingBalance); // a failure changes nothing and shows no box
    EXPECT_TRUE(ledger.boxes.said.empty());
}

TEST_F(Designer, ToolbarCopiesTheActiveCellsTextOnly)
{
    storeReport();
    open();
    moveTo(2, 1);
    trigger("Copy");
    EXPECT_EQ(QApplication::clipboard()->text(), "合计");
    moveTo(2, 5);
    trigger("Paste");
    EXPECT_EQ(grid().cells().text(2, 5), "合计");
}

TEST_F(Designer, ToolbarPastesTextAsTheKeyDoes)
{
    storeReport();
    open();
    demand(grid().cells().sheet().setFormula({5, 1}, "SUM(D1:D9)"));
    const struct {
        const char* text;
        double sum;
        const char* second; ///< in the cell below
    } cases[] = {
        {"5,678.00", 5678, ""},      {"5678\r\n", 5678, ""}, {"0101", 0, ""},     {"0.25", 0.25, ""},
        {"9876543210987654", 0, ""}, {"=1+2", 3, ""},        {"7\n8\n", 15, "8"}, {"\"一\n二\"", 0, ""},
    };
    for (const auto& c : cases) {
        QString held[2];
        for (const bool byKey : {false, true}) {
            grid().cells().sheet().clearContents({4, 1, 4, 9});
            moveTo(4, 1);
            QApplication::clipboard()->setText(c.text);
            if (byKey)
                QTest::keyClick(&grid(), Qt::Key_V, Qt::ControlModifier);
            else
                trigger("Paste");
            EXPECT_EQ(grid().cells().sheet().value({5, 1}), spreadsheet::Value(c.sum)) << c.text << byKey;
            EXPECT_EQ(grid().cells().text(4, 2), c.second) << c.text << byKey;
            held[byKey] = grid().cells().text(4, 1);
        }
        EXPECT_EQ(held[0], held[1]) << c.text;
    }
    grid().cursor().select({1, 1, 2, 1}); // cells of ours come as their text
    trigger("MenuCopy");
    grid().cursor().select({3, 5, 3, 9});
    trigger("Paste");
    EXPECT_EQ(formula(3, 5), "");
    EXPECT_EQ(grid().cells().text(4, 5), "合计");
    EXPECT_EQ(grid().cells().text(3, 6), "") << "at the active cell, once";
}

TEST_F(Designer, BothRoadsThroughTheWindows)
{
    storeReport();
    gFromList = 1;
    whenModal("frmSelfReportMain", [](QWidget& list) {
        auto& rows = control<ListGrid>(list, "vsf1");
        ASSERT_EQ(rows.rowCount(), 2);
        whenModal("frmEditor", [](QWidget& designer) {
            EXPECT_EQ(control<QLineEdit>(designer, "txtReportName").text(), "现金表");
            control<QLineEdit>(designer, "txtReportName").setText("改名");
            control<QAction>(designer, "MenuFileSave").trigger();
            control<QAction>(designer, "MenuFileClose").trigger();
        });
        control<QPushButton>(list, "cmd_1").click();
        EXPECT_EQ(rows.text(1, 1), "改名"); // refilled
        EXPECT_EQ(rows.row(), 1);
        list.close();
    });
    showReportList();
    whenModal("frmEditor", [](QWidget& designer) { designer.close(); });
    showDesigner(); // the list is closed: it is refilled unseen
    EXPECT_EQ(gListRow, 1);
}

} // namespace
} // namespace selfreport
