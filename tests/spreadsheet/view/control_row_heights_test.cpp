#include "tests/spreadsheet/view/ControlTest.h"

namespace spreadsheet {

/// Rows without a height of their own on screen: 19 pixels, or what their texts need (a line of 9 points is
/// 216 twips, 50 more stand around them, a pixel is 15).
class ControlRowHeights : public ControlTest {
protected:
    ControlRowHeights()
    {
        sheet().restyle({1, 1, 1, maxRows}, [](CellStyle& style) { style.wrap = true; });
    }
    Sheet& sheet() { return control.cells().workbook().sheet(1); }
    int height(int row) { return control.cellRect({1, row}).height(); }
    int topOf(int row) { return control.cellRect({1, row}).top(); }

    static constexpr int twoLines = 32, threeLines = 47;
    static constexpr const char* six = "一二三四五六"; // five stand in a line
};

TEST_F(ControlRowHeights, FollowWhatIsTypedUndoneAndCleared)
{
    const int below = topOf(3);
    control.cells().setText(1, 2, QString::fromUtf8(six));
    control.afterEdit();
    EXPECT_EQ(height(2), twoLines);
    EXPECT_EQ(topOf(3), below + twoLines - 19);
    control.cursor().setActiveCell(1, 2);
    key(Qt::Key_Delete);
    EXPECT_EQ(height(2), 19);
    key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(height(2), twoLines);
    key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(height(2), 19);
    EXPECT_EQ(topOf(3), below);
    EXPECT_TRUE(sheet().settings().rows.sizes.empty()) << "nothing is stored";
}

TEST_F(ControlRowHeights, ZoomAndOwnHeights)
{
    sheet().setText({1, 2}, six);
    control.setZoom(2);
    EXPECT_EQ(height(2), 64);
    control.setZoom(1);
    EXPECT_EQ(height(2), twoLines);
    sheet().changeSettings([](SheetSettings& settings) { settings.rows.sizes[2] = 300; });
    control.showChanges();
    EXPECT_EQ(height(2), 20);
    control.cursor().setActiveCell(1, 2);
    control.commands().autofitRows();
    EXPECT_EQ(height(2), twoLines);
    sheet().setText({1, 2}, "一二三四五六七八九十甲");
    control.showChanges();
    EXPECT_EQ(height(2), threeLines) << "fitted once, it goes on following";
    control.commands().undo();
    control.commands().undo();
    EXPECT_EQ(height(2), 20) << "the height that was its own";
}

TEST_F(ControlRowHeights, FarRowsAreFoundWhenTheyComeIntoSight)
{
    demand(control.cells().setRowCount(maxRows));
    for (const int row : {500'000, maxRows})
        sheet().setText({1, row}, six);
    control.showChanges();
    control.cursor().moveTo({1, 500'000});
    EXPECT_EQ(height(500'000), twoLines);
    control.cursor().moveTo({1, maxRows});
    EXPECT_EQ(height(maxRows), twoLines);
    EXPECT_LE(control.cellRect({1, maxRows}).bottom(), control.height()) << "the last row is wholly in sight";
    control.cursor().moveTo({1, 1});
    EXPECT_EQ(height(1), 19);
}

/// Clicks, the cursor and paging must agree with what is painted.
TEST_F(ControlRowHeights, KeysAndMouseMeetTheRowsAsTheyShow)
{
    for (int row = 1; row <= 60; ++row)
        sheet().setText({1, row}, six);
    control.showChanges();
    const QRect tenth = control.cellRect({2, 10});
    click(tenth.center());
    EXPECT_EQ(control.cursor().activeCell(), (CellAddress{2, 10}));
    const int page = control.cursor().activeCell().row;
    key(Qt::Key_PageDown);
    const int down = control.cursor().activeCell().row;
    EXPECT_GT(down, page);
    EXPECT_LE(down - page, control.height() / twoLines) << "no row is passed over unseen";
    EXPECT_FALSE(control.cellRect({2, down}).isEmpty());
    key(Qt::Key_PageUp);
    EXPECT_EQ(control.cursor().activeCell().row, page);
}

} // namespace spreadsheet
