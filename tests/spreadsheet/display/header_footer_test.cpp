#include "spreadsheet/display/header_footer.h"

#include <gtest/gtest.h>

#include <sstream>

namespace spreadsheet {
namespace {

/// Lines as "left|centre|right", each run as [family size BIUK:text], unset letters left out.
std::string readable(const std::vector<HeaderLine>& lines)
{
    std::ostringstream out;
    for (const HeaderLine& line : lines) {
        for (std::size_t part = 0; part < line.parts.size(); ++part) {
            out << (part ? "|" : "");
            for (const HeaderRun& run : line.parts[part])
                out << '[' << run.font.family << ' ' << run.font.points << (run.font.bold ? "B" : "")
                    << (run.font.italic ? "I" : "") << (run.font.underline ? "U" : "")
                    << (run.font.strikeThrough ? "K" : "") << ':' << (run.pageNumber ? "#" : run.text) << ']';
        }
        out << '\n';
    }
    return out.str();
}

TEST(HeaderFooter, CodesBecomeLinesPartsAndFonts)
{
    const std::string longText(300, 'x');
    const struct {
        const char* what;
        std::string codes, lines;
    } cases[] = {
        {"nothing", "", ""},
        {"a title and a page number as the editor stores them",
         R"(/fn"宋体"/fz"12"/fb1/fi0/fu0/fk0/c利润表/n/fn"宋体"/fz"9"/fb0/fi0/fu0/fk0/r/p/n)",
         "|[宋体 12B:利润表]|\n||[宋体 9:#]\n"},
        {"empty lines above count", "/n/n/lA/n", "||\n||\n[ 9:A]||\n"},
        {"no code at the end is needed", "/cAB", "|[ 9:AB]|\n"},
        {"the last character is read", "/rX", "||[ 9:X]\n"},
        {"texts have no length limit", "/l" + longText, "[ 9:" + longText + "]||\n"},
        {"fractional size", R"(/fz"10.5"/lA)", "[ 10.5:A]||\n"},
        {"sizes that are none are ignored", R"(/fz"x"/fz"0"/fz".015"/fz"-3"/fz"9pt"/fz"1e9"/fz""/lA)",
         "[ 9:A]||\n"},
        {"attributes: off for 0 only", "/fb1/fi2/fux/fk1/lA/fb0/fi0/fu0/fk0B", "[ 9BIUK:A][ 9:B]||\n"},
        {"a date prints as it stands", "/l2026/12/31", "[ 9:2026/12/31]||\n"},
        {"page number between texts", "/c第 /p 页", "|[ 9:第 ][ 9:#][ 9: 页]|\n"},
        {"part and font stay in force on the next line", R"(/fz"12"/rA/nB/n)", "||[ 12:A]\n||[ 12:B]\n"},
        {"unknown letters print", "/x/fq1/lA", "[ 9:/x/fq1A]||\n"},
        {"quotes that do not close print", R"(/l/fn"宋体)", "[ 9:/fn\"宋体]||\n"},
        {"a missing quote prints", "/l/fz9", "[ 9:/fz9]||\n"},
        {"codes that break off print", "/lA/", "[ 9:A/]||\n"},
        {"so do font codes", "/lA/fb", "[ 9:A/fb]||\n"},
        {"two slashes", "/l//p", "[ 9:/][ 9:#]||\n"},
        {"quotes in texts", R"(/l"A")", "[ 9:\"A\"]||\n"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(readable(readHeaderFooter(c.codes)), c.lines) << c.what;
}

TEST(HeaderFooter, LinesAreAsHighAsTheirLargestText)
{
    const auto lines = readHeaderFooter(R"(/fz"20"/lA/fz"10"/rB/n/n/lC/n)");
    ASSERT_EQ(lines.size(), 3u);
    EXPECT_EQ(headerLineHeight(lines[0]), 540);
    EXPECT_EQ(headerLineHeight(lines[1]), 270) << "an empty line has the size in force";
    EXPECT_EQ(headerLineHeight(lines[2]), 270);
}

} // namespace
} // namespace spreadsheet
