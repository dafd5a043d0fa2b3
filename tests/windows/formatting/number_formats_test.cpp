#include "spreadsheet/display/display_text.h"
#include "spreadsheet/display/number_format_code.h"
#include "spreadsheet/view/SpreadsheetControl.h"
#include "tests/platform/commit_text.h"
#include "tests/platform/KeyScript.h"
#include "tests/platform/WindowTest.h"
#include "windows/formatting/cell_commands.h"
#include "windows/formatting/frmDataType.h"
#include "windows/formatting/frmNumberFormat.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QSpinBox>

#include <random>

namespace selfreport {
namespace {

using spreadsheet::CellStyle;
using spreadsheet::CellType;
using spreadsheet::Text;
using Choice = NumberFormatChoice;

std::string shown(const std::string& code, double number)
{
    CellStyle style;
    style.type = CellType::number;
    style.numberFormat = Text(code);
    return displayText(spreadsheet::Value(number), style);
}

TEST(NumberFormatChoices, CodesShowWhatWasChosen)
{
    using enum Choice::Kind;
    using enum Choice::Negative;
    using enum Choice::Zero;
    using enum Choice::Unit;
    const struct {
        Choice choice;
        const char *positive, *negative, *zero; ///< 1234567.895, its opposite and 0
    } cases[] = {
        {{number, true, 2, minus, digits, yuan}, "1,234,567.90", "-1,234,567.90", "0.00"},
        {{number, false, 0, minus, digits, yuan}, "1234568", "-1234568", "0"},
        {{number, true, 2, red, blank, yuan, true}, "1,234,567.90 ", "-1,234,567.90 ", " "},
        {{number, true, 2, brackets, dash, yuan}, "1,234,567.90 ", "(1,234,567.90)", "– "},
        {{number, true, 1, minus, digits, thousands}, "1,234.6", "-1,234.6", "0.0"},
        {{number, true, 4, brackets, digits, tenThousands}, "123.4568 ", "(123.4568)", "0.0000 "},
        {{number, false, 2, red, dash, tenThousands}, "123.46", "-123.46", "–"},
        {{percent, false, 1, minus, blank, yuan}, "123456789.5%", "-123456789.5%", ""},
        {{capitals}, "壹佰贰拾叁万肆仟伍佰陆拾柒元玖角整", "负壹佰贰拾叁万肆仟伍佰陆拾柒元玖角整", "零元整"},
    };
    for (const auto& c : cases) {
        const std::string code = formatCode(c.choice);
        EXPECT_EQ(shown(code, 1234567.895), c.positive) << code;
        EXPECT_EQ(shown(code, -1234567.895), c.negative) << code;
        EXPECT_EQ(shown(code, 0), c.zero) << code;
    }
}

/// The dialog opens on what was chosen before, whichever of the thousands of choices that was.
TEST(NumberFormatChoices, AreFoundAgainByTheirCodes)
{
    std::mt19937 random(24);
    const auto below = [&](unsigned count) { return static_cast<int>(random() % count); };
    for (int i = 0; i < 300; ++i) {
        Choice choice{below(2) ? Choice::Kind::number : Choice::Kind::percent,
                      below(2) == 0,
                      below(16),
                      static_cast<Choice::Negative>(below(3)),
                      static_cast<Choice::Zero>(below(3)),
                      static_cast<Choice::Unit>(below(3)),
                      below(2) == 0};
        if (choice.kind == Choice::Kind::percent)
            choice.unit = Choice::Unit::yuan;
        CellStyle style;
        style.numberFormat = Text(formatCode(choice));
        ASSERT_EQ(choiceOf(style), choice) << style.numberFormat.view();
    }
    for (const char* code : {"0.0\"亿\"", "[>100]0;@", "yyyy", "no such code"}) {
        CellStyle style;
        style.numberFormat = Text(code);
        EXPECT_EQ(choiceOf(style).kind, Choice::Kind::byHand);
        EXPECT_EQ(formatCode(choiceOf(style)), code);
    }
}

TEST(NumberFormatChoices, ThousandsComeAndGoAndNothingElseChanges)
{
    const struct {
        CellType type;
        int decimals;
        const char *before, *grouped, *plainAgain;
    } cases[] = {
        {CellType::number, 3, "", "#,##0.000", ""},
        {CellType::edit, 2, "", "#,##0.00", "0.00"},
        {CellType::number, 2, "0.0_ ;[Red]-0.0_ ;_ ", "#,##0.0_ ;[Red]-#,##0.0_ ;_ ", "0.0_ ;[Red]-0.0_ ;_ "},
        {CellType::edit, 2, "[万元]0", "[万元]#,##0", "[万元]0"},
        {CellType::edit, 2, "0.00%", "#,##0.00%", "0.00%"},
        {CellType::edit, 2, "0.0\"0吨\"", "#,##0.0\"0吨\"", "0.0\"0吨\""},
        {CellType::edit, 2, "_00,;[>9]?0_0", "_0#,##0,;[>9]#,#?0_0", "_00,;[>9]?0_0"},
        {CellType::date, 2, "", "", ""},
        {CellType::percent, 2, "", "", ""},
        {CellType::edit, 2, "yyyy-mm-dd", "yyyy-mm-dd", "yyyy-mm-dd"},
        {CellType::edit, 2, "[人民币大写]", "[人民币大写]", "[人民币大写]"},
        {CellType::currency, 2, "", "", "\"￥\"0.00"},
    };
    for (const auto& c : cases) {
        CellStyle style;
        style.type = c.type;
        style.decimals = static_cast<std::uint8_t>(c.decimals);
        style.numberFormat = Text(c.before);
        groupThousands(style, true);
        EXPECT_EQ(style.numberFormat.view(), c.grouped) << c.before;
        groupThousands(style, false);
        EXPECT_EQ(style.numberFormat.view(), c.plainAgain) << c.before;
        EXPECT_EQ(style.type, c.type);
    }
}

class NumberFormats : public test::WindowTest {
protected:
    NumberFormats()
    {
        grid.resize(800, 500);
        show(grid);
        sheet().setNumber({1, 1}, -1234.5);
    }
    spreadsheet::Sheet& sheet() { return grid.cells().sheet(); }
    std::string code(int column, int row)
    {
        return std::string(sheet().style({column, row}).numberFormat.view());
    }

    spreadsheet::SpreadsheetControl grid;
};

TEST_F(NumberFormats, EachChoiceIsShownOnTheCellsOwnValue)
{
    frmNumberFormat dialog(grid);
    show(dialog);
    const auto preview = [&] { return control<QLabel>(dialog, "lblPreview").text().toStdString(); };
    EXPECT_EQ(preview(), "-1234.5");
    auto& kinds = control<QListWidget>(dialog, "lstKind");
    kinds.setCurrentRow(1);
    EXPECT_EQ(preview(), "-1,234.50");
    test::commitText(control<QSpinBox>(dialog, "spnDecimals"), "３"); // of full width
    EXPECT_EQ(preview(), "-1,234.500");
    test::commitText(control<QSpinBox>(dialog, "spnDecimals"), "2");
    EXPECT_EQ(control<QComboBox>(dialog, "cboNegative").itemText(2), "(1,234.50)");
    EXPECT_EQ(control<QComboBox>(dialog, "cboZero").itemText(2), "空白");
    control<QComboBox>(dialog, "cboNegative").setCurrentIndex(1);
    EXPECT_EQ(preview(), "<span style=\"color:#ff0000\">-1,234.50</span>");
    control<QComboBox>(dialog, "cboUnit").setCurrentIndex(2);
    EXPECT_EQ(preview(), "<span style=\"color:#ff0000\">-0.12</span>");
    EXPECT_FALSE(control<QLabel>(dialog, "lblNote").text().isEmpty()) << "others do not know it";
    kinds.setCurrentRow(4);
    EXPECT_EQ(preview(), "负壹仟贰佰叁拾肆元伍角整");
    EXPECT_FALSE(control<QComboBox>(dialog, "cboUnit").isEnabled());
}

/// A zero says nothing of negative figures.
TEST_F(NumberFormats, NegativesOfAZeroAreShownOnAnExample)
{
    sheet().setNumber({1, 1}, 0);
    frmNumberFormat dialog(grid);
    show(dialog);
    control<QListWidget>(dialog, "lstKind").setCurrentRow(1);
    control<QComboBox>(dialog, "cboZero").setCurrentIndex(2); // blank
    QStringList shown;
    for (int i = 0; i < 3; ++i)
        shown << control<QComboBox>(dialog, "cboNegative").itemText(i);
    EXPECT_EQ(shown, (QStringList{"-1,234,567.89", "-1,234,567.89  红字", "(1,234,567.89)"}));
    EXPECT_EQ(control<QLabel>(dialog, "lblPreview").text(), "");
}

/// With keys alone; the code that is typed is the one that counts.
TEST_F(NumberFormats, CodesByHandAreTypedTriedAndTakenAtOnce)
{
    frmNumberFormat dialog(grid);
    show(dialog);
    EXPECT_TRUE(test::KeyScript(dialog, "Alt+C Ctrl+A '0.0bad' Return").run());
    EXPECT_TRUE(dialog.isVisible()) << "a letter that means nothing";
    EXPECT_FALSE(control<QLabel>(dialog, "lblNote").text().isEmpty());
    EXPECT_EQ(code(1, 1), "");
    EXPECT_TRUE(test::KeyScript(dialog, "Alt+C Ctrl+A '0.000' Return").run());
    EXPECT_FALSE(dialog.isVisible());
    EXPECT_EQ(code(1, 1), "0.000");
    EXPECT_EQ(sheet().displayText({1, 1}), "-1234.500");
    EXPECT_EQ(sheet().textByType({1, 1}), "-1234.5") << "what other reports get";
    grid.commands().undo();
    EXPECT_EQ(code(1, 1), "");
}

TEST_F(NumberFormats, BlocksAreOneStepAndATypeTakesTheCodeAway)
{
    grid.cursor().select({1, 1, 2, 3});
    setNumberFormat(grid, "[万元]0.00");
    EXPECT_EQ(code(2, 3), "[万元]0.00");
    grid.commands().undo();
    EXPECT_EQ(code(1, 1) + code(2, 3), "");
    toggleThousands(grid);
    EXPECT_EQ(sheet().displayText({1, 1}), "-1,234.50");
    EXPECT_EQ(code(2, 3), "#,##0.00");
    toggleThousands(grid);
    EXPECT_EQ(code(2, 3), "0.00");

    frmDataType type(grid, {1, 1});
    auto& list = control<QComboBox>(type, "PC_1");
    list.setCurrentIndex(list.findText("货币型"));
    control<QPushButton>(type, "cmdXPOK").click();
    EXPECT_EQ(sheet().displayText({1, 1}), "-￥1,234.50");
    grid.setMode(spreadsheet::GridMode::run);
    toggleThousands(grid);
    setNumberFormat(grid, "0");
    EXPECT_EQ(code(1, 1), "");
}

} // namespace
} // namespace selfreport
