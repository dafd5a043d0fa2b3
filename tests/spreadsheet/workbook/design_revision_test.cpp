#include "spreadsheet/workbook/Workbook.h"

#include <functional>
#include <gtest/gtest.h>

using namespace spreadsheet;

TEST(DesignRevision, TellsWhetherTheDesignIsAnother)
{
    struct State {
        Workbook workbook;
        Sheet& sheet() { return workbook.sheet(1); }
        void write(const char* text) { sheet().setText({1, 1}, text); }
        void show()
        {
            const DisplayOnly display(workbook);
            const UndoStep step(workbook, "显示");
            sheet().setTag({1, 1}, "13");
            sheet().changeSettings([](SheetSettings& settings) { settings.print.border ^= true; });
        }
    };
    const struct {
        const char* what;
        bool isAnother;
        std::function<void(State&)> act;
    } cases[] = {
        {"nothing", false, [](State&) {}},
        {"a text", true, [](State& s) { s.write("a"); }},
        {"a setting", true, [](State& s) { s.sheet().changeSettings([](auto& of) { of.frozenRows = 1; }); }},
        {"a sheet", true, [](State& s) { demand(s.workbook.addSheet("二")); }},
        {"a name", true, [](State& s) { demand(s.workbook.defineName("率", "=1")); }},
        {"another content", true, [](State& s) { s.workbook.replaceContent(Workbook()); }},
        {"shown otherwise", false, [](State& s) { s.show(); }},
        {"shown otherwise and back", false, [](State& s) { s.show(), s.workbook.undo(); }},
        {"a text after that", true, [](State& s) { s.show(), s.write("a"); }},
        {"undone", false, [](State& s) { s.write("a"), s.workbook.undo(); }},
        {"redone", true, [](State& s) { s.write("a"), s.workbook.undo(), s.workbook.redo(); }},
        {"undone, and another text", true, [](State& s) { s.write("a"), s.workbook.undo(), s.write("b"); }},
        {"undone through a display", false,
         [](State& s) { s.write("a"), s.show(), s.workbook.undo(), s.workbook.undo(); }},
        {"half undone", true, [](State& s) { s.write("a"), s.write("b"), s.workbook.undo(); }},
        {"undone to before", true, [](State& s) { s.workbook.undo(); }},
    };
    for (const auto& [what, isAnother, act] : cases) {
        State state;
        state.workbook.setUndoEnabled(true);
        state.write("before");
        const auto revision = state.workbook.designRevision();
        act(state);
        EXPECT_EQ(state.workbook.designRevision() != revision, isAnother) << what;
    }
}
