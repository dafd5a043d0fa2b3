// Refusals that come up in dialogs and menus: the dialog stays open, the reason is seen, nothing is another.
#include "tests/windows/designer/DesignerTest.h"

#include <QClipboard>
#include <QComboBox>
#include <QImage>
#include <QPushButton>
#include <QStatusBar>

namespace selfreport {
namespace {

using Said = RecordingDialogs::Said;

/// Array formulas in B10:B12 and D10:E10 of a sheet of 500 × 50.
struct DesignerRefusals : test::DesignerTest {
    DesignerRefusals()
    {
        open();
        demand(grid().cells().sheet().setArrayFormula({2, 10, 2, 12}, "ROW()*1"));
        demand(grid().cells().sheet().setArrayFormula({4, 10, 5, 10}, "COLUMN()*1"));
        grid().cells().recalculate();
        demand(grid().cells().setSheetCount(2));
    }
    std::string status() { return control<QStatusBar>(*window, "statusBar").currentMessage().toStdString(); }
    std::string tableSize()
    {
        return std::to_string(grid().cells().rowCount()) + " x " +
               std::to_string(grid().cells().columnCount()) + ", " +
               std::to_string(grid().cells().sheetCount()) + " " + grid().cells().sheetName().toStdString() +
               ", " + std::to_string(grid().cells().workbook().sheet(1).settings().arrays.size()) +
               " arrays, undo " + grid().cells().workbook().undoLabel();
    }
};

} // namespace

TEST_F(DesignerRefusals, ThePropertiesStayOpenAndSayWhy)
{
    const struct {
        const char* what;
        const char* texts[4];
        int box; ///< that has the focus then
        const char* why;
    } cases[] = {
        {"rows through an array formula", {"11", "50", "2", "新名"}, 0, "总行数：不能更改数组公式的一部分"},
        {"columns, after rows that could go",
         {"400", "4", "2", "新名"},
         1,
         "总列数：不能更改数组公式的一部分"},
        {"a name, after all else",
         {"400", "40", "3", "a/b"},
         3,
         "表名不能包含 [ ] : * ? / \\,也不能以单引号开头或结尾"},
        {"the other sheet's name", {"400", "40", "2", "sheet2"}, 3, "已有名为“sheet2”的表"},
    };
    for (const auto& c : cases) {
        const std::string before = tableSize();
        ledger.boxes.said.clear();
        whenModal("frmTableInfo", [&](QWidget& dialog) {
            for (int box = 0; box < 4; ++box)
                control<QLineEdit>(dialog, ("txt_" + std::to_string(box)).c_str())
                    .setText(QString::fromUtf8(c.texts[box]));
            control<QPushButton>(dialog, "cmdOK").click();
            EXPECT_TRUE(dialog.isVisible()) << c.what;
            EXPECT_EQ(dialog.focusWidget()->objectName().toStdString(), "txt_" + std::to_string(c.box))
                << c.what;
            EXPECT_EQ(control<QLineEdit>(dialog, "txt_0").text(), c.texts[0]) << c.what;
            dialog.close();
        });
        trigger("MenuSetTableInfo");
        EXPECT_EQ(ledger.boxes.said, (std::vector<Said>{{Icon::exclamation, "测试账套", c.why}})) << c.what;
        EXPECT_EQ(tableSize(), before) << c.what;
        grid().cells().workbook().redo();
        EXPECT_EQ(tableSize(), before) << c.what << ": what was taken back may not come again";
    }
}

TEST_F(DesignerRefusals, MenusSayWhyInTheStatusBar)
{
    grid().cells().addSpan({7, 1, 8, 2});
    grid().showChanges();
    const struct {
        const char* action;
        spreadsheet::CellRange at;
        const char* why;
    } cases[] = {
        {"MenuInsertRow", {1, 11, 1, 11}, "不能更改数组公式的一部分"},
        {"MenuInsertCol", {5, 1, 5, 1}, "不能更改数组公式的一部分"},
        {"MenuDeleteRows", {1, 11, 1, 11}, "不能更改数组公式的一部分"},
        {"MenuFillDown", {2, 9, 2, 10}, "不能更改数组公式的一部分"},
        {"MenuCellSpan", {6, 1, 7, 1}, "选定的区域中已有合并单元格，请先取消合并"},
        {"MenuFormula", {9, 9, 9, 9}, "单元格已锁定，不能更改"}, // before anything is filled in
        {"MenuEditFormula", {9, 9, 9, 9}, "单元格已锁定，不能更改"},
        {"MenuClear", {8, 8, 9, 9}, "区域中有锁定的单元格，不能更改"},
    };
    grid().cells().changeStyle({9, 9, 9, 9}, [](spreadsheet::CellStyle& style) { style.locked = true; });
    for (const auto& c : cases) {
        grid().cursor().select(c.at);
        const auto before = grid().cells().workbook().revision();
        trigger(c.action);
        EXPECT_EQ(status(), c.why) << c.action;
        EXPECT_EQ(grid().cells().workbook().revision(), before) << c.action;
    }
}

/// A lock keeps what a cell holds, not how it looks.
TEST_F(DesignerRefusals, LockedCellsTakeFormatsAllTheSame)
{
    grid().cells().sheet().setText({9, 9}, "合计");
    grid().cells().changeStyle({9, 9, 9, 9}, [](spreadsheet::CellStyle& style) { style.locked = true; });
    moveTo(9, 9);
    for (const char* command : {"MenuBold", "MenuThousands", "MenuMiddle", "MenuCellSpan"})
        trigger(command);
    const spreadsheet::CellStyle& style = grid().cells().sheet().style({9, 9});
    EXPECT_TRUE(style.font.bold && style.locked);
    EXPECT_EQ(style.horizontal, spreadsheet::HorizontalAlignment::centre);
    trigger("MenuClearFormats");
    EXPECT_FALSE(grid().cells().sheet().style({9, 9}).font.bold);
    EXPECT_TRUE(grid().cells().sheet().style({9, 9}).locked);
    EXPECT_EQ(grid().cells().text(9, 9), "合计");
    trigger("MenuLock");
    EXPECT_FALSE(grid().cells().sheet().style({9, 9}).locked);
}

TEST_F(DesignerRefusals, WhatWasDoneInPartIsStillToldWhenAllIsRecalculated)
{
    grid().cells().sheet().setText({1, 1}, "ROW 甲");
    grid().commands().replaceAll({.what = "ROW"}, "行");
    EXPECT_EQ(grid().cells().text(1, 1), "行 甲");
    EXPECT_EQ(status(), "有 3 个单元格不能替换");
    demand(grid().cells().sheet().setFormula({1, 3}, "Sheet2!A1+1"));
    grid().cells().recalculate();
    grid().cursor().select({1, 3, 1, 3});
    grid().commands().copy();
    demand(grid().cells().workbook().removeSheet(2));
    grid().cursor().select({1, 5, 1, 5});
    grid().commands().paste();
    EXPECT_EQ(formula(1, 5), "");
    EXPECT_EQ(grid().cells().text(1, 5), "1");
    EXPECT_EQ(status(), "有 1 个公式在这里没有意义，只粘贴了它们的值");
}

/// Every road of a new formula into a cell. What a stored formula gives of its call stays.
TEST_F(DesignerRefusals, NoRoadBringsACallWithAnotherNumberOfArguments)
{
    const std::string right = R"(REF_F("a","b","c"))";
    const std::string wrong = R"(REF_F("a","b","c","d"))";
    const auto type = [this](const std::string& formula, Qt::KeyboardModifiers held) {
        moveTo(1, 1);
        grid().setFocus();
        for (const char key : "=" + formula)
            QTest::keyClick(QApplication::focusWidget(), key);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return, held);
        grid().entry().cancel();
    };
    const std::pair<const char*, std::function<void(const std::string&)>> roads[] = {
        {"typed", [&](const std::string& formula) { type(formula, {}); }},
        {"filled", [&](const std::string& formula) { type(formula, Qt::ControlModifier); }},
        {"array",
         [&](const std::string& formula) { type(formula, Qt::ControlModifier | Qt::ShiftModifier); }},
        {"box",
         [&](const std::string& formula) {
             moveTo(1, 1);
             typeInBox("=" + QString::fromStdString(formula), Qt::Key_Return);
             QTest::keyClick(&edit("txtFormula"), Qt::Key_Escape);
         }},
        {"pasted",
         [&](const std::string& formula) {
             moveTo(1, 1);
             grid().setFocus();
             QApplication::clipboard()->setText("=" + QString::fromStdString(formula));
             QTest::keyClick(&grid(), Qt::Key_V, Qt::ControlModifier);
         }},
        {"replaced",
         [&](const std::string& formula) {
             grid().cells().sheet().setText({1, 1}, "");
             demand(grid().cells().sheet().setFormula({1, 1}, R"(REF_F("x"))"));
             trigger("MenuReplace");
             auto& find = *window->findChild<QWidget*>("frmFind");
             control<QLineEdit>(find, "txt_0").setText(R"(REF_F("x"))");
             control<QLineEdit>(find, "txt_1").setText(QString::fromStdString(formula));
             control<QPushButton>(find, "cmdReplaceAll").click();
             find.close();
         }},
    };
    for (const auto& [road, bring] : roads)
        for (const auto& [given, expected] : {std::pair(right, true), {wrong, false}}) {
            grid().cells().sheet().setText({1, 1}, "");
            bring(given);
            EXPECT_EQ(formula(1, 1) == given, expected) << road << ": " << formula(1, 1);
        }
    demand(grid().cells().sheet().setArrayFormula({1, 1, 1, 2}, wrong));
    grid().cursor().select({1, 1, 1, 2});
    QTest::keyClick(&grid(), Qt::Key_F2);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_FALSE(grid().entry().isOpen()) << "what is held already may be written back";
}

/// Each command that would change the report says that it may not, and opens nothing.
TEST_F(DesignerRefusals, InUseNothingIsChangedWithoutAWord)
{
    storeReport();
    gRunMode = true;
    open();
    window->finishOpening();
    moveTo(2, 1);
    const std::vector<std::byte> before = spreadsheet::saveContent(grid().cells().workbook());
    const char* const inStatusBar[]{
        "MenuBold",     "MenuItalic",       "MenuUnderline",   "MenuStrikeOut",     "MenuWrap",
        "MenuLeft",     "MenuVTop",         "MenuForeColor",   "MenuBackColor",     "MenuLock",
        "MenuCellSpan", "MenuUnCellSpan",   "MenuDataType",    "MenuCellBorder",    "MenuBorders",
        "MenuClear",    "MenuClearFormats", "MenuInsertRow",   "MenuInsertCol",     "MenuDropDownEntries",
        "MenuPaste",    "MenuDeleteRows",   "MenuRowHeight",   "MenuFormatPainter", "MenuButtonCaption",
        "MenuFillDown", "MenuHideRows",     "MenuAutofitRows", "MenuIndentMore",    "MenuIndentLess"};
    QApplication::clipboard()->setText("1");
    for (const char* const command : inStatusBar) {
        control<QStatusBar>(*window, "statusBar").clearMessage();
        trigger(command);
        EXPECT_EQ(status(), "报表在运行状态，不能更改") << command;
        EXPECT_EQ(QApplication::activeModalWidget(), nullptr) << command;
    }
    const std::pair<const char*, const char*> inABox[]{
        {"MenuSetTableInfo", "报表在运行状态，不能设置表格信息。"},
        {"MenuImportExcelFile", "报表在运行状态，不能引入文件。"},
        {"MenuImpoertSpreadFile", "报表在运行状态，不能引入文件。"},
        {"MenuImportXlsx", "报表在运行状态，不能引入文件。"}};
    for (const auto& [command, why] : inABox) {
        ledger.boxes.said.clear();
        trigger(command);
        EXPECT_EQ(ledger.boxes.said, (std::vector<Said>{{Icon::exclamation, "测试账套", why}})) << command;
    }
    auto& sizes = control<QComboBox>(*window, "list2");
    const QString shown = sizes.currentText();
    sizes.setFocus();
    QTest::keyClick(&sizes, Qt::Key_Down);
    EXPECT_EQ(sizes.currentText(), shown) << "a size that was not taken";
    EXPECT_EQ(spreadsheet::saveContent(grid().cells().workbook()), before);
}

TEST_F(DesignerRefusals, TheToolbarsPasteSaysWhyAndKeepsTheCell)
{
    grid().cells().sheet().setText({1, 1}, "kept");
    grid().cells().sheet().setText({1, 2}, "kept");
    grid().cells().changeStyle({1, 2, 1, 2}, [](spreadsheet::CellStyle& style) { style.locked = true; });
    const struct {
        spreadsheet::CellAddress cell;
        const char* text; ///< null: a picture is on the clipboard
        const char* why;
    } cases[] = {
        {{1, 2}, "1", "单元格已锁定，不能更改"},
        {{2, 11}, "1", "不能更改数组公式的一部分"},
        {{1, 1}, nullptr, "剪贴板的内容不是文本或表格，不能粘贴"},
    };
    for (const auto& c : cases) {
        if (c.text)
            QApplication::clipboard()->setText(c.text);
        else
            QApplication::clipboard()->setImage(QImage(4, 4, QImage::Format_RGB32));
        moveTo(c.cell.column, c.cell.row);
        const std::string before = grid().cells().sheet().displayText(c.cell);
        trigger("Paste");
        EXPECT_EQ(status(), c.why);
        EXPECT_EQ(grid().cells().sheet().displayText(c.cell), before) << c.why;
        EXPECT_EQ(grid().cells().sheet().settings().arrays.size(), 2U) << c.why;
    }
}

TEST_F(DesignerRefusals, WhatIsCopiedMayBeReadAsANumberAgain)
{
    spreadsheet::CellStyle style;
    style.type = spreadsheet::CellType::number;
    style.decimals = 2;
    style.numberFormat = spreadsheet::Text("[Red]#,##0.0,");
    for (const int row : {1, 2})
        grid().cells().sheet().setStyle({1, row}, style);
    grid().cells().sheet().setNumber({1, 1}, -1234567.891);
    moveTo(1, 1);
    window->copyActiveText();
    EXPECT_EQ(QApplication::clipboard()->text(), "-1234567.89");
    moveTo(1, 2);
    trigger("Paste");
    EXPECT_EQ(grid().cells().sheet().value({1, 2}), spreadsheet::Value(-1234567.89));
    grid().cells().sheet().setStyle({2, 10}, style); // shows its formula
    moveTo(2, 10);
    trigger("MenuShowFormula");
    window->copyActiveText();
    EXPECT_EQ(QApplication::clipboard()->text(), "ROW()*1");
}

} // namespace selfreport
