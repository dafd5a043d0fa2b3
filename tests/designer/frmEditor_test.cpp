#include "designer/frmEditor.h"

#include "catalogue/report_store.h"
#include "component/windows.h"
#include "platform/dialogs/ScriptedDialogs.h"
#include "platform/list_grid/ListGrid.h"
#include "spreadsheet/engine/UndoJournal.h"
#include "spreadsheet/files/content.h"
#include "spreadsheet/view/SpreadsheetControl.h"
#include "tests/formula/TestLedger.h"
#include "tests/platform/WindowTest.h"

#include <QClipboard>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QTemporaryDir>
#include <QToolBar>

namespace selfreport {
namespace {

using Said = RecordingDialogs::Said;
using spreadsheet::CellType;
using spreadsheet::SpreadsheetControl;

constexpr const char* closingBalance = R"(Acct("1001" ,"2" , "", "2025","1","2"))"; // 100.25

class Designer : public test::WindowTest {
protected:
    Designer()
    {
        gEditFlag = 0;
        gRunMode = false;
        gReportId = 0;
        gFromList = 0;
        gAppPath = folder.path().toStdString();
    }
    ~Designer() override { gRunMode = false; }

    void open()
    {
        window = std::make_unique<frmEditor>();
        show(*window);
    }
    /// Stores a report with id 3: A1 an amount of the ledger, A2 twice that, B1 a text.
    void storeReport()
    {
        spreadsheet::Workbook report;
        report.registerFunction("Acct", 6, [](spreadsheet::FunctionCall& call) { call.decline(); });
        report.sheet(1).setFormula({1, 1}, closingBalance);
        report.sheet(1).setFormula({1, 2}, "A1*2");
        report.sheet(1).setText({2, 1}, "合计");
        ledger.addReport(3, "现金表", spreadsheet::saveContent(report));
        gReportId = 3;
        gEditFlag = 1;
    }
    SpreadsheetControl& grid() { return control<SpreadsheetControl>(*window, "fps1"); }
    QLineEdit& edit(const char* name) { return control<QLineEdit>(*window, name); }
    QAction& action(const char* name) { return control<QAction>(*window, name); }
    void trigger(const char* name) { action(name).trigger(); }
    std::string formula(int column, int row) { return grid().sheet().formula({column, row}); }
    void moveTo(int column, int row) { grid().moveTo({column, row}); }
    /// Types into the formula box as a user does, and ends with a key.
    void typeInBox(const QString& text, Qt::Key last)
    {
        QLineEdit& box = edit("txtFormula");
        box.setFocus();
        box.selectAll();
        QTest::keyClicks(&box, text);
        if (text.isEmpty())
            QTest::keyClick(&box, Qt::Key_Delete);
        QTest::keyClick(&box, last);
    }

    test::TestLedger ledger;
    QTemporaryDir folder;
    std::unique_ptr<frmEditor> window;
};

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
          "-", "引入Spread文件|", "引出为Spread文件|", "-", "打印预览|", "打印|", "-", "退出|"}},
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
          "粗体|",
          "斜体|",
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
    EXPECT_EQ(buttons.size(), 17);
    EXPECT_EQ(control<QComboBox>(*window, "list2").count(), 68);
    EXPECT_EQ(control<QComboBox>(*window, "list2").itemText(67), "72");
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
    EXPECT_EQ(grid().activeCell(), (spreadsheet::CellAddress{1, 2}));
    EXPECT_EQ(edit("txtFormula").text(), "=1+*"); // to be mended
    typeInBox("=1+1", Qt::Key_Return);
    moveTo(1, 3);
    EXPECT_EQ(grid().text(1, 2), "2");
    EXPECT_EQ(grid().text(1, 3), "");
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
    grid().changeStyle({4, 4, 4, 4}, [](spreadsheet::CellStyle& style) {
        style.font.bold = true;
        style.font.points = 10.5;
        style.horizontal = spreadsheet::HorizontalAlignment::centre;
    });
    moveTo(4, 4);
    EXPECT_EQ(control<QComboBox>(*window, "list2").currentText(), "11"); // rounded
    EXPECT_EQ(grid().sheet().style({4, 4}).font.points, 10.5f);
    const std::pair<const char*, bool> pressed[] = {
        {"Bold", true}, {"Italic", false}, {"Left", false}, {"Middle", true}, {"Right", false}};
    for (const auto& [key, is] : pressed)
        EXPECT_EQ(action(key).isChecked(), is) << key;
}

TEST_F(Designer, DiagnosticsNameCellAndReason)
{
    open();
    typeInBox(R"(=Acct("9999","2","","2025","1","2"))", Qt::Key_Return);
    EXPECT_EQ(grid().text(1, 1), "0.00");
    auto& list = control<ListGrid>(*window, "listDiagnostics");
    ASSERT_EQ(list.rowCount(), 2);
    EXPECT_EQ(list.text(1, 1), "Acct");
    EXPECT_FALSE(list.text(1, 2).isEmpty());
    moveTo(3, 3);
    list.setRow(1);
    Q_EMIT list.dblClick();
    EXPECT_EQ(grid().activeCell(), (spreadsheet::CellAddress{1, 1}));
}

TEST_F(Designer, TableProperties)
{
    open();
    const auto answer = [this](const std::vector<QString>& texts, const char* button) {
        whenModal("frmTableInfo", [=, this](QWidget& dialog) {
            for (std::size_t box = 0; box < texts.size(); ++box)
                control<QLineEdit>(dialog, ("txt_" + std::to_string(box)).c_str()).setText(texts[box]);
            control<QPushButton>(dialog, button).click();
            dialog.close();
        });
        trigger("MenuSetTableInfo");
    };
    answer({"80", "12", "3", "一月"}, "cmdOK");
    EXPECT_EQ(grid().rowCount(), 80);
    EXPECT_EQ(grid().columnCount(), 12);
    EXPECT_EQ(grid().sheetCount(), 3);
    EXPECT_EQ(grid().sheetName(), "一月");
    trigger("MenuUndo"); // one step
    EXPECT_EQ(grid().sheetCount(), 1);
    EXPECT_EQ(grid().rowCount(), 500);
    for (const char* wrong : {"", "x", "0", "1.5", "1048577"}) {
        ledger.boxes.said.clear();
        answer({wrong, "9", "9", "二月"}, "cmdOK");
        EXPECT_EQ(ledger.boxes.said.size(), 1u) << wrong;
        EXPECT_EQ(grid().columnCount(), 50) << wrong;
    }
    answer({"7", "7", "7", "三月"}, "cmdClose");
    EXPECT_EQ(grid().rowCount(), 500);
}

} // namespace
} // namespace selfreport
