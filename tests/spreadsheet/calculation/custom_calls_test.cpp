#include "spreadsheet/workbook/UndoJournal.h"
#include "spreadsheet/workbook/Workbook.h"

#include <algorithm>
#include <gtest/gtest.h>

using namespace spreadsheet;

namespace {

/// Registers Fetch(text, number), which answers with a number made of both and writes its calls down.
struct Ledger {
    Workbook workbook;
    std::vector<std::string> made;
    std::vector<std::vector<std::string>> waves;

    Ledger()
    {
        workbook.registerFunction("Fetch", 2, [this](FunctionCall& call) {
            made.push_back(described(call));
            if (const auto value = answer(call))
                call.setResult(*value);
        });
    }

    static std::string described(const FunctionCall& call)
    {
        return call.parameterText(1) + "/" + std::to_string(call.parameterInteger(2));
    }
    static std::optional<double> answer(const FunctionCall& call)
    {
        if (call.parameterStatus(1) != ParameterStatus::usable ||
            call.integerStatus(2) != ParameterStatus::usable)
            return std::nullopt;
        return static_cast<double>(call.parameterText(1).size()) +
               10.0 * static_cast<double>(call.parameterInteger(2));
    }
    void prepare(bool tellValues)
    {
        workbook.setPrepareHook([this, tellValues](std::span<PreparedCall> calls) {
            waves.emplace_back();
            for (PreparedCall& call : calls) {
                waves.back().push_back(described(call.asCall()));
                if (const auto value = tellValues ? answer(call.asCall()) : std::nullopt)
                    call.expected = Value(*value);
            }
        });
    }
    Sheet& sheet() { return workbook.sheet(1); }
    std::string shown(const char* cell) { return sheet().displayText(*parseCellName(cell)); }
    void type(const char* cell, const char* formula)
    {
        const auto problem = sheet().setFormula(*parseCellName(cell), formula);
        EXPECT_FALSE(problem) << formula << ": " << problem.reason();
    }
};

} // namespace

TEST(CustomCalls, ParametersAndWhatTheCellShows)
{
    struct Case {
        const char* formula;
        const char* shown;
    };
    const Case cases[] = {
        {"Fetch(\"ab\" , \"3\")", "32"},
        {"FETCH(\"ab\",3.9)", "32"},
        {"fetch(\"\",\"\")", "0"},
        {"Fetch(\"a\",\" 4 \")", "41"},
        {"Fetch(12,TRUE)", "12"},
        {"Fetch(\"a\",\"x\")", "#VALUE!"},
        {"Fetch(\"a\",)", "#VALUE!"},
        {"Fetch(\"a\")", "#VALUE!"},
        {"Fetch(1/0,1)", "#VALUE!"},
        {"Fetch(Z99,1)", "#VALUE!"},
        {"Fetch(\"a\",1)+Fetch(\"b\",2)", "32"},
        {"Unknown(1)", "#NAME?"},
        {"SUM(Fetch(\"a\",1),1)*2", "24"},
        {"IFERROR(Fetch(\"a\",\"x\"),-1)", "-1"},
    };
    for (const Case& c : cases) {
        Ledger ledger;
        ledger.type("B2", c.formula);
        ledger.workbook.recalculate();
        EXPECT_EQ(ledger.shown("B2"), c.shown) << c.formula;
    }
}

TEST(CustomCalls, ParametersThatThereAreNotAreMissing)
{
    Workbook workbook;
    std::vector<ParameterStatus> asked;
    workbook.registerFunction("Fetch", 2, [&](FunctionCall& call) {
        for (int number = 0; number <= 3; ++number)
            asked.push_back(call.parameterStatus(number));
    });
    ASSERT_FALSE(workbook.sheet(1).setFormula({1, 1}, "Fetch(\"a\",1)"));
    workbook.recalculate();
    using enum ParameterStatus;
    EXPECT_EQ(asked, (std::vector{missing, usable, usable, missing}));
}

TEST(CustomCalls, RegisteringReachesFormulasThatAreThere)
{
    Workbook workbook;
    demand(workbook.sheet(1).setFormula({1, 1}, "later()+1"));
    workbook.recalculate();
    EXPECT_EQ(workbook.sheet(1).displayText({1, 1}), "#NAME?");
    workbook.registerFunction("Later", 0, [](FunctionCall& call) { call.setResult(41.0); });
    workbook.recalculate();
    EXPECT_EQ(workbook.sheet(1).displayText({1, 1}), "42");
}

TEST(CustomCalls, BranchesThatAreNotTakenAreNotCalled)
{
    struct Case {
        const char* formula;
        std::vector<std::string> made;
    };
    const Case cases[] = {
        {"IF(1>2,Fetch(\"no\",1),Fetch(\"yes\",1))", {"yes/1"}},
        {"IF(1>2,Fetch(\"no\",1))", {}},
        {"IF(1/0,Fetch(\"no\",1),Fetch(\"no\",2))", {}},
        {"CHOOSE(2,Fetch(\"no\",1),Fetch(\"yes\",1),Fetch(\"no\",2))", {"yes/1"}},
        {"CHOOSE(9,Fetch(\"no\",1),2)", {}},
        {"IFERROR(1,Fetch(\"no\",1))", {}},
        {"IFERROR(1/0,Fetch(\"yes\",1))", {"yes/1"}},
        {"IFNA(1/0,Fetch(\"no\",1))", {}},
        {"IF(TRUE,IF(FALSE,Fetch(\"no\",1),Fetch(\"yes\",1)),Fetch(\"no\",2))", {"yes/1"}},
    };
    for (const Case& c : cases) {
        Ledger ledger;
        ledger.prepare(true);
        ledger.type("A1", c.formula);
        ledger.workbook.recalculate();
        EXPECT_EQ(ledger.made, c.made) << c.formula;
        std::vector<std::string> prepared;
        for (const auto& wave : ledger.waves)
            prepared.insert(prepared.end(), wave.begin(), wave.end());
        EXPECT_EQ(prepared, c.made) << c.formula << ", prepared";
    }
}

TEST(CustomCalls, WavesFollowDependenciesAndKnownValues)
{
    const auto fill = [](Ledger& ledger) {
        ledger.type("A1", "Fetch(\"a\",1)+Fetch(\"bb\",1)"); // 11 + 12
        ledger.type("B1", "A1*2");
        ledger.type("C1", "Fetch(\"c\",B1)");             // needs A1
        ledger.type("D1", "Fetch(\"d\",Fetch(\"e\",1))"); // nested
        ledger.type("E1", "IF(Fetch(\"f\",1)>0,Fetch(\"g\",1),Fetch(\"no\",1))");
        ledger.type("F1", "Fetch(\"h\",1)");
    };
    Ledger plain;
    fill(plain);
    plain.workbook.recalculate();

    for (const bool tellValues : {true, false}) {
        Ledger ledger;
        fill(ledger);
        ledger.prepare(tellValues);
        ledger.workbook.recalculate();
        EXPECT_EQ(ledger.made, plain.made) << "the same calls in the same order";
        for (const char* cell : {"A1", "B1", "C1", "D1", "E1", "F1"})
            EXPECT_EQ(ledger.shown(cell), plain.shown(cell)) << cell;
        std::vector<std::vector<std::string>> sorted = ledger.waves;
        for (auto& wave : sorted)
            std::ranges::sort(wave);
        const std::vector<std::string> certain{"a/1", "bb/1", "e/1", "f/1", "h/1"};
        const std::vector<std::string> inside{"d/11", "g/1"};
        const std::vector<std::string> after{"c/46"};
        if (tellValues)
            EXPECT_EQ(sorted, (std::vector{certain, inside, after}));
        else
            EXPECT_EQ(sorted, (std::vector{certain, after}));
    }
}

TEST(CustomCalls, DeclinedAndShownFormulasKeepTheCell)
{
    Workbook workbook;
    Sheet& sheet = workbook.sheet(1);
    bool decline = false;
    workbook.registerFunction("Maybe", 0, [&](FunctionCall& call) {
        if (decline)
            call.decline();
        else if (!workbook.formulasShown())
            call.setResult("1,234.50");
    });
    demand(sheet.setFormula({1, 1}, "Maybe()"));
    demand(sheet.setFormula({1, 2}, "SUM(A1)+1"));
    workbook.recalculate();
    EXPECT_EQ(sheet.displayText({1, 1}), "1,234.50");
    EXPECT_EQ(sheet.displayText({1, 2}), "1235.5") << "it counts as the number that it reads as";

    sheet.setShownText({1, 1}, "Maybe()");
    sheet.setShownText({1, 2}, "SUM(A1)+1");
    workbook.setFormulasShown(true);
    workbook.recalculate();
    EXPECT_EQ(sheet.displayText({1, 1}), "Maybe()");
    EXPECT_EQ(sheet.displayText({1, 2}), "SUM(A1)+1");
    EXPECT_EQ(sheet.value({1, 2}), Value(1235.5)) << "shown texts feed nobody";
    workbook.setFormulasShown(false);
    decline = true;
    workbook.recalculate();
    EXPECT_EQ(sheet.value({1, 1}).textView(), "1,234.50");
    EXPECT_EQ(sheet.displayText({1, 2}), "1235.5");
}

TEST(CustomCalls, NumberTypeComesAfterThePassAndIsNoEdit)
{
    Workbook workbook;
    demand(workbook.addSheet("二"));
    bool changedDuringPass = false;
    workbook.registerFunction("Amount", 0, [&](FunctionCall& call) {
        call.setResult(2.345);
        call.requestNumberType(2);
        changedDuringPass = workbook.sheet(2).style({3, 4}).type == CellType::number;
    });
    workbook.setUndoEnabled(true);
    demand(workbook.sheet(2).setFormula({3, 4}, "Amount()"));
    const std::uint64_t revision = workbook.revision();
    const std::size_t steps = workbook.journal().steps();
    workbook.recalculateChanged();
    EXPECT_FALSE(changedDuringPass);
    EXPECT_EQ(workbook.sheet(2).displayText({3, 4}), "2.35");
    EXPECT_EQ(workbook.sheet(1).style({3, 4}).type, CellType::edit) << "the calling cell's own sheet";
    EXPECT_EQ(workbook.revision(), revision);
    EXPECT_EQ(workbook.journal().steps(), steps);
}

TEST(CustomCalls, AnArgumentFoundWhileItRunsCallsOnce)
{
    Ledger ledger;
    ledger.type("A1", "Fetch(\"a\",INDIRECT(\"B1\"))");
    ledger.type("B1", "C1+1");
    ledger.type("C1", "Fetch(\"bbb\",1)");
    ledger.workbook.recalculate();
    EXPECT_EQ(ledger.made, (std::vector<std::string>{"bbb/1", "a/14"}));
}
