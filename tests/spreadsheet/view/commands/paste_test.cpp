#include "spreadsheet/view/commands/paste.h"

#include "spreadsheet/workbook/Workbook.h"

#include <gtest/gtest.h>
#include <QMimeData>

namespace spreadsheet {

namespace {

struct Paste : testing::Test {
    Paste() { workbook.setUndoEnabled(true); }

    Copied copy(const CellRange& range)
    {
        return std::move(std::get<Copied>(copyToClipboard(workbook, sheet(), range)));
    }
    static std::unique_ptr<QMimeData> text(const QString& text)
    {
        auto data = std::make_unique<QMimeData>();
        data->setText(text);
        return data;
    }
    /// The reason if it is refused, else empty.
    std::string pasteAt(const QMimeData& data, const CellRange& selection, PasteKind kind = PasteKind::all)
    {
        return pasteInto(workbook, data, selection, kind);
    }
    static std::string pasteInto(Workbook& book, const QMimeData& data, const CellRange& selection,
                                 PasteKind kind = PasteKind::all)
    {
        const auto content = readClipboard(book, data);
        if (const auto* problem = std::get_if<Refusal>(&content))
            return problem->reason();
        const auto plan = planPaste(book.sheet(1), std::get<ClipboardContent>(content), selection);
        if (const auto* problem = std::get_if<Refusal>(&plan))
            return problem->reason();
        const auto problem =
            paste(book, book.sheet(1), std::get<ClipboardContent>(content), std::get<PastePlan>(plan), kind);
        book.recalculateChanged();
        return problem.reason();
    }
    Sheet& sheet() { return workbook.sheet(1); }
    std::string shown(CellAddress cell) { return sheet().displayText(cell); }

    Workbook workbook;
};

} // namespace

TEST_F(Paste, InsideBringsFormulasLooksAndSpansAlong)
{
    sheet().setNumber({1, 1}, 5);
    ASSERT_FALSE(sheet().setFormula({2, 1}, "a1*$A$1"));
    sheet().restyle({2, 1, 2, 1}, [](CellStyle& style) { style.font.bold = true; });
    sheet().setTag({2, 1}, "13");
    sheet().addSpan({1, 2, 2, 3});
    const Copied copied = copy({1, 1, 2, 3});
    sheet().setNumber({1, 1}, 9); // the clipboard keeps what was copied
    EXPECT_EQ(pasteAt(*copied.data, {4, 5, 4, 5}), "");
    EXPECT_EQ(shown({4, 5}), "5");
    EXPECT_EQ(sheet().formula({5, 5}), "d5*$A$1");
    EXPECT_EQ(shown({5, 5}), "45");
    EXPECT_TRUE(sheet().style({5, 5}).font.bold);
    EXPECT_EQ(sheet().tag({5, 5}).view(), "13");
    EXPECT_EQ(sheet().extent({5, 7}), (CellRange{4, 6, 5, 7}));
    workbook.undo();
    EXPECT_EQ(shown({4, 5}), "");
    EXPECT_EQ(sheet().settings().spans.size(), 1U);

    EXPECT_EQ(pasteAt(*copied.data, {4, 5, 4, 5}, PasteKind::valuesOnly), "");
    EXPECT_FALSE(sheet().hasFormula({5, 5}));
    EXPECT_FALSE(sheet().style({5, 5}).font.bold);
}

TEST_F(Paste, RepeatsOverSelectionsThatAreMultiples)
{
    sheet().setNumber({1, 1}, 1);
    sheet().setNumber({1, 2}, 2);
    const Copied copied = copy({1, 1, 1, 2});
    EXPECT_EQ(pasteAt(*copied.data, {3, 1, 4, 4}), "");
    EXPECT_EQ(shown({4, 3}) + shown({3, 4}), "12");
    EXPECT_EQ(pasteAt(*copied.data, {6, 1, 6, 3}), ""); // three rows are no multiple of two
    EXPECT_EQ(shown({6, 2}) + shown({6, 3}), "2");
}

TEST_F(Paste, IntoAnotherWorkbookKeepsTheValuesOfFormulasThatMeanNothingThere)
{
    ASSERT_FALSE(workbook.addSheet("一月"));
    workbook.sheet(2).setNumber({1, 1}, 7);
    ASSERT_FALSE(sheet().setFormula({1, 1}, "一月!A1"));
    ASSERT_FALSE(sheet().setFormula({1, 2}, "A1*2"));
    workbook.recalculateChanged();
    const Copied copied = copy({1, 1, 1, 2});
    Workbook other;
    EXPECT_EQ(pasteInto(other, *copied.data, {3, 3, 3, 3}), "");
    EXPECT_FALSE(other.sheet(1).hasFormula({3, 3}));
    EXPECT_EQ(other.sheet(1).displayText({3, 3}), "7");
    EXPECT_EQ(other.sheet(1).formula({3, 4}), "C3*2");
    EXPECT_EQ(other.sheet(1).displayText({3, 4}), "14");
}

TEST_F(Paste, CutCellsKeepTheirReferencesAndTheirReadersFollow)
{
    sheet().setNumber({1, 1}, 5);
    ASSERT_FALSE(sheet().setFormula({2, 1}, "A1+1"));
    ASSERT_FALSE(sheet().setFormula({3, 1}, "B1*2"));
    const PastePlan plan{{2, 9, 2, 9}};
    ASSERT_FALSE(pasteCut(workbook, sheet(), {2, 1, 2, 1}, sheet(), plan));
    workbook.recalculateChanged();
    EXPECT_EQ(sheet().formula({2, 9}), "A1+1");
    EXPECT_EQ(sheet().formula({3, 1}), "B9*2");
    EXPECT_FALSE(sheet().hasFormula({2, 1}));
    EXPECT_EQ(shown({3, 1}), "12");
}

TEST_F(Paste, TextIsTakenAsIfTyped)
{
    sheet().restyle({1, 1, 1, 1}, [](CellStyle& style) { style.font.bold = true; });
    sheet().setText({2, 2}, "old");
    EXPECT_EQ(pasteAt(*text("1,234.5\t2026-12-31\n=A1*2\t\n=1+\t'007"), {1, 1, 1, 1}), "");
    EXPECT_EQ(shown({1, 1}), "1234.5");
    EXPECT_TRUE(sheet().style({1, 1}).font.bold);
    EXPECT_EQ(sheet().style({2, 1}).type, CellType::date);
    EXPECT_EQ(shown({1, 2}), "2469");
    EXPECT_EQ(shown({2, 2}), "") << "an empty field empties its cell";
    EXPECT_EQ(shown({1, 3}), "=1+") << "no formula: a text";
    EXPECT_EQ(shown({2, 3}), "007");
    workbook.undo();
    EXPECT_EQ(shown({2, 2}), "old");
    EXPECT_FALSE(workbook.canUndo() && workbook.undoLabel() == "粘贴") << "one step";
}

TEST_F(Paste, CodesOfDigitsStayTexts)
{
    const struct {
        const char* pasted;
        bool isText;
    } cases[] = {
        {"0101", true},
        {" 00 ", true},
        {"1234567890123456", true},
        {"123456789012345", false},
        {"0", false},
        {"0.25", false},
        {"01-02", false}, // a date
        {"-0101", false},
        {"5,678.00", false},
        {"1e20", false},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(pasteAt(*text(c.pasted), {1, 1, 1, 1}), "");
        const Value value = sheet().value({1, 1});
        EXPECT_EQ(value.isText(), c.isText) << c.pasted;
        const std::string digits = QString(c.pasted).trimmed().toStdString();
        EXPECT_TRUE(!c.isText || value.textView() == digits) << c.pasted;
        sheet().setStyle({1, 1}, CellStyle());
    }
    QMimeData padded; // by a web page
    padded.setHtml("<table><tr><td>&#160;0101&nbsp;</td><td>\u00A01,234.50</td></tr></table>");
    EXPECT_EQ(pasteAt(padded, {1, 1, 1, 1}), "");
    EXPECT_EQ(shown({1, 1}), "0101");
    EXPECT_EQ(sheet().value({2, 1}), Value(1234.5));
    QMimeData html; // whose figure came along
    html.setHtml("<table><tr><td x:num=\"101\">0101</td><td>0101</td></tr></table>");
    EXPECT_EQ(pasteAt(html, {1, 1, 1, 1}), "");
    EXPECT_EQ(sheet().value({1, 1}), Value(101.0));
    EXPECT_TRUE(sheet().value({2, 1}).isText());
}

TEST_F(Paste, HtmlTablesBringNumbersSpansAndLooks)
{
    QMimeData data;
    data.setText("wrong");
    data.setHtml(
        "<table><tr><td colspan=2 align=center><b>利润表</b><tr><td sdval=0.12345>12.35%<td>x</table>");
    EXPECT_EQ(pasteAt(data, {2, 2, 2, 2}), "");
    EXPECT_EQ(sheet().extent({3, 2}), (CellRange{2, 2, 3, 2}));
    EXPECT_TRUE(sheet().style({2, 2}).font.bold);
    EXPECT_EQ(sheet().value({2, 3}).number(), 0.12345);
    EXPECT_EQ(sheet().style({2, 3}).type, CellType::percent);
}

TEST_F(Paste, OwnHtmlAndTextComeBackAsTheyWere)
{
    sheet().setText({1, 1}, "007");
    sheet().setText({2, 1}, "a\t\"b\"\n<c>");
    sheet().setNumber({1, 2}, 1.0 / 3);
    sheet().addSpan({2, 2, 3, 3});
    const Copied copied = copy({1, 1, 3, 3});
    Workbook other;
    QMimeData html, plain;
    html.setHtml(copied.data->html());
    plain.setText(copied.data->text());
    for (const QMimeData* data : {&html, &plain}) {
        EXPECT_EQ(pasteInto(other, *data, {1, 1, 1, 1}), "");
        EXPECT_EQ(other.sheet(1).displayText({2, 1}), "a\t\"b\"\n<c>");
        EXPECT_TRUE(other.sheet(1).value({1, 1}).isText()) << "a code, not the number 7";
    }
    EXPECT_EQ(pasteInto(other, html, {1, 1, 1, 1}), "");
    EXPECT_EQ(other.sheet(1).value({1, 2}).number(), 1.0 / 3);
    EXPECT_EQ(other.sheet(1).extent({3, 3}), (CellRange{2, 2, 3, 3}));
}

TEST_F(Paste, RefusesWithAReasonAndLosesNothing)
{
    sheet().addSpan({5, 5, 6, 6});
    sheet().setText({5, 5}, "keep");
    ASSERT_FALSE(sheet().setArrayFormula({8, 8, 9, 8}, "A1:B1"));
    const auto before = workbook.revision();
    const QString rubbish(200, QChar(0x01));
    QMimeData damaged, nothing;
    damaged.setData("application/x-report-cells", "CEL4 and rubbish");
    struct Case {
        const char* what;
        std::unique_ptr<QMimeData> data;
        CellRange selection;
    };
    Case cases[] = {
        {"half of a merged cell", text("1\t2"), {4, 5, 4, 5}},
        {"half of an array formula", text("1"), {9, 8, 9, 8}},
        {"beyond the last row", text("1\n2"), {1, maxRows, 1, maxRows}},
        {"beyond the last column", text("1\t2"), {maxColumns, 1, maxColumns, 1}},
        {"binary", text("PNG" + rubbish), {1, 1, 1, 1}},
        {"null characters", text(QString("ab") + QChar::Null), {1, 1, 1, 1}},
        {"too large", text(QString(70'000'000, 'x')), {1, 1, 1, 1}},
        {"empty", text(""), {1, 1, 1, 1}},
    };
    for (Case& c : cases)
        EXPECT_NE(pasteAt(*c.data, c.selection), "") << c.what;
    EXPECT_NE(pasteAt(damaged, {1, 1, 1, 1}), "");
    EXPECT_NE(pasteAt(nothing, {1, 1, 1, 1}), "");
    EXPECT_EQ(workbook.revision(), before);
    EXPECT_EQ(pasteAt(*text("new"), {5, 5, 6, 6}), "") << "one cell goes into a merged one";
    EXPECT_EQ(sheet().extent({6, 6}), (CellRange{5, 5, 6, 6}));
}

TEST_F(Paste, AsksForRoomAndMakesIt)
{
    sheet().changeSettings([](SheetSettings& settings) { settings.rowCount = 10; });
    const auto content = std::get<ClipboardContent>(readClipboard(workbook, *text("1\n2\n3")));
    const auto plan = std::get<PastePlan>(planPaste(sheet(), content, {1, 9, 1, 9}));
    EXPECT_EQ(plan.missingRows, 1);
    ASSERT_FALSE(paste(workbook, sheet(), content, plan));
    EXPECT_EQ(sheet().settings().rowCount, 11);
    workbook.undo();
    EXPECT_EQ(sheet().settings().rowCount, 10);
}

TEST_F(Paste, DamagedCellsOfOursAreRefusedWhole)
{
    sheet().setText({1, 1}, "text");
    ASSERT_FALSE(sheet().setFormula({2, 2}, "A1&\"x\""));
    sheet().addSpan({1, 3, 2, 3});
    sheet().changeSettings([](SheetSettings& settings) {
        const DropDownEntries kinds({"部门", "客户"});
        settings.dropDowns = {{{1, 1}, kinds}, {{2, 1}, kinds}, {{2, 2}, DropDownEntries({"是"})}};
        settings.captions[{2, 3}] = "计算";
    });
    const QByteArray whole = copy({1, 1, 2, 3}).data->data("application/x-report-cells");
    const auto good = unpackCells(workbook, whole);
    ASSERT_TRUE(std::holds_alternative<UnpackedCells>(good));
    EXPECT_EQ(std::get<UnpackedCells>(good).cells.lists->dropDowns, sheet().settings().dropDowns);
    EXPECT_EQ(std::get<UnpackedCells>(good).cells.lists->captions, sheet().settings().captions);
    for (qsizetype length = 0; length < whole.size(); ++length)
        EXPECT_TRUE(std::holds_alternative<Refusal>(unpackCells(workbook, whole.left(length)))) << length;
    for (qsizetype place = 0; place < whole.size(); ++place) {
        QByteArray changed = whole;
        changed[place] = static_cast<char>(~changed[place]);
        // No crash; a changed letter is still a text.
        const auto unpacked = unpackCells(workbook, changed);
        const auto* why = std::get_if<Refusal>(&unpacked);
        EXPECT_TRUE(!why || *why) << place;
    }
}

} // namespace spreadsheet
