#include "spreadsheet/files/content/content.h"
#include "spreadsheet/print/PageCells.h"
#include "spreadsheet/print/PageLayout.h"
#include "spreadsheet/view/SpreadsheetControl.h"
#include "tests/platform/WindowTest.h"
#include "windows/formatting/frmDataType.h"

#include <QClipboard>
#include <QComboBox>
#include <QPushButton>

namespace selfreport {
namespace {

using spreadsheet::CellType;

/// What a page prints of a cell.
std::string printed(const spreadsheet::Sheet& sheet, int column, int row)
{
    spreadsheet::PrintedPage page;
    page.rowTracks = {{row, 0, 300}};
    page.columnTracks = {{column, 0, 1500}};
    const spreadsheet::PageCells cells(sheet, page);
    const spreadsheet::PageCell& cell = cells.at(0, 0);
    return cell.isTrue && cell.text.isEmpty() ? "checked" : cell.text.toStdString();
}

class CellTypes : public test::WindowTest {
protected:
    CellTypes()
    {
        grid.resize(800, 500);
        show(grid);
        grid.setFocus();
    }
    void choose(const char* shown)
    {
        frmDataType dialog(grid, grid.cursor().activeCell());
        auto& list = control<QComboBox>(dialog, "PC_1");
        list.setCurrentIndex(list.findText(shown));
        control<QPushButton>(dialog, "cmdXPOK").click();
    }
    void type(const QString& text)
    {
        QTest::keyClicks(QApplication::focusWidget(), text.left(1));
        QTest::keyClicks(QApplication::focusWidget(), text.mid(1));
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    }
    void key(Qt::Key key, Qt::KeyboardModifiers modifiers)
    {
        QTest::keyClick(QApplication::focusWidget(), key, modifiers);
    }

    spreadsheet::SpreadsheetControl grid;
};

/// Each type by typing, by pasting text, by pasting a cell, on paper, and through a saved file.
TEST_F(CellTypes, ActByTypingPastingPrintingAndSaving)
{
    const struct {
        const char* shown;
        CellType type;
        const char* typed;
        const char* text; ///< what the cell shows then
        const char* print;
    } cases[] = {
        {"日期型", CellType::date, "2025-3-1", "2025-03-01", "2025-03-01"},
        {"日期型", CellType::date, "45717", "2025-03-01", "2025-03-01"},
        {"日期型", CellType::date, "soon", "soon", "soon"}, // kept as text
        {"字符型", CellType::edit, "007", "7", "7"},
        {"货币型", CellType::currency, "1234.5", "￥1,234.50", "￥1,234.50"},
        {"货币型", CellType::currency, "n/a", "n/a", "n/a"},
        {"数字型", CellType::number, "2.345", "2.35", "2.35"},
        {"数字型", CellType::number, "two", "two", "two"},
        {"百分比", CellType::percent, "12.5%", "12.50%", "12.50%"},
        {"科学计数法", CellType::scientific, "12345", "1.23E+04", "1.23E+04"},
        {"静态文本框", CellType::staticText, "x", "", ""}, // takes no keys
        {"时间型", CellType::time, "8:30", "08:30:00", "08:30:00"},
        {"时间型", CellType::time, "noon", "noon", "noon"},
        {"按钮型", CellType::button, "x", "", ""},
        {"下拉框", CellType::dropDown, "other", "other", "other"},
        {"复选框", CellType::checkBox, " ", "TRUE", "checked"}, // a blank switches it
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.shown) + " " + c.typed);
        grid.cells().setWorkbook(nullptr);
        grid.cursor().setActiveCell(2, 2);
        choose(c.shown);
        grid.cursor().setActiveCell(2, 2);
        type(c.typed);
        EXPECT_EQ(grid.cells().text(2, 2).toStdString(), c.text);
        EXPECT_EQ(grid.cells().sheet().style({2, 2}).type, c.type);
        EXPECT_EQ(printed(grid.cells().sheet(), 2, 2), c.print);

        spreadsheet::Workbook loaded;
        loadContent(loaded, saveContent(grid.cells().workbook()));
        EXPECT_EQ(loaded.sheet(1).value({2, 2}), grid.cells().sheet().value({2, 2}));
        EXPECT_EQ(loaded.sheet(1).style({2, 2}).type, c.type);

        grid.cursor().select({2, 2, 2, 2});
        key(Qt::Key_C, Qt::ControlModifier);
        grid.cursor().setActiveCell(4, 4);
        key(Qt::Key_V, Qt::ControlModifier);
        EXPECT_EQ(grid.cells().text(4, 4).toStdString(), c.text) << "a cell pasted";
        EXPECT_EQ(grid.cells().sheet().style({4, 4}).type, c.type);

        if (std::string(c.text).empty() || c.type == CellType::checkBox)
            continue;
        QApplication::clipboard()->setText(c.typed);
        grid.cursor().setActiveCell(2, 6);
        choose(c.shown);
        key(Qt::Key_V, Qt::ControlModifier);
        const bool isCode = std::string_view(c.typed).starts_with("00"); // keeps its zeros
        EXPECT_EQ(grid.cells().text(2, 6).toStdString(), isCode ? c.typed : c.text) << "a text pasted";
        EXPECT_EQ(grid.cells().sheet().style({2, 6}).type, c.type);
    }
}

} // namespace
} // namespace selfreport
