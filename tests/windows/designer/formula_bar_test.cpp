// What the formula box shows and takes, beside the cell.
#include "spreadsheet/workbook/UndoJournal.h"
#include "tests/windows/designer/DesignerTest.h"

#include <QClipboard>
#include <QInputMethodEvent>
#include <QLabel>
#include <QListWidget>
#include <QStatusBar>
#include <QTextFormat>

#include <algorithm>
#include <cmath>

namespace selfreport {
namespace {

class FormulaBar : public test::DesignerTest {
protected:
    void type(const QString& keys)
    {
        for (const QChar key : keys)
            QTest::keyClick(QApplication::focusWidget(), key.toLatin1());
    }
    static void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::keyClick(QApplication::focusWidget(), key, modifiers);
    }
    QString focus() { return QApplication::focusWidget()->objectName(); }
    /// The box as a user reads it: "=A1" with the sign of the label.
    QString bar()
    {
        const bool sign = control<QLabel>(*window, "lblEquals").isVisible();
        return (sign ? QStringLiteral("=|") : QString()) + edit("txtFormula").text();
    }
    std::string status() { return control<QStatusBar>(*window, "statusBar").currentMessage().toStdString(); }
};

TEST_F(FormulaBar, TheSignStandsBesideAFormulaOnly)
{
    open();
    moveTo(2, 2);
    demand(grid().cells().sheet().setFormula({1, 1}, "B1*2"));
    grid().cells().sheet().setNumber({2, 1}, 5);
    moveTo(2, 1);
    EXPECT_EQ(bar(), "");
    moveTo(1, 1);
    EXPECT_EQ(bar(), "=|B1*2");
    edit("txtFormula").setFocus();
    edit("txtFormula").selectAll();
    type("1");
    EXPECT_EQ(bar(), "1") << "a number is no formula";
    type("+B1");
    EXPECT_EQ(bar(), "=|1+B1");
    press(Qt::Key_Home);
    type("=");
    EXPECT_EQ(bar(), "=1+B1") << "typed, it is seen once";
    press(Qt::Key_Return);
    EXPECT_EQ(bar(), "=|1+B1");
    EXPECT_EQ(formula(1, 1), "1+B1");

    const auto steps = grid().cells().workbook().journal().steps();
    typeInBox("=1+B1", Qt::Key_Return);
    EXPECT_EQ(bar(), "=|1+B1");
    EXPECT_EQ(grid().cells().workbook().journal().steps(), steps) << "the same formula once more";
    typeInBox("", Qt::Key_Return);
    EXPECT_EQ(bar(), "");
    EXPECT_EQ(formula(1, 1), "");
}

TEST_F(FormulaBar, ItFollowsWhatIsTypedIntoTheCell)
{
    open();
    grid().setFocus();
    const struct {
        const char *typed, *shown;
    } cases[] = {{"=", "="}, {"A", "=|A"}, {"5+2", "=|A5+2"}};
    for (const auto& [typed, shown] : cases) {
        type(typed);
        EXPECT_EQ(bar(), shown);
        EXPECT_EQ(focus(), "cellEditor");
    }
    press(Qt::Key_Escape);
    EXPECT_EQ(bar(), "");
    type("12");
    EXPECT_EQ(bar(), "12");
    press(Qt::Key_Return);
    EXPECT_EQ(grid().cells().text(1, 1), "12");
    const QString longOne = "SUM(" + QString("A1,").repeated(60) + "A1)";
    demand(grid().cells().sheet().setFormula({3, 3}, longOne.toStdString()));
    moveTo(3, 3);
    EXPECT_EQ(edit("txtFormula").cursorPosition(), 0) << "read from its beginning";
}

TEST_F(FormulaBar, CtrlF2GoesThereAndBack)
{
    open();
    grid().setFocus();
    type("=A2+");
    press(Qt::Key_F2, Qt::ControlModifier);
    EXPECT_EQ(focus(), "txtFormula");
    EXPECT_EQ(bar(), "=|A2+");
    type("1");
    press(Qt::Key_F2, Qt::ControlModifier);
    EXPECT_EQ(focus(), "cellEditor");
    EXPECT_EQ(grid().entry().text(), "=A2+1");
    EXPECT_EQ(formula(1, 1), "") << "nothing is entered on the way";
    press(Qt::Key_F2, Qt::ControlModifier);
    press(Qt::Key_Return);
    EXPECT_EQ(formula(1, 1), "A2+1");
    EXPECT_EQ(focus(), "fps1");

    moveTo(1, 1);
    const auto steps = grid().cells().workbook().journal().steps();
    press(Qt::Key_F2, Qt::ControlModifier);
    EXPECT_EQ(focus(), "txtFormula");
    press(Qt::Key_F2, Qt::ControlModifier);
    EXPECT_EQ(focus(), "fps1");
    EXPECT_FALSE(grid().entry().isOpen());
    press(Qt::Key_F2, Qt::ControlModifier);
    type("*9");
    press(Qt::Key_F2, Qt::ControlModifier);
    EXPECT_EQ(grid().entry().text(), "=A2+1*9") << "a formula of the cell gets its sign back";
    press(Qt::Key_Escape);
    EXPECT_EQ(grid().cells().workbook().journal().steps(), steps);

    moveTo(2, 2);
    type("12");
    press(Qt::Key_F2, Qt::ControlModifier);
    type("3");
    press(Qt::Key_Return);
    EXPECT_EQ(grid().cells().sheet().value({2, 2}), spreadsheet::Value(123.0));
    type("7");
    QTest::mouseClick(&edit("txtFormula"), Qt::LeftButton);
    EXPECT_EQ(focus(), "txtFormula") << "a click in the box ends the entry and stays there";
    EXPECT_EQ(grid().cells().text(2, 2), "7");
}

TEST_F(FormulaBar, CellsArePointedAtInAFormulaWithoutItsSign)
{
    open();
    moveTo(2, 2);
    demand(grid().cells().sheet().setFormula({1, 1}, "B1*2"));
    moveTo(1, 1);
    edit("txtFormula").setFocus();
    press(Qt::Key_End);
    type("+");
    QTest::mouseClick(&grid(), Qt::LeftButton, {}, grid().cellRect({3, 4}).center());
    EXPECT_EQ(bar(), "=|B1*2+C4");
    press(Qt::Key_Return);
    EXPECT_EQ(formula(1, 1), "B1*2+C4");
    edit("txtFormula").setFocus();
    edit("txtFormula").selectAll();
    press(Qt::Key_Delete);
    QTest::mouseClick(&grid(), Qt::LeftButton, {}, grid().cellRect({3, 4}).center());
    EXPECT_EQ(formula(1, 1), "") << "an empty box is no formula to point for";
}

TEST_F(FormulaBar, EnterInTheNameBoxGoesOnToTheGrid)
{
    open();
    edit("txtReportName").setFocus();
    type("x");
    press(Qt::Key_Return);
    EXPECT_EQ(focus(), "fps1");
    EXPECT_EQ(edit("txtReportName").text(), "x");
}

TEST_F(FormulaBar, ALockedCellRefusesHereAsInTheCell)
{
    open();
    demand(grid().cells().sheet().setFormula({1, 1}, "1+1"));
    grid().cells().changeStyle([](spreadsheet::CellStyle& style) { style.locked = true; });
    grid().setFocus();
    moveTo(2, 2);
    moveTo(1, 1);
    type("5");
    const std::string told = status();
    EXPECT_EQ(told, "单元格已锁定，不能更改");
    const struct {
        Qt::Key key;
        Qt::KeyboardModifiers modifiers;
    } changes[] = {
        {Qt::Key_5, {}}, {Qt::Key_Backspace, {}}, {Qt::Key_Delete, {}}, {Qt::Key_V, Qt::ControlModifier}};
    QApplication::clipboard()->setText("8");
    for (const auto& [key, modifiers] : changes) {
        moveTo(2, 2);
        moveTo(1, 1);
        edit("txtFormula").setFocus();
        EXPECT_EQ(status(), "");
        press(key, modifiers);
        EXPECT_EQ(status(), told) << key;
        EXPECT_EQ(bar(), "=|1+1") << key;
        EXPECT_FALSE(grid().entry().isOpen());
    }
    press(Qt::Key_Escape);
    EXPECT_EQ(focus(), "fps1");
    moveTo(2, 2);
    typeInBox("7", Qt::Key_Return);
    EXPECT_EQ(grid().cells().text(2, 2), "7") << "another cell is free";
}

/// The wave stands under the place that is wrong, whatever stands before it.
TEST_F(FormulaBar, TheMistakeIsMarkedWhereItStands)
{
    open();
    struct Marks : QObject {
        bool eventFilter(QObject* watched, QEvent* event) override
        {
            if (event->type() != QEvent::InputMethod)
                return false;
            for (const auto& attribute : static_cast<QInputMethodEvent*>(event)->attributes()) {
                const auto format = qvariant_cast<QTextFormat>(attribute.value).toCharFormat();
                if (format.underlineStyle() == QTextCharFormat::WaveUnderline)
                    place = attribute.start + static_cast<QLineEdit*>(watched)->cursorPosition();
            }
            return false;
        }
        int place = -1;
    } marks;
    edit("txtFormula").installEventFilter(&marks);
    for (const int blanks : {0, 1, 4}) {
        marks.place = -1;
        typeInBox(QString(blanks, ' ') + "=1+*2", Qt::Key_Return);
        EXPECT_EQ(marks.place, blanks + 3);
        typeInBox("", Qt::Key_Escape);
    }
}

/// How well a colour can be told from its ground: 1 not at all, 21 at best, 4.5 for texts to be read.
static double contrast(const QColor& a, const QColor& b)
{
    const auto luminance = [](const QColor& colour) {
        const auto part = [](double value) {
            return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
        };
        return 0.2126 * part(colour.redF()) + 0.7152 * part(colour.greenF()) + 0.0722 * part(colour.blueF());
    };
    const auto [darker, lighter] = std::minmax({luminance(a), luminance(b)});
    return (lighter + 0.05) / (darker + 0.05);
}

TEST_F(FormulaBar, ReferencesCanBeReadInADarkPaletteToo)
{
    open();
    struct Colours : QObject {
        bool eventFilter(QObject*, QEvent* event) override
        {
            if (event->type() != QEvent::InputMethod)
                return false;
            for (const auto& attribute : static_cast<QInputMethodEvent*>(event)->attributes())
                if (const auto format = qvariant_cast<QTextFormat>(attribute.value).toCharFormat();
                    format.hasProperty(QTextFormat::ForegroundBrush))
                    seen << format.foreground().color();
            return false;
        }
        QList<QColor> seen;
    } colours;
    QLineEdit& box = edit("txtFormula");
    box.installEventFilter(&colours);
    for (const QColor& ground : {QColor(255, 255, 255), QColor(27, 30, 32)}) {
        QPalette palette = box.palette();
        palette.setColor(QPalette::Base, ground);
        box.setPalette(palette);
        colours.seen.clear();
        typeInBox("=A1+A2+A3+A4+A5+A6+A7+A8", Qt::Key_Escape);
        EXPECT_GE(colours.seen.size(), 8);
        for (const QColor& colour : colours.seen)
            EXPECT_GE(contrast(colour, ground), ground.lightness() > 128 ? 3 : 4.5)
                << colour.name().toStdString();
    }
}

TEST_F(FormulaBar, ArgumentsAreChosenFromWhatTheLedgerHas)
{
    storeReport();
    open();
    moveTo(4, 4);
    grid().setFocus();
    const auto offered = [] {
        QStringList names;
        for (QWidget* const popup : QApplication::allWidgets())
            if (auto* list = qobject_cast<QListWidget*>(popup); list && list->isVisible())
                for (int row = 0; row < list->count(); ++row)
                    names << list->item(row)->text();
        return names;
    };
    type("=Acct(\"1001\"");
    EXPECT_EQ(offered(), QStringList());
    type(",");
    EXPECT_EQ(offered().size(), 14);
    EXPECT_EQ(offered().value(1), "2  期末余额");
    type("\"3");
    EXPECT_EQ(offered(), QStringList({"3  借方发生额", "13  期末借方余额"}));
    press(Qt::Key_Tab);
    EXPECT_EQ(grid().entry().text(), "=Acct(\"1001\",\"3\"");
    EXPECT_EQ(offered(), QStringList());
    press(Qt::Key_Escape);
    press(Qt::Key_Escape);
    grid().setFocus();
    moveTo(5, 5);
    type("=REF_F(");
    EXPECT_EQ(offered(), QStringList("现金表"));
    press(Qt::Key_Down);
    press(Qt::Key_Return);
    EXPECT_EQ(grid().entry().text(), "=REF_F(\"现金表\"");
}

} // namespace
} // namespace selfreport
