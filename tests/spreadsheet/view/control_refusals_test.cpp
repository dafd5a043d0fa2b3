// Whatever road a refusal comes up by, its reason is told and nothing is another than before.
#include "spreadsheet/workbook/UndoJournal.h"
#include "tests/spreadsheet/view/ControlTest.h"

#include <QClipboard>
#include <QLabel>
#include <QMimeData>

#include <functional>

namespace spreadsheet {

namespace {

constexpr Qt::KeyboardModifiers ctrl = Qt::ControlModifier, shift = Qt::ShiftModifier;
constexpr const char* partOfArray = "不能更改数组公式的一部分";
constexpr const char* lockedAmong = "区域中有锁定的单元格，不能更改";
constexpr const char* inRun = "报表在运行状态，不能更改";

class RefusedByUser : public ControlTest {
protected:
    /// A1:A6 figures, an array formula in D3:E4, another in D10:D11 of which D10 is merged with E10, a merged
    /// cell in G2:H3, B8 locked.
    RefusedByUser()
    {
        for (int row = 1; row <= 6; ++row)
            sheet().setNumber({1, row}, row * 10);
        demand(sheet().setArrayFormula({4, 3, 5, 4}, "A1:A2*1"));
        demand(sheet().setArrayFormula({4, 10, 4, 11}, "A1:A2*2"));
        control.cells().addSpan({4, 10, 5, 10});
        control.cells().addSpan({7, 2, 8, 3});
        put("G2", "merged");
        put("B8", "kept");
        control.cells().changeStyle({2, 8, 2, 8}, [](CellStyle& style) { style.locked = true; });
        control.cells().recalculate();
        control.showChanges();
    }
    ~RefusedByUser() override { QApplication::clipboard()->clear(); }

    struct Case {
        const char* what;
        std::function<void()> act;
        const char* reason;
    };

    /// All that a refused command may not touch, the history of undo included.
    std::string everything()
    {
        std::ostringstream text;
        text << control.cells().sheetCount() << ' ' << control.cells().workbook().journal().steps();
        for (int index = 1; index <= control.cells().sheetCount(); ++index) {
            const Sheet& each = control.cells().workbook().sheet(index);
            const SheetSettings& settings = each.settings();
            text << '\n' << each.name() << ' ' << settings.rowCount << ' ' << settings.columnCount;
            for (const CellRange& array : settings.arrays)
                text << " array " << name(array);
            for (const CellRange& span : settings.spans)
                text << " span " << name(span);
            text << " hidden " << settings.rows.hidden.size() << ' ' << settings.columns.hidden.size()
                 << '\n';
            for (int row = 1; row <= 14; ++row)
                for (int column = 1; column <= 10; ++column)
                    text << each.displayText({column, row}) << '=' << each.formula({column, row}) << '|';
        }
        return text.str();
    }
    void expectRefused(const std::vector<Case>& cases)
    {
        for (const Case& c : cases) {
            refusal.clear();
            const std::string before = everything();
            c.act();
            EXPECT_EQ(refusal, c.reason) << c.what;
            EXPECT_EQ(everything(), before) << c.what;
            control.entry().cancel();
            control.cells().workbook().redo(); // a change that was made and taken back may not come again
            EXPECT_EQ(everything(), before) << c.what;
        }
    }

    void select(const char* range) { control.cursor().select(*parseRangeName(range)); }
    void copy(const char* range)
    {
        select(range);
        control.commands().copy();
    }
    static void offer(const char* html, const char* text)
    {
        auto data = std::make_unique<QMimeData>();
        if (html)
            data->setHtml(QString::fromUtf8(html));
        data->setText(QString::fromUtf8(text));
        QApplication::clipboard()->setMimeData(data.release());
    }
    std::function<void()> pasting(const char* to, std::function<void()> copying)
    {
        return [this, to, copying = std::move(copying)] {
            copying();
            select(to);
            control.commands().paste();
        };
    }
    std::function<void()> on(const char* range, void (GridCommands::*command)())
    {
        return [this, range, command] {
            select(range);
            (control.commands().*command)();
        };
    }
    /// Types into the selection's first cell and ends with a key.
    std::function<void()> entering(const char* range, const char* text, Qt::KeyboardModifiers modifiers)
    {
        return [this, range, text, modifiers] {
            select(range);
            type(text);
            key(Qt::Key_Return, modifiers);
        };
    }
};

} // namespace

TEST_F(RefusedByUser, PartsOfArrayFormulas)
{
    using Commands = GridCommands;
    const auto cells = [this] { copy("A1:A2"); };
    const auto cell = [this] { copy("A1"); };
    const auto text = [] { offer(nullptr, "7\t8"); };
    const auto table = [] { offer("<table><tr><td>7<td>8</table>", "wrong"); };
    expectRefused({
        {"clear", on("D3", &Commands::clear), partOfArray},
        {"copy", on("D3:D4", &Commands::copy), "不能只复制数组公式的一部分"},
        {"cut", on("D3:D4", &Commands::cut), "不能只复制数组公式的一部分"},
        {"paste cells", pasting("D2", cells), partOfArray},
        {"paste a cell over some", pasting("D2:D8", cell), partOfArray},
        {"paste cut cells", pasting("D4", [this] { select("A5"), control.commands().cut(); }), partOfArray},
        {"paste text", pasting("C4", text), partOfArray},
        {"paste a table", pasting("C4", table), partOfArray},
        {"paste a cell into a merged one", pasting("D10", cell), partOfArray},
        {"paste text into a merged one", pasting("D10", [] { offer(nullptr, "7"); }), partOfArray},
        {"paste values",
         [&] {
             cell();
             select("E4");
             control.commands().pasteValues();
         },
         partOfArray},
        {"fill down", on("D2:D3", &Commands::fillDown), partOfArray},
        {"fill right", on("C4:D4", &Commands::fillRight), partOfArray},
        {"fill from one", on("D3:D6", &Commands::fillDown), partOfArray},
        {"fill two ranges, the second of which is refused",
         [this] {
             drag(centre("A6"), centre("A7"));
             drag(centre("D2"), centre("D3"), ctrl);
             control.commands().fillDown();
         },
         partOfArray},
        {"fill by the handle",
         [this] {
             select("E1:E2");
             control.commands().fillTo({5, 1, 5, 3}, true);
         },
         partOfArray},
        {"one entry into many", entering("A1:D3", "5", ctrl), partOfArray},
        {"an array formula over part of one", entering("C3:D4", "=A1", ctrl | shift), ""},
        {"insert rows", on("A4", &Commands::insertRows), partOfArray},
        {"insert columns", on("E1", &Commands::insertColumns), partOfArray},
        {"delete rows", on("A3", &Commands::deleteRows), partOfArray},
        {"delete columns", on("D1", &Commands::deleteColumns), partOfArray},
        {"sort",
         [this] {
             select("A1:E6");
             control.commands().sortBlock({{1, true}}, false);
         },
         "排序区域中有数组公式，不能排序"},
        {"replace",
         [this] {
             select("A1");
             control.commands().replaceAll({.what = "*1", .within = {4, 3, 5, 4}}, "*3");
         },
         "有 4 个单元格不能替换"},
    });
    // What a refused array formula was refused for stands below its editor.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); // of editors that are closed
    select("C3:D4");
    type("=A1");
    key(Qt::Key_Return, ctrl | shift);
    const auto* problem = control.findChild<QLabel*>("editorProblem");
    ASSERT_NE(problem, nullptr);
    EXPECT_EQ(problem->text(), partOfArray);
    EXPECT_EQ(edited(), "=A1");
}

TEST_F(RefusedByUser, CopiesMayCoverAnArrayFormulaTogether)
{
    copy("A6");
    select("D3:E4");
    control.commands().paste();
    EXPECT_EQ(shown("D3", "E4"), "60 60;60 60");
    key(Qt::Key_Z, ctrl);
    select("D2:E5");
    control.commands().pasteValues();
    EXPECT_EQ(shown("D2", "E5"), "60 60;60 60;60 60;60 60");
    key(Qt::Key_Z, ctrl);
    EXPECT_EQ(control.cells().workbook().sheet(1).arrayRange({4, 3}), (CellRange{4, 3, 5, 4}));
}

TEST_F(RefusedByUser, LockedAndMergedCells)
{
    using Commands = GridCommands;
    const char* const merged = "目标区域只含合并单元格的一部分，请先取消合并";
    const auto cells = [this] { copy("A1:A2"); };
    expectRefused({
        {"typing", entering("B8", "5", {}), "单元格已锁定，不能更改"},
        {"clear", on("A7:B9", &Commands::clear), lockedAmong},
        {"cut", on("A7:B9", &Commands::cut), lockedAmong},
        {"paste", pasting("B7", cells), lockedAmong},
        {"paste text", pasting("B7", [] { offer(nullptr, "1\n2"); }), lockedAmong},
        {"fill down", on("B7:B9", &Commands::fillDown), lockedAmong},
        {"fill right", on("A8:B8", &Commands::fillRight), lockedAmong},
        {"one entry into many", entering("B7:B8", "5", ctrl), lockedAmong},
        {"an array formula", entering("B7:B8", "=A1", ctrl | shift), lockedAmong},
        {"sort",
         [this] {
             select("A5:B8"), control.commands().sortBlock({{1, true}}, false);
         },
         lockedAmong},
        {"replace", [this] { control.commands().replaceAll({.what = "kept"}, "lost"); },
         "有 1 个单元格不能替换"},
        {"paste over half a merged cell", pasting("G3", cells), merged},
        {"sort merged cells", [this] { select("F1:H6"), control.commands().sortBlock({{6}}, false); },
         "排序区域中有合并单元格，请先取消合并"},
    });
}

TEST_F(RefusedByUser, LimitsOfSheets)
{
    using Commands = GridCommands;
    demand(control.cells().setRowCount(maxRows));
    demand(control.cells().setColumnCount(maxColumns));
    sheet().setNumber({1, maxRows}, 1);
    sheet().setNumber({maxColumns, 1}, 1);
    control.showChanges();
    const char* const lost = "表的末尾有数据,不能再插入";
    expectRefused({
        {"insert rows", on("A2:A3", &Commands::insertRows), lost},
        {"insert columns", on("B1", &Commands::insertColumns), lost},
        {"paste below", pasting("A1048576", [this] { copy("A1:A2"); }),
         "粘贴的内容超出表的最大范围(1,048,576 行、16,384 列)，没有粘贴"},
        {"hide all columns", on("A1:XFD1", &Commands::hideColumns), "不能隐藏所有的列"},
        {"delete all rows", on("A1:A1048576", &Commands::deleteRows), "不能删除所有的行"},
        {"hide all columns by their headings",
         [this] {
             select("A1:XFD1048576");
             const int edge = control.cellRect({1, 1}).right();
             drag({edge, 5}, {edge - 200, 5});
         },
         "不能隐藏所有的列"},
        {"no name", [this] { control.commands().renameSheet(1, ""); }, "表名不能为空"},
        {"the only sheet", [this] { control.commands().removeSheet(1); }, "至少要有一张表"},
        {"a place that is none", [this] { refusal = control.cursor().goTo("XFE1").reason(); },
         "没有这个位置: XFE1"},
    });
    demand(control.cells().setSheetCount(maxSheets));
    expectRefused(
        {{"one sheet more", [this] { control.commands().addSheet(); }, "表的个数应在 1 到 256 之间"}});
}

TEST_F(RefusedByUser, EverythingInRunMode)
{
    using Commands = GridCommands;
    put("J1", "undone?");
    copy("A1");
    control.setMode(GridMode::run);
    expectRefused({
        {"typing", entering("A1", "5", {}), inRun},
        {"undo", [this] { control.commands().undo(); }, inRun},
        {"redo", [this] { control.commands().redo(); }, inRun},
        {"clear", on("A1", &Commands::clear), inRun},
        {"cut", on("A1", &Commands::cut), inRun},
        {"paste", on("A3", &Commands::paste), inRun},
        {"fill", on("A1:A3", &Commands::fillDown), inRun},
        {"insert rows", on("A1", &Commands::insertRows), inRun},
        {"delete columns", on("A1", &Commands::deleteColumns), inRun},
        {"sort",
         [this] {
             select("A1:A6"), control.commands().sortBlock({{1, true}}, false);
         },
         inRun},
        {"replace", [this] { control.commands().replaceAll({.what = "10"}, "20"); }, inRun},
        {"add a sheet", [this] { control.commands().addSheet(); }, inRun},
        {"rename", [this] { control.commands().renameSheet(1, "x"); }, inRun},
        {"move", [this] { control.commands().moveSheet(1, 1); }, inRun},
        {"remove", [this] { control.commands().removeSheet(1); }, inRun},
    });
}

} // namespace spreadsheet
