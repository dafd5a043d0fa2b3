#include "spreadsheet/display/header_footer.h"
#include "windows/printing/header_codes.h"

#include <gtest/gtest.h>

#include <random>

namespace selfreport {
namespace {

/// Cells that hold something as "row/column:text", with "#" for page number cells, and their fonts.
std::string readable(const HeaderGrid& grid)
{
    std::string out;
    for (std::size_t row = 0; row < grid.size(); ++row)
        for (std::size_t part = 0; part < 3; ++part) {
            const HeaderCell& cell = grid[row][part];
            if (cell == HeaderCell())
                continue;
            out += std::to_string(row + 1) + '/' + std::to_string(headerColumns[part]) + ':' + cell.text +
                   (cell.showsPageNumber ? "#" : "");
            if (!(cell.font == HeaderCellFont()))
                out += '[' + cell.font.family + ' ' + std::to_string(static_cast<int>(cell.font.points)) +
                       (cell.font.bold ? "B" : "") + (cell.font.italic ? "I" : "") +
                       (cell.font.underline ? "U" : "") + (cell.font.strikeThrough ? "K" : "") + ']';
            out += ' ';
        }
    return out;
}

std::string repeated(int count, const std::string& text)
{
    std::string all;
    for (int i = 0; i < count; ++i)
        all += text;
    return all;
}

TEST(HeaderCodes, ReadsCodesIntoCells)
{
    const std::string song = "/fn\"宋体\"/fz\"9\"";
    const std::string text = "Error parsing TEXT", name = "Error parsing FONT NAME",
                      size = "Error parsing FONT SIZE";
    const struct {
        const char* what;
        std::string codes, cells, problem;
    } cases[] = {
        {"nothing", "", "", ""},
        {"a title and a page number",
         R"(/fn"宋体"/fz"12"/fb1/fi0/fu0/fk0/c利润表/n/fn"宋体"/fz"9"/fb0/fi0/fu0/fk0/r/p/n)",
         "1/3:利润表[宋体 12B] 2/5:<Page Number># ", ""},
        {"a date: each slash takes a character", song + "/l2009/12/31/n", "1/1:1 ", ""},
        {"only the last text of a cell stays", song + "/l甲/p乙/n", "1/1:乙# ", ""},
        {"a text before any code goes to the left of the first line", "甲/n/n", "1/1:甲 ", ""},
        {"the part stays on the next line, the font does not come along", song + "/fb1/r甲/n乙/n",
         "1/5:甲[宋体 9B] 2/5:乙 ", ""},
        {"half sizes become even", song + "/fz\"10.5\"/l甲/fz\"11.5\"/c乙/n",
         "1/1:甲[宋体 10] 1/3:乙[宋体 12] ", ""},
        {"sizes that are none are ignored", song + R"(/fz"x"/fz""/fz"0.5"/fz"410"/fz"9 "/l甲/n)", "1/1:甲 ",
         ""},
        {"whatever stands for the opening quote", "/fnX宋体\"/fz:9\"/l甲/n", "1/1:甲 ", ""},
        {"attributes are off for 0 only", song + "/fb1/fi2/fu甲/fk1/lA/n", "1/1:A[宋体 9BIUK] ", ""},
        {"unknown letters are skipped", song + "/x/fq/l甲/n", "1/1:甲 ", ""},
        {"nine lines and no more", song + repeated(8, "/n") + "/l甲/n/l乙/n", "9/1:甲 ", ""},
        {"a code at the last character is not read", song + "/l甲/", "1/1:甲 ", ""},
        {"nor is a single character there", song + "/l甲/nX", "1/1:甲 ", ""},
        {"a longer text there is an error", song + "/l甲/nXY", "1/1:甲 ", text},
        {"the final slash of a text ends it", song + "/lXY/", "1/1:XY ", ""},
        {"99 characters", song + "/l" + repeated(99, "目") + "/n", "1/1:" + repeated(99, "目") + ' ', ""},
        {"100 characters", song + "/l甲/c" + repeated(100, "目") + "/n", "1/1:甲 ", text},
        {"font name of 99", "/fn\"" + repeated(99, "a") + "\"/fz\"9\"/l甲/n",
         "1/1:甲[" + repeated(99, "a") + " 9] ", ""},
        {"font name of 100", "/fn\"" + repeated(100, "a") + "\"/fz\"9\"/l甲/n", "", name},
        {"font name without end", song + "/l甲/fn\"宋体", "1/1:甲 ", name},
        {"font size without end", song + "/l甲/n/fz\"9", "1/1:甲 ", size},
    };
    for (const auto& c : cases) {
        HeaderGrid grid;
        HeaderReaderState state;
        EXPECT_EQ(readHeaderCodes(c.codes, grid, state), c.problem) << c.what;
        std::string cells = readable(grid);
        // A part that only got its font is no difference that anyone sees.
        EXPECT_EQ(cells, c.cells) << c.what;
    }
}

TEST(HeaderCodes, FontsCarryOverIntoTheNextString)
{
    HeaderReaderState state;
    HeaderGrid first, second;
    readHeaderCodes(R"(/fn"黑体"/fz"14"/fb1/l甲/n)", first, state);
    readHeaderCodes("/c乙/n", second, state);
    EXPECT_EQ(readable(second), "1/3:乙[黑体 14B] ");
}

TEST(HeaderCodes, WritesWhatTheCellsHold)
{
    const std::string plain = R"(/fn"宋体"/fz"9"/fb0/fi0/fu0/fk0)";
    HeaderGrid grid;
    EXPECT_EQ(headerCodes(grid), "");
    grid[2][0].text = "甲";
    EXPECT_EQ(headerCodes(grid), "/n/n" + plain + "/l甲/n") << "two bare ends of line";
    grid[2][2].text = pageNumberText;
    grid[0][1] = {"2009/12/31 \"A\"", {"Times New Roman", 10.5F, true, false, true, false}, false};
    EXPECT_EQ(headerCodes(grid), R"(/fn"Times New Roman"/fz"10.5"/fb1/fi0/fu1/fk0/c2009/12/31 "A"/n/n)" +
                                     plain + "/l甲" + plain + "/r/p/n");
    EXPECT_EQ(headerCellCodes(grid[2][0], 2), plain + "甲");
}

/// The pages' reader without its fonts' fractions, as the editor's grid.
HeaderGrid asPrinted(const std::string& codes)
{
    HeaderGrid grid;
    const auto lines = spreadsheet::readHeaderFooter(codes);
    for (std::size_t row = 0; row < lines.size(); ++row)
        for (std::size_t part = 0; part < 3; ++part)
            for (const spreadsheet::HeaderRun& run : lines[row].parts[part]) {
                const auto& [family, points, bold, italic, underline, strikeThrough] = run.font;
                grid[row][part] = {
                    run.pageNumber ? std::string(pageNumberText) : run.text,
                    {family, static_cast<float>(points), bold, italic, underline, strikeThrough},
                    run.pageNumber};
            }
    return grid;
}

TEST(HeaderCodes, EditorAndPagesReadWhatTheEditorWroteAlike)
{
    std::mt19937 random(7);
    const auto number = [&](int limit) { return static_cast<int>(random() % static_cast<unsigned>(limit)); };
    const char* texts[] = {"", "", "", "资产负债表", "第一季度 \"A\"", "a", "<Page Number>", "𠮷野"};
    const char* families[] = {"宋体", "黑体", "Noto Sans CJK SC"};
    for (int round = 0; round < 500; ++round) {
        HeaderGrid grid;
        for (auto& line : grid)
            for (HeaderCell& cell : line) {
                cell.text = texts[number(8)];
                if (cell.text.empty())
                    continue;
                cell.font = {families[number(3)], static_cast<float>(number(30) + 6),
                             number(2) == 1,      number(2) == 1,
                             number(2) == 1,      number(2) == 1};
                cell.showsPageNumber = cell.text == pageNumberText;
            }
        const std::string codes = headerCodes(grid);
        HeaderGrid read;
        HeaderReaderState state;
        ASSERT_EQ(readHeaderCodes(codes, read, state), "") << codes;
        ASSERT_EQ(read, grid) << codes;
        ASSERT_EQ(asPrinted(codes), grid) << codes;
    }
}

} // namespace
} // namespace selfreport
