// Lines as they are seen, against a model that knows edges only.
#include "spreadsheet/workbook/UndoJournal.h"
#include "tests/spreadsheet/view/ControlTest.h"

#include <QImage>

#include <algorithm>
#include <map>
#include <optional>
#include <random>
#include <set>
#include <tuple>

namespace spreadsheet {
namespace {

constexpr int rows = 9, columns = 8;
constexpr QRgb gridPixel = 1; ///< stands for any colour that no line has

/// An edge between two cells, or at the sheet's border: left of or above a cell, whose place may be one
/// beyond.
struct Edge {
    bool runsDown;
    int column, row;
    friend auto operator<=>(const Edge&, const Edge&) = default;
};

/// The edges of a sheet and what was last drawn at each. Spans are there from the beginning.
class EdgeModel {
public:
    std::map<Edge, BorderLine> lines;
    std::vector<CellRange> spans;

    void draw(const CellRange& range, const BorderLines& drawn)
    {
        for (int row = range.top; row <= range.bottom; ++row)
            for (int column = range.left; column <= range.right + 1; ++column)
                draw({true, column, row}, column == range.left        ? drawn.left
                                          : column == range.right + 1 ? drawn.right
                                                                      : drawn.betweenColumns);
        for (int column = range.left; column <= range.right; ++column)
            for (int row = range.top; row <= range.bottom + 1; ++row)
                draw({false, column, row}, row == range.top          ? drawn.top
                                           : row == range.bottom + 1 ? drawn.bottom
                                                                     : drawn.betweenRows);
    }
    /// The lines in and around a range, as seen from it.
    std::map<Edge, BorderLine> taken(const CellRange& range) const
    {
        std::map<Edge, BorderLine> found;
        eachEdge(range, [&](const Edge& edge) {
            found[{edge.runsDown, edge.column - range.left, edge.row - range.top}] = at(edge);
        });
        return found;
    }
    void put(const CellRange& range, const std::map<Edge, BorderLine>& moved)
    {
        eachEdge(range, [&](const Edge& edge) {
            lines[edge] = moved.at({edge.runsDown, edge.column - range.left, edge.row - range.top});
        });
    }
    BorderLine at(const Edge& edge) const
    {
        const auto found = lines.find(edge);
        return found == lines.end() ? BorderLine{} : found->second;
    }
    bool isWithinSpan(const Edge& edge) const
    {
        const CellAddress before{edge.column - edge.runsDown, edge.row - !edge.runsDown};
        return std::ranges::any_of(spans, [&](const CellRange& span) {
            return span.contains(before) && span.contains(CellAddress{edge.column, edge.row});
        });
    }
    static void eachEdge(const CellRange& range, const auto& visit)
    {
        for (int row = range.top; row <= range.bottom + 1; ++row)
            for (int column = range.left; column <= range.right + 1; ++column) {
                if (row <= range.bottom)
                    visit(Edge{true, column, row});
                if (column <= range.right)
                    visit(Edge{false, column, row});
            }
    }

private:
    void draw(const Edge& edge, const std::optional<BorderLine>& line)
    {
        if (line && !isWithinSpan(edge))
            lines[edge] = *line;
    }
};

class BorderPixels : public ControlTest {
protected:
    BorderPixels()
    {
        demand(control.cells().setRowCount(rows));
        demand(control.cells().setColumnCount(columns));
    }
    void restart()
    {
        control.cells().setWorkbook(nullptr);
        demand(control.cells().setRowCount(rows));
        demand(control.cells().setColumnCount(columns));
        model = {};
        for (const CellRange& span : {CellRange{2, 2, 3, 4}, {5, 6, 7, 6}, {6, 2, 6, 4}}) {
            control.cells().addSpan(span);
            model.spans.push_back(span);
        }
    }
    int upTo(int most) { return 1 + static_cast<int>(random() % static_cast<unsigned>(most)); }
    /// Rows and columns that are whole now and then, where that is wanted.
    CellRange anyRange()
    {
        CellRange range{upTo(columns), upTo(rows), 0, 0};
        range.right = std::min(columns, range.left + upTo(3) - 1);
        range.bottom = std::min(rows, range.top + upTo(3) - 1);
        const auto whole = hasWholeLines ? random() % 8 : 8;
        if (whole == 0 || whole == 2)
            range.left = 1, range.right = columns;
        if (whole == 1 || whole == 2)
            range.top = 1, range.bottom = rows;
        return range;
    }
    bool meetsSpan(const CellRange& range) const
    {
        return std::ranges::any_of(model.spans,
                                   [&](const CellRange& span) { return span.intersects(range); });
    }
    BorderLine anyLine()
    {
        constexpr LineStyle styles[]{LineStyle::none,      LineStyle::none,  LineStyle::solid,
                                     LineStyle::fineSolid, LineStyle::thick, LineStyle::erase};
        constexpr Colour colours[]{0xFF0000, 0x00AA00, 0x0000FF, 0xAA00AA};
        return {styles[random() % std::size(styles)], colours[random() % std::size(colours)]};
    }
    static BorderLines ofEachCell(int chosen, const BorderLine& line)
    {
        BorderLines drawn;
        for (const auto& [side, outline, between] :
             {std::tuple(leftSide, &BorderLines::left, &BorderLines::betweenColumns),
              {rightSide, &BorderLines::right, &BorderLines::betweenColumns},
              {topSide, &BorderLines::top, &BorderLines::betweenRows},
              {bottomSide, &BorderLines::bottom, &BorderLines::betweenRows}})
            if (chosen & side)
                drawn.*outline = drawn.*between = line;
        return drawn;
    }
    void drawSides()
    {
        // Commands know no range that cuts a merged cell.
        const CellRange range = whole(anyRange());
        const int chosen = static_cast<int>(random() % 16);
        const BorderLine drawnLine = anyLine();
        control.cells().setBorder(range, chosen, drawnLine.colour, drawnLine.style);
        model.draw(range, ofEachCell(chosen, drawnLine));
    }
    void drawSeveral()
    {
        const std::vector<CellRange> ranges{whole(anyRange()), whole(anyRange())};
        const BorderLine drawnLine = anyLine();
        const auto kind = random() % 3;
        const BorderLines drawn = kind == 0   ? BorderLines::outline(drawnLine)
                                  : kind == 1 ? BorderLines::inside(drawnLine)
                                              : BorderLines::all(drawnLine);
        control.cells().drawBorders(ranges, drawn);
        for (const CellRange& range : ranges)
            model.draw(range, drawn);
    }
    /// Copies or moves a block by keys.
    void carry(bool moves)
    {
        const CellRange from = anyRange();
        CellRange to{upTo(columns), upTo(rows), 0, 0};
        to.right = to.left + from.columns() - 1;
        to.bottom = to.top + from.rows() - 1;
        if (to.right > columns || to.bottom > rows || from.columns() == columns || from.rows() == rows ||
            meetsSpan(from) || meetsSpan(to) || from == to ||
            (moves && hasWholeLines)) // cells that go leave the look of their row or column
            return;
        carried = name(from) + " to " + name(to);
        const auto brought = model.taken(from);
        control.cursor().select(from);
        key(moves ? Qt::Key_X : Qt::Key_C, Qt::ControlModifier);
        control.cursor().select(to);
        key(Qt::Key_V, Qt::ControlModifier);
        if (!moves)
            key(Qt::Key_Escape); // the frame around what was copied
        if (moves)
            model.draw(from, BorderLines::all({}));
        model.put(to, brought);
    }
    CellRange whole(CellRange range) const
    {
        for (std::size_t pass = 0; pass < model.spans.size(); ++pass)
            for (const CellRange& span : model.spans)
                if (span.intersects(range))
                    range = united(range, span);
        return range;
    }

    /// The pixel in the middle of an edge.
    QPoint middle(const Edge& edge) const
    {
        const CellAddress cell{std::min(edge.column, columns), std::min(edge.row, rows)};
        // The rectangle of a merged cell is that of all its cells: take the lines from the first row and
        // column.
        const QRect across = control.cellRect({cell.column, rows}),
                    down = control.cellRect({columns, cell.row});
        if (edge.runsDown)
            return {edge.column > columns ? across.right() : across.left() - 1, down.center().y()};
        return {across.center().x(), edge.row > rows ? down.bottom() : down.top() - 1};
    }
    QRgb expectedPixel(const Edge& edge) const
    {
        const BorderLine drawn = model.at(edge);
        if (model.isWithinSpan(edge) || drawn.style == LineStyle::erase)
            return qRgb(255, 255, 255);
        return drawn.style == LineStyle::none ? gridPixel : QRgb(0xFF000000u | drawn.colour);
    }
    /// A fine line is drawn lighter: what counts is its hue.
    static QRgb seenPixel(QRgb pixel)
    {
        const QColor colour(pixel);
        if (pixel == qRgb(255, 255, 255))
            return pixel;
        if (colour.hsvSaturation() < 60)
            return gridPixel;
        for (const Colour drawn : {0xFF0000u, 0x00AA00u, 0x0000FFu, 0xAA00AAu})
            if (QColor(drawn).hsvHue() == colour.hsvHue())
                return QRgb(0xFF000000u | drawn);
        return pixel;
    }
    std::string faults()
    {
        control.cursor().setActiveCell(columns, rows); // its frame covers the edges there
        QApplication::processEvents();
        const QImage picture = control.grab().toImage().convertToFormat(QImage::Format_RGB32);
        std::string wrong;
        EdgeModel::eachEdge({1, 1, columns, rows}, [&](const Edge& edge) {
            const bool atFrame = edge.column >= columns && edge.row >= rows;
            const QRgb expected = expectedPixel(edge), seen = seenPixel(picture.pixel(middle(edge)));
            const bool atBorder =
                edge.runsDown ? edge.column == 1 || edge.column > columns : edge.row == 1 || edge.row > rows;
            const bool noLine = expected == gridPixel || expected == qRgb(255, 255, 255);
            if (atFrame || seen == expected ||
                (atBorder && noLine && (seen == gridPixel || seen == qRgb(255, 255, 255))))
                return;
            wrong += std::string(edge.runsDown ? " left of " : " above ") +
                     cellName({edge.column, edge.row}) + " " + QColor(seen).name().toStdString() +
                     " instead of " + QColor(expected).name().toStdString();
        });
        return wrong;
    }

    std::mt19937 random{24};
    EdgeModel model;
    std::string carried;
    bool hasWholeLines = false;
};

TEST_F(BorderPixels, WhatWasDrawnLastIsSeen)
{
    for (int round = 0; round < 25; ++round) {
        restart();
        hasWholeLines = round % 2 == 1;
        std::vector<EdgeModel> former{model};
        for (int step = 0; step < 14; ++step) {
            const std::size_t undone = control.cells().workbook().journal().steps();
            const auto what = random() % 6;
            what < 3 ? drawSides() : what == 3 ? drawSeveral() : carry(what == 5);
            ASSERT_EQ(faults(), "") << "round " << round << " step " << step << " did " << what
                                    << ", carried last: " << carried;
            if (control.cells().workbook().journal().steps() > undone)
                former.push_back(model);
        }
        while (former.size() > 1) {
            former.pop_back();
            model = former.back();
            control.commands().undo();
            ASSERT_EQ(faults(), "") << "round " << round << " undone to step " << former.size();
        }
    }
}

/// Reports stored before have sides that differ: they look as they did, until an edge is drawn.
TEST_F(BorderPixels, OfSidesThatDifferTheHeavierShowsUntilTheEdgeIsDrawn)
{
    const BorderLine red{LineStyle::solid, 0xFF0000}, blue{LineStyle::fineSolid, 0x0000FF};
    const Edge edge{true, 3, 3};
    control.cells().changeStyle({2, 3, 2, 3}, [&](CellStyle& style) { style.right = red; });
    control.cells().changeStyle({3, 3, 3, 3}, [&](CellStyle& style) {
        style.left = blue;
        style.locked = true;
    });
    model.lines[edge] = red;
    EXPECT_EQ(faults(), "");
    control.cells().setBorder({3, 3, 3, 3}, leftSide, 0x0000FF, LineStyle::fineSolid);
    model.lines[edge] = blue;
    EXPECT_EQ(faults(), "") << "the thinner line was drawn last";
    control.cells().setBorder({2, 3, 2, 3}, rightSide, 0, LineStyle::none);
    model.lines[edge] = {};
    EXPECT_EQ(faults(), "") << "none, on the other side";
    EXPECT_TRUE(sheet().style({3, 3}).locked) << "a lock holds nothing up, and stays";
}

/// Filled cells have all their lines; at the edge to where they came from the heavier one shows.
TEST_F(BorderPixels, FilledCellsBringTheirSides)
{
    control.cells().setBorder({2, 2, 2, 2}, bottomSide, 0xFF0000, LineStyle::solid);
    control.cells().setBorder({3, 2, 3, 2}, leftSide, 0x0000FF, LineStyle::solid);
    control.cells().setBorder({1, 1, 1, rows}, rightSide, 0x00AA00, LineStyle::solid);
    control.cursor().select({2, 2, 2, 2});
    control.commands().fillTo({2, 2, 2, 5}, false);
    model.draw({1, 1, 1, rows}, ofEachCell(rightSide, {LineStyle::solid, 0x00AA00}));
    model.draw({2, 2, 2, 5}, ofEachCell(bottomSide, {LineStyle::solid, 0xFF0000}));
    model.draw({3, 2, 3, 5}, ofEachCell(leftSide, {LineStyle::solid, 0x0000FF}));
    EXPECT_EQ(faults(), "");
}

TEST_F(BorderPixels, ADoubleLineIsTwo)
{
    control.cells().setBorder({2, 2, 3, 3}, allSides, 0xFF0000, LineStyle::doubled);
    control.cursor().setActiveCell(columns, rows);
    QApplication::processEvents();
    for (const double zoom : {1.0, 2.0, 0.5}) {
        control.setZoom(zoom);
        const QImage picture = control.grab().toImage();
        const QRect cell = control.cellRect({2, 2});
        std::string across;
        for (int x = cell.right() - 6; x <= cell.right() + 6; ++x)
            across += seenPixel(picture.pixel(x, cell.center().y())) == qRgb(255, 0, 0) ? '#' : ' ';
        across.erase(0, across.find('#'));
        across.erase(across.find_last_of('#') + 1);
        EXPECT_EQ(std::set<char>(across.begin(), across.end()).size(), 2U) << zoom << ": " << across;
        EXPECT_EQ(across, std::string(across.rbegin(), across.rend())) << zoom;
    }
}

} // namespace
} // namespace spreadsheet
