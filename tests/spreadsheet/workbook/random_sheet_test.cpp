#include "spreadsheet/calculation/Evaluator.h"
#include "spreadsheet/display/display_text.h"
#include "spreadsheet/formula/FormulaPool.h"
#include "spreadsheet/workbook/UndoJournal.h"
#include "spreadsheet/workbook/Workbook.h"

#include <gtest/gtest.h>
#include <map>
#include <random>
#include <sstream>

using namespace spreadsheet;

namespace {

constexpr int rows = 24;
constexpr int columns = 8;

/// Edits two small sheets at random: the same seed, the same edits.
class RandomEditor {
public:
    RandomEditor(Workbook& workbook, unsigned seed)
        : m_workbook(workbook)
        , m_random(seed)
    {
        demand(workbook.addSheet("二月"));
        demand(workbook.defineName("税率", "=Sheet1!$B$2"));
        demand(workbook.defineName("合计", "=SUM(Sheet1!$A$1:$A$9)"));
    }

    /// What was done, for the message of a failing test.
    std::string edit()
    {
        Sheet& sheet = m_workbook.sheet(number(1, m_workbook.sheetCount()));
        const CellAddress cell{number(1, columns), number(1, rows)};
        const std::string at = sheet.name() + "!" + cellName(cell);
        const int kind = number(0, 99);
        if (kind < 25) {
            sheet.setNumber(cell, number(-50, 50) / 4.0);
            return "number " + at;
        }
        if (kind < 32) {
            sheet.setText(cell, number(0, 1) ? "7" : "文字");
            return "text " + at;
        }
        if (kind < 60) {
            const std::string text = expression(3);
            const auto problem = sheet.setFormula(cell, text);
            EXPECT_FALSE(problem) << text << ": " << problem.reason();
            return "formula " + at + " " + text;
        }
        if (kind < 63) {
            sheet.clearContents(block(cell));
            return "clear " + at;
        }
        if (kind < 66) {
            return tried(sheet.setArrayFormula(block(cell), "IF(" + range() + ">1," + range() + ",0)"),
                         "array ") +
                   at;
        }
        return structure(sheet, cell, kind) + at;
    }

private:
    /// Where edits may be refused, that is in order too.
    static std::string tried(const Refusal& refused, const std::string& what)
    {
        return refused ? what + "(refused) " : what;
    }

    std::string structure(Sheet& sheet, CellAddress cell, int kind)
    {
        Sheet& other = m_workbook.sheet(number(1, m_workbook.sheetCount()));
        const CellAddress to{number(1, columns), number(1, rows)};
        const int count = number(1, 3);
        if (kind < 74)
            return tried(sheet.fillDown({cell.column, cell.row, cell.column, cell.row + number(1, 8)}),
                         "fill down ");
        if (kind < 78)
            return tried(sheet.fillRight({cell.column, cell.row, cell.column + count, cell.row}),
                         "fill right ");
        if (kind < 82)
            return tried(sheet.insertRows(cell.row, count), "insert rows ");
        if (kind < 86)
            return tried(sheet.deleteRows(cell.row, count), "delete rows ");
        if (kind < 88)
            return tried(sheet.insertColumns(cell.column, 1), "insert column ");
        if (kind < 90)
            return tried(sheet.deleteColumns(cell.column, 1), "delete column ");
        if (kind < 93)
            return tried(sheet.copyCells(block(cell), other, to),
                         "copy to " + other.name() + cellName(to) + " ");
        if (kind < 96)
            return tried(sheet.moveCells(block(cell), other, to),
                         "move to " + other.name() + cellName(to) + " ");
        if (kind < 97)
            return tried(m_workbook.defineName("税率", "=Sheet1!$C$" + std::to_string(number(1, 9))),
                         "name ");
        if (kind < 98) {
            sheet.restyle(block(cell), [](CellStyle& style) { style.font.bold = !style.font.bold; });
            return "bold ";
        }
        if (kind < 99)
            return (sheet.addSpan(block(cell)), "span ");
        const int index = m_workbook.sheetIndexOfId(sheet.id());
        return tried(m_workbook.renameSheet(index, "表 " + std::to_string(number(1, 999))), "rename ");
    }

    CellRange block(CellAddress cell)
    {
        return {cell.column, cell.row, cell.column + number(0, 2), cell.row + number(0, 4)};
    }

    std::string reference()
    {
        std::string text;
        if (number(0, 5) == 0)
            text = "'" + m_workbook.sheet(number(1, m_workbook.sheetCount())).name() + "'!";
        const std::string column = (number(0, 3) ? "" : "$") + columnName(number(1, columns));
        return text + column + (number(0, 3) ? "" : "$") + std::to_string(number(1, rows));
    }
    std::string range()
    {
        if (number(0, 9) == 0) { // whole columns or rows
            const int first = number(1, columns);
            return number(0, 1) ? columnName(first) + ":" + columnName(first + number(0, 1))
                                : std::to_string(first) + ":" + std::to_string(first + number(0, 1));
        }
        if (number(0, 9) == 0) {
            const auto name = [&](int sheet) { return m_workbook.sheet(sheet).name(); };
            return "'" + name(1) + ":" + name(m_workbook.sheetCount()) + "'!" +
                   columnName(number(1, columns)) + std::to_string(number(1, rows));
        }
        return reference() + ":" + columnName(number(1, columns)) + std::to_string(number(1, rows));
    }
    std::string expression(int depth)
    {
        switch (number(0, depth > 0 ? 12 : 3)) {
        case 0:
            return std::to_string(number(0, 9));
        case 1:
        case 2:
            return reference();
        case 3:
            return number(0, 4) ? reference() : "税率";
        case 4:
            return "SUM(" + range() + "," + expression(depth - 1) + ")";
        case 5:
            return "IF(" + expression(depth - 1) + ">2," + expression(depth - 1) + "," +
                   expression(depth - 1) + ")";
        case 6:
            return "IFERROR(" + expression(depth - 1) + ",合计)";
        case 7:
            return "COUNTIF(" + range() + ",\">1\")";
        case 8:
            return "(" + expression(depth - 1) + "/" + expression(depth - 1) + ")";
        case 9:
            return "INDEX(" + range() + "," + std::to_string(number(1, 3)) + ",1)";
        case 10:
            return "(ROW(" + reference() + ")-ROWS(" + range() + "))";
        default: {
            static const char* const signs[] = {"+", "-", "*", "&"};
            return "(" + expression(depth - 1) + signs[number(0, 3)] + expression(depth - 1) + ")";
        }
        }
    }
    int number(int low, int high) { return std::uniform_int_distribution(low, high)(m_random); }

    Workbook& m_workbook;
    std::mt19937 m_random;
};

std::string described(const Value& value)
{
    return std::to_string(static_cast<int>(value.kind())) + ":" + displayText(value, CellStyle{});
}

/// Everything of a workbook that an edit can change, as text. Formulas of empty cells do not exist.
std::map<std::string, std::string> dump(const Workbook& workbook)
{
    std::map<std::string, std::string> content;
    for (int index = 1; index <= workbook.sheetCount(); ++index) {
        const Sheet& sheet = workbook.sheet(index);
        for (int column = 1; column <= sheet.storedColumns(); ++column) {
            for (const Column::Slot& slot : sheet.column(column)->slots()) {
                for (int i = 0; i < slot.block->count(); ++i) {
                    const CellAddress cell{column, slot.firstRow + i};
                    const CellStyle& style = sheet.style(cell);
                    const std::string text = described(sheet.value(cell)) + "|" + sheet.formula(cell) +
                                             (style.font.bold ? "|bold" : "");
                    if (text != "0:|")
                        content[std::to_string(index) + "!" + cellName(cell)] = text;
                }
            }
        }
        std::ostringstream settings;
        settings << sheet.name() << sheet.settings().rowCount << '/' << sheet.settings().columnCount;
        for (const auto* ranges : {&sheet.settings().spans, &sheet.settings().arrays}) {
            settings << ';';
            for (const CellRange& r : *ranges)
                settings << cellName({r.left, r.top}) << ':' << cellName({r.right, r.bottom}) << ' ';
        }
        content[std::to_string(index)] = settings.str();
    }
    return content;
}

/// The first difference of two dumps, for a message that a person can read.
std::string difference(const std::map<std::string, std::string>& a,
                       const std::map<std::string, std::string>& b)
{
    for (const auto& [key, text] : a) {
        const auto other = b.find(key);
        if (other == b.end() || other->second != text)
            return key + ": " + text + " / " + (other == b.end() ? "nothing" : other->second);
    }
    for (const auto& [key, text] : b) {
        if (!a.contains(key))
            return key + ": nothing / " + text;
    }
    return {};
}

/// Each stored value against the stack machine, which computes one cell at a time.
std::string cellByCell(Workbook& workbook, const RecalculationReport& report)
{
    Evaluator evaluator(workbook.book());
    for (int index = 1; index <= workbook.sheetCount(); ++index) {
        const Sheet& sheet = workbook.sheet(index);
        for (int column = 1; column <= sheet.storedColumns(); ++column) {
            for (int row = 1; row <= sheet.lastDataRow(); ++row) {
                const CellAddress cell{column, row};
                const std::uint32_t number = sheet.column(column)->formula(row);
                if (number == 0 || workbook.formulas()[number].isArrayFormula ||
                    std::ranges::binary_search(report.circular, CallPlace{index, column, row}))
                    continue;
                const auto value =
                    evaluator.cellValueOf(workbook.formulas()[number], {workbook.book(), index, cell});
                if (!(*value == sheet.value(cell)))
                    return sheet.name() + cellName(cell) + " " + sheet.formula(cell) + ": stored " +
                           described(sheet.value(cell)) + ", alone " + described(*value);
            }
        }
    }
    return {};
}

} // namespace

TEST(RandomSheets, IncrementalEqualsFullAndCellByCell)
{
    for (unsigned seed = 1; seed <= 40; ++seed) {
        Workbook workbook;
        RandomEditor editor(workbook, seed);
        for (int step = 0; step < 150; ++step) {
            const std::string done = editor.edit();
            workbook.recalculateChanged();
            const auto incremental = dump(workbook);
            const RecalculationReport report = workbook.recalculate();
            ASSERT_EQ(difference(incremental, dump(workbook)), "")
                << seed << "/" << step << " after " << done;
            ASSERT_EQ(cellByCell(workbook, report), "") << seed << "/" << step << " after " << done;
        }
    }
}

TEST(RandomSheets, UndoBringsTheFormerStateBack)
{
    for (unsigned seed = 100; seed < 140; ++seed) {
        Workbook workbook;
        RandomEditor editor(workbook, seed);
        workbook.setUndoEnabled(true);
        // By the number of steps that can be undone.
        std::vector<std::map<std::string, std::string>> states{dump(workbook)};
        std::vector<std::string> edits{""};
        std::mt19937 random(seed);
        for (int step = 0; step < 120; ++step) {
            const std::string done = editor.edit();
            workbook.recalculateChanged();
            const std::size_t steps = workbook.journal().steps();
            ASSERT_LE(steps, states.size()) << "one edit, one step: " << done;
            states.resize(steps + 1);
            edits.resize(steps + 1);
            states[steps] = dump(workbook);
            edits[steps] = done;
            if (random() % 6 != 0)
                continue;
            const std::size_t goal = steps - std::min<std::size_t>(steps, random() % 5);
            while (workbook.journal().steps() > goal) {
                workbook.undo();
                const std::size_t at = workbook.journal().steps();
                ASSERT_EQ(difference(dump(workbook), states[at]), "")
                    << seed << "/" << step << " undoing " << edits[at + 1];
            }
            workbook.recalculate();
            ASSERT_EQ(difference(dump(workbook), states[goal]), "")
                << seed << "/" << step << " full after undo";
            while (workbook.canRedo())
                workbook.redo();
            ASSERT_EQ(difference(dump(workbook), states.back()), "") << seed << "/" << step << " redo";
        }
        while (workbook.canUndo())
            workbook.undo();
        ASSERT_EQ(difference(dump(workbook), states.front()), "") << seed;
    }
}
