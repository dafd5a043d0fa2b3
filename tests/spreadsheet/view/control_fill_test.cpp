// Filling by mouse and by keys.
#include "spreadsheet/workbook/typed_text.h"
#include "tests/spreadsheet/view/ControlTest.h"

namespace spreadsheet {

namespace {

constexpr Qt::KeyboardModifiers ctrl = Qt::ControlModifier;

class FillByUser : public ControlTest {
protected:
    /// Enters texts as if typed, downwards from a cell.
    void enter(const char* first, const std::vector<std::string>& texts)
    {
        CellAddress cell = *parseCellName(first);
        for (const std::string& text : texts) {
            ASSERT_FALSE(enterText(control.cells().workbook(), sheet(), cell, text, TypedInto::cell));
            ++cell.row;
        }
        control.cells().workbook().recalculateChanged();
        control.showChanges();
    }
    void selectByMouse(const char* from, const char* to)
    {
        if (std::string(from) == to)
            click(from);
        else
            drag(centre(from), centre(to));
    }
    /// The small square at the corner of the selection.
    QPoint handle() const
    {
        const CellRange range = control.cursor().selection().back();
        return control.cellRect({range.right, range.bottom}).bottomRight();
    }
};

} // namespace

TEST_F(FillByUser, TheHandleGoesOnWithSeries)
{
    const struct {
        std::vector<std::string> typed; ///< from D10 down
        const char* to;
        Qt::KeyboardModifiers modifiers;
        const char *first, *last, *shown;
    } cases[] = {
        {{"1", "3"}, "D14", {}, "D10", "D14", "1;3;5;7;9"},
        {{"1", "3"}, "D14", ctrl, "D10", "D14", "1;3;1;3;1"},
        {{"1", "3"}, "D7", {}, "D7", "D11", "-5;-3;-1;1;3"},
        {{"8"}, "D12", {}, "D10", "D12", "8;8;8"},
        {{"2026-01-31", "2026-02-28"},
         "D13",
         {},
         "D10",
         "D13",
         "2026-01-31;2026-02-28;2026-03-31;2026-04-30"},
        {{"2026-12-30"}, "D13", {}, "D10", "D13", "2026-12-30;2026-12-31;2027-01-01;2027-01-02"},
        {{"一月"},
         "D22",
         {},
         "D10",
         "D22",
         "一月;二月;三月;四月;五月;六月;七月;八月;九月;十月;十一月;十二月;一月"},
        {{"一月"}, "G10", {}, "D10", "G10", "一月 二月 三月 四月"},
        {{"三月"}, "B10", {}, "B10", "D10", "一月 二月 三月"},
        {{"第一季度"}, "D13", {}, "D10", "D13", "第一季度;第二季度;第三季度;第四季度"},
        {{"=ROW()*10"}, "D12", {}, "D10", "D12", "100;110;120"},
        {{"a", "7"}, "D10", {}, "D10", "D12", "a;7;"}, // back to where it began
    };
    for (const auto& c : cases) {
        enter("D10", c.typed);
        const std::string before = shown("B7", "G22");
        selectByMouse("D10", cellName({4, 9 + static_cast<int>(c.typed.size())}).c_str());
        drag(handle(), centre(c.to), c.modifiers);
        EXPECT_EQ(shown(c.first, c.last), c.shown) << c.typed.front() << " to " << c.to;
        if (shown("B7", "G22") != before)
            key(Qt::Key_Z, ctrl);
        EXPECT_EQ(shown("B7", "G22"), before) << "one step back";
        sheet().clearContents({1, 1, 30, 100});
        control.cells().changeStyle({1, 1, 30, 100}, [](CellStyle& style) { style = {}; });
    }
}

TEST_F(FillByUser, TheHandleSelectsWhatItFilledAndScrollsOn)
{
    enter("B2", {"1", "2"});
    selectByMouse("B2", "B3");
    const QPoint below(centre("B2").x(), control.height() + 60);
    QTest::mousePress(&control, Qt::LeftButton, {}, handle());
    QTest::mouseMove(&control, below);
    ASSERT_TRUE(QTest::qWaitFor([this] { return control.cursor().topLeftCell().row > 40; }, 5000));
    QTest::mouseRelease(&control, Qt::LeftButton, {}, below);
    const CellRange filled = control.cursor().firstRange();
    EXPECT_EQ(CellAddress(filled.left, filled.top), (CellAddress{2, 2}));
    EXPECT_GT(filled.bottom, 45);
    EXPECT_EQ(sheet().value({2, filled.bottom}).number(), filled.bottom - 1);
}

TEST_F(FillByUser, WhatMustNotBeFilledIsRefused)
{
    enter("B2", {"1", "2"});
    const auto fill = [this](const char* to) {
        refusal.clear();
        selectByMouse("B2", "B3");
        drag(handle(), centre(to));
    };
    sheet().restyle({2, 5, 2, 5}, [](CellStyle& style) { style.locked = true; });
    fill("B7");
    EXPECT_FALSE(refusal.empty());
    EXPECT_EQ(shown("B2", "B7"), "1;2;;;;") << "a locked cell";
    sheet().restyle({2, 5, 2, 5}, [](CellStyle& style) { style.locked = false; });
    control.cells().addSpan({2, 6, 3, 6});
    fill("B7");
    EXPECT_FALSE(refusal.empty());
    EXPECT_EQ(shown("B2", "B7"), "1;2;;;;") << "half of a merged cell";
    fill("B5");
    EXPECT_EQ(shown("B2", "B7"), "1;2;3;4;;");

    // Esc gives up what the mouse is about to do.
    click("D2");
    type("5");
    key(Qt::Key_Return);
    click("D2");
    QTest::mousePress(&control, Qt::LeftButton, {}, handle());
    QTest::mouseMove(&control, centre("D6"));
    key(Qt::Key_Escape);
    QTest::mouseRelease(&control, Qt::LeftButton, {}, centre("D6"));
    EXPECT_EQ(shown("D2", "D6"), "5;;;;");
    control.setMode(GridMode::run);
    drag(handle(), centre("D6"));
    EXPECT_EQ(shown("D2", "D6"), "5;;;;") << "no handle in run mode";
}

TEST_F(FillByUser, ADoubleClickOnTheHandleFillsBesideTheTable)
{
    enter("A1", {"a", "b", "c", "", "e"});
    enter("C1", {"7", "8", "9", "9"});
    enter("B1", {"=ROW()"});
    const auto doubleClick = [this](const char* from, const char* to) {
        selectByMouse(from, to);
        QTest::mouseClick(&control, Qt::LeftButton, {}, handle());
        QTest::mouseDClick(&control, Qt::LeftButton, {}, handle());
    };
    doubleClick("B1", "B1");
    EXPECT_EQ(shown("B1", "B5"), "1;2;3;;") << "as far as the column on the left goes";
    EXPECT_EQ(cursor(), "B1 in B1:B3");
    EXPECT_FALSE(control.entry().isOpen());
    enter("D1", {"1", "2"});
    doubleClick("D1", "D2");
    EXPECT_EQ(shown("D1", "D5"), "1;2;3;4;");
    enter("H1", {"1"});
    doubleClick("H1", "H1");
    EXPECT_EQ(shown("H1", "H3"), "1;;") << "nothing beside it";
    enter("B3", {"x"});
    sheet().clearContents({2, 2, 2, 2});
    doubleClick("B1", "B1");
    EXPECT_EQ(shown("B1", "B3"), "1;2;x") << "nothing that is there is overwritten";
}

TEST_F(FillByUser, KeysFillDownAndRight)
{
    enter("A1", {"5"});
    enter("B1", {"=A1*2"});
    enter("A5", {"7"});
    selectByMouse("A1", "B3");
    key(Qt::Key_D, ctrl);
    EXPECT_EQ(shown("A1", "B3"), "5 10;5 10;5 10");
    click("B4");
    key(Qt::Key_D, ctrl);
    EXPECT_EQ(formula("B4"), "A4*2") << "from the cell above";
    click("C1");
    key(Qt::Key_R, ctrl);
    EXPECT_EQ(formula("C1"), "B1*2") << "from the cell on the left";
    selectByMouse("A5", "C5");
    key(Qt::Key_R, ctrl);
    EXPECT_EQ(shown("A5", "C5"), "7 7 7");
    key(Qt::Key_Z, ctrl);
    EXPECT_EQ(shown("A5", "C5"), "7  ");
}

} // namespace spreadsheet
