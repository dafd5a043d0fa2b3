#include "spreadsheet/print/PagePainter.h"
#include "spreadsheet/print/PageText.h"
#include "spreadsheet/workbook/Workbook.h"

#include <gtest/gtest.h>
#include <QImage>
#include <QPainter>

#include <cmath>

namespace spreadsheet {
namespace {

/// One pixel is 10 twips: columns are 100 pixels wide, rows 30 high, the cells begin at (100, 100).
struct PagePainterTest : testing::Test {
    PagePainterTest()
    {
        sheet.changeSettings([](SheetSettings& settings) {
            settings.rows.defaultSize = 300;
            settings.columns.defaultSize = 1000;
            settings.print.marginLeft = settings.print.marginRight = 1000;
            settings.print.marginTop = settings.print.marginBottom = 1000;
        });
        sheet.setText({6, 8}, "."); // the used area
    }

    void style(const CellRange& range, const std::function<void(CellStyle&)>& change)
    {
        sheet.restyle(range, change);
    }

    void draw(int number = 1)
    {
        PageRequest request;
        request.paperWidth = 8000; // six columns a page
        request.paperHeight = 8000;
        const PageLayout layout(sheet, request);
        image = QImage(800, 800, QImage::Format_RGB32);
        image.fill(Qt::white);
        QPainter painter(&image);
        painter.scale(0.1, 0.1);
        PageText text;
        PagePainter(sheet, layout, text).paint(painter, number);
    }

    /// The cell's inside, without three pixels at each edge.
    static QRect inside(int column, int row)
    {
        return QRect(column * 100, 70 + row * 30, 100, 30).adjusted(3, 3, -3, -3);
    }

    int inked(const QRect& area) const
    {
        int count = 0;
        for (int y = area.top(); y <= area.bottom(); ++y)
            for (int x = area.left(); x <= area.right(); ++x)
                count += qGray(image.pixel(x, y)) < 160;
        return count;
    }
    bool blank(int column, int row) const { return inked(inside(column, row)) == 0; }
    /// Left and right half of a cell hold ink.
    std::pair<bool, bool> halves(int column, int row) const
    {
        const QRect cell = inside(column, row);
        return {inked(cell.adjusted(0, 0, -cell.width() / 2, 0)) > 0,
                inked(cell.adjusted(cell.width() / 2, 0, 0, 0)) > 0};
    }
    /// Share of inked pixels along the horizontal edge above a row, three pixels thick.
    double edgeAbove(int column, int row) const
    {
        int count = 0;
        for (int x = column * 100 + 5; x < column * 100 + 95; ++x)
            count += inked(QRect(x, 69 + row * 30, 1, 3)) > 0;
        return count / 90.0;
    }
    double edgeLeftOf(int column, int row) const
    {
        int count = 0;
        for (int y = 75 + row * 30; y < 95 + row * 30; ++y)
            count += inked(QRect(column * 100 - 1, y, 3, 1)) > 0;
        return count / 20.0;
    }

    Workbook workbook;
    Sheet& sheet = workbook.sheet(1);
    QImage image;
};

const std::string longText = "资产负债表利润表现金流量表"; // 13 characters of 9 points: 234 pixels

TEST_F(PagePainterTest, TextsStandWhereTheirKindAndAlignmentSay)
{
    sheet.setText({1, 1}, "目");
    sheet.setNumber({1, 2}, 7);
    sheet.setValue({1, 3}, Value(CellError::na));
    sheet.setText({1, 4}, "目");
    style({1, 4, 1, 4}, [](CellStyle& s) { s.horizontal = HorizontalAlignment::right; });
    sheet.setNumber({1, 5}, 7);
    sheet.setShownText({1, 5}, "式");
    sheet.setValue({1, 6}, Value(Text::countedAs("7.00", 7)));
    draw();
    const auto left = std::pair(true, false), right = std::pair(false, true), both = std::pair(true, true);
    EXPECT_EQ(halves(1, 1), left) << "text";
    EXPECT_EQ(halves(1, 2), right) << "number";
    EXPECT_EQ(halves(1, 3), both) << "error, centred";
    EXPECT_EQ(halves(1, 4), right) << "text aligned right";
    EXPECT_EQ(halves(1, 5), left) << "text shown instead of a number";
    EXPECT_EQ(halves(1, 6), right) << "text that counts as a number";
}

/// A step is three blanks of half an em in 9 points: 27 pixels.
TEST_F(PagePainterTest, IndentsMoveTextsAwayFromTheirSide)
{
    constexpr int cells = 6;
    for (int row = 1; row <= 2 * cells; ++row)
        sheet.setText({1, row}, "目");
    sheet.setNumber({1, 6}, 7); // stands at the right by itself
    sheet.setNumber({1, 12}, 7);
    using enum HorizontalAlignment;
    constexpr struct {
        HorizontalAlignment alignment;
        Spread across;
        int pixels; ///< to the right, of two steps
    } looks[cells]{{left, Spread::none, 54},  {general, Spread::none, 54},  {right, Spread::none, -54},
                   {centre, Spread::none, 0}, {left, Spread::justified, 0}, {general, Spread::none, -54}};
    for (int i = 0; i < cells; ++i) {
        for (const int row : {1 + i, 1 + i + cells})
            style({1, row, 1, row}, [&](CellStyle& s) {
                s.horizontal = looks[i].alignment;
                s.carried.across = looks[i].across;
                s.carried.indent = row > cells ? 2 : 0;
            });
    }
    draw();
    const auto firstInk = [this](int row) {
        int x = 100;
        while (x < 200 && inked(QRect(x, 73 + row * 30, 1, 24)) == 0)
            ++x;
        return x;
    };
    for (int i = 0; i < cells; ++i)
        EXPECT_EQ(firstInk(1 + i + cells) - firstInk(1 + i), looks[i].pixels) << i;
}

/// A line of four characters is 72 pixels long and 18 high, without the air around the letters.
TEST_F(PagePainterTest, TurnedTextsStandInTheirCell)
{
    constexpr std::uint8_t turns[]{0, 90, 180, 45, 135, CarriedAlignment::stackedLetters};
    sheet.changeSettings([](SheetSettings& settings) { settings.rows.sizes[1] = 1000; });
    for (int column = 1; column <= 6; ++column) {
        sheet.setText({column, 1}, "■■□■"); // begins with more ink
        style({column, 1, column, 1}, [&](CellStyle& s) {
            s.font.family = Text("宋体");
            s.vertical = column == 5 ? VerticalAlignment::top : VerticalAlignment::bottom;
            s.horizontal = column == 2 ? HorizontalAlignment::right : HorizontalAlignment::left;
            s.carried.rotation = turns[column - 1];
        });
    }
    draw();
    const auto inkIn = [this](int column) {
        QRect ink;
        for (int y = 102; y < 198; ++y)
            for (int x = column * 100 + 2; x < column * 100 + 98; ++x)
                if (qGray(image.pixel(x, y)) < 160)
                    ink |= QRect(x, y, 1, 1);
        return ink;
    };
    const QRect plain = inkIn(1);
    const auto expectInk = [&](int column, double width, double height) {
        const QRect ink = inkIn(column);
        EXPECT_NEAR(ink.width(), width, 2) << column;
        EXPECT_NEAR(ink.height(), height, 2) << column;
        return ink;
    };
    const auto halfOf = [this](const QRect& ink, bool upper) {
        return inked(upper ? ink.adjusted(0, 0, 0, -ink.height() / 2)
                           : ink.adjusted(0, ink.height() / 2, 0, 0));
    };
    const QRect up = expectInk(2, plain.height(), plain.width());
    EXPECT_LT(1.2 * halfOf(up, true), halfOf(up, false)) << "begins at the bottom";
    EXPECT_GT(up.left(), 270) << "aligned right";
    const QRect down = expectInk(3, plain.height(), plain.width());
    EXPECT_GT(halfOf(down, true), 1.2 * halfOf(down, false));
    EXPECT_LT(down.right(), 330);
    EXPECT_GT(down.bottom(), 190);
    const double oblique = (plain.width() + plain.height()) / std::sqrt(2.0);
    EXPECT_GT(expectInk(4, oblique, oblique).bottom(), 188);
    EXPECT_LT(expectInk(5, oblique, oblique).top(), 112);
    EXPECT_NEAR(inkIn(6).width(), plain.height(), 4) << "letters below each other";
    EXPECT_NEAR(inkIn(6).height(), plain.width() * 1.2, 8);
}

TEST_F(PagePainterTest, TurnedTextsThatDoNotFitAreCutAndFiguresSaySo)
{
    sheet.setText({1, 1}, longText);
    sheet.setNumber({2, 1}, 123456789);
    for (int signs = 1; signs <= 4; ++signs)
        sheet.setText({2 + signs, 1}, std::string(static_cast<std::size_t>(signs), '#'));
    style({1, 1, 6, 1}, [](CellStyle& s) {
        s.carried.rotation = 90;
        s.horizontal = HorizontalAlignment::left;
    });
    sheet.changeSettings([](SheetSettings& settings) { settings.rows.sizes[1] = 300; });
    draw();
    EXPECT_FALSE(blank(1, 1));
    EXPECT_TRUE(blank(1, 2));
    const auto cell = [this](int column) { return image.copy(column * 100 + 2, 100, 96, 30); };
    int alike = 0;
    for (int signs = 1; signs <= 4; ++signs)
        alike += cell(2) == cell(2 + signs);
    EXPECT_EQ(alike, 1) << "as many signs as fit, no digits";
}

TEST_F(PagePainterTest, LongTextsRunIntoBlankNeighboursOnly)
{
    sheet.setText({1, 1}, longText);
    sheet.setText({1, 2}, longText);
    sheet.setNumber({2, 2}, 1);
    sheet.setText({3, 3}, longText);
    style({3, 3, 3, 3}, [](CellStyle& s) { s.horizontal = HorizontalAlignment::right; });
    sheet.setText({3, 4}, longText);
    style({3, 4, 3, 4}, [](CellStyle& s) { s.horizontal = HorizontalAlignment::centre; });
    sheet.setText({1, 5}, longText);
    sheet.addSpan({2, 5, 3, 5});
    sheet.setNumber({1, 6}, 123456789012345);
    style({1, 6, 1, 6}, [](CellStyle& s) { s.type = CellType::number; });
    draw();
    EXPECT_FALSE(blank(2, 1));
    EXPECT_EQ(halves(3, 1), std::pair(true, false));
    EXPECT_EQ(halves(2, 2), std::pair(false, true)) << "cut at the number";
    EXPECT_FALSE(blank(1, 3)) << "to the left";
    EXPECT_TRUE(blank(4, 3));
    EXPECT_FALSE(blank(2, 4) || blank(4, 4)) << "to both sides";
    EXPECT_TRUE(blank(1, 4));
    EXPECT_TRUE(blank(2, 5)) << "a span is no blank neighbour";
    EXPECT_TRUE(blank(2, 6)) << "figures never run over";
    EXPECT_FALSE(blank(1, 6));
}

/// It covers grid lines as far as it goes, and no farther.
TEST_F(PagePainterTest, LongTextsHideTheGridLinesThatTheyCross)
{
    sheet.changeSettings([](SheetSettings& settings) { settings.print.gridLines = true; });
    sheet.setText({1, 1}, longText); // into C1
    sheet.setText({4, 3}, longText);
    style({4, 3, 4, 3}, [](CellStyle& s) { s.horizontal = HorizontalAlignment::right; });
    draw();
    const auto isDrawnAt = [this](int column, int row) { // grid lines are light
        for (int x = column * 100 - 1; x <= column * 100 + 1; ++x) {
            int drawn = 0;
            for (int y = 75 + row * 30; y < 95 + row * 30; ++y)
                drawn += qGray(image.pixel(x, y)) < 250;
            if (drawn == 20)
                return true;
        }
        return false;
    };
    const struct {
        int column, row;
        bool isDrawn;
    } edges[] = {{2, 1, false}, {3, 1, false}, {4, 1, true},  {5, 1, true}, {6, 1, true}, {2, 2, true},
                 {2, 3, true},  {3, 3, false}, {4, 3, false}, {5, 3, true}, {6, 3, true}};
    for (const auto& [column, row, isDrawn] : edges)
        EXPECT_EQ(isDrawnAt(column, row), isDrawn) << column << ' ' << row;
}

TEST_F(PagePainterTest, TextGoesOnOverThePageEdge)
{
    sheet.setText({6, 1}, longText);
    sheet.setText({5, 2}, "短");
    sheet.setText({8, 3}, "x"); // second page across
    draw(2);
    EXPECT_FALSE(blank(1, 1));
    EXPECT_TRUE(blank(1, 2));
}

TEST_F(PagePainterTest, WrappedTextStaysInItsCell)
{
    sheet.setText({1, 1}, longText);
    style({1, 1, 1, 1}, [](CellStyle& s) { s.wrap = true; });
    sheet.setText({3, 1}, "甲\n乙");
    sheet.changeSettings(
        [](SheetSettings& settings) { settings.rows.sizes[1] = 900; }); // rows 1 to 3 of the picture
    draw();
    EXPECT_TRUE(blank(2, 1));
    for (const int band : {1, 2, 3})
        EXPECT_FALSE(blank(1, band)) << band;
    EXPECT_GT(inked(QRect(300, 122, 50, 22)), 0) << "upper line";
    EXPECT_GT(inked(QRect(300, 146, 50, 22)), 0) << "lower line";
}

TEST_F(PagePainterTest, SpansShowTheirFirstCellAcrossTheWholeArea)
{
    sheet.addSpan({1, 1, 3, 2});
    sheet.setText({1, 1}, "目");
    sheet.setText({3, 2}, "被盖住");
    style({1, 1, 1, 1}, [](CellStyle& s) {
        s.horizontal = HorizontalAlignment::centre;
        s.bottom = {LineStyle::solid, 0};
    });
    sheet.changeSettings([](SheetSettings& settings) { settings.print.gridLines = true; });
    draw();
    EXPECT_GT(inked(QRect(230, 115, 40, 30)), 20) << "in the middle of both axes";
    EXPECT_TRUE(blank(1, 1));
    EXPECT_TRUE(blank(3, 2));
    EXPECT_EQ(edgeLeftOf(2, 2), 0) << "no grid inside";
    EXPECT_EQ(edgeAbove(3, 3), 1) << "the first cell's border on the whole outline";
}

TEST_F(PagePainterTest, ASpanOverTwoPagesShowsItsTextOnBoth)
{
    sheet.addSpan({1, 1, 1, 30}); // 20 rows a page
    sheet.setText({1, 1}, "目");
    draw(1);
    EXPECT_GT(inked(QRect(100, 390, 50, 20)), 20) << "middle of 20 rows";
    draw(2);
    EXPECT_GT(inked(QRect(100, 240, 50, 20)), 20) << "middle of 10 rows";
}

TEST_F(PagePainterTest, ARowHigherThanAPageGoesOn)
{
    std::string lines;
    for (int line = 0; line < 40; ++line)
        lines += "目\n";
    sheet.setText({1, 1}, lines);
    style({1, 1, 1, 1}, [](CellStyle& s) { s.vertical = VerticalAlignment::top; });
    sheet.changeSettings([](SheetSettings& settings) { settings.rows.sizes[1] = 9000; });
    draw(1);
    EXPECT_FALSE(blank(1, 1));
    EXPECT_FALSE(blank(1, 20));
    draw(2);
    EXPECT_FALSE(blank(1, 8)) << "40 lines of 216 twips end at 8640, 2640 of them here";
    EXPECT_TRUE(blank(1, 10));
    EXPECT_EQ(inked(QRect(0, 0, 800, 98)), 0) << "nothing above the page's area";
}

/// A dark row and a dark column that go on over three pages each.
TEST_F(PagePainterTest, RepeatedRowsAndColumnsStayFreeOfWhatGoesOnBelowAndBeside)
{
    const auto dark = [](CellStyle& s) {
        s.background = 0x404040;
        s.left = s.right = s.top = s.bottom = {LineStyle::thick, 0};
    };
    style({1, 2, 6, 2}, dark);
    style({2, 1, 2, 8}, dark);
    style({1, 1, 1, 1}, [](CellStyle& s) { s.background = 0xFFFFFF; });
    for (const CellAddress cell : {CellAddress{1, 1}, {3, 1}, {1, 3}})
        sheet.setText(cell, "目");
    sheet.changeSettings([](SheetSettings& settings) {
        settings.rows.sizes[2] = settings.columns.sizes[2] = 12000;
        PrintSettings& print = settings.print;
        print.titleTop = print.titleBottom = print.titleLeft = print.titleRight = 1;
        print.downFirst = true;
        print.rowHeadings = print.columnHeadings = print.shadows = true;
    });
    draw(2);
    const QImage begins = image;
    const int down = 4; // pages: the title alone, the high row on three
    for (const int goesOn : {3, 4}) {
        draw(goesOn);
        const QRect titles(0, 0, 800, 145); // heading and row 1, but for the line below
        EXPECT_EQ(image.copy(titles), begins.copy(titles)) << "page " << goesOn;
    }
    draw(down + 1);
    const QImage beginsBeside = image;
    for (const int goesOn : {2 * down + 1, 3 * down + 1}) {
        draw(goesOn);
        const QRect titles(0, 0, 215, 800);
        EXPECT_EQ(image.copy(titles), beginsBeside.copy(titles)) << "page " << goesOn;
    }
}

TEST_F(PagePainterTest, SpansAndLongTextsKeepToTheirColumnsBesideRepeatedOnes)
{
    sheet.addSpan({6, 2, 7, 3}); // over the page's edge
    sheet.addSpan({1, 4, 3, 4}); // ends before the second page's columns
    for (const CellAddress cell : {CellAddress{6, 1}, {6, 2}, {1, 4}})
        sheet.setText(cell, longText);
    sheet.setText({9, 9}, ".");
    sheet.changeSettings([](SheetSettings& settings) {
        settings.print.titleLeft = 1;
        settings.print.titleRight = 2;
        settings.print.columnHeadings = true; // cells begin a row lower
    });
    draw(2); // A, B, G, H, I
    const int below = 1;
    for (const int column : {1, 2})
        for (const int row : {1, 2, 3})
            EXPECT_TRUE(blank(column, row + below)) << column << ' ' << row;
    EXPECT_FALSE(blank(3, 1 + below)) << "goes on from F";
    EXPECT_FALSE(blank(1, 4 + below));
    EXPECT_TRUE(blank(3, 4 + below)) << "the text of A4:C4 ends where C would be";
}

TEST_F(PagePainterTest, TextsRunOverTheEndOfTheCellsAlsoBesideHiddenColumns)
{
    sheet.setText({5, 1}, longText);
    sheet.changeSettings([](SheetSettings& settings) { settings.columns.hidden[6] = true; });
    draw();
    EXPECT_FALSE(blank(6, 1));
}

TEST_F(PagePainterTest, EdgesShowTheHeavierLineAndErasedOnesNone)
{
    const auto bottom = [&](int column, LineStyle line) {
        style({column, 1, column, 1}, [&](CellStyle& s) { s.bottom = {line, 0}; });
    };
    const auto top = [&](int column, LineStyle line) {
        style({column, 2, column, 2}, [&](CellStyle& s) { s.top = {line, 0}; });
    };
    bottom(1, LineStyle::solid);
    bottom(2, LineStyle::erase);
    top(2, LineStyle::solid);
    bottom(3, LineStyle::solid);
    top(3, LineStyle::fineDot);
    top(4, LineStyle::dash);
    bottom(5, LineStyle::fineDot);
    sheet.changeSettings([](SheetSettings& settings) { settings.print.gridLines = true; });
    draw();
    EXPECT_EQ(edgeAbove(1, 2), 1);
    EXPECT_EQ(edgeAbove(2, 2), 0) << "erased";
    EXPECT_EQ(edgeAbove(3, 2), 1) << "solid before dots";
    EXPECT_GT(edgeAbove(4, 2), 0.5);
    EXPECT_LT(edgeAbove(4, 2), 0.9);
    EXPECT_GT(edgeAbove(5, 2), 0.2);
    EXPECT_LT(edgeAbove(5, 2), 0.7);
}

TEST_F(PagePainterTest, HiddenRowsLeaveNoGap)
{
    sheet.setText({1, 3}, "目");
    sheet.changeSettings([](SheetSettings& settings) { settings.rows.hidden[2] = true; });
    draw();
    EXPECT_FALSE(blank(1, 2));
    EXPECT_TRUE(blank(1, 3));
}

TEST_F(PagePainterTest, ColoursTurnGreyWithoutColourPrinting)
{
    style({1, 1, 1, 1}, [](CellStyle& s) { s.background = 0xFF0000; });
    draw();
    EXPECT_EQ(image.pixel(inside(1, 1).center()), 0xFFFF0000);
    sheet.changeSettings([](SheetSettings& settings) { settings.print.colour = false; });
    draw();
    EXPECT_EQ(image.pixel(inside(1, 1).center()), qRgb(qGray(0xFF0000), qGray(0xFF0000), qGray(0xFF0000)));
}

TEST_F(PagePainterTest, BorderAndHeadingsStandAroundTheCells)
{
    sheet.changeSettings([](SheetSettings& settings) {
        settings.print.border = settings.print.shadows = settings.print.columnHeadings = true;
        settings.rows.defaultSize = 285;
    });
    draw();
    EXPECT_GT(inked(QRect(120, 99, 50, 3)), 49) << "above the headings";
    EXPECT_GT(inked(QRect(140, 105, 20, 20)), 5) << "the letter A";
    EXPECT_EQ(qGray(image.pixel(110, 120)), 0xDC) << "shadow of a heading";
    EXPECT_GT(inked(QRect(99, 200, 3, 50)), 49) << "left of the cells";
    EXPECT_GT(inked(QRect(699, 200, 3, 50)), 49) << "right of them";
}

} // namespace
} // namespace spreadsheet
