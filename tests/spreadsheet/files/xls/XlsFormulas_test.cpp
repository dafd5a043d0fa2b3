#include "spreadsheet/files/xls/XlsFormulas.h"

#include "spreadsheet/files/xls/tokens.h"
#include "spreadsheet/formula/FormulaPool.h"
#include "spreadsheet/formula/operator_table.h"

#include <gtest/gtest.h>

namespace spreadsheet {
namespace {

/// The operators of a formula of whole numbers in the order in which the file has them worked out, signs
/// marked by a small s.
std::string operatorsInFile(const std::string& text)
{
    Workbook workbook;
    demand(workbook.sheet(1).setFormula({1, 1}, text));
    LinkTable links(workbook);
    XlsFormulas formulas(workbook, links);
    const XlsFormula& formula = formulas.formula(workbook.formulas().size(), {1, 1});
    std::string operators = formula.problem;
    for (std::size_t at = 0; at < formula.tokens.size(); ++at) {
        const auto token = std::to_integer<std::uint8_t>(formula.tokens[at]);
        if (const OperatorRow* const row = findOperator(token))
            operators += (row->place == OperatorRow::Place::before ? "s" : "") + std::string(row->text) + ";";
        else if (token == xls::tokenAttribute)
            at += 3;
        else if (token != xls::tokenBrackets)
            at += 2; // a number, or the length of a joined reference
    }
    return operators;
}

TEST(XlsFormulas, GroupsOperatorsAsTheyAreComputed)
{
    const struct {
        const char* text;
        const char* operators;
    } cases[] = {
        {"-2^2", "s-;^;"},       {"2^3^2", "^;^;"},   {"1-2*3%", "%;*;-;"}, {"1&2+3=4", "+;&;=;"},
        {"2^-3%", "s-;%;^;"},    {"(1,2,3)", ",;,;"}, {"(1+2,3)", ",;+;"},  {"(-1,2)", ",;s-;"},
        {"(1,-2,3)", ",;s-;,;"}, {"1<2>=3", "<;>=;"}, {"(1-2)*3", "-;*;"},  {"1-(2-3)", "-;-;"},
        {"1--2", "s-;-;"},       {"1-2-3", "-;-;"},   {"2^3*4", "^;*;"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(operatorsInFile(c.text), c.operators) << c.text;
}

} // namespace
} // namespace spreadsheet
