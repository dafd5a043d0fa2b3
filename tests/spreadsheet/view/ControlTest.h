#pragma once
#include "spreadsheet/view/SpreadsheetControl.h"

#include <gtest/gtest.h>
#include <QApplication>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTest>
#include <QVBoxLayout>

#include <sstream>
#include <string>

namespace spreadsheet {

/// The control in a window beside a line edit, driven by key and mouse events. The sheet has 100 rows and 30
/// columns of the usual sizes: 72 × 19 pixels.
class ControlTest : public testing::Test {
protected:
    ControlTest()
    {
        auto* layout = new QVBoxLayout(&window);
        layout->setContentsMargins(0, 0, 0, 0);
        layout->addWidget(&line);
        layout->addWidget(&control);
        demand(control.cells().setRowCount(100));
        demand(control.cells().setColumnCount(30));
        window.resize(800, 500);
        window.show();
        window.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
        control.setFocus();
        QObject::connect(&control, &SpreadsheetControl::leaveCell,
                         [this](int col, int row, int newCol, int newRow, bool& cancel) {
                             log << "leave " << col << ',' << row << '>' << newCol << ',' << newRow << ' ';
                             cancel = holdsCursor;
                         });
        QObject::connect(&control, &SpreadsheetControl::mouseDown, [this](int button, int col, int row) {
            log << "down" << button << ' ' << col << ',' << row << ' ';
        });
        QObject::connect(&control, &SpreadsheetControl::contextMenuWanted,
                         [this](QPoint, int col, int row) { log << "menu " << col << ',' << row << ' '; });
        QObject::connect(&control, &SpreadsheetControl::cellChanged,
                         [this](int col, int row) { log << "changed " << col << ',' << row << ' '; });
        QObject::connect(&control, &SpreadsheetControl::sheetChanged,
                         [this](int index) { log << "sheet " << index << ' '; });
        QObject::connect(&control, &SpreadsheetControl::refused,
                         [this](const QString& why) { refusal = why.toStdString(); });
        QObject::connect(&control, &SpreadsheetControl::buttonClicked,
                         [this](int col, int row) { log << "button " << col << ',' << row << ' '; });
        QObject::connect(&control, &SpreadsheetControl::comboDropDown,
                         [this](int col, int row) { log << "open " << col << ',' << row << ' '; });
        QObject::connect(&control, &SpreadsheetControl::comboCloseUp, [this](int col, int row, int index) {
            log << "close " << col << ',' << row << ' ' << index << ' ';
        });
    }

    /// To the control, or to what has the focus within it.
    void key(int key, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::keyClick(receiver(), Qt::Key(key), modifiers);
    }
    void type(const char* text)
    {
        for (; *text != '\0'; ++text)
            QTest::keyClick(receiver(), *text);
    }
    QPoint centre(const char* cell) const { return control.cellRect(*parseCellName(cell)).center(); }
    void click(QPoint place, Qt::KeyboardModifiers modifiers = {}, Qt::MouseButton button = Qt::LeftButton)
    {
        QTest::mouseClick(&control, button, modifiers, place);
    }
    void click(const char* cell, Qt::KeyboardModifiers modifiers = {}) { click(centre(cell), modifiers); }
    void drag(QPoint from, QPoint to, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::mousePress(&control, Qt::LeftButton, modifiers, from);
        QTest::mouseMove(&control, (from + to) / 2);
        QTest::mouseMove(&control, to);
        QTest::mouseRelease(&control, Qt::LeftButton, modifiers, to);
    }
    QPoint columnHeading(const char* cell) const { return {centre(cell).x(), 5}; }
    QPoint rowHeading(const char* cell) const { return {5, centre(cell).y()}; }

    static std::string name(const CellRange& range)
    {
        const std::string first = cellName({range.left, range.top});
        const std::string last = cellName({range.right, range.bottom});
        return first == last ? first : first + ":" + last;
    }
    /// "B2 in A1:C3": the active cell and what is selected.
    std::string cursor() const
    {
        std::string text = cellName(control.cursor().activeCell()) + " in";
        for (const CellRange& range : control.cursor().selection())
            text += " " + name(range);
        return text;
    }
    std::string logged()
    {
        std::string text = log.str();
        log.str({});
        if (text.ends_with(' '))
            text.pop_back();
        return text;
    }
    Sheet& sheet() { return control.cells().shownSheet(); }
    void put(const char* cell, const char* text) { sheet().setText(*parseCellName(cell), text); }
    void setType(const char* cell, CellType type)
    {
        const CellAddress place = *parseCellName(cell);
        control.cells().changeStyle({place.column, place.row, place.column, place.row},
                                    [type](CellStyle& style) { style.type = type; });
    }

    /// Displayed texts of a block, row by row: "1 2;3 4".
    std::string shown(const char* first, const char* last)
    {
        const CellAddress from = *parseCellName(first), to = *parseCellName(last);
        std::string texts;
        for (int row = from.row; row <= to.row; ++row)
            for (int column = from.column; column <= to.column; ++column)
                texts += sheet().displayText({column, row}) + (column < to.column ? " "
                                                               : row < to.row     ? ";"
                                                                                  : "");
        return texts;
    }
    std::string shown(const char* cell) { return shown(cell, cell); }
    std::string formula(const char* cell) { return sheet().formula(*parseCellName(cell)); }
    /// The text in the open editor.
    std::string edited() const
    {
        const auto* editor = control.findChild<QPlainTextEdit*>("cellEditor");
        return editor ? editor->toPlainText().toStdString() : "closed";
    }

    QWidget window;
    QLineEdit line;
    SpreadsheetControl control;
    std::ostringstream log;
    std::string refusal;      ///< the last one
    bool holdsCursor = false; ///< leaveCell is cancelled

private:
    QWidget* receiver()
    {
        QWidget* const focus = QApplication::focusWidget();
        return focus && control.isAncestorOf(focus) ? focus : &control;
    }
};

} // namespace spreadsheet
