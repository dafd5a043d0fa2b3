#include "tests/spreadsheet/view/ControlTest.h"

#include <QScrollBar>
#include <QTabBar>
#include <QToolButton>
#include <QWheelEvent>

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
    control.addSpan({5, 5, 6, 6}); // E5:F6
    control.refresh();
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
    EXPECT_EQ(name(control.selectedBlock()), "B2:H9");
    EXPECT_EQ(name(control.firstRange()), "B2:D4");
    EXPECT_TRUE(control.isBlockSelected());
    click("F6");
    EXPECT_EQ(cursor(), "E5 in E5:F6");
    EXPECT_FALSE(control.isBlockSelected()) << "a merged cell is one cell";
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

TEST_F(ControlTest, TheWheelScrollsAndZooms)
{
    turnWheel(control, {0, -120});
    EXPECT_EQ(control.topLeftCell(), (CellAddress{1, 4}));
    for (int i = 0; i < 3; ++i)
        turnWheel(control, {0, 40}); // a touch pad's small steps add up
    EXPECT_EQ(control.topLeftCell().row, 1);
    turnWheel(control, {0, -240}, shift);
    EXPECT_EQ(control.topLeftCell().column, 3);
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
    control.setActiveCell(1, 80);
    EXPECT_EQ(bar.value(), control.topLeftCell().row);
    bar.setValue(11);
    EXPECT_EQ(control.topLeftCell().row, 11);
    EXPECT_EQ(control.activeCell().row, 80) << "the cursor stays";
    bar.setValue(bar.maximum());
    EXPECT_FALSE(control.cellRect({1, 100}).isEmpty());
    control.setRowCount(5);
    control.refresh();
    EXPECT_EQ(bar.maximum(), bar.minimum());
    EXPECT_EQ(cursor(), "A5 in A5");
}

TEST_F(ControlTest, DraggingBeyondTheEdgeScrolls)
{
    QTest::mousePress(&control, Qt::LeftButton, {}, centre("B5"));
    QTest::mouseMove(&control, QPoint(150, control.height() + 30));
    ASSERT_TRUE(QTest::qWaitFor([this] { return control.topLeftCell().row > 5; }, 3000));
    QTest::mouseRelease(&control, Qt::LeftButton, {}, QPoint(150, control.height() + 30));
    const int bottom = control.selectedBlock().bottom;
    EXPECT_GT(bottom, 20);
    QTest::qWait(150);
    EXPECT_EQ(control.selectedBlock().bottom, bottom) << "over with the button";
}

TEST_F(ControlTest, TabsShowAddRenameMoveAndDeleteSheets)
{
    auto& bar = *control.findChild<QTabBar*>("sheetTabBar");
    const auto names = [&] {
        QString text;
        for (int tab = 0; tab < bar.count(); ++tab)
            text += (tab == bar.currentIndex() ? "*" : "") + bar.tabText(tab) + " ";
        return text.trimmed().toStdString();
    };
    const auto sheets = [this] {
        std::string text;
        for (int index = 1; index <= control.sheetCount(); ++index)
            text += control.workbook().sheet(index).name() + " ";
        return text;
    };
    QTest::mouseClick(control.findChild<QToolButton*>("addSheet"), Qt::LeftButton);
    EXPECT_EQ(names(), "Sheet1 *Sheet2");
    EXPECT_EQ(logged(), "leave 1,1>-1,-1 sheet 2");
    QTest::mouseClick(&bar, Qt::LeftButton, {}, bar.tabRect(0).center());
    EXPECT_EQ(names(), "*Sheet1 Sheet2");
    QTest::mouseDClick(&bar, Qt::LeftButton, {}, bar.tabRect(1).center());
    auto& field = *control.findChild<QLineEdit*>("sheetName");
    ASSERT_TRUE(field.isVisible());
    field.setText(QStringLiteral("利润表"));
    QTest::keyClick(&field, Qt::Key_Return);
    EXPECT_EQ(sheets(), "Sheet1 利润表 ");
    QTest::mouseDClick(&bar, Qt::LeftButton, {}, bar.tabRect(1).center());
    field.setText(QStringLiteral("sheet1"));
    QTest::keyClick(&field, Qt::Key_Return);
    EXPECT_EQ(sheets(), "Sheet1 利润表 ") << "a name that is taken";
    EXPECT_FALSE(refusal.empty());
    bar.moveTab(1, 0);
    EXPECT_EQ(sheets(), "利润表 Sheet1 ");
    EXPECT_EQ(names(), "利润表 *Sheet1");
    EXPECT_EQ(control.activeSheet(), 2);
    control.undo();
    EXPECT_EQ(sheets(), "Sheet1 利润表 ");

    control.removeSheet(2);
    EXPECT_EQ(control.sheetCount(), 2) << "nobody to ask";
    QString question;
    control.ask = [&](const QString& asked) {
        question = asked;
        return true;
    };
    control.removeSheet(2);
    EXPECT_EQ(sheets(), "Sheet1 ");
    EXPECT_TRUE(question.contains(QStringLiteral("利润表")));
    control.removeSheet(1);
    EXPECT_EQ(control.sheetCount(), 1);
    control.undo();
    EXPECT_EQ(sheets(), "Sheet1 利润表 ");
    EXPECT_EQ(bar.count(), 2);
}

} // namespace spreadsheet
