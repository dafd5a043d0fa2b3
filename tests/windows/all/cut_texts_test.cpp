// Texts of all windows as far as they are seen: in the usual font and in one of twice its size.
#include "platform/windows/text_room.h"
#include "tests/fetch/TestLedger.h"
#include "tests/platform/WindowTest.h"
#include "tests/windows/all/every_window.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QTabBar>
#include <QTableView>
#include <QToolButton>

namespace selfreport {
namespace {

/// Cannot open with all of its texts on the smallest screen.
constexpr QSize smallestScreen(1280, 720);
constexpr int titleHeight = 28; // pixels, of a window manager

class CutTexts : public test::WindowTest {
protected:
    CutTexts()
        : m_font(QApplication::font())
    {
    }
    ~CutTexts() override { QApplication::setFont(m_font); }

    static QSize sizeOf(const QWidget& control, const QString& text)
    {
        return control.fontMetrics().size(Qt::TextShowMnemonic, text);
    }

    /// Texts of a control that have less room than they need, each with its width and the room.
    static QStringList cutIn(const QWidget& control)
    {
        QStringList cut;
        const auto expect = [&cut](const QString& text, int room, int needed) {
            if (needed > room && !text.isEmpty())
                cut << QStringLiteral("%1: %2 > %3").arg(text).arg(needed).arg(room);
        };
        if (const auto* const label = qobject_cast<const QLabel*>(&control)) {
            if (label->wordWrap())
                expect(label->text(), label->height(), label->heightForWidth(label->width()));
            else if (label->textFormat() != Qt::RichText)
                expect(label->text(), label->contentsRect().width(), sizeOf(*label, label->text()).width());
        } else if (const auto* const icon = qobject_cast<const QToolButton*>(&control);
                   icon && icon->toolButtonStyle() == Qt::ToolButtonIconOnly) {
            // its text is its tool tip
        } else if (const auto* const button = qobject_cast<const QAbstractButton*>(&control)) {
            const QSize needed = sizeOf(*button, button->text());
            expect(button->text(), button->width(), needed.width());
            expect(button->text(), button->height(), needed.height());
        } else if (const auto* const group = qobject_cast<const QGroupBox*>(&control)) {
            expect(group->title(), group->width(), sizeOf(*group, group->title()).width());
        } else if (const auto* const list = qobject_cast<const QComboBox*>(&control)) {
            expect(list->currentText(), list->width(), sizeOf(*list, list->currentText()).width());
            expect(list->currentText(), list->height(), list->fontMetrics().height());
        } else if (const auto* const edit = qobject_cast<const QLineEdit*>(&control)) {
            expect("W", edit->height(), edit->fontMetrics().height());
            expect(edit->placeholderText(), edit->width(), sizeOf(*edit, edit->placeholderText()).width());
        } else if (const auto* const tabs = qobject_cast<const QTabBar*>(&control)) {
            for (int tab = 0; tab < tabs->count(); ++tab)
                expect(tabs->tabText(tab), tabs->tabRect(tab).width(),
                       sizeOf(*tabs, tabs->tabText(tab)).width());
        } else if (const auto* const table = qobject_cast<const QTableView*>(&control)) {
            const QHeaderView& heading = *table->horizontalHeader();
            for (int column = 0; column < heading.count(); ++column)
                if (const QString text = table->model()->headerData(column, Qt::Horizontal).toString();
                    heading.sectionSize(column) > 0)
                    expect(text, heading.sectionSize(column), sizeOf(heading, text).width());
        }
        return cut;
    }

    static std::string cutInAll(const QWidget& window)
    {
        QStringList cut;
        for (const QWidget* const control : window.findChildren<QWidget*>())
            if (control->isVisible())
                cut << cutIn(*control);
        return cut.join('\n').toStdString();
    }

    /// @param factor  of the font
    static void expectWhole(double factor)
    {
        QFont font = QApplication::font();
        font.setPointSizeF(font.pointSizeF() * factor);
        QApplication::setFont(font);
        test::EveryWindow every;
        for (const test::ShownWindow& row : every.windows()) {
            const std::unique_ptr<QWidget> window = row.make();
            window->show();
            QTest::qWait(1);
            window->resize(window->minimumSize());
            QTest::qWait(1);
            EXPECT_EQ(cutInAll(*window), "") << row.name;
            const QSize room = smallestScreen * factor - QSize(0, titleHeight);
            EXPECT_LE(window->minimumSize().width(), room.width()) << row.name;
            EXPECT_LE(window->minimumSize().height(), room.height()) << row.name;
        }
    }

    test::TestLedger ledger;

private:
    QFont m_font;
};

TEST_F(CutTexts, NoneInTheUsualFont)
{
    expectWhole(1);
}

TEST_F(CutTexts, NoneInAFontOfTwiceTheSize)
{
    expectWhole(2);
}

/// A window manager puts a window's title between its buttons.
TEST_F(CutTexts, WindowsOpenWiderThanTheirTitles)
{
    test::EveryWindow every;
    for (const test::ShownWindow& row : every.windows()) {
        const std::unique_ptr<QWidget> window = row.make();
        show(*window);
        EXPECT_GE(window->width(), titleRoom(*window)) << row.name;
    }
}

} // namespace
} // namespace selfreport
