#include "tests/spreadsheet/view/ControlTest.h"

#include <QHelpEvent>
#include <QImage>
#include <QScrollBar>
#include <QToolTip>

#include <algorithm>
#include <functional>
#include <map>
#include <random>
#include <set>

namespace spreadsheet {

namespace {

QImage pictureOf(SpreadsheetControl& control)
{
    return control.grab().toImage().convertToFormat(QImage::Format_RGB32);
}

QImage pictureOf(SpreadsheetControl& control, const char* cell)
{
    return pictureOf(control).copy(control.cellRect(*parseCellName(cell)));
}

int darkPixels(const QImage& picture)
{
    int count = 0;
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x)
            count += qGray(picture.pixel(x, y)) < 128 ? 1 : 0;
    return count;
}

/// A block of cells with texts of several widths, colours, borders and spans.
void fillAtRandom(SpreadsheetControl& control, std::mt19937& random)
{
    const char* texts[] = {"", "", "金额", "应收账款客户分析表的长标题", "12345.678", "x"};
    for (int row = 1; row <= 60; ++row)
        for (int column = 1; column <= 20; ++column) {
            control.cells().sheet().setText({column, row}, texts[random() % 6]);
            if (random() % 4 == 0)
                control.cells().changeStyle({column, row, column, row}, [&](CellStyle& style) {
                    style.background = random() % 2 ? 0xFFEEDD : automaticColour;
                    style.horizontal = static_cast<HorizontalAlignment>(random() % 4);
                    style.bottom = {
                        static_cast<LineStyle>(random() % (static_cast<unsigned>(lastLineStyle) + 1)),
                        0x800000};
                    style.left = {
                        static_cast<LineStyle>(random() % (static_cast<unsigned>(lastLineStyle) + 1)),
                        0x008000};
                    style.wrap = random() % 5 == 0;
                });
        }
    control.cells().addSpan({3, 5, 5, 7});
    control.cells().addSpan({8, 2, 8, 40});
}

} // namespace

TEST_F(ControlTest, PageBreaksByHandAreSeen)
{
    const auto blueOnEdge = [&](const char* cell, bool above) {
        const QImage picture = pictureOf(control);
        const QRect rect = control.cellRect(*parseCellName(cell));
        int count = 0;
        for (int i = 1; i < (above ? rect.width() : rect.height()) - 1; ++i) {
            const QColor pixel(above ? picture.pixel(rect.left() + i, rect.top() - 1)
                                     : picture.pixel(rect.left() - 1, rect.top() + i));
            count += pixel.blue() > pixel.red() + 80 ? 1 : 0;
        }
        return count > 0;
    };
    EXPECT_FALSE(blueOnEdge("B4", true));
    control.cells().changePrintSettings([](PrintSettings& print) {
        print.rowBreaks[4] = true;
        print.columnBreaks[3] = true;
    });
    EXPECT_TRUE(blueOnEdge("B4", true) && blueOnEdge("C2", false));
    EXPECT_FALSE(blueOnEdge("B5", true) || blueOnEdge("D2", false));
}

TEST_F(ControlTest, WhatIsRepaintedInPartsLooksLikeAWholeNewPicture)
{
    std::mt19937 random(11);
    fillAtRandom(control, random);
    control.cells().sheet().changeSettings([](SheetSettings& settings) {
        settings.frozenRows = 2;
        settings.frozenColumns = 1;
    });
    control.showChanges();
    const auto anyCell = [&] {
        return CellAddress{1 + static_cast<int>(random() % 14), 1 + static_cast<int>(random() % 50)};
    };
    auto& down = *control.findChild<QScrollBar*>("scrollDown");
    auto& across = *control.findChild<QScrollBar*>("scrollAcross");
    const std::vector<std::function<void()>> changes{
        [&] { down.setValue(3 + static_cast<int>(random() % 40)); },
        [&] { down.setValue(down.value() + static_cast<int>(random() % 7) - 3); },
        [&] { across.setValue(across.value() + static_cast<int>(random() % 3) - 1); },
        [&] { control.cells().sheet().setText(anyCell(), random() % 3 ? "新的文字" : ""); },
        [&] {
            const CellAddress cell = anyCell();
            control.cells().setBorder(
                {cell.column, cell.row, cell.column + 1, cell.row + 1}, allSides, 0xFF,
                static_cast<LineStyle>(random() % (static_cast<unsigned>(lastLineStyle) + 1)));
        },
        [&] {
            const CellAddress cell = anyCell();
            control.cursor().setActiveCell(cell.column, cell.row);
        },
        [&] { key(random() % 2 ? Qt::Key_Down : Qt::Key_PageDown, Qt::ShiftModifier); },
    };
    for (int step = 0; step < 120; ++step) {
        std::string done;
        for (std::size_t count = 1 + random() % 4; count > 0;
             --count) { // shifts add up until the next refresh
            const std::size_t which = random() % changes.size();
            done += std::to_string(which);
            changes[which]();
            control.cells().sheet().setText(
                {2, 1},
                std::to_string(step)); // by program, without a word to the control
            QApplication::processEvents();
        }
        control.showChanges();
        QApplication::processEvents();
        const QImage parts = pictureOf(control);
        control.setGridLinesShown(true); // which paints all anew
        ASSERT_EQ(parts, pictureOf(control)) << "step " << step << " changes " << done;
    }
}

/// They lie on the line of the headings.
TEST_F(ControlTest, BordersOfTheFirstLinesScrollWithThem)
{
    control.cells().setBorder({1, 2, 1, 6}, allSides, 0xFF, LineStyle::thick);
    control.showChanges();
    QApplication::processEvents();
    pictureOf(control);
    for (const int top : {2, 4, 9, 3, 1}) {
        control.cursor().setTopLeftCell({1, top});
        QApplication::processEvents();
        const QImage scrolled = pictureOf(control);
        control.setGridLinesShown(true); // which paints all anew
        EXPECT_EQ(scrolled, pictureOf(control)) << top;
    }
}

TEST_F(ControlTest, EveryLookIsPainted)
{
    using Change = std::function<void(CellStyle&)>;
    const std::pair<const char*, Change> looks[] = {
        {"plain", [](CellStyle&) {}},
        {"bold", [](CellStyle& style) { style.font.bold = true; }},
        {"italic", [](CellStyle& style) { style.font.italic = true; }},
        {"underline", [](CellStyle& style) { style.font.underline = true; }},
        {"strike-through", [](CellStyle& style) { style.font.strikeThrough = true; }},
        {"size", [](CellStyle& style) { style.font.points = 14; }},
        {"colour", [](CellStyle& style) { style.foreground = 0xC00000; }},
        {"background", [](CellStyle& style) { style.background = 0xFFF2A8; }},
        {"centre", [](CellStyle& style) { style.horizontal = HorizontalAlignment::centre; }},
        {"right", [](CellStyle& style) { style.horizontal = HorizontalAlignment::right; }},
        {"top", [](CellStyle& style) { style.vertical = VerticalAlignment::top; }},
        {"bottom", [](CellStyle& style) { style.vertical = VerticalAlignment::bottom; }},
        {"button", [](CellStyle& style) { style.type = CellType::button; }},
        {"drop-down", [](CellStyle& style) { style.type = CellType::dropDown; }},
        {"check box", [](CellStyle& style) { style.type = CellType::checkBox; }},
    };
    control.cursor().setActiveCell(9, 20);
    control.cells().setRowHeight(2, 600);
    std::map<std::string, const char*> pictures;
    for (const auto& [what, change] : looks) {
        put("B2", what == std::string("check box") ? "" : "元");
        control.cells().changeStyle({2, 2, 2, 2}, [&change = change](CellStyle& style) {
            style = {};
            change(style);
        });
        control.showChanges();
        const QImage picture = pictureOf(control, "B2");
        const std::string bytes(reinterpret_cast<const char*>(picture.constBits()),
                                static_cast<std::size_t>(picture.sizeInBytes()));
        const auto [former, fresh] = pictures.emplace(bytes, what);
        EXPECT_TRUE(fresh) << what << " looks like " << former->second;
    }
}

TEST_F(ControlTest, EveryBorderStyleLooksDifferent)
{
    std::set<std::string> pictures;
    for (int style = 0; style <= static_cast<int>(lastLineStyle); ++style) {
        control.cells().setBorder({2, 2, 4, 4}, allSides, 0x000000, static_cast<LineStyle>(style));
        control.showChanges();
        const QImage picture = pictureOf(control).copy(control.cellRect({3, 3}).adjusted(-2, -2, 2, 2));
        pictures.emplace(reinterpret_cast<const char*>(picture.constBits()),
                         static_cast<std::size_t>(picture.sizeInBytes()));
    }
    EXPECT_EQ(pictures.size(), 14U);
}

TEST_F(ControlTest, TextsRunOverEmptyNeighboursAndFiguresDoNot)
{
    control.cursor().setActiveCell(10, 20);
    const auto drawn = [this](const char* cell) {
        control.showChanges();
        const QImage picture = pictureOf(control, cell);
        return darkPixels(picture.copy(picture.rect().adjusted(2, 2, -2, -2)));
    };
    put("B2", "应收账款客户分析表的长标题");
    EXPECT_GT(drawn("C2"), 0);
    put("C2", " ");
    EXPECT_EQ(drawn("C2"), 0) << "a neighbour in use";
    sheet().setNumber({2, 4}, 12345678901234.0);
    control.cells().changeStyle({2, 4, 2, 4}, [](CellStyle& style) { style.type = CellType::currency; });
    EXPECT_EQ(drawn("C4"), 0);
    EXPECT_EQ(drawn("A4"), 0);
    const QImage figure = pictureOf(control, "B4");
    sheet().setNumber({2, 4}, 99995678901234.0);
    control.showChanges();
    EXPECT_EQ(pictureOf(control, "B4"), figure) << "#### says nothing about the digits";
    put("E6", "右对齐的文字向左伸出去很远");
    control.cells().changeStyle({5, 6, 5, 6},
                                [](CellStyle& style) { style.horizontal = HorizontalAlignment::right; });
    EXPECT_GT(drawn("D6"), 0);
    EXPECT_EQ(drawn("F6"), 0);
}

TEST_F(ControlTest, TextsOfCellsOutOfSightReachIn)
{
    // Column 1 or the last one in sight is empty; the cell with the text is scrolled away.
    const int last = control.cellAt(control.cellArea().bottomRight() - QPoint(2, 2))->column;
    const QString text = QStringLiteral("很长的标题文字伸到看不见的地方再伸回来看得见的地方还要更长一些才够");
    const struct {
        HorizontalAlignment alignment;
        int column, scrolledTo, seen;
        bool reaches;
    } cases[] = {
        {HorizontalAlignment::left, 1, 2, 2, true},
        {HorizontalAlignment::right, last + 1, 1, last - 1, true},
        {HorizontalAlignment::centre, last + 1, 1, last - 1, true},
        {HorizontalAlignment::left, last + 1, 1, last - 1, false},
        {HorizontalAlignment::right, 1, 2, 2, false},
    };
    for (const auto& c : cases) {
        control.cursor().setTopLeftCell({1, 1});
        control.cursor().setActiveCell(5, 20);
        control.cells().setText(c.column, 3, text);
        control.cells().changeStyle({c.column, 3, c.column, 3},
                                    [&c](CellStyle& style) { style.horizontal = c.alignment; });
        control.cursor().setTopLeftCell({c.scrolledTo, 1});
        control.showChanges();
        const QImage picture = pictureOf(control).copy(control.cellRect({c.seen, 3}).adjusted(2, 2, -2, -2));
        EXPECT_EQ(darkPixels(picture) > 0, c.reaches)
            << "column " << c.column << " alignment " << static_cast<int>(c.alignment);
        control.cells().setText(c.column, 3, "");
    }
}

TEST_F(ControlTest, ButtonsShowTheirCaptions)
{
    setType("B2", CellType::button);
    control.cursor().setActiveCell(9, 20);
    control.showChanges();
    const auto dark = [this] { return darkPixels(pictureOf(control, "B2").copy(8, 4, 56, 11)); };
    const int empty = dark();
    control.cells().setCurrent(2, 2);
    control.cells().setButtonCaption("计算");
    control.showChanges();
    EXPECT_GT(dark(), empty);
    EXPECT_EQ(control.cells().text(), "") << "a caption is no value";
}

TEST_F(ControlTest, CellsKeepTheirColoursInADarkPalette)
{
    put("B2", "金额");
    control.cells().changeStyle({2, 3, 2, 3}, [](CellStyle& style) { style.background = 0xFFF2A8; });
    setType("B4", CellType::button);
    setType("B5", CellType::checkBox);
    control.showChanges();
    const QImage light = pictureOf(control);
    QPalette dark(QColor(45, 45, 48), QColor(37, 37, 38));
    dark.setColor(QPalette::Highlight, window.palette().color(QPalette::Highlight));
    control.setPalette(dark);
    const QImage picture = pictureOf(control);
    for (const char* cell : {"B2", "B3", "B4", "B5"}) {
        const QRect rect = control.cellRect(*parseCellName(cell));
        EXPECT_EQ(picture.copy(rect), light.copy(rect)) << cell;
    }
    EXPECT_LT(qGray(picture.pixel(200, 2)), 100) << "headings are dark";
}

TEST_F(ControlTest, NotesMarkTheirCellAndTellWhy)
{
    control.showChanges();
    const QImage before = pictureOf(control, "C3");
    control.setCellNotes([this](int sheetId, CellAddress cell) {
        return sheetId == sheet().id() && cell == CellAddress{3, 3} ? QStringLiteral("没有科目 1009")
                                                                    : QString();
    });
    EXPECT_NE(pictureOf(control, "C3"), before);
    EXPECT_EQ(pictureOf(control, "C4"), pictureOf(control, "D4"));
    QHelpEvent event(QEvent::ToolTip, centre("C3"), control.mapToGlobal(centre("C3")));
    QApplication::sendEvent(&control, &event);
    EXPECT_EQ(QToolTip::text(), QStringLiteral("没有科目 1009"));
    QToolTip::hideText();
}

/// In black and white.
TEST_F(ControlTest, MarksDifferInShape)
{
    const CornerMark marks[] = {CornerMark::none, CornerMark::triangle, CornerMark::hollowTriangle,
                                CornerMark::bar, CornerMark::square};
    control.setCellNotes({}, [&](int, CellAddress cell) {
        return cell.column == 3 && cell.row <= 5 ? marks[cell.row - 1] : CornerMark::none;
    });
    control.showChanges();
    std::vector<QImage> pictures;
    for (const char* cell : {"C1", "C2", "C3", "C4", "C5"}) {
        const QImage picture =
            pictureOf(control, cell).convertToFormat(QImage::Format_Mono, Qt::ThresholdDither);
        EXPECT_EQ(std::ranges::count(pictures, picture), 0) << cell;
        pictures.push_back(picture);
    }
}

TEST_F(ControlTest, TheSheetMayVanishUnderTheView)
{
    demand(control.cells().setSheetCount(2));
    control.cells().setActiveSheet(2);
    control.cursor().setActiveCell(20, 90);
    demand(control.cells().workbook().removeSheet(2));
    (void)pictureOf(control);
    EXPECT_EQ(cursor(), "A1 in A1");
    demand(control.cells().workbook().sheet(1).deleteRows(2, 99));
    (void)pictureOf(control);
    key(Qt::Key_Down);
    EXPECT_EQ(cursor(), "A1 in A1");
    Workbook other;
    other.sheet(1).setText({1, 1}, "另一本");
    control.cells().setWorkbook(&other);
    EXPECT_EQ(control.cells().text(1, 1), QStringLiteral("另一本"));
    (void)pictureOf(control);
    control.cells().setWorkbook(nullptr);
    (void)pictureOf(control);
    EXPECT_EQ(control.cells().text(1, 1), "");
}

} // namespace spreadsheet
