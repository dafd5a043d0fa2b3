#include "tests/windows/printing/PrintingTest.h"

#include <fstream>
#include <iterator>
#include <sstream>

namespace selfreport {
namespace {

using spreadsheet::CellRange;
using spreadsheet::PrintSettings;

/// A sheet of 12 columns and 90 rows whose cells hold their own names, in columns of 1,500 twips and rows of
/// 400; every set-up is printed, exported and previewed.
struct PrintSetups : test::PrintingTest {
    static constexpr int columns = 12, rows = 90;

    PrintSetups()
    {
        spreadsheet::Sheet& sheet = grid.book.sheet(1);
        for (int row = 1; row <= rows; ++row)
            for (int column = 1; column <= columns; ++column)
                sheet.setText({column, row}, spreadsheet::cellName({column, row}));
        sheet.changeSettings([](spreadsheet::SheetSettings& settings) {
            settings.columns.defaultSize = 1500;
            settings.rows.defaultSize = 400;
        });
    }

    /// The first cell of each page beyond the repeated ones, as a reader of the PDF finds it.
    static std::vector<std::string> firstCells(const std::string& pdf, const PrintSettings& print)
    {
        std::vector<std::string> cells;
        const std::string text = textOf(pdf);
        for (std::size_t from = 0; from < text.size();) {
            const std::size_t end = std::min(text.find('\f', from), text.size());
            cells.push_back(firstIn(text.substr(from, end - from), print));
            from = end + 1;
        }
        return cells;
    }
    static std::string firstIn(const std::string& page, const PrintSettings& print)
    {
        std::istringstream words(page);
        for (std::string word; words >> word;) {
            const auto cell = spreadsheet::parseCellName(word);
            if (cell && cell->row > print.titleBottom && cell->column > print.titleRight)
                return word;
        }
        return {};
    }
    std::string beyondTitles(int column, int row) const
    {
        const PrintSettings& print = grid.book.sheet(1).settings().print;
        return spreadsheet::cellName(
            {std::max(column, print.titleRight + 1), std::max(row, print.titleBottom + 1)});
    }
    std::vector<std::string> previewed()
    {
        const spreadsheet::PageLayout layout(grid.book.sheet(1), previewRequest(grid));
        std::vector<std::string> cells;
        for (int number = 1; number <= layout.pageCount(); ++number) {
            const spreadsheet::PrintedPage page = layout.page(number);
            cells.push_back(beyondTitles(page.columns.first, page.rows.first));
        }
        return cells;
    }
    /// By a rule: a page takes so many columns and rows as its body holds.
    struct Body {
        int width, height; ///< twips of cells
    };
    static Body bodyOf(const PrintSettings& print, double scale)
    {
        const bool own = print.paperWidth > 0;
        int width = own ? print.paperWidth : 11906, height = own ? print.paperHeight : 16838;
        if (print.landscape)
            std::swap(width, height);
        return {static_cast<int>((width - 2 * 864) / scale), static_cast<int>((height - 2 * 864) / scale)};
    }
};

/// First lines of pages along one axis.
std::vector<int> starts(int count, int size, int room, int repeated, int breakAt)
{
    std::vector<int> first{1};
    int used = 0;
    for (int line = 1; line <= count; ++line) {
        const int capacity = room - (first.size() > 1 ? repeated * size : 0);
        if (used + size > capacity || line == breakAt) {
            first.push_back(line);
            used = 0;
        }
        used += size;
    }
    return first;
}

TEST_F(PrintSetups, AgreeInPreviewPrinterAndPdf)
{
    struct Paper {
        int width, height;
    };
    int tried = 0;
    for (const Paper paper : {Paper{0, 0}, Paper{10431, 14740}, Paper{13663, 7920}}) // 16K, 241 × 139.7 mm
        for (const bool landscape : {false, true})
            for (const int scale : {100, 60})
                for (const int titles : {0, 1})
                    for (const bool downFirst : {false, true})
                        for (const int breakAt : {0, 8}) {
                            if (++tried % 3 != 0)
                                continue; // a third of them, mixed
                            PrintSettings print;
                            print.paperWidth = paper.width;
                            print.paperHeight = paper.height;
                            print.landscape = landscape;
                            print.scale = scale;
                            print.titleTop = print.titleBottom = titles;
                            print.titleLeft = print.titleRight = titles;
                            print.downFirst = downFirst;
                            if (breakAt > 0)
                                print.rowBreaks[breakAt] = true;
                            grid.book.sheet(1).changeSettings(
                                [&](spreadsheet::SheetSettings& settings) { settings.print = print; });
                            const Body body = bodyOf(print, scale / 100.0);
                            const auto across = starts(columns, 1500, body.width, titles, 0);
                            const auto down = starts(rows, 400, body.height, titles, breakAt);
                            std::vector<std::string> expected;
                            for (std::size_t page = 0; page < across.size() * down.size(); ++page)
                                expected.push_back(beyondTitles(
                                    across[downFirst ? page / down.size() : page % across.size()],
                                    down[downFirst ? page % down.size() : page / across.size()]));
                            SCOPED_TRACE(tried);
                            EXPECT_EQ(previewed(), expected);
                            service.printed.clear();
                            ASSERT_EQ(printSheet(grid), PrintOutcome::printed);
                            EXPECT_EQ(firstCells(service.printed.at(0).pdf, print), expected);
                        }
}

TEST_F(PrintSetups, RangesAndAreasAgreeToo)
{
    const std::vector<CellRange> ranges{{5, 40, 7, 41}, {2, 3, 3, 80}};
    const std::vector<std::string> expected{"B3", "B40", "B77", "E40"}; // 37 rows of 400 in 15,110 twips
    grid.printRange.kind = spreadsheet::PrintRangeKind::cells;
    grid.printRange.cells = ranges;
    EXPECT_EQ(printSheet(grid), PrintOutcome::printed);
    EXPECT_EQ(firstCells(service.printed.at(0).pdf, {}), expected);
    grid.printRange = {};
    grid.book.sheet(1).changeSettings(
        [&](spreadsheet::SheetSettings& settings) { settings.print.area = ranges; });
    EXPECT_EQ(previewed(), expected);
    EXPECT_EQ(printSheet(grid), PrintOutcome::printed);
    EXPECT_EQ(firstCells(service.printed.at(1).pdf, {}), expected);
    files.answers = {folder.filePath("a.pdf").toStdString()};
    EXPECT_EQ(exportPdf(grid), PrintOutcome::printed);
    std::ifstream file(files.asked.empty() ? "" : folder.filePath("a.pdf").toStdString(), std::ios::binary);
    const std::string pdf{std::istreambuf_iterator<char>(file), {}};
    EXPECT_EQ(firstCells(pdf, {}), expected);
}

} // namespace
} // namespace selfreport
