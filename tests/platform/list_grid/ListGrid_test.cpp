#include "platform/list_grid/ListGrid.h"

#include "platform/windows/twips.h"
#include "tests/platform/WindowTest.h"

#include <QElapsedTimer>
#include <QHeaderView>
#include <QSignalSpy>

namespace selfreport {
namespace {

class ListGridTest : public test::WindowTest {
protected:
    ListGridTest()
    {
        grid.setColumns({{"", 900}, {"名称", 2145}, {"时间", 1935}});
        grid.resize(500, 300);
    }
    void add(std::initializer_list<const char*> rows)
    {
        for (const char* row : rows)
            grid.addRow(QString::fromUtf8(row));
    }
    void clickHeading(int column)
    {
        QHeaderView& header = *grid.horizontalHeader();
        const QPoint middle(header.sectionViewportPosition(column) + header.sectionSize(column) / 2,
                            header.height() / 2);
        QTest::mouseClick(header.viewport(), Qt::LeftButton, {}, middle);
    }
    /// Texts of a column from top to bottom as they are shown.
    QString shown(int column) const
    {
        QStringList texts;
        for (int row = 0; row < grid.model()->rowCount(); ++row)
            texts.append(grid.model()->index(row, column).data().toString());
        return texts.join(' ');
    }
    QPoint placeOf(int shownRow, int column) const
    {
        return grid.visualRect(grid.model()->index(shownRow, column)).center();
    }

    ListGrid grid;
};

TEST_F(ListGridTest, HeadingIsRowZeroAndWidthsAreTwips)
{
    EXPECT_EQ(grid.rowCount(), 1);
    EXPECT_EQ(grid.row(), 0);
    EXPECT_EQ(grid.text(0, 1), "名称");
    add({"1\t甲\t早", "2\t乙", "3\t\t\t多"});
    EXPECT_EQ(grid.rowCount(), 4);
    EXPECT_EQ(grid.row(), 1); // the first row added
    const struct {
        int row, column;
        const char* text;
    } cells[] = {{1, 1, "甲"}, {1, 2, "早"}, {2, 2, ""}, {3, 1, ""}, {3, 3, "多"}, {4, 0, ""}, {-1, 0, ""}};
    for (const auto& [row, column, text] : cells)
        EXPECT_EQ(grid.text(row, column), text) << row << ',' << column;
    for (const auto& [column, twips] : {std::pair{0, 900}, {1, 2145}, {2, 1935}})
        EXPECT_NEAR(grid.columnTwips(column), twips, 8) << column; // half a pixel
}

TEST_F(ListGridTest, SortingLeavesTheRowOrderOfCallers)
{
    add({"1\t张\tb", "10\t李\ta", "9\t白\tc", "2\t安\t"});
    grid.setRow(3);
    show(grid);
    const struct {
        int column;
        const char* ids;
    } clicks[] = {
        {0, "1 2 9 10"},                                   // numbers by value
        {0, "10 9 2 1"}, {0, "1 10 9 2"}, {1, "2 9 10 1"}, // 安白李张
        {2, "2 10 1 9"},                                   // another column starts upwards
        {2, "9 1 10 2"},
    };
    for (const auto& [column, ids] : clicks) {
        clickHeading(column);
        EXPECT_EQ(shown(0), ids);
        EXPECT_EQ(grid.row(), 3); // still 白
        EXPECT_EQ(grid.text(2, 0), "10");
    }
    grid.addRow("5\t刘\tbb"); // between c and b, downwards
    EXPECT_EQ(shown(0), "9 5 1 10 2");
    EXPECT_EQ(grid.text(5, 0), "5");
    QTest::mouseClick(grid.viewport(), Qt::LeftButton, {}, placeOf(1, 1));
    EXPECT_EQ(grid.row(), 5);
}

TEST_F(ListGridTest, HiddenSortTextsOrderDates)
{
    grid.addRow("1\t甲\t3/2/2026", "\t\t2026-02-03");
    grid.addRow("2\t乙\t10/1/2026", "\t\t2026-01-10");
    show(grid);
    clickHeading(2);
    EXPECT_EQ(shown(0), "2 1");
    EXPECT_EQ(grid.text(1, 2), "3/2/2026");
}

TEST_F(ListGridTest, RemovalKeepsACurrentRow)
{
    add({"1\t甲", "2\t乙", "3\t丙", "4\t丁"});
    show(grid);
    clickHeading(0);
    clickHeading(0); // 4 3 2 1
    const struct {
        int current, removed, currentAfter;
        const char* shown;
    } steps[] = {
        {3, 0, 3, "4 3 2 1"},                     // the heading stays
        {3, 5, 3, "4 3 2 1"}, {3, 1, 2, "4 3 2"}, // rows behind the removed one count one less
        {2, 2, 1, "4 2"},                         // what is shown below follows: text 2 is row 1
        {1, 1, 1, "4"},                           // or the last one
        {1, 1, 0, ""},
    };
    for (const auto& step : steps) {
        grid.setRow(step.current);
        grid.removeRow(step.removed);
        EXPECT_EQ(shown(0), step.shown);
        EXPECT_EQ(grid.row(), step.currentAfter) << step.shown;
    }
}

TEST_F(ListGridTest, KeyboardMovesAndFocusChoosesNothing)
{
    add({"1\t甲", "2\t乙", "3\t丙"});
    grid.setRow(0);
    show(grid);
    grid.setFocus();
    QCoreApplication::processEvents();
    EXPECT_EQ(grid.row(), 0);
    const struct {
        Qt::Key key;
        int row;
    } keys[] = {
        {Qt::Key_Down, 1}, {Qt::Key_Down, 2}, {Qt::Key_Up, 1}, {Qt::Key_Up, 1}, {Qt::Key_PageDown, 3}};
    for (const auto& [key, row] : keys) {
        QTest::keyClick(&grid, key);
        EXPECT_EQ(grid.row(), row) << key;
    }
    EXPECT_EQ(grid.selectionModel()->selectedRows().size(), 1);
}

TEST_F(ListGridTest, KeysAndMouseFollowWhatIsShownAndTellTheRowsOwnPlace)
{
    add({"1\t张", "10\t李", "9\t白", "2\t安"});
    show(grid);
    grid.setFocus();
    clickHeading(0); // 1 2 9 10
    const struct {
        Qt::Key key;
        Qt::KeyboardModifiers modifiers;
        int row;
    } keys[] = {
        {Qt::Key_Home, {}, 1},
        {Qt::Key_Down, {}, 4},
        {Qt::Key_Down, {}, 3},
        {Qt::Key_End, {}, 2},
        {Qt::Key_Down, {}, 2},
        {Qt::Key_Up, {}, 3},
        {Qt::Key_Home, Qt::ControlModifier, 1},
        {Qt::Key_9, {}, 3}, // typing looks a text up
    };
    for (const auto& [key, modifiers, row] : keys) {
        QTest::keyClick(&grid, key, modifiers);
        EXPECT_EQ(grid.row(), row) << key;
        EXPECT_EQ(grid.selectionModel()->selectedRows().size(), 1);
    }
    clickHeading(0); // 10 9 2 1
    EXPECT_EQ(grid.row(), 3);
    QSignalSpy clicks(&grid, &ListGrid::dblClick);
    QTest::mouseClick(grid.viewport(), Qt::LeftButton, {}, placeOf(0, 1));
    QTest::mouseDClick(grid.viewport(), Qt::LeftButton, {}, placeOf(0, 1));
    EXPECT_EQ(clicks.size(), 1);
    EXPECT_EQ(grid.text(grid.row(), 1), "李");
    EXPECT_EQ(grid.row(), 2);
    clickHeading(0); // as they were added
    EXPECT_EQ(shown(0), "1 10 9 2");
    EXPECT_EQ(grid.row(), 2);
    // A column is made wider by its edge; that sorts nothing.
    QHeaderView& header = *grid.horizontalHeader();
    const QPoint edge(header.sectionViewportPosition(1) - 1, header.height() / 2);
    QTest::mousePress(header.viewport(), Qt::LeftButton, {}, edge);
    QTest::mouseMove(header.viewport(), edge + QPoint(15, 0));
    QTest::mouseMove(header.viewport(), edge + QPoint(30, 0));
    QTest::mouseRelease(header.viewport(), Qt::LeftButton, {}, edge + QPoint(30, 0));
    EXPECT_EQ(shown(0), "1 10 9 2");
    EXPECT_GT(grid.columnTwips(0), 1200);
}

TEST_F(ListGridTest, ColumnsFillAListThatIsWiderThanItOpened)
{
    add({"1\t甲\t早"});
    grid.resize(500, 200);
    show(grid);
    const auto widths = [this] {
        return std::vector{grid.columnWidth(0), grid.columnWidth(1), grid.columnWidth(2),
                           grid.columnWidth(3)};
    };
    const auto first = widths();
    const int natural = grid.horizontalHeader()->length();
    ASSERT_LT(natural, 500);
    for (const int width : {600, 1234, 501}) {
        grid.resize(width, 200);
        EXPECT_EQ(grid.horizontalHeader()->length(), grid.viewport()->width()) << width;
        for (int column = 0; column < 4; ++column)
            EXPECT_NEAR(double(grid.columnWidth(column)) / grid.viewport()->width(),
                        double(first[static_cast<std::size_t>(column)]) / natural, 0.01);
    }
    for (const int width : {500, 200}) {
        grid.resize(width, 200);
        EXPECT_EQ(widths(), first) << width;
    }
}

/// Types into a list with that row chosen, and tells the row chosen then.
int rowFoundFrom(int row, const QString& typed)
{
    ListGrid grid;
    grid.setColumns({{"", 900}, {"名称", 2145}, {"时间", 1935}});
    for (const char* text : {"1\t资产负债表\t王", "2\t利润表\t李", "3\t利润分配\t王", "12\t应收账款分析\t赵"})
        grid.addRow(text);
    grid.show();
    grid.setRow(row);
    for (const QChar letter : typed) // ideographs come from an input method
        if (letter.unicode() < 0x80)
            QTest::keyClick(&grid, letter.toLatin1());
        else
            grid.keyboardSearch(letter);
    return grid.row();
}

TEST_F(ListGridTest, TypingSearchesTextsAndTheirInitials)
{
    const struct {
        int from;
        const char* typed;
        int row;
    } cases[] = {
        {1, "lr", 2}, {2, "lrf", 3}, {3, "lr", 2},  {2, "yszk", 4}, {4, "利润", 2},
        {2, "fz", 1}, {1, "12", 4},  {4, "xyz", 4}, {4, "LRFP", 3},
    };
    for (const auto& c : cases)
        EXPECT_EQ(rowFoundFrom(c.from, c.typed), c.row) << c.typed;
}

TEST_F(ListGridTest, ASearchBeginsAnewAfterAPause)
{
    add({"1\t甲", "2\t利润", "3\t利息"});
    show(grid);
    QTest::keyClick(&grid, Qt::Key_L);
    EXPECT_EQ(grid.row(), 2);
    QTest::qWait(1600);
    QTest::keyClick(&grid, Qt::Key_L);
    EXPECT_EQ(grid.row(), 3);
}

TEST_F(ListGridTest, DoubleClickOnRowsOnly)
{
    add({"1\t甲", "2\t乙"});
    show(grid);
    QSignalSpy clicks(&grid, &ListGrid::dblClick);
    QTest::mouseClick(grid.viewport(), Qt::LeftButton, {}, placeOf(1, 1));
    QTest::mouseDClick(grid.viewport(), Qt::LeftButton, {}, placeOf(1, 1));
    EXPECT_EQ(clicks.size(), 1);
    EXPECT_EQ(grid.row(), 2);
    QTest::mouseDClick(grid.viewport(), Qt::LeftButton, {}, QPoint(300, 250)); // below the rows
    QTest::mouseDClick(grid.horizontalHeader()->viewport(), Qt::LeftButton, {}, QPoint(80, 5));
    EXPECT_EQ(clicks.size(), 1);
}

TEST_F(ListGridTest, FiveThousandRowsAreQuick)
{
    show(grid);
    QElapsedTimer timer;
    timer.start();
    for (int refill = 0; refill < 2; ++refill) {
        grid.clearRows();
        for (int row = 1; row <= 5000; ++row)
            grid.addRow(QString("%1\t报表%2\t2026").arg(row).arg(5000 - row));
        EXPECT_EQ(grid.row(), 1);
        clickHeading(1); // the second filling goes into a sorted list
    }
    EXPECT_EQ(grid.rowCount(), 5001);
    EXPECT_LT(timer.elapsed(), 3000); // a quadratic filling takes far longer; bench/ holds the figure
}

} // namespace
} // namespace selfreport
