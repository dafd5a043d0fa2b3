// A user who does anything at all.
#include "spreadsheet/workbook/UndoJournal.h"
#include "tests/spreadsheet/view/ControlTest.h"

#include <QClipboard>
#include <QMenu>
#include <QMimeData>
#include <QTabBar>
#include <QWheelEvent>

#include <random>

namespace spreadsheet {

namespace {

class AnyUser : public ControlTest {
protected:
    /// All that a step of undo must bring back.
    std::string state()
    {
        std::ostringstream text;
        for (int number = 1; number <= control.cells().sheetCount(); ++number) {
            const Sheet& each = control.cells().workbook().sheet(number);
            const SheetSettings& settings = each.settings();
            text << each.name() << ' ' << settings.rowCount << 'x' << settings.columnCount << " frozen "
                 << settings.frozenRows << ',' << settings.frozenColumns << '\n';
            for (const CellRange& span : settings.spans)
                text << "span " << name(span) << '\n';
            for (const CellRange& array : settings.arrays)
                text << "array " << name(array) << '\n';
            for (const auto& [index, size] : settings.rows.sizes)
                text << "row " << index << '=' << size << '\n';
            for (const auto& [index, size] : settings.columns.sizes)
                text << "column " << index << '=' << size << '\n';
            for (const auto* axis : {&settings.rows, &settings.columns})
                for (const auto& [index, isHidden] : axis->hidden)
                    text << "hidden " << index << '=' << isHidden << '\n';
            for (int row = 1; row <= each.lastDataRow(); ++row)
                for (int column = 1; column <= each.lastDataColumn(); ++column) {
                    const CellAddress cell{column, row};
                    const std::string content = each.displayText(cell) + "|" + each.formula(cell);
                    if (content != "|")
                        text << cellName(cell) << ' ' << content << ' '
                             << static_cast<int>(each.style(cell).type) << '\n';
                }
        }
        return text.str();
    }
    void prepare()
    {
        demand(control.cells().setSheetCount(2));
        put("A1", "科目");
        put("B1", "一月");
        for (int row = 2; row <= 9; ++row) {
            sheet().setNumber({1, row}, 1000 + row);
            ASSERT_FALSE(sheet().setFormula({2, row}, "A" + std::to_string(row) + "*2"));
        }
        ASSERT_FALSE(sheet().setFormula({2, 10}, "SUM(B2:B9)"));
        control.cells().addSpan({4, 4, 6, 5});
        ASSERT_FALSE(sheet().setArrayFormula({8, 3, 8, 5}, "A2:A4*10"));
        control.cells().workbook().sheet(2).setText({3, 3}, "第二张");
        control.cells().changeStyle({3, 12, 4, 12}, [](CellStyle& style) { style.locked = true; });
        setType("E12", CellType::checkBox);
        setType("F12", CellType::dropDown);
        control.cells().setCurrent(6, 12);
        control.cells().setDropDown({"甲", "乙"});
        control.cells().workbook().recalculateChanged();
        control.ask = [this](const QString&) { return random() % 2 == 0; };
        control.showChanges();
    }

    std::uint32_t below(std::uint32_t limit) { return static_cast<std::uint32_t>(random() % limit); }
    Qt::KeyboardModifiers modifiers()
    {
        const Qt::KeyboardModifiers all[] = {Qt::NoModifier, Qt::NoModifier, Qt::ShiftModifier,
                                             Qt::ControlModifier, Qt::ControlModifier | Qt::ShiftModifier};
        return all[below(5)];
    }
    QPoint place() { return {static_cast<int>(below(620)), static_cast<int>(below(380))}; }

    void pressAnyKey()
    {
        const int keys[] = {
            Qt::Key_Left,      Qt::Key_Right,      Qt::Key_Up,        Qt::Key_Down,    Qt::Key_Home,
            Qt::Key_End,       Qt::Key_Tab,        Qt::Key_Backtab,   Qt::Key_Return,  Qt::Key_Return,
            Qt::Key_Escape,    Qt::Key_F2,         Qt::Key_F4,        Qt::Key_Delete,  Qt::Key_Backspace,
            Qt::Key_D,         Qt::Key_R,          Qt::Key_C,         Qt::Key_X,       Qt::Key_V,
            Qt::Key_V,         Qt::Key_Z,          Qt::Key_Y,         Qt::Key_Plus,    Qt::Key_Minus,
            Qt::Key_9,         Qt::Key_0,          Qt::Key_PageDown,  Qt::Key_PageUp,  Qt::Key_Space,
            Qt::Key_ParenLeft, Qt::Key_ParenRight, Qt::Key_Semicolon, Qt::Key_Asterisk};
        key(keys[below(std::size(keys))], modifiers());
    }
    void typeAnyText()
    {
        const char* texts[] = {"12.5",       "=A2*2", "=sum(", "=A2+", "abc",
                               "2026-01-31", "5%",    "=1/0",  ")",    "=B2:B4*2"};
        type(texts[below(std::size(texts))]);
    }
    void composeAnything()
    {
        QInputMethodEvent composing("yi", {});
        QInputMethodEvent done;
        if (below(3) > 0)
            done.setCommitString(QStringLiteral("二月"));
        QWidget* const focus = QApplication::focusWidget();
        QApplication::sendEvent(focus ? focus : &control, &composing);
        QApplication::sendEvent(focus ? focus : &control, &done);
    }
    void offerAnything()
    {
        auto data = std::make_unique<QMimeData>();
        switch (below(5)) {
        case 0:
            data->setText("1\t2\n3\t4");
            break;
        case 1:
            data->setHtml("<table><tr><td colspan=2>x<tr><td>1<td>2</table>");
            break;
        case 2:
            data->setText(QString(300, QChar(0x02)));
            break;
        case 3:
            data->setData("application/x-report-cells", QByteArray(400, '\x11'));
            break;
        default:
            data->setText(QString("7\n").repeated(95));
        }
        QApplication::clipboard()->setMimeData(data.release());
    }
    void useTheMouse()
    {
        switch (below(6)) {
        case 0:
            click(place(), modifiers());
            break;
        case 1:
            QTest::mouseDClick(&control, Qt::LeftButton, {}, place());
            break;
        case 2: {
            const QRect corner = control.cellRect(
                {control.cursor().selection().back().right, control.cursor().selection().back().bottom});
            if (!corner.isEmpty())
                drag(corner.bottomRight(), place(), modifiers());
            break;
        }
        case 3: {
            QWheelEvent event(QPointF(200, 200), control.mapToGlobal(QPointF(200, 200)), {},
                              {0, below(2) ? 120 : -120}, {}, modifiers(), Qt::NoScrollPhase, false);
            QApplication::sendEvent(&control, &event);
            break;
        }
        case 4: {
            auto& bar = *control.findChild<QTabBar*>("sheetTabBar");
            QTest::mouseClick(
                &bar, Qt::LeftButton, {},
                bar.tabRect(static_cast<int>(below(static_cast<std::uint32_t>(bar.count())))).center());
            break;
        }
        default:
            drag(place(), place(), modifiers());
        }
        for (QWidget* popup = QApplication::activePopupWidget(); popup;
             popup = QApplication::activePopupWidget())
            QTest::keyClick(popup, below(2) ? Qt::Key_Return : Qt::Key_Escape);
    }
    void check()
    {
        const SheetSettings& settings = sheet().settings();
        const CellRange whole{1, 1, settings.columnCount, settings.rowCount};
        const CellAddress active = control.cursor().activeCell();
        ASSERT_TRUE(whole.contains(active)) << cellName(active);
        ASSERT_TRUE(whole.contains(control.cursor().selectedBlock()))
            << name(control.cursor().selectedBlock());
        ASSERT_EQ(sheet().extent(active).left, active.column);
        ASSERT_EQ(sheet().extent(active).top, active.row);
    }

    std::mt19937 random;
};

} // namespace

TEST_F(AnyUser, CanUndoAndRedoWhateverWasDone)
{
    for (const std::uint32_t seed : {1U, 2U, 3U, 4U, 5U, 6U, 15U}) {
        random.seed(seed);
        control.cells().setWorkbook(nullptr);
        control.setMode(GridMode::edit);
        demand(control.cells().setRowCount(100));
        demand(control.cells().setColumnCount(30));
        prepare();
        UndoJournal& journal = control.cells().workbook().journal();
        const std::size_t steps = journal.steps();
        const std::string before = state();
        for (int event = 0; event < 1500; ++event) {
            const std::uint32_t kind = below(10);
            if (kind < 4)
                pressAnyKey();
            else if (kind < 7)
                useTheMouse();
            else if (kind < 8)
                typeAnyText();
            else
                below(2) ? composeAnything() : offerAnything();
            SCOPED_TRACE("seed " + std::to_string(seed) + ", event " + std::to_string(event));
            check();
            if (HasFatalFailure() || journal.steps() < steps) { // it has undone what was prepared
                while (journal.steps() < steps)
                    control.commands().redo();
            }
        }
        control.entry().cancel();
        const std::string after = state();
        const std::size_t done = journal.steps();
        while (journal.steps() > steps)
            key(Qt::Key_Z, Qt::ControlModifier);
        EXPECT_EQ(state(), before) << "seed " << seed;
        while (journal.steps() < done)
            key(Qt::Key_Y, Qt::ControlModifier);
        EXPECT_EQ(state(), after) << "seed " << seed;
    }
    QApplication::clipboard()->clear();
}

} // namespace spreadsheet
