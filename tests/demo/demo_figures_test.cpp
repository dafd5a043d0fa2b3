// Every figure of the demo reports is the sum that its linear form says, and moves with each call as it says.
#include "access/DatabaseAccess.h"
#include "demo/demo_reports.h"
#include "demo/ledger/demo_ledger.h"
#include "fetch/ReportEvaluation.h"
#include "platform/database/Connection.h"
#include "reports/report_run.h"
#include "spreadsheet/calculation/linear_form.h"
#include "spreadsheet/calculation/PerturbedBook.h"
#include "spreadsheet/files/content/content.h"
#include "spreadsheet/values/coercion.h"
#include "tests/own_files.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <filesystem>
#include <gtest/gtest.h>
#include <iostream>

namespace selfreport {
namespace {

using spreadsheet::CallPlace;
using spreadsheet::LinearForm;
using spreadsheet::LinearTerm;
using spreadsheet::PerturbedBook;
using spreadsheet::Value;

struct FormulaCell {
    CallPlace place;
    double value;
    LinearForm form;
};

double numberOf(const Value& value)
{
    return spreadsheet::countedNumber(value).value_or(0);
}

std::vector<FormulaCell> formulaCells(const spreadsheet::Workbook& workbook)
{
    std::vector<FormulaCell> cells;
    for (int index = 1; index <= workbook.sheetCount(); ++index) {
        const spreadsheet::Sheet& sheet = workbook.sheet(index);
        for (int column = 1; column <= sheet.lastDataColumn(); ++column)
            for (int row = 1; row <= sheet.lastDataRow(); ++row)
                if (sheet.hasFormula({column, row}) && spreadsheet::countedNumber(sheet.value({column, row})))
                    cells.push_back({{index, column, row}, numberOf(sheet.value({column, row})), {}});
    }
    return cells;
}

void expectSum(const FormulaCell& cell, const spreadsheet::CallAnswers& answers)
{
    double sum = cell.form.constant;
    double size = std::abs(sum) + 1;
    for (const LinearTerm& term : cell.form.terms) {
        const double part = term.coefficient * numberOf(answers(term.cell, term.call));
        sum += part;
        size += std::abs(part);
    }
    for (const spreadsheet::LinearRounding& rounding : cell.form.roundings)
        sum += rounding.amount;
    EXPECT_NEAR(sum, cell.value, 1e-9 * size);
}

/// @return  how many coefficients were compared
int compareMoves(const std::vector<FormulaCell>& cells, PerturbedBook& copy, const PerturbedBook::Made& call)
{
    constexpr double change = 0.01;
    if (!call.answer.isNumber())
        return 0;
    copy.compute(call.cell, call.call, call.answer.number() + change);
    int compared = 0;
    for (const FormulaCell& cell : cells) {
        if (!cell.form.isLinear)
            continue;
        const auto term = std::ranges::find_if(cell.form.terms, [&](const LinearTerm& each) {
            return each.cell == call.cell && each.call == call.call;
        });
        const double coefficient = term == cell.form.terms.end() ? 0 : term->coefficient;
        const double moved = numberOf(copy.value(cell.place)) - cell.value;
        EXPECT_NEAR(moved / change, coefficient, 1e-6 * std::max(1.0, std::abs(cell.value) / change / 1e4))
            << cell.place.column << "," << cell.place.row;
        ++compared;
    }
    return compared;
}

TEST(DemoLinearForms, AllFiguresOfTheDemoReports)
{
    const auto file = test::ownFile("figures.db");
    createDemoLedger(file.string());
    const std::string target = "Provider=SQLite;Data Source=" + file.string();
    storeDemoReports(target);
    int all = 0, linear = 0, compared = 0;
    for (const ListedReport& report : listReports(target)) {
        const ReportRun run = runReport(target, report.id);
        spreadsheet::Workbook workbook;
        spreadsheet::loadContent(workbook, spreadsheet::saveContent(*run.workbook));
        DatabaseAccess database(target);
        ReportEvaluation evaluation(workbook, database);
        evaluation.addSelfFunction();
        ASSERT_TRUE(evaluation.recalculate());
        const spreadsheet::CallAnswers answers = evaluation.record().answers();
        std::vector<FormulaCell> cells = formulaCells(workbook);
        const auto start = std::chrono::steady_clock::now();
        for (FormulaCell& cell : cells)
            cell.form = spreadsheet::linearForm(workbook.book(), cell.place, answers);
        const std::chrono::duration<double, std::milli> time = std::chrono::steady_clock::now() - start;
        for (const FormulaCell& cell : cells) {
            all += 1;
            linear += cell.form.isLinear ? 1 : 0;
            if (cell.form.isLinear)
                expectSum(cell, answers);
        }
        PerturbedBook copy(workbook.book(), answers);
        for (const PerturbedBook::Made& call : copy.calls())
            compared += compareMoves(cells, copy, call);
        std::cout << report.name << ": " << cells.size() << " forms in " << time.count() << " ms\n";
    }
    std::cout << all << " figures, " << linear << " linear, " << compared << " coefficients compared\n";
    EXPECT_GT(linear, 9 * all / 10);
    closeIdleSessions();
    std::filesystem::remove(file);
}

} // namespace
} // namespace selfreport
