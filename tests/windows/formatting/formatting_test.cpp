#include "windows/formatting/cell_commands.h"

#include "platform/services/ScriptedDialogs.h"
#include "spreadsheet/files/content/content.h"
#include "spreadsheet/view/SpreadsheetControl.h"
#include "spreadsheet/workbook/UndoJournal.h"
#include "tests/platform/commit_text.h"
#include "tests/platform/WindowTest.h"
#include "windows/formatting/FormatPainter.h"
#include "windows/formatting/frmBorders.h"
#include "windows/formatting/frmButtonCaption.h"
#include "windows/formatting/frmCellBorder.h"
#include "windows/formatting/frmDataType.h"
#include "windows/formatting/frmDropDownEntries.h"
#include "windows/formatting/frmLineSize.h"

#include <QComboBox>
#include <QDoubleSpinBox>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>

namespace selfreport {
namespace {

using spreadsheet::CellRange;
using spreadsheet::CellStyle;
using spreadsheet::CellType;
using spreadsheet::LineStyle;

class Formatting : public test::WindowTest {
protected:
    const CellStyle& style(int column, int row) { return grid.cells().sheet().style({column, row}); }
    void choose(QDialog& dialog, const char* list, const QString& entry)
    {
        auto& box = control<QComboBox>(dialog, list);
        ASSERT_GE(box.findText(entry), 0) << entry.toStdString();
        box.setCurrentIndex(box.findText(entry));
    }

    spreadsheet::SpreadsheetControl grid;
};

TEST_F(Formatting, TogglesInvertEachCellOfABlock)
{
    const struct {
        void (*toggle)(spreadsheet::SpreadsheetControl&);
        std::function<bool(const CellStyle&)> read;
    } toggles[] = {{toggleBold, [](const CellStyle& s) { return s.font.bold; }},
                   {toggleItalic, [](const CellStyle& s) { return s.font.italic; }},
                   {toggleUnderline, [](const CellStyle& s) { return s.font.underline; }},
                   {toggleStrikeOut, [](const CellStyle& s) { return s.font.strikeThrough; }},
                   {toggleWrap, [](const CellStyle& s) { return s.wrap; }},
                   {toggleLock, [](const CellStyle& s) { return s.locked; }}};
    for (const auto& [toggle, read] : toggles) {
        grid.cursor().setActiveCell(2, 2);
        toggle(grid); // the active cell alone
        EXPECT_TRUE(read(style(2, 2)));
        EXPECT_FALSE(read(style(1, 2)));
        grid.cursor().select({1, 1, 3, 4});
        toggle(grid);
        EXPECT_FALSE(read(style(2, 2)));
        EXPECT_TRUE(read(style(1, 1)));
        EXPECT_TRUE(read(style(3, 4)));
        EXPECT_FALSE(read(style(4, 4)));
        EXPECT_EQ(grid.cells().current(), (spreadsheet::CellAddress{3, 4}));
        grid.commands().undo(); // one step
        EXPECT_TRUE(read(style(2, 2)));
        EXPECT_FALSE(read(style(1, 1)));
        grid.commands().undo();
    }
}

/// B2:C3 and C3:D4, which have C3 in common, column F and a row across all.
TEST_F(Formatting, SeveralRangesAreExactlyTheSelectedCells)
{
    grid.resize(900, 500);
    show(grid);
    const auto pick = [this](QPoint from, QPoint to, Qt::KeyboardModifiers modifiers) {
        QTest::mousePress(&grid, Qt::LeftButton, modifiers, from);
        QTest::mouseMove(&grid, to);
        QTest::mouseRelease(&grid, Qt::LeftButton, modifiers, to);
    };
    const auto at = [this](int column, int row) { return grid.cellRect({column, row}).center(); };
    const auto select = [&] {
        pick(at(2, 2), at(3, 3), {});
        pick(at(3, 3), at(4, 4), Qt::ControlModifier);
        pick({at(6, 1).x(), 5}, {at(6, 1).x(), 5}, Qt::ControlModifier);
        pick({5, at(1, 3).y()}, {5, at(1, 3).y()}, Qt::ControlModifier);
    };
    const auto isSelected = [](int column, int row) {
        return (column >= 2 && column <= 3 && row >= 2 && row <= 3) ||
               (column >= 3 && column <= 4 && row >= 3 && row <= 4) || column == 6 || row == 3;
    };
    ScriptedColourDialog colours;
    const ColourDialogInUse inUse(colours);
    colours.answers = {0x112233, 0x445566};
    using Grid = spreadsheet::SpreadsheetControl&;
    const struct {
        const char* what;
        std::function<void(Grid)> run;
        bool (*isDone)(const CellStyle& style);
    } commands[] = {
        {"bold", toggleBold, [](const CellStyle& s) { return s.font.bold; }},
        {"lock", toggleLock, [](const CellStyle& s) { return s.locked; }},
        {"wrap", toggleWrap, [](const CellStyle& s) { return s.wrap; }},
        {"indent", indentMore, [](const CellStyle& s) { return s.carried.indent == 1; }},
        {"centre", [](Grid g) { alignCells(g, spreadsheet::HorizontalAlignment::centre); },
         [](const CellStyle& s) { return s.horizontal == spreadsheet::HorizontalAlignment::centre; }},
        {"size", [](Grid g) { setFontSize(g, 16); }, [](const CellStyle& s) { return s.font.points == 16; }},
        {"text colour", chooseForeColour, [](const CellStyle& s) { return s.foreground == 0x112233; }},
        {"background", chooseBackColour, [](const CellStyle& s) { return s.background == 0x445566; }},
        {"type",
         [this](Grid g) {
             frmDataType dialog(g, {9, 9});
             choose(dialog, "PC_1", "百分比");
             control<QPushButton>(dialog, "cmdXPOK").click();
         },
         [](const CellStyle& s) { return s.type == CellType::percent; }},
        {"borders",
         [this](Grid g) {
             frmCellBorder dialog(g, {9, 9});
             choose(dialog, "PC_1", "全部");
             control<QPushButton>(dialog, "cmdXPOK").click();
         },
         [](const CellStyle& s) {
             return s.left.style == LineStyle::solid && s.top.style == LineStyle::solid &&
                    s.right.style == LineStyle::solid && s.bottom.style == LineStyle::solid;
         }},
        {"entries",
         [](Grid g) {
             setDropDownEntries(g, {"是", "否"});
         },
         [](const CellStyle& s) { return s.type == CellType::dropDown; }},
    };
    for (const auto& [what, run, isDone] : commands) {
        grid.cells().setWorkbook(nullptr);
        select();
        const std::size_t steps = grid.cells().workbook().journal().steps();
        run(grid);
        for (const int row : {1, 2, 3, 4, 5, 499})
            for (const int column : {1, 2, 3, 4, 5, 6, 7, 50})
                EXPECT_EQ(isDone(style(column, row)), isSelected(column, row))
                    << what << " " << spreadsheet::cellName({column, row});
        EXPECT_EQ(grid.cells().workbook().journal().steps(), steps + 1) << what;
        EXPECT_LE(grid.cells().sheet().storedColumns(), 7) << what << ": whole lines take no cells";
    }
    clearFormats(grid);
    EXPECT_EQ(style(3, 3).type, CellType::dropDown);
    grid.cells().setText(2, 2, "外");
    grid.cells().setText(4, 2, "外");
    grid.cells().setText(5, 5, "内");
    grid.cursor().select({2, 2, 2, 2});
    pick(at(5, 5), at(5, 5), Qt::ControlModifier);
    EXPECT_FALSE(mergeCells(grid)); // the first range alone
    EXPECT_EQ(grid.cells().sheet().settings().spans, (std::vector<CellRange>{{2, 2, 2, 2}}));
    unmergeCells(grid);
    grid.commands().clear();
    EXPECT_EQ(grid.cells().text(2, 2) + grid.cells().text(4, 2) + grid.cells().text(5, 5), "外");
}

TEST_F(Formatting, IndentsGoByStepsOverEachCellOfABlock)
{
    using spreadsheet::HorizontalAlignment;
    using spreadsheet::Spread;
    const auto steps = [this](int row) { return static_cast<int>(style(1, row).carried.indent); };
    grid.cells().changeStyle({1, 2, 1, 2}, [](CellStyle& s) { s.horizontal = HorizontalAlignment::right; });
    grid.cells().changeStyle({1, 3, 1, 3}, [](CellStyle& s) {
        s.horizontal = HorizontalAlignment::centre;
        s.carried.indent = 7; // of no meaning there
    });
    grid.cells().changeStyle({1, 4, 1, 4}, [](CellStyle& s) {
        s.horizontal = HorizontalAlignment::centre;
        s.carried = {Spread::distributed, Spread::none, 3, 0};
    });
    grid.cells().changeStyle({1, 5, 1, 5}, [](CellStyle& s) { s.carried.indent = 15; });
    grid.cursor().select({1, 1, 1, 5});
    indentMore(grid);
    EXPECT_EQ(style(1, 1).horizontal, HorizontalAlignment::left);
    EXPECT_EQ(style(1, 2).horizontal, HorizontalAlignment::right);
    EXPECT_EQ(style(1, 3).horizontal, HorizontalAlignment::left);
    EXPECT_EQ(style(1, 4).carried.across, Spread::distributed);
    EXPECT_EQ((std::array{steps(1), steps(2), steps(3), steps(4), steps(5)}), (std::array{1, 1, 1, 4, 15}));
    indentLess(grid);
    indentLess(grid);
    EXPECT_EQ((std::array{steps(1), steps(2), steps(3), steps(4), steps(5)}), (std::array{0, 0, 0, 2, 13}));
    for (int i = 0; i < 3; ++i)
        grid.commands().undo();
    EXPECT_EQ((std::array{steps(1), steps(2), steps(3), steps(4), steps(5)}), (std::array{0, 0, 7, 3, 15}));
}

TEST_F(Formatting, SetsAndColours)
{
    ScriptedColourDialog colours;
    const ColourDialogInUse inUse(colours);
    grid.cursor().select({1, 1, 2, 3});
    alignCells(grid, spreadsheet::HorizontalAlignment::centre);
    alignCells(grid, spreadsheet::HorizontalAlignment::centre); // set, not toggled
    alignCells(grid, spreadsheet::VerticalAlignment::bottom);
    setFontSize(grid, 16);
    setFontName(grid, "黑体");
    colours.answers = {0x112233, std::nullopt, 0x445566};
    chooseForeColour(grid);
    chooseForeColour(grid); // cancelled
    chooseBackColour(grid);
    EXPECT_EQ(colours.asked, (std::vector<std::uint32_t>{0, 0, 0})); // black each time
    for (const auto& [column, row] : {std::pair{1, 1}, std::pair{2, 3}}) {
        const CellStyle& cell = style(column, row);
        EXPECT_EQ(cell.horizontal, spreadsheet::HorizontalAlignment::centre);
        EXPECT_EQ(cell.vertical, spreadsheet::VerticalAlignment::bottom);
        EXPECT_EQ(cell.font.points, 16);
        EXPECT_EQ(cell.font.family.view(), "黑体");
        EXPECT_EQ(cell.foreground, 0x112233u);
        EXPECT_EQ(cell.background, 0x445566u);
    }
    grid.cells().setBorder({3, 1, 3, 3}, spreadsheet::allSides, 0, LineStyle::solid);
    clearFormats(grid);
    EXPECT_EQ(style(1, 1), CellStyle());
    EXPECT_EQ(style(3, 2).left, spreadsheet::BorderLine()) << "the edge that it shares with what is cleared";
    EXPECT_EQ(style(3, 2).right.style, LineStyle::solid);
}

TEST_F(Formatting, MergingAndUnmerging)
{
    grid.cursor().select({1, 1, 2, 2});
    EXPECT_FALSE(mergeCells(grid));
    grid.cursor().select({2, 2, 4, 4}); // meets the first
    EXPECT_TRUE(mergeCells(grid));
    EXPECT_EQ(grid.cells().spanAt(1, 1), (CellRange{1, 1, 2, 2}));
    EXPECT_FALSE(grid.cells().spanAt(4, 4));
    grid.cursor().select({2, 2, 9, 9}); // reaches into it
    unmergeCells(grid);
    EXPECT_FALSE(grid.cells().spanAt(1, 1));
}

TEST_F(Formatting, MergingAsksBeforeItHidesContents)
{
    QStringList asked;
    bool answer = false;
    grid.ask = [&](const QString& question) {
        asked << question;
        return answer;
    };
    const struct {
        const char* filled[2];
        int questions;
    } cases[] = {
        {{"A1", nullptr}, 0}, {{"B2", nullptr}, 1}, {{"A1", "B2"}, 1}, {{"A2", "B1"}, 1}, {{"A1", "C3"}, 0}};
    for (const auto& c : cases)
        for (const bool willing : {false, true}) {
            answer = willing;
            asked.clear();
            grid.cells().sheet().removeSpans({1, 1, 9, 9});
            grid.cells().sheet().clearContents({1, 1, 9, 9});
            for (const char* name : c.filled)
                if (name)
                    demand(grid.cells().sheet().setFormula(*spreadsheet::parseCellName(name), "\"\""));
            grid.cursor().select({1, 1, 2, 2});
            EXPECT_FALSE(mergeCells(grid)) << "nothing is told besides";
            EXPECT_EQ(asked.size(), c.questions) << c.filled[0];
            EXPECT_EQ(grid.cells().spanAt(1, 1).has_value(), willing || c.questions == 0) << c.filled[0];
        }
}

TEST_F(Formatting, ACellMergedAloneIsASpan)
{
    grid.cursor().setActiveCell(3, 3);
    EXPECT_FALSE(mergeCells(grid));
    EXPECT_EQ(grid.cells().spanAt(3, 3), (CellRange{3, 3, 3, 3}));
    grid.cursor().select({3, 3, 4, 4});
    EXPECT_TRUE(mergeCells(grid));
    EXPECT_FALSE(grid.cells().spanAt(4, 4)) << "a cell of the range is merged already";
    unmergeCells(grid);
    EXPECT_FALSE(mergeCells(grid));
    EXPECT_EQ(grid.cells().spanAt(4, 4), (CellRange{3, 3, 4, 4}));
    grid.commands().undo();
    grid.commands().undo();
    EXPECT_EQ(grid.cells().spanAt(3, 3), (CellRange{3, 3, 3, 3}));
}

TEST_F(Formatting, LinesChosenByTheirHeadingsKeepOneFormatEach)
{
    grid.resize(800, 500);
    show(grid);
    const QPoint column(grid.cellRect({3, 1}).center().x(), 5), row(5, grid.cellRect({1, 4}).center().y());
    QTest::mouseClick(&grid, Qt::LeftButton, {}, column);
    toggleBold(grid);
    QTest::mouseClick(&grid, Qt::LeftButton, {}, row);
    toggleItalic(grid);
    const std::size_t steps = grid.cells().workbook().journal().steps();
    QTest::mouseClick(&grid, Qt::LeftButton, {}, column);
    toggleBold(grid); // inverted everywhere, where the row crosses too
    EXPECT_EQ(grid.cells().workbook().journal().steps(), steps + 1);
    EXPECT_FALSE(style(3, 4).font.bold);
    EXPECT_TRUE(style(3, 4).font.italic);
    toggleBold(grid);
    grid.cursor().setActiveCell(3, 300);
    QTest::keyClick(&grid, Qt::Key_7);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    EXPECT_TRUE(style(3, 300).font.bold) << "what is typed into a fresh cell";
    spreadsheet::Workbook loaded;
    loadContent(loaded, saveContent(grid.cells().workbook()));
    for (const spreadsheet::Sheet* sheet : {&grid.cells().sheet(), &loaded.sheet(1)}) {
        EXPECT_LE(sheet->storedColumns(), 3);
        EXPECT_TRUE(sheet->style({3, 499}).font.bold);
        EXPECT_TRUE(sheet->style({40, 4}).font.italic);
        EXPECT_TRUE(sheet->style({3, 4}).font.bold && sheet->style({3, 4}).font.italic);
        EXPECT_FALSE(sheet->style({4, 5}).font.bold || sheet->style({4, 5}).font.italic);
    }
}

TEST_F(Formatting, ThePainterTakesLooksAlong)
{
    grid.resize(800, 500);
    show(grid);
    const auto drag = [this](spreadsheet::CellAddress from, spreadsheet::CellAddress to) {
        QTest::mousePress(&grid, Qt::LeftButton, {}, grid.cellRect(from).center());
        QTest::mouseMove(&grid, grid.cellRect(to).center());
        QTest::mouseRelease(&grid, Qt::LeftButton, {}, grid.cellRect(to).center());
        QCoreApplication::processEvents();
    };
    const auto bold = [this](int column, int row) { return style(column, row).font.bold; };
    grid.cursor().select({1, 1, 1, 1});
    toggleBold(grid);
    grid.cursor().select({1, 1, 2, 1}); // bold, plain
    FormatPainter::start(grid);
    drag({3, 3}, {6, 4}); // twice as wide, twice as high
    EXPECT_TRUE(bold(3, 3) && !bold(4, 3) && bold(5, 4) && !bold(6, 4) && !bold(3, 5));
    grid.commands().undo(); // one step
    EXPECT_FALSE(bold(3, 3) || bold(5, 4));
    drag({3, 3}, {3, 3});
    EXPECT_FALSE(bold(3, 3)) << "it paints once";

    grid.cursor().select({1, 1, 2, 1});
    FormatPainter::start(grid);
    QTest::keyClick(&grid, Qt::Key_Escape);
    drag({3, 3}, {3, 3});
    EXPECT_FALSE(bold(3, 3));

    grid.cursor().select({2, 1, 2, 1});
    grid.cursor().select({1, 1, 1, 1});
    FormatPainter::start(grid);
    QTest::keyClick(&grid, Qt::Key_Down);
    QTest::keyClick(&grid, Qt::Key_Return);
    EXPECT_TRUE(bold(1, 2)) << "by keys";
    grid.cursor().select({1, 1, 1, 1});
    FormatPainter::start(grid);
    QTest::mouseClick(&grid, Qt::LeftButton, {}, {grid.cellRect({5, 1}).center().x(), 5});
    QCoreApplication::processEvents();
    EXPECT_TRUE(bold(5, 1) && bold(5, 500));
    EXPECT_TRUE(grid.cells().sheet().column(5)->empty()) << "a whole column takes no cells";
}

TEST_F(Formatting, SizesOfSelectedLines)
{
    grid.cursor().select({2, 3, 4, 5});
    frmLineSize heights(grid, frmLineSize::Lines::rows), widths(grid, frmLineSize::Lines::columns);
    EXPECT_EQ(control<QDoubleSpinBox>(heights, "size").value(), spreadsheet::defaultRowHeight / 20.0);
    control<QDoubleSpinBox>(heights, "size").setValue(30);
    control<QPushButton>(heights, "cmdXPOK").click();
    test::commitText(control<QDoubleSpinBox>(widths, "size"), "１００．５"); // of full width
    control<QPushButton>(widths, "cmdXPOK").click();
    const auto& settings = grid.cells().sheet().settings();
    EXPECT_EQ(settings.rows.sizes, (std::map<int, int>{{3, 600}, {4, 600}, {5, 600}}));
    EXPECT_EQ(settings.columns.sizes, (std::map<int, int>{{2, 2010}, {3, 2010}, {4, 2010}}));
    grid.commands().undo();
    EXPECT_TRUE(grid.cells().sheet().settings().columns.sizes.empty());
}

TEST_F(Formatting, EntriesAndCaptions)
{
    grid.cursor().select({2, 2, 2, 3});
    frmDropDownEntries entries(grid);
    control<QPlainTextEdit>(entries, "entries").setPlainText(" 部门\n\n客户\n部门\n");
    control<QPushButton>(entries, "cmdXPOK").click();
    EXPECT_EQ(style(2, 3).type, CellType::dropDown);
    EXPECT_EQ(grid.cells().sheet().dropDownEntries({2, 3})->size(), 2u);
    frmDropDownEntries again(grid);
    EXPECT_EQ(control<QPlainTextEdit>(again, "entries").toPlainText(), "部门\n客户");
    grid.cursor().select({4, 1, 4, 500}); // one list for the whole column
    frmDropDownEntries column(grid);
    control<QPlainTextEdit>(column, "entries").setPlainText("是\n否");
    control<QPushButton>(column, "cmdXPOK").click();
    EXPECT_EQ(grid.cells().sheet().settings().dropDowns.count({4, 0}), 1u);
    EXPECT_EQ(grid.cells().sheet().settings().dropDowns.size(), 3u);
    EXPECT_EQ(grid.cells().sheet().dropDownEntries({4, 77})->front(), "是");

    grid.cursor().setActiveCell(6, 6);
    grid.cells().setText(6, 6, "7");
    frmButtonCaption caption(grid);
    control<QLineEdit>(caption, "caption").setText("计算");
    control<QPushButton>(caption, "cmdXPOK").click();
    EXPECT_EQ(style(6, 6).type, CellType::button);
    EXPECT_EQ(*grid.cells().sheet().buttonCaption({6, 6}), "计算");
    EXPECT_EQ(grid.cells().text(6, 6), "7");
    grid.commands().undo(); // type and caption are one step
    EXPECT_EQ(grid.cells().sheet().buttonCaption({6, 6}), nullptr);
    EXPECT_EQ(style(6, 6).type, CellType::edit);
}

TEST_F(Formatting, InsertionAtTheEdgeLosesNothing)
{
    grid.cells().setText(1, grid.cells().rowCount(), "最后一行");
    grid.cells().setText(grid.cells().columnCount(), 1, "最后一列");
    grid.cursor().setActiveCell(1, grid.cells().rowCount());
    EXPECT_FALSE(insertRow(grid));
    EXPECT_EQ(grid.cells().rowCount(), 501);
    EXPECT_EQ(grid.cells().text(1, 501), "最后一行");
    grid.cursor().setActiveCell(grid.cells().columnCount(), 1);
    EXPECT_FALSE(insertColumn(grid));
    EXPECT_EQ(grid.cells().text(51, 1), "最后一列");
}

TEST_F(Formatting, DataTypes)
{
    const std::pair<const char*, CellType> types[] = {
        {"日期型", CellType::date},           {"字符型", CellType::edit},
        {"货币型", CellType::currency},       {"数字型", CellType::number},
        {"百分比", CellType::percent},        {"科学计数法", CellType::scientific},
        {"静态文本框", CellType::staticText}, {"时间型", CellType::time},
        {"按钮型", CellType::button},         {"下拉框", CellType::dropDown},
        {"复选框", CellType::checkBox}};
    constexpr spreadsheet::CellAddress cell{2, 3}; // not the active one
    grid.cells().setText(2, 3, "文本");
    grid.cells().sheet().setTag({2, 3}, "13");
    int row = 0;
    for (const auto& [shown, type] : types) {
        frmDataType dialog(grid, cell);
        EXPECT_EQ(control<QComboBox>(dialog, "PC_1").currentIndex(), 1);
        EXPECT_EQ(control<QComboBox>(dialog, "PC_0").currentText(), "2");
        EXPECT_EQ(control<QComboBox>(dialog, "PC_1").findText(QString::fromUtf8(shown)), row++);
        choose(dialog, "PC_1", QString::fromUtf8(shown));
        EXPECT_EQ(control<QComboBox>(dialog, "PC_0").isEnabled(), type == CellType::number);
        control<QPushButton>(dialog, "cmdXPOK").click();
        EXPECT_EQ(style(2, 3).type, type);
        EXPECT_EQ(grid.cells().sheet().tag({2, 3}).view(), std::to_string(static_cast<int>(type)));
        EXPECT_EQ(grid.cells().sheet().value({2, 3}).text().view(), "文本"); // what does not fit is kept
    }
    grid.cursor().select({1, 1, 2, 1});
    frmDataType dialog(grid, cell);
    choose(dialog, "PC_1", "数字型");
    choose(dialog, "PC_0", "15");
    control<QPushButton>(dialog, "cmdXPOK").click();
    EXPECT_EQ(style(2, 1).decimals, 15);
    EXPECT_EQ(style(1, 1).type, CellType::number);
}

TEST_F(Formatting, Borders)
{
    grid.cursor().select({1, 1, 2, 2});
    frmCellBorder all(grid, {1, 1});
    control<QPushButton>(all, "cmdXPOK").click(); // all sides, solid
    const spreadsheet::BorderLine line{LineStyle::solid, 0x000080};
    for (const spreadsheet::BorderLine& side :
         {style(1, 1).left, style(2, 1).top, style(2, 2).right, style(1, 2).bottom})
        EXPECT_EQ(side, line);
    frmCellBorder none(grid, {1, 1});
    choose(none, "PC_1", "无");
    choose(none, "PC_0", "Dot border ");
    control<QPushButton>(none, "cmdXPOK").click();
    EXPECT_EQ(style(1, 1).left, line);
    frmCellBorder left(grid, {1, 1});
    choose(left, "PC_1", "左");
    choose(left, "PC_0", "No border");
    control<QPushButton>(left, "cmdXPOK").click();
    EXPECT_EQ(style(1, 1).left.style, LineStyle::none);
    EXPECT_EQ(style(1, 1).top, line);
    EXPECT_EQ(control<QComboBox>(left, "PC_0").count(), 12);
    grid.cells().addSpan({4, 4, 5, 5});
    grid.cursor().setActiveCell(4, 4);
    frmCellBorder merged(grid, {4, 4});
    control<QPushButton>(merged, "cmdXPOK").click();
    EXPECT_EQ(style(6, 5).left, line) << "around the whole of it";
}

/// What the cells D4:E5 have then, from the top left clockwise, each as left, top, right, bottom by the
/// numbers of the line styles.
TEST_F(Formatting, LinesAroundBetweenAllAndNone)
{
    ScriptedColourDialog colours;
    const ColourDialogInUse inUse(colours);
    colours.answers = {0x112233};
    const struct {
        const char *edges, *line;
        std::string sides;
    } steps[] = {
        {"外边框", "普通线", "11--|-11-|--11|1--1"},
        {"内部", "粗线", "11CC|C11C|CC11|1CC1"},
        {"全部", "双线", "DDDD|DDDD|DDDD|DDDD"},
        {"无", nullptr, "----|----|----|----"},
    };
    for (const auto& [edges, line, sides] : steps) {
        grid.cursor().select({4, 4, 5, 5});
        frmBorders dialog(grid);
        choose(dialog, "edges", edges);
        EXPECT_EQ(control<QComboBox>(dialog, "line").isEnabled(), line != nullptr);
        if (line)
            choose(dialog, "line", line);
        if (edges == std::string("全部"))
            control<QPushButton>(dialog, "colour").click();
        control<QPushButton>(dialog, "cmdXPOK").click();
        std::string shown;
        for (const auto& [column, row] : {std::pair(4, 4), {5, 4}, {5, 5}, {4, 5}}) {
            const CellStyle& cell = style(column, row);
            shown += shown.empty() ? "" : "|";
            for (const spreadsheet::BorderLine& side : {cell.left, cell.top, cell.right, cell.bottom})
                shown += side.style == LineStyle::none ? '-' : "0123456789ABCD"[static_cast<int>(side.style)];
        }
        EXPECT_EQ(shown, sides) << edges;
        if (edges == std::string("全部")) {
            EXPECT_EQ(style(6, 4).left, (spreadsheet::BorderLine{LineStyle::doubled, 0x112233}));
            grid.commands().undo(); // one step
            EXPECT_EQ(style(4, 4).left.style, LineStyle::solid);
            EXPECT_EQ(style(6, 4).left, style(5, 4).right);
        }
    }
    EXPECT_EQ(style(6, 4).left.style, LineStyle::none);
}

} // namespace
} // namespace selfreport
