// What Ctrl+C, Ctrl+X and Ctrl+V do, with clipboards of this program and of others.
#include "spreadsheet/view/commands/PastedTable.h"
#include "tests/spreadsheet/view/ControlTest.h"

#include <QClipboard>
#include <QImage>
#include <QMimeData>

namespace spreadsheet {

namespace {

constexpr Qt::KeyboardModifiers ctrl = Qt::ControlModifier, shift = Qt::ShiftModifier;

class ClipboardByUser : public ControlTest {
protected:
    static void offer(std::unique_ptr<QMimeData> data)
    {
        QApplication::clipboard()->setMimeData(data.release());
    }
    static void offerText(const QString& text) { QApplication::clipboard()->setText(text); }
    static void offerHtml(const char* html, const char* text = "wrong")
    {
        auto data = std::make_unique<QMimeData>();
        data->setHtml(QString::fromUtf8(html));
        data->setText(QString::fromUtf8(text));
        offer(std::move(data));
    }
    void paste() { key(Qt::Key_V, ctrl); }
    void fillSheet()
    {
        put("B2", "keep");
        control.cells().addSpan({4, 4, 5, 5}); // D4:E5
        put("D4", "merged");
        ASSERT_FALSE(sheet().setArrayFormula({7, 2, 8, 3}, "ROW()*1")); // G2:H3
        control.cells().changeStyle({10, 10, 10, 10}, [](CellStyle& style) { style.locked = true; });
        control.showChanges();
    }

    void TearDown() override { QApplication::clipboard()->clear(); }
};

QByteArray rubbish(qsizetype size)
{
    QByteArray bytes(size, '\0');
    std::uint32_t state = 1;
    for (char& byte : bytes)
        byte = static_cast<char>((state = state * 1664525 + 1013904223) >> 24);
    return bytes;
}

std::unique_ptr<QMimeData> data(const char* format, const QByteArray& bytes)
{
    auto result = std::make_unique<QMimeData>();
    result->setData(QString::fromLatin1(format), bytes);
    return result;
}

std::unique_ptr<QMimeData> picture()
{
    auto result = std::make_unique<QMimeData>();
    result->setImageData(QImage(40, 40, QImage::Format_RGB32));
    return result;
}

} // namespace

TEST_F(ClipboardByUser, WhatCannotBePastedIsRefusedWithAReason)
{
    fillSheet();
    demand(control.cells().setRowCount(maxRows));
    demand(control.cells().setColumnCount(maxColumns));
    control.ask = [](const QString&) { return true; };
    const QByteArray large(100'000'000, 'x');
    const QByteArray binary = rubbish(1'000'000);
    const struct {
        const char* what;
        std::unique_ptr<QMimeData> offered;
        const char* at;
    } cases[] = {
        {"a text of 100 MB", data("text/plain", large), "A1"},
        {"lines of 70 MB", data("text/plain", QByteArray("12\t34\n").repeated(12'000'000)), "A1"},
        {"a table of 100 MB", data("text/html", "<table><tr><td>1</td></tr></table>" + large), "A1"},
        {"cells of ours, 100 MB, damaged", data("application/x-report-cells", "CEL4" + large), "A1"},
        {"more lines than a sheet has", data("text/plain", QByteArray(maxRows + 1, '\n')), "A1"},
        {"binary as text", data("text/plain", binary), "A1"},
        {"binary as a table", data("text/html", "<table><tr><td>" + binary + "</table>"), "A1"},
        {"binary as cells", data("application/x-report-cells", binary), "A1"},
        {"a picture", picture(), "A1"},
        {"nothing", data("text/plain", ""), "A1"},
        {"half of a merged cell", data("text/plain", "1\t2"), "C4"},
        {"half of a merged cell, by lines", data("text/plain", "1\n2"), "D3"},
        {"half of an array formula", data("text/plain", "1"), "H3"},
        {"a locked cell", data("text/plain", "1"), "J10"},
        {"a locked cell among others", data("text/plain", "1\t2\t3\n4\t5\t6"), "I9"},
        {"beyond the last row", data("text/plain", "1\n2"), "A1048576"},
        {"beyond the last column", data("text/plain", "1\t2"), "XFD1"},
    };
    for (const auto& c : cases) {
        auto copy = std::make_unique<QMimeData>();
        for (const QString& format : c.offered->formats())
            copy->setData(format, c.offered->data(format));
        if (c.offered->hasImage())
            copy->setImageData(c.offered->imageData());
        offer(std::move(copy));
        const CellAddress cell = *parseCellName(c.at);
        for (const Qt::KeyboardModifiers modifiers : {ctrl, ctrl | shift}) {
            control.cursor().setActiveCell(cell.column, cell.row);
            refusal.clear();
            const auto before = control.cells().workbook().revision();
            key(Qt::Key_V, modifiers);
            EXPECT_NE(refusal, "") << c.what;
            EXPECT_EQ(control.cells().workbook().revision(), before) << c.what;
        }
    }
}

TEST_F(ClipboardByUser, TheEditorTakesNoRubbishEither)
{
    put("B2", "keep");
    click("B2");
    const std::pair<const char*, QByteArray> offers[] = {{"100 MB", QByteArray(100'000'000, 'x')},
                                                         {"binary", rubbish(5'000)},
                                                         {"40,000 characters", QByteArray(40'000, 'x')}};
    for (const auto& [what, bytes] : offers) {
        key(Qt::Key_F2);
        offer(data("text/plain", bytes));
        refusal.clear();
        paste();
        EXPECT_EQ(edited(), "keep") << what;
        EXPECT_NE(refusal, "") << what;
        key(Qt::Key_Escape);
    }
    key(Qt::Key_F2);
    offerText(" on\tand on\nfor two lines");
    paste();
    key(Qt::Key_Return);
    EXPECT_EQ(shown("B2"), "keep on\tand on\nfor two lines");
}

TEST_F(ClipboardByUser, RoomBeyondTheSheetIsAskedFor)
{
    std::string question;
    bool answer = false;
    control.ask = [&](const QString& asked) {
        question = asked.toStdString();
        return answer;
    };
    put("A100", "last");
    offerText("1\t2\n3\t4\n5\t6");
    control.cursor().setActiveCell(30, 99);
    paste();
    EXPECT_NE(question.find("1 行"), std::string::npos) << question;
    EXPECT_NE(question.find("1 列"), std::string::npos) << question;
    EXPECT_NE(refusal, "");
    EXPECT_EQ(control.cells().rowCount(), 100);
    EXPECT_EQ(shown("AD99"), "");
    answer = true;
    paste();
    EXPECT_EQ(shown("AD99", "AE101"), "1 2;3 4;5 6");
    key(Qt::Key_Z, ctrl);
    EXPECT_EQ(control.cells().rowCount(), 100) << "one step";
    EXPECT_EQ(control.cells().columnCount(), 30);
    EXPECT_EQ(shown("AD99"), "");
}

TEST_F(ClipboardByUser, TablesOfOtherProgramsPasteAsCells)
{
    // As an office program offers a block: sizes, exact values, text marks, fonts, merged heading.
    const char* const office =
        "<!DOCTYPE html>\n<html>\n<head>\n\t<meta http-equiv=\"content-type\" content=\"text/html; "
        "charset=utf-8\"/>\n"
        "\t<style type=\"text/css\">\n\t\tbody,div,table,thead,tbody,tfoot,tr,th,td,p { "
        "font-family:\"Noto Sans CJK SC\"; font-size:x-small }\n\t\ta.comment-indicator:hover + comment { "
        "background:#ffd; }\n\t</style>\n</head>\n<body>\n<table cellspacing=\"0\" border=\"0\">\n"
        "\t<colgroup width=\"85\"></colgroup>\n\t<colgroup span=\"2\" width=\"120\"></colgroup>\n"
        "\t<tr>\n\t\t<td colspan=3 height=\"17\" align=\"center\" valign=middle bgcolor=\"#FFFF00\"><b>"
        "<font color=\"#C9211E\">利润表</font></b></td>\n\t</tr>\n"
        "\t<tr>\n\t\t<td height=\"17\" align=\"left\" sdnum=\"2052;2052;@\">001</td>\n"
        "\t\t<td align=\"right\" sdval=\"1234.567\" sdnum=\"2052;0;#,##0.00\">1,234.57</td>\n"
        "\t\t<td align=\"right\" sdval=\"0.12345\" sdnum=\"2052;0;0.00%\">12.35%</td>\n\t</tr>\n"
        "\t<tr>\n\t\t<td height=\"17\" align=\"left\"><br></td>\n\t\t<td align=\"left\">管理&amp;销售</td>\n"
        "\t\t<td align=\"right\" sdval=\"46387\" sdnum=\"2052;0;YYYY-MM-DD\">2026-12-31</td>\n\t</tr>\n"
        "</table>\n</body>\n</html>\n";
    put("A3", "old");
    click("A1");
    offerHtml(office);
    paste();
    EXPECT_EQ(shown("A1"), "利润表");
    EXPECT_EQ(sheet().extent({3, 1}), (CellRange{1, 1, 3, 1}));
    EXPECT_TRUE(sheet().style({1, 1}).font.bold);
    EXPECT_EQ(sheet().style({1, 1}).background, 0xFFFF00U);
    EXPECT_EQ(sheet().style({1, 1}).foreground, 0xC9211EU);
    EXPECT_EQ(sheet().style({1, 1}).horizontal, HorizontalAlignment::centre);
    EXPECT_TRUE(sheet().value({1, 2}).isText()) << "001 is a text there";
    EXPECT_EQ(sheet().value({2, 2}).number(), 1234.567) << "not the rounded figure";
    EXPECT_EQ(shown("C2", "C3"), "12.35%;2026-12-31");
    EXPECT_EQ(sheet().value({3, 2}).number(), 0.12345);
    EXPECT_EQ(shown("A3", "B3"), " 管理&销售") << "an empty field empties its cell";
    EXPECT_EQ(cursor(), "A1 in A1:C3");
    key(Qt::Key_Z, ctrl);
    EXPECT_EQ(shown("A1", "C3"), "  ;  ;old  ");
    EXPECT_TRUE(sheet().settings().spans.empty());

    // As a browser offers a part of a page.
    click("E5");
    offerHtml("<meta charset='utf-8'><h3>余额</h3><table class=\"wikitable\" style=\"color: rgb(32, 33, 34); "
              "font-family: sans-serif;\"><caption>科目余额</caption><thead><tr><th scope=\"col\">科目</th>"
              "<th>余额</th></tr></thead><tbody><tr><td><a href=\"/1001\" title=\"库存现金\">1001</a>"
              "<sup>[1]</sup></td><td style=\"text-align: right;\">&minus;1,234.50</td></tr>"
              "<tr><td>银行\n  存款</td><td>&nbsp;2&nbsp;000</td></tr></tbody></table><p>脚注</p>");
    paste();
    EXPECT_EQ(shown("E5", "F7"), "科目 余额;1001[1] -1234.5;银行 存款 2 000");
    EXPECT_TRUE(sheet().style({5, 5}).font.bold);
    key(Qt::Key_Z, ctrl);
    click("E5");
    key(Qt::Key_V, ctrl | shift);
    EXPECT_EQ(shown("E5", "F6"), "科目 余额;1001[1] -1234.5");
    EXPECT_FALSE(sheet().style({5, 5}).font.bold) << "values only";
    offerHtml("<b>no</b> table", "1\t2");
    paste();
    EXPECT_EQ(shown("E5", "F5"), "1 2");
}

TEST_F(ClipboardByUser, CopiedFormulasShiftCutOnesDoNot)
{
    control.cells().changeStyle({2, 1, 2, 1}, [](CellStyle& style) { style.font.bold = true; });
    put("A1", "5");
    sheet().setNumber({1, 1}, 5);
    ASSERT_FALSE(sheet().setFormula({2, 1}, "A1*$A$1"));
    ASSERT_FALSE(sheet().setFormula({3, 1}, "B1+1"));
    control.cells().addSpan({2, 2, 3, 2});
    control.cells().workbook().recalculateChanged();
    control.showChanges();
    drag(centre("A1"), centre("C2"));
    key(Qt::Key_C, ctrl);
    EXPECT_EQ(QApplication::clipboard()->text(), "5\t25\t26\n\t\t\n");
    EXPECT_TRUE(QApplication::clipboard()->mimeData()->html().contains("25"));
    click("E5");
    paste();
    EXPECT_EQ(formula("F5") + " " + formula("G5"), "E5*$A$1 F5+1");
    EXPECT_TRUE(sheet().style({6, 5}).font.bold);
    EXPECT_EQ(sheet().extent({7, 6}), (CellRange{6, 6, 7, 6}));
    click("B1");
    key(Qt::Key_X, ctrl);
    click("B9");
    paste();
    EXPECT_EQ(formula("B9"), "A1*$A$1");
    EXPECT_EQ(formula("C1"), "B9+1") << "its reader follows";
    EXPECT_EQ(shown("B1", "C1"), " 26");
    click("D9");
    refusal.clear();
    paste();
    EXPECT_EQ(shown("D9"), "") << "what was cut is pasted once";
    EXPECT_NE(refusal, "");
    key(Qt::Key_Z, ctrl);
    EXPECT_EQ(formula("B1"), "A1*$A$1");
}

TEST_F(ClipboardByUser, WholeLinesGoWhereThereIsRoom)
{
    put("A3", "x");
    put("C3", "z");
    click(rowHeading("A3"));
    key(Qt::Key_C, ctrl);
    click("A6");
    paste();
    EXPECT_EQ(shown("A6", "C6"), "x  z");
    click(rowHeading("A8"));
    paste();
    EXPECT_EQ(shown("A8", "C8"), "x  z");
    click(columnHeading("C1"));
    key(Qt::Key_X, ctrl);
    click(columnHeading("E1"));
    paste();
    EXPECT_EQ(shown("C3", "E8"), "  z;  ;  ;  z;  ;  z");
    // Several ranges are no block.
    click("A3");
    click("C3", ctrl);
    refusal.clear();
    key(Qt::Key_C, ctrl);
    EXPECT_NE(refusal, "");
    click("A3");
    key(Qt::Key_C, ctrl);
    drag(centre("H1"), centre("I3"));
    paste();
    EXPECT_EQ(shown("H1", "I3"), "x x;x x;x x") << "one cell fills what is selected";
}

TEST_F(ClipboardByUser, OneCellGoesIntoEachOfSeveralRangesABlockIntoNone)
{
    fillSheet();
    put("A1", "x");
    put("A2", "y");
    const auto select = [this](const char* last) {
        drag(centre("C7"), centre("D8"));
        click("F7", ctrl);
        click(last, ctrl);
    };
    const struct {
        const char *what, *copied, *last, *why, *shown;
    } cases[] = {
        {"a block", "A1:A2", "F8", "不能对多个选定区域使用此命令", "   ;   "},
        {"through a lock", "A1", "J10", "单元格已锁定，不能更改", "   ;   "},
        {"through an array formula", "A1", "G2", "不能更改数组公式的一部分", "   ;   "},
        {"one cell", "A1", "F8", "", "x x  x;x x  x"},
    };
    for (const auto& c : cases) {
        control.cursor().select(*parseRangeName(c.copied));
        key(Qt::Key_C, ctrl);
        select(c.last);
        refusal.clear();
        paste();
        EXPECT_EQ(refusal, c.why) << c.what;
        EXPECT_EQ(shown("C7", "F8"), c.shown) << c.what;
    }
    key(Qt::Key_Z, ctrl); // one step
    EXPECT_EQ(shown("C7", "F8"), "   ;   ");
}

TEST_F(ClipboardByUser, SeveralSelectedRangesAreClearedTogether)
{
    for (const char* cell : {"B2", "B3", "D4", "F6"})
        put(cell, "x");
    drag(centre("B2"), centre("B3"));
    drag(centre("D4"), centre("E5"), ctrl);
    key(Qt::Key_Delete);
    EXPECT_EQ(shown("B2", "F6"), "    ;    ;    ;    ;    x");
    key(Qt::Key_Z, ctrl);
    EXPECT_EQ(shown("B2", "D4"), "x  ;x  ;  x") << "one step";
    put("C3", "between");
    key(Qt::Key_Delete);
    EXPECT_EQ(shown("B2", "D4"), "  ; between ;  ") << "both ranges are selected still, and no more";
}

} // namespace spreadsheet
