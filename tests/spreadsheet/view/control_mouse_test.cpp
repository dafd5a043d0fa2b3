#include "tests/spreadsheet/view/ControlTest.h"

#include <QScrollBar>
#include <QWheelEvent>

#include <functional>

namespace spreadsheet {

namespace {

constexpr Qt::KeyboardModifiers ctrl = Qt::ControlModifier, shift = Qt::ShiftModifier;

void turnWheel(QWidget& widget, QPoint delta, Qt::KeyboardModifiers modifiers = {})
{
    const QPointF place(300, 200);
    QWheelEvent event(place, widget.mapToGlobal(place), {}, delta, {}, modifiers, Qt::NoScrollPhase, false);
    QApplication::sendEvent(&widget, &event);
}

} // namespace

TEST_F(ControlTest, ClicksAndDragsSelect)
{
    control.cells().addSpan({5, 5, 6, 6}); // E5:F6
    control.showChanges();
    click("C3");
    EXPECT_EQ(cursor(), "C3 in C3");
    click("D5", shift);
    EXPECT_EQ(cursor(), "C3 in C3:D5");
    click("E6", shift);
    EXPECT_EQ(cursor(), "C3 in C3:F6") << "spans are taken whole";
    drag(centre("B2"), centre("D4"));
    EXPECT_EQ(cursor(), "B2 in B2:D4");
    drag(centre("D4"), centre("B2"));
    EXPECT_EQ(cursor(), "D4 in B2:D4");
    drag(centre("G8"), centre("H9"), ctrl);
    EXPECT_EQ(cursor(), "G8 in B2:D4 G8:H9");
    EXPECT_EQ(name(control.cursor().selectedBlock()), "B2:H9");
    EXPECT_EQ(name(control.cursor().firstRange()), "B2:D4");
    EXPECT_TRUE(control.cursor().isBlockSelected());
    click("F6");
    EXPECT_EQ(cursor(), "E5 in E5:F6");
    EXPECT_FALSE(control.cursor().isBlockSelected()) << "a merged cell is one cell";
}

TEST_F(ControlTest, TheRightButtonGoesWhereItIsWantedTo)
{
    const auto press = [this](QPoint place) { click(place, {}, Qt::RightButton); };
    click("B2");
    press(centre("D4"));
    EXPECT_EQ(cursor(), "B2 in B2") << "by itself it moves nothing";
    control.setMovesByRightButton(true);
    control.cells().addSpan({5, 5, 6, 6}); // E5:F6
    drag(centre("B2"), centre("C3"));
    click("H8", ctrl);
    logged();
    const struct {
        QPoint place;
        const char *cursor, *log;
    } cases[] = {
        {centre("C2"), "H8 in B2:C3 H8", "down2 3,2 menu 3,2"},
        {QPoint(centre("F1").x(), centre("A6").y()), "E5 in E5:F6", "down2 6,6 leave 8,8>5,5 menu 6,6"},
        {columnHeading("C1"), "C1 in C1:C100", "down2 3,0 leave 5,5>3,1 menu 3,0"},
        {columnHeading("C1"), "C1 in C1:C100", "down2 3,0 menu 3,0"},
        {centre("C7"), "C1 in C1:C100", "down2 3,7 menu 3,7"},
        {rowHeading("A4"), "A4 in A4:AD4", "down2 0,4 leave 3,1>1,4 menu 0,4"},
        {QPoint(3, 3), "A4 in A1:AD100", "down2 0,0 menu 0,0"},
    };
    for (const auto& c : cases) {
        press(c.place);
        EXPECT_EQ(cursor(), c.cursor);
        EXPECT_EQ(logged(), c.log);
    }
    click("B2");
    logged();
    holdsCursor = true;
    press(centre("D4"));
    EXPECT_EQ(cursor() + ", " + logged(), "B2 in B2, down2 4,4 leave 2,2>4,4");
}

TEST_F(ControlTest, HeadingsSelectWholeLines)
{
    click(columnHeading("C1"));
    EXPECT_EQ(cursor(), "C1 in C1:C100");
    click(columnHeading("E1"), shift);
    EXPECT_EQ(cursor(), "C1 in C1:E100");
    click(rowHeading("A4"), ctrl);
    EXPECT_EQ(cursor(), "A4 in C1:E100 A4:AD4");
    drag(rowHeading("A7"), rowHeading("A9"));
    EXPECT_EQ(cursor(), "A7 in A7:AD9");
    drag(columnHeading("D1"), columnHeading("B1"));
    EXPECT_EQ(cursor(), "D1 in B1:D100");
    click(QPoint(3, 3));
    EXPECT_EQ(cursor(), "D1 in A1:AD100");
}

TEST_F(ControlTest, HeadingEdgesResizeAndFit)
{
    const auto edge = [this](const char* cell) {
        const QRect rect = control.cellRect(*parseCellName(cell));
        return QPoint(rect.right() + 1, 5);
    };
    const auto width = [this](int column) { return sheet().settings().columns.size(column); };
    drag(edge("B1"), edge("B1") + QPoint(40, 0));
    EXPECT_EQ(width(2), 1080 + 40 * 15);
    key(Qt::Key_Z, ctrl);
    EXPECT_EQ(width(2), 1080) << "one undo step";
    drag(columnHeading("D1"), columnHeading("E1"));
    drag(edge("D1"), edge("D1") - QPoint(30, 0));
    EXPECT_EQ(width(4), 1080 - 30 * 15);
    EXPECT_EQ(width(5), width(4)) << "all selected columns";
    EXPECT_EQ(width(3), 1080);
    drag(edge("B1"), edge("B1") - QPoint(500, 0));
    EXPECT_EQ(width(2), 0) << "hidden";
    drag(edge("A1") + QPoint(2, 0), edge("A1") + QPoint(52, 0));
    EXPECT_NEAR(width(2), 50 * 15, 45) << "drawn out again from behind the edge";
    const QRect a5 = control.cellRect({1, 5});
    drag({5, a5.bottom() + 1}, {5, a5.bottom() + 21});
    EXPECT_EQ(sheet().settings().rows.size(5), 285 + 20 * 15);

    put("A3", "应收账款客户分析表的一个很长的标题");
    QTest::mouseDClick(&control, Qt::LeftButton, {}, edge("A1"));
    EXPECT_GT(width(1), 17 * 180);
    EXPECT_LT(width(1), 17 * 180 + 300);
    control.setMode(GridMode::run);
    const int before = width(1);
    drag(edge("A1"), edge("A1") + QPoint(30, 0));
    EXPECT_EQ(width(1), before);
}

struct PageBreaksInTheGrid : ControlTest {
    PageBreaksInTheGrid()
    {
        sheet().changeSettings([](SheetSettings& settings) {
            settings.print.rowBreaks = {{5, true}, {20, true}};
            settings.print.columnBreaks = {{3, true}};
        });
        control.showChanges();
    }
    std::string breaks()
    {
        std::string text;
        for (const auto& [row, marked] : sheet().settings().print.rowBreaks)
            text += std::to_string(row) + ' ';
        for (const auto& [column, marked] : sheet().settings().print.columnBreaks)
            text += columnName(column) + ' ';
        text.pop_back();
        return text;
    }
    QPoint above(const char* cell) const
    {
        return {centre(cell).x(), control.cellRect(*parseCellName(cell)).top() - 1};
    }
    QPoint before(const char* cell) const
    {
        return {control.cellRect(*parseCellName(cell)).left() - 1, centre(cell).y()};
    }
};

TEST_F(PageBreaksInTheGrid, AreMovedByTheMouse)
{
    click("B2");
    const struct {
        const char* what;
        QPoint from, to;
        const char* breaks;
    } cases[] = {
        {"to a row", above("E5"), above("F9") + QPoint(0, 4), "9 20 C"},
        {"onto another one", above("E5"), above("E20"), "20 C"},
        {"up to where a page begins anyway", above("E5"), above("E1"), "20 C"},
        {"to a column", before("C8"), before("F2") - QPoint(5, 0), "5 20 F"},
        {"nowhere", above("E5"), above("E5"), "5 20 C"},
        {"from beside it", above("E5") + QPoint(0, 4), above("E9"), "5 20 C"},
    };
    for (const auto& c : cases) {
        drag(c.from, c.to);
        EXPECT_EQ(breaks(), c.breaks) << c.what;
        if (breaks() != "5 20 C") {
            EXPECT_EQ(cursor(), "B2 in B2") << c.what;
            key(Qt::Key_Z, ctrl);
            EXPECT_EQ(breaks(), "5 20 C") << c.what << ", undone";
            click("B2");
        }
    }
    QTest::mousePress(&control, Qt::LeftButton, {}, above("E5"));
    QTest::mouseMove(&control, above("E9"));
    key(Qt::Key_Escape);
    QTest::mouseRelease(&control, Qt::LeftButton, {}, above("E9"));
    EXPECT_EQ(breaks(), "5 20 C") << "given up";
    control.setMode(GridMode::run);
    drag(above("E5"), above("E9"));
    EXPECT_EQ(breaks(), "5 20 C") << "nothing is set up in use";
}

TEST_F(PageBreaksInTheGrid, AreMovedByKeysFromTheCellBehind)
{
    constexpr Qt::KeyboardModifiers held = Qt::AltModifier | shift;
    click("D5");
    key(Qt::Key_Down, held);
    key(Qt::Key_Down, held);
    EXPECT_EQ(breaks() + ", " + cursor(), "7 20 C, D7 in D7");
    click("C2");
    key(Qt::Key_Left, held);
    EXPECT_EQ(breaks() + ", " + cursor(), "7 20 B, B2 in B2");
    key(Qt::Key_Right, held);
    EXPECT_EQ(refusal, "");
    key(Qt::Key_Down, held);
    EXPECT_EQ(refusal, "活动单元格的行上没有分页符");
    EXPECT_EQ(breaks() + ", " + cursor(), "7 20 C, C2 in C2");
}

TEST_F(PageBreaksInTheGrid, StandWhereTheirPagesBegin)
{
    const QImage shown = control.grab().toImage();
    const auto blues = [&](QPoint from, QPoint step) { // of 40 places along a dashed line
        int count = 0;
        for (int i = 0; i < 40; ++i)
            count += shown.pixelColor(from + i * step) == QColor(0x20, 0x60, 0xC0);
        return count;
    };
    EXPECT_GT(blues(above("E5"), {1, 0}), 15);
    EXPECT_EQ(blues(above("E6"), {1, 0}), 0);
    EXPECT_GT(blues(before("C8"), {0, 1}), 15);
}

/// A page that begins at hidden lines begins with the next one in sight; its mark stands and is moved there.
TEST_F(PageBreaksInTheGrid, AtHiddenLinesStandInFrontOfTheNextInSight)
{
    sheet().changeSettings([](SheetSettings& settings) {
        settings.rows.hidden = {{4, true}, {5, true}, {6, true}, {18, true}};
        settings.columns.hidden = {{3, true}, {4, true}};
    });
    control.showChanges();
    const QImage shown = control.grab().toImage();
    const auto isMarked = [&](QPoint from, QPoint step) {
        int count = 0;
        for (int i = 0; i < 40; ++i)
            count += shown.pixelColor(from + i * step) == QColor(0x20, 0x60, 0xC0);
        return count > 15;
    };
    EXPECT_TRUE(isMarked(above("F7"), {1, 0}));
    EXPECT_FALSE(isMarked(above("F8"), {1, 0}));
    EXPECT_FALSE(isMarked(above("F19"), {1, 0})) << "its page begins at 20, in sight";
    EXPECT_TRUE(isMarked(before("E8"), {0, 1}));
    drag(above("F7"), above("F9"));
    EXPECT_EQ(breaks(), "9 20 C");
    drag(before("E8"), before("G8"));
    EXPECT_EQ(breaks(), "9 20 G");
    key(Qt::Key_Z, ctrl);
    key(Qt::Key_Z, ctrl);
    click("F7");
    key(Qt::Key_Up, Qt::AltModifier | shift);
    EXPECT_EQ(breaks() + ", " + cursor(), "3 20 C, F3 in F3");
}

TEST_F(ControlTest, TheWheelScrollsAndZooms)
{
    turnWheel(control, {0, -120});
    EXPECT_EQ(control.cursor().topLeftCell(), (CellAddress{1, 4}));
    for (int i = 0; i < 3; ++i)
        turnWheel(control, {0, 40}); // a touch pad's small steps add up
    EXPECT_EQ(control.cursor().topLeftCell().row, 1);
    turnWheel(control, {0, -240}, shift);
    EXPECT_EQ(control.cursor().topLeftCell().column, 3);
    turnWheel(control, {0, 120}, ctrl);
    EXPECT_NEAR(control.zoom(), 1.1, 1e-9);
    EXPECT_EQ(control.cellRect({4, 2}).height(), 21);
    for (int i = 0; i < 60; ++i)
        turnWheel(control, {0, 120}, ctrl);
    EXPECT_NEAR(control.zoom(), 4, 1e-9);
    for (int i = 0; i < 60; ++i)
        turnWheel(control, {0, -120}, ctrl);
    EXPECT_NEAR(control.zoom(), 0.25, 1e-9);
    control.setZoom(1);
    for (int i = 0; i < 60; ++i)
        turnWheel(control, {0, -120});
    const QRect last = control.cellRect({3, 100});
    EXPECT_FALSE(last.isEmpty());
    EXPECT_GT(last.top(), 200) << "the last row ends at the bottom";
}

TEST_F(ControlTest, ScrollBarsFollowAndLead)
{
    auto& bar = *control.findChild<QScrollBar*>("scrollDown");
    control.cursor().setActiveCell(1, 80);
    EXPECT_EQ(bar.value(), control.cursor().topLeftCell().row);
    bar.setValue(11);
    EXPECT_EQ(control.cursor().topLeftCell().row, 11);
    EXPECT_EQ(control.cursor().activeCell().row, 80) << "the cursor stays";
    bar.setValue(bar.maximum());
    EXPECT_FALSE(control.cellRect({1, 100}).isEmpty());
    demand(control.cells().setRowCount(5));
    control.showChanges();
    EXPECT_EQ(bar.maximum(), bar.minimum());
    EXPECT_EQ(cursor(), "A5 in A5");
}

TEST_F(ControlTest, DraggingBeyondAnyEdgeScrolls)
{
    const auto dragOut = [this](const char* from, QPoint to, const std::function<bool()>& scrolled) {
        QTest::mousePress(&control, Qt::LeftButton, {}, centre(from));
        QTest::mouseMove(&control, to);
        EXPECT_TRUE(QTest::qWaitFor(scrolled, 3000)) << from;
        QTest::mouseRelease(&control, Qt::LeftButton, {}, to);
    };
    dragOut("B5", {control.width() + 50, centre("B5").y()},
            [this] { return control.cursor().topLeftCell().column > 6; });
    EXPECT_EQ(control.cursor().selectedBlock().rows(), 1);
    const int right = control.cursor().selectedBlock().right;
    EXPECT_GT(right, 12);
    QTest::qWait(150);
    EXPECT_EQ(control.cursor().selectedBlock().right, right) << "over with the button";
    const std::string far = cellName({control.cursor().topLeftCell().column + 2, 5});
    dragOut(far.c_str(), {-40, centre("A5").y()},
            [this] { return control.cursor().topLeftCell().column == 1; });
    EXPECT_EQ(control.cursor().selectedBlock().left, 1);
    control.cursor().setTopLeftCell({1, 40});
    dragOut("B45", {centre("B45").x(), -60}, [this] { return control.cursor().topLeftCell().row < 20; });
    EXPECT_LT(control.cursor().selectedBlock().top, 20);
    EXPECT_EQ(control.cursor().selectedBlock().bottom, 45);

    // Cells that a formula points at are reached likewise.
    control.cursor().setTopLeftCell({1, 1});
    click("E2");
    type("=sum(");
    dragOut("B5", {centre("B5").x(), control.height() + 60},
            [this] { return control.cursor().topLeftCell().row > 20; });
    EXPECT_EQ(edited().substr(0, 9), "=sum(B5:B");
    type(")");
    key(Qt::Key_Return);
    EXPECT_FALSE(control.entry().isOpen());
    EXPECT_FALSE(control.cellRect({5, 3}).isEmpty()) << "the cursor is in sight again";

    QTest::mousePress(&control, Qt::LeftButton, {}, rowHeading("A4"));
    const QPoint below(5, control.height() + 40);
    QTest::mouseMove(&control, below);
    EXPECT_TRUE(QTest::qWaitFor([this] { return control.cursor().topLeftCell().row > 10; }, 3000));
    QTest::mouseRelease(&control, Qt::LeftButton, {}, below);
    EXPECT_EQ(control.cursor().selectedBlock().columns(), 30);
    EXPECT_GT(control.cursor().selectedBlock().rows(), 20);
}

TEST_F(ControlTest, TheMouseReachesCellsOnBothSidesOfFrozenEdges)
{
    control.cursor().setActiveCell(3, 4);
    control.commands().freezeHere(); // rows 1 to 3, columns A and B
    turnWheel(control, {0, -120 * 4});
    turnWheel(control, {0, -120 * 2}, shift);
    EXPECT_EQ(control.cursor().topLeftCell(), (CellAddress{5, 16}));
    const QPoint frozen = control.cellRect({2, 3}).bottomRight();
    for (const char* cell : {"B3", "B17", "F3", "F17"}) {
        click(cell);
        EXPECT_EQ(cursor(), std::string(cell) + " in " + cell);
    }
    click(frozen + QPoint(2, 2)); // the first cell beyond the edges
    EXPECT_EQ(cursor(), "E16 in E16");
    drag(centre("B2"), centre("F18"));
    EXPECT_EQ(cursor(), "B2 in B2:F18") << "cells between that are out of sight belong to it";
    click(rowHeading("A17"));
    EXPECT_EQ(cursor(), "A17 in A17:AD17");
    drag(columnHeading("B1"), columnHeading("F1"));
    EXPECT_EQ(cursor(), "B1 in B1:F100");
    EXPECT_EQ(control.cursor().topLeftCell(), (CellAddress{5, 16})) << "nothing has scrolled";
    click("F17");
    key(Qt::Key_Up);
    key(Qt::Key_Up);
    EXPECT_EQ(control.cursor().topLeftCell().row, 15) << "up from the edge the cells scroll";
    type("5");
    key(Qt::Key_Return);
    click("B3");
    type("=");
    click("F16");
    key(Qt::Key_Return);
    EXPECT_EQ(formula("B3"), "F16");
    control.cursor().setActiveCell(3, 4);
    control.commands().freezeHere();
    EXPECT_EQ(sheet().settings().frozenRows, 0) << "again: they are free";
}

TEST_F(ControlTest, HeadingsGiveACellOfAFrozenLineTheCursor)
{
    control.cursor().setActiveCell(2, 2);
    control.commands().freezeHere(); // row 1 and column A
    turnWheel(control, {0, -120 * 4});
    click(columnHeading("B1"));
    EXPECT_EQ(cursor(), "B1 in B1:B100");
    click(rowHeading("A17"));
    EXPECT_EQ(cursor(), "A17 in A17:AD17");
}

TEST_F(ControlTest, ClicksHitTheirCellsAtAnyZoom)
{
    put("C3", "x");
    for (int notch = 0; notch < 7; ++notch) {
        turnWheel(control, {0, notch < 4 ? 240 : -480}, ctrl);
        for (const char* cell : {"A1", "B2", "C3", "D5"}) {
            click(cell);
            EXPECT_EQ(cursor(), std::string(cell) + " in " + cell) << control.zoom();
            click(columnHeading(cell));
            EXPECT_EQ(control.cursor().firstRange().left, parseCellName(cell)->column) << control.zoom();
        }
        click("C3");
        key(Qt::Key_F2);
        const auto* editor = control.findChild<QPlainTextEdit*>("cellEditor");
        EXPECT_TRUE(control.cellRect({3, 3}).adjusted(-2, -2, 2, 2).contains(editor->geometry().topLeft()));
        EXPECT_GE(editor->height(), control.cellRect({3, 3}).height()) << control.zoom();
        key(Qt::Key_Escape);
    }
}

TEST_F(ControlTest, KeysInsertDeleteHideAndShowLines)
{
    const auto hidden = [this](bool rows) {
        std::string lines;
        for (const auto& [index, isHidden] :
             rows ? sheet().settings().rows.hidden : sheet().settings().columns.hidden)
            lines += isHidden ? std::to_string(index) + " " : "";
        return lines;
    };
    for (const char* cell : {"A1", "B2", "C3", "D4"})
        put(cell, cell);
    drag(rowHeading("A2"), rowHeading("A3"));
    key(Qt::Key_Plus, ctrl);
    EXPECT_EQ(shown("A1", "D6"), "A1   ;   ;   ; B2  ;  C3 ;   D4");
    key(Qt::Key_Minus, ctrl);
    EXPECT_EQ(shown("A1", "D4"), "A1   ; B2  ;  C3 ;   D4");
    click(columnHeading("B1"));
    key(Qt::Key_Equal, ctrl | shift); // + of the main keyboard
    EXPECT_EQ(shown("A2", "E2"), "  B2  ");
    key(Qt::Key_Z, ctrl);
    EXPECT_EQ(shown("A2", "E2"), " B2   ");
    click(columnHeading("B1"));
    key(Qt::Key_Minus, ctrl);
    EXPECT_EQ(shown("A1", "C4"), "A1  ;  ; C3 ;  D4");
    key(Qt::Key_Z, ctrl);
    click("B2");
    click("D4", ctrl);
    key(Qt::Key_9, ctrl);
    EXPECT_EQ(hidden(true), "2 4 ");
    drag(rowHeading("A1"), rowHeading("A5"));
    key(Qt::Key_ParenLeft, ctrl | shift);
    EXPECT_EQ(hidden(true), "");
    drag(columnHeading("B1"), columnHeading("C1"));
    key(Qt::Key_0, ctrl);
    EXPECT_EQ(hidden(false), "2 3 ");
    click("D1");
    key(Qt::Key_Left);
    EXPECT_EQ(cursor(), "A1 in A1") << "arrows pass hidden columns";
    key(Qt::Key_A, ctrl);
    refusal.clear();
    for (const int pressed : {Qt::Key_9, Qt::Key_0, Qt::Key_Minus, Qt::Key_Plus})
        key(pressed, ctrl);
    EXPECT_NE(refusal, "");
    EXPECT_EQ(hidden(true), "") << "something stays in sight";
    key(Qt::Key_ParenRight, ctrl | shift);
    EXPECT_EQ(hidden(false), "");
    control.setMode(GridMode::run);
    click("B2");
    for (const int pressed : {Qt::Key_9, Qt::Key_0, Qt::Key_Minus, Qt::Key_Plus, Qt::Key_D})
        key(pressed, ctrl);
    EXPECT_EQ(shown("A1", "D4"), "A1   ; B2  ;  C3 ;   D4");
    EXPECT_EQ(hidden(true) + hidden(false), "");
}

} // namespace spreadsheet
