#pragma once
#include "spreadsheet/calculation/linear_form.h"
#include "spreadsheet/calculation/Recalculation.h"
#include "spreadsheet/workbook/Workbook.h"

#include <gtest/gtest.h>
#include <map>
#include <string>
#include <vector>

namespace spreadsheet {

/// A workbook whose formulas call Fetch(number), which hands the number back, and Label(text), likewise. It
/// keeps what was handed back, call by call.
struct CalledBook {
    Workbook workbook;
    std::map<CallPlace, std::vector<Value>> answers;
    CallPlace caller;

    CalledBook()
    {
        workbook.recalculation().setCallerHook([this](CallPlace place) {
            caller = place;
            answers[place].clear();
        });
        workbook.registerFunction("Fetch", 1, [this](FunctionCall& call) {
            call.setResult(std::stod("0" + call.parameterText(1)));
            answers[caller].push_back(*call.result());
        });
        workbook.registerFunction("Label", 1, [this](FunctionCall& call) {
            call.setResult(call.parameterText(1));
            answers[caller].push_back(*call.result());
        });
    }

    Sheet& sheet() { return workbook.sheet(1); }
    void type(const std::string& cell, const std::string& formula)
    {
        const auto problem = sheet().setFormula(*parseCellName(cell), formula);
        EXPECT_FALSE(problem) << formula << ": " << problem.reason();
    }
    Value answer(const CallPlace& cell, int call) const
    {
        const auto found = answers.find(cell);
        const bool known = found != answers.end() && call < static_cast<int>(found->second.size());
        return known ? found->second[static_cast<std::size_t>(call)] : Value(CellError::na);
    }
    LinearForm form(const CallPlace& cell) const
    {
        return linearForm(workbook.book(), cell,
                          [this](const CallPlace& asked, int call) { return answer(asked, call); });
    }
};

} // namespace spreadsheet
