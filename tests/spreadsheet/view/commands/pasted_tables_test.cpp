#include "spreadsheet/view/commands/html_look.h"
#include "spreadsheet/view/commands/html_table.h"
#include "spreadsheet/view/commands/tab_text.h"

#include <gtest/gtest.h>

#include <random>

namespace spreadsheet {

namespace {

/// "A1=text;B2:2x3=text" for the cells of a table.
std::string summary(const std::variant<PastedTable, Refusal>& parsed)
{
    if (const auto* problem = std::get_if<Refusal>(&parsed))
        return "refused: " + problem->reason();
    std::string text;
    for (const PastedTable::Cell& cell : std::get<PastedTable>(parsed).cells) {
        text += (text.empty() ? "" : ";") + cellName({cell.column, cell.row});
        if (cell.columns > 1 || cell.rows > 1)
            text += ":" + std::to_string(cell.columns) + "x" + std::to_string(cell.rows);
        text += (cell.literal ? "'=" : "=") + cell.text;
        if (cell.number)
            text += "(" + std::to_string(*cell.number) + ")";
    }
    const PastedTable& table = std::get<PastedTable>(parsed);
    return std::to_string(table.columns) + "x" + std::to_string(table.rows) + " " + text;
}

} // namespace

TEST(TabText, IsCutIntoCells)
{
    struct Case {
        const char *what, *text, *cells;
    };
    const Case cases[] = {
        {"one", "7", "1x1 A1=7"},
        {"last line end closes the row", "1\t2\n3\t4\n", "2x2 A1=1;B1=2;A2=3;B2=4"},
        {"line ends of other systems", "1\r\n2\r3", "1x3 A1=1;A2=2;A3=3"},
        {"empty fields keep their place", "\t\tx\n\n\ty", "3x3 C1=x;B3=y"},
        {"quoted with tab, line end and doubled mark", "\"a\tb\n\"\"c\"\"\"\td", "2x1 A1=a\tb\n\"c\";B1=d"},
        {"marks inside are text", "a\"b\t\"c\"d", "2x1 A1=a\"b;B1=\"c\"d"},
        {"a mark never closed is text", "\"a\tb\n\"c", "2x2 A1=\"a;B1=b;A2=\"c"},
        {"empty quoted field", "\"\"\tx", "2x1 B1=x"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(summary(parseTabText(c.text)), c.cells) << c.what;
    EXPECT_TRUE(summary(parseTabText(std::string(1'048'577, '\n'))).starts_with("refused"));
    EXPECT_TRUE(summary(parseTabText(std::string(16'384, '\t'))).starts_with("refused"));
}

TEST(HtmlTable, IsReadAsOtherProgramsWriteIt)
{
    struct Case {
        const char *what, *html, *cells;
    };
    const Case cases[] = {
        {"browser", "<meta charset='utf-8'><table><tbody><tr><td>1</td><td>二</td></tr></tbody></table>",
         "2x1 A1=1;B1=二"},
        {"office: exact numbers, text marks, unclosed tags",
         "<TABLE><COLGROUP WIDTH=85></COLGROUP><TR><TD SDVAL=\"0.125\" SDNUM=\"2052;0;0.0%\">12.5%"
         "<TD sdnum=\"2052;2052;@\">007<TR><TD x:num=\"1234.5\">1,234.50",
         "2x2 A1=12.5%(0.125000);B1'=007;A2=1,234.50(1234.500000)"},
        {"merged cells push the others aside",
         "<table><tr><td rowspan=2>a<td colspan=2>b<tr><td>c<td>d<tr><td>e</table>",
         "3x3 A1:1x2=a;B1:2x1=b;B2=c;C2=d;A3=e"},
        {"a merged cell reaches below the last row", "<table><tr><td rowspan=3>a<td>b</table>x",
         "2x3 A1:1x3=a;B1=b"},
        {"white space, line ends, entities",
         "<table><tr><td>\n  a\n   b<br>c &lt;&amp;&#20803;&#x5143;&nbsp;&copy </td></tr></table>",
         "1x1 A1=a b\nc <&元元 &copy"},
        {"text outside cells, comments, scripts",
         "<html><style>td{color:red}</style><!--<td>x</td>--><script>if(1<2)'<td>'</script><p>x</p>"
         "<table><tr><td title=\"a>b\">y</td></tr></table>z",
         "1x1 A1=y"},
        {"two tables stand one below the other", "<table><tr><td>a</table><p><table><tr><td>b</table>",
         "1x2 A1=a;A2=b"},
        {"a table inside a cell gives its text",
         "<table><tr><td>a<table><tr><td>b</td><td>c</td></tr></table>"
         "</td><td>d</table>",
         "2x1 A1=abc;B1=d"},
        {"cells without a row", "<table><td>a<td>b</table>", "2x1 A1=a;B1=b"},
        {"empty cells kept open by a line end", "<table><tr><td><br></td><td>a<br>b<br></td></table>",
         "2x1 B1=a\nb"},
        {"no table", "<b>x</b>", "0x0 "},
        {"absurd spans", "<table><tr><td colspan=99999999 rowspan=-4>a</table>", "1x1 A1=a"},
        {"spans that mean the whole table",
         "<table><tr><td colspan=1000>a<tr><td rowspan=100>b<td>c<td><tr><td>d<td colspan=999>e"
         "<table><tr><td>f<td>g</table>",
         "3x3 A1:3x1=a;A2:1x2=b;B2=c;B3=d;C3=efg"},
        {"the whole table, not the one above",
         "<table><tr><td>a<td>b<td>c</table><table><tr><td colspan=1000>d<tr><td>e</table>",
         "3x3 A1=a;B1=b;C1=c;A2=d;A3=e"},
        {"a wide merged cell alone", "<table><tr><td colspan=99>a</table><table><tr><td>b</table>",
         "99x2 A1:99x1=a;A2=b"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(summary(parseHtmlTable(c.html)), c.cells) << c.what;
    EXPECT_TRUE(
        summary(parseHtmlTable("<table><tr><td colspan=16384>a<td>b</table>")).starts_with("refused"));
}

TEST(HtmlTable, BringsLooksAlong)
{
    PastedLook red, plain, heading;
    red.foreground = 0xFF0000;
    red.background = 0x00FF00;
    red.bold = true;
    plain.italic = true;
    plain.horizontal = HorizontalAlignment::centre;
    heading.bold = true;
    heading.background = 0x112233;
    const auto parsed = parseHtmlTable(
        "<style>\n<!--\n.xl65\n\t{color:red; background:#0f0;\n\tfont-weight:700;}\n--></style><table><tr>"
        "<td class=xl65>a<td align=center><i>b</i> c<th bgcolor=#112233>d<td style='font-weight:normal'>e");
    const PastedTable& table = std::get<PastedTable>(parsed);
    ASSERT_EQ(table.cells.size(), 4U);
    EXPECT_EQ(table.cells[0].look, red);
    EXPECT_EQ(table.cells[1].look, plain);
    EXPECT_EQ(table.cells[2].look, heading);
    EXPECT_EQ(table.cells[3].look.bold, false);
    EXPECT_EQ(parseHtmlColour(" RGB(1, 2,255) "), 0x0102FFU);
    for (const char* bad : {"#12", "#12345g", "rgb(1,2)", "rgb(1,2,300)", "windowtext", ""})
        EXPECT_FALSE(parseHtmlColour(bad)) << bad;
}

TEST(HtmlTable, SurvivesBrokenMarkUp)
{
    const std::string whole =
        "<style>.a{color:red}</style><table><tr><td rowspan=\"2\" class='a' sdval=1>x&amp;"
        "<br/><td colspan=2 style=\"color:#123\">y<!-- z --></table>";
    for (std::size_t length = 0; length <= whole.size(); ++length)
        EXPECT_NE(summary(parseHtmlTable(whole.substr(0, length))), "refused: ") << length;
    std::mt19937 random(7);
    for (int round = 0; round < 3000; ++round) {
        std::string broken = whole;
        for (int change = 0; change < 4; ++change)
            broken[random() % broken.size()] = "<>/\"'=& \0;#"[random() % 11];
        EXPECT_NE(summary(parseHtmlTable(broken)), "refused: ");
        EXPECT_NE(summary(parseTabText(broken)), "refused: ");
    }
}

} // namespace spreadsheet
