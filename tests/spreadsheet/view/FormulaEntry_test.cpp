#include "spreadsheet/view/FormulaEntry.h"

#include "spreadsheet/view/reference_text.h"
#include "spreadsheet/workbook/Workbook.h"

#include <gtest/gtest.h>

namespace spreadsheet {

namespace {

/// "|" marks the cursor, "[" the other end of a selection.
EditedText marked(const QString& text)
{
    EditedText edited{text, 0, 0};
    const qsizetype anchor = edited.text.indexOf('[');
    edited.text.remove('[');
    edited.cursor = static_cast<int>(edited.text.indexOf('|'));
    edited.text.remove('|');
    edited.anchor = anchor < 0 ? edited.cursor : static_cast<int>(anchor);
    return edited;
}

std::string markedText(const EditedText& edited)
{
    QString text = edited.text;
    text.insert(edited.cursor, '|');
    if (edited.anchor != edited.cursor)
        text.insert(edited.anchor, '[');
    return text.toStdString();
}

struct Formulas : testing::Test {
    Formulas()
    {
        demand(workbook.addSheet("2月 调整"));
        workbook.registerFunction("Acct", 6, [](FunctionCall&) {});
    }
    FormulaContext context() const { return {&workbook, 1, {2, 2}}; }

    Workbook workbook;
};

} // namespace

TEST_F(Formulas, ReferencesGoWhereTheyCanStand)
{
    const struct {
        const char* text;
        bool takes;
    } cases[] = {
        {"=|", true},         {"|=", false},           {"= |", true},          {"=A1|", false},
        {"=A1+|", true},      {"=A1+ |", true},        {"=SUM(|", true},       {"=SUM(|)", true},
        {"=SUM(A1,|)", true}, {"=SUM(A1|,B1)", false}, {"=SUM（A1，|", true},  {"=\"a+|", false},
        {"=\"a\"&|", true},   {"=|A1", false},         {"=1+|(2)", false},     {"={1,|", false},
        {"=A1:|", true},      {"=50%|", false},        {"=SUM(A1)|", false},   {"=-|", true},
        {"12+|", false},      {"合计|", false},        {"Acct(\"1\",|", true}, {"=A|1+2", false},
        {"=|+1", true},       {"=金额+|", true},       {"=~+|", true},         {"sum(|", true},
    };
    for (const auto& c : cases) {
        const EditedText edited = marked(QString::fromUtf8(c.text));
        EXPECT_EQ(FormulaText(edited.text, context()).takesReferenceAt(edited.cursor), c.takes) << c.text;
    }
}

TEST_F(Formulas, TheCurrentArgumentIsThatOfTheInnermostCall)
{
    const struct {
        const char *text, *call; ///< "name/argument"
    } cases[] = {
        {"=SUM(|", "SUM/0"},
        {"=SUM(A1,|", "SUM/1"},
        {"=SUM(A1|,B1)", "SUM/0"},
        {"=IF(SUM(A1,B1)>1,|", "IF/1"},
        {"=IF(SUM(A1,|", "SUM/1"},
        {"=SUM((A1,B1|", "SUM/0"},
        {"=SUM({1,2,3},|", "SUM/1"},
        {"=SUM(\"a,b\",|", "SUM/1"},
        {"=SUM(A1)|", ""},
        {"=SU|M(", ""},
        {"Acct(\"1001\" ,\"1\" , |\"RMB\"", "Acct/2"},
        {"=SUM（A1，|", "SUM/1"},
        {"=𠀀(1,|", "𠀀/1"}, // two units
        {"text(|", "text/0"},
        {"合计(|", ""},
    };
    for (const auto& c : cases) {
        const EditedText edited = marked(QString::fromUtf8(c.text));
        const auto call = FormulaText(edited.text, context()).callAt(edited.cursor);
        const QString shown = call ? call->function + "/" + QString::number(call->argument) : QString();
        EXPECT_EQ(shown.toStdString(), c.call) << c.text;
    }
}

TEST_F(Formulas, EqualReferencesShareAColourAndUnfinishedPiecesDoNotHideTheRest)
{
    const QString text = QString::fromUtf8("=a1+B2*$A$1+'2月 调整'!A1+Sheet9!A1+~C3&\"x");
    const FormulaText formula(text, context());
    std::string references;
    for (const FormulaToken& token : formula.tokens()) {
        if (token.colour >= 0)
            references += text.mid(token.begin, token.length).toStdString() + "=" +
                          std::to_string(token.colour) + "/" + std::to_string(token.sheet) + " ";
    }
    EXPECT_EQ(references, "a1=0/1 B2=1/1 $A$1=0/1 '2月 调整'!A1=2/2 C3=3/1 ");
    EXPECT_EQ(formula.tokens().back().end(), text.size());
    EXPECT_TRUE(FormulaText("12+A1", context()).tokens().empty());
}

TEST_F(Formulas, DollarsCycle)
{
    const struct {
        const char* steps[5];
    } cases[] = {
        {{"A1", "$A$1", "A$1", "$A1", "A1"}},
        {{"b2:C9", "$b$2:$C$9", "b$2:C$9", "$b2:$C9", "b2:C9"}},
        {{"C:D", "$C:$D", "C:D", "$C:$D", "C:D"}},
        {{"2:$9", "$2:$9", "2:9", "$2:$9", "2:9"}},
        {{"'a!b'!A1", "'a!b'!$A$1", "'a!b'!A$1", "'a!b'!$A1", "'a!b'!A1"}},
    };
    for (const auto& c : cases) {
        for (int step = 0; step < 4; ++step)
            EXPECT_EQ(cycledReference(c.steps[step]).toStdString(), c.steps[step + 1]);
    }
    const FormulaEntry entry(context());
    EXPECT_EQ(markedText(entry.cycle(marked("=A1|+B2"))), "=$A$1|+B2");
    EXPECT_EQ(markedText(entry.cycle(marked("=|A1+B2"))), "=$A$1|+B2");
    EXPECT_EQ(markedText(entry.cycle(marked("=[A1+B2|*C3"))), "=[$A$1+$B$2|*C3");
    EXPECT_EQ(markedText(entry.cycle(marked("=12|"))), "=12|");
}

TEST_F(Formulas, PointingReplacesTheReferenceJustPutUntilSomethingIsTyped)
{
    FormulaEntry entry(context());
    EditedText edited = entry.point(marked("=1+|*2"), {1, {3, 3}, {3, 3}});
    EXPECT_EQ(markedText(edited), "=1+C3|*2");
    edited = entry.point(edited, {1, {3, 3}, {1, 5}});
    EXPECT_EQ(markedText(edited), "=1+A3:C5|*2");
    EXPECT_EQ(entry.pointed(edited)->head, (CellAddress{1, 5}));
    edited = entry.point(edited, {2, {1, 1}, {1, 1}});
    EXPECT_EQ(markedText(edited), "=1+'2月 调整'!A1|*2");
    entry.stopPointing();
    EXPECT_FALSE(entry.canPoint(edited));
    EXPECT_FALSE(entry.pointed(edited));
    EXPECT_EQ(markedText(entry.point(marked("=1+[A9|"), {1, {3, 1}, {3, 500}})), "=1+C:C|");
    EXPECT_TRUE(entry.canPoint(marked("=1+[A9|")));
    EXPECT_FALSE(entry.canPoint(marked("=1+A9|")));
    workbook.sheet(1).addSpan({4, 4, 5, 5});
    EXPECT_EQ(referenceText(workbook, 1, 1, {4, 4, 5, 5}).toStdString(), "D4");
}

TEST_F(Formulas, NamesAreCompletedInPlaceOfTheWordBeforeTheCursor)
{
    const FormulaEntry entry(context());
    EXPECT_EQ(markedText(entry.complete(marked("=1+su|"), "SUM")), "=1+SUM(|");
    EXPECT_EQ(markedText(entry.complete(marked("=log1|(2)"), "LOG10")), "=LOG10(|2)");
    EXPECT_EQ(markedText(entry.complete(marked("=\"su|"), "SUM")), "=\"su|");
    EXPECT_FALSE(FormulaText("=$A1", context()).wordBefore(4));
    EXPECT_FALSE(FormulaText("su", context()).wordBefore(2));
}

} // namespace spreadsheet
