// Every figure of the demo reports opens into what it is made of, down to the ledger, with a difference of
// 0.00.
#include "explain/explain_figure.h"

#include "access/DatabaseAccess.h"
#include "explain/drill_text.h"
#include "fetch/RunRecord.h"
#include "reports/report_run.h"
#include "spreadsheet/workbook/Workbook.h"
#include "tests/explain/ExplainedDemo.h"
#include "text/json_text.h"

#include <cmath>
#include <gmock/gmock.h>

namespace selfreport {
namespace {

using spreadsheet::CallPlace;
using ::testing::HasSubstr;

/// All cells with formulas that give numbers.
std::vector<CallPlace> figuresOf(const spreadsheet::Workbook& workbook)
{
    std::vector<CallPlace> cells;
    for (int index = 1; index <= workbook.sheetCount(); ++index) {
        const spreadsheet::Sheet& sheet = workbook.sheet(index);
        for (int column = 1; column <= sheet.lastDataColumn(); ++column)
            for (int row = 1; row <= sheet.lastDataRow(); ++row)
                if (sheet.hasFormula({column, row}) && sheet.value({column, row}).isNumber())
                    cells.push_back({index, column, row});
    }
    return cells;
}

void withReport(const test::ExplainedDemo& demo, std::int32_t id,
                const std::function<void(const ReportRun&, const RunRecord&, DatabaseAccess&)>& work)
{
    RunOptions options;
    options.computed = work;
    runReport(demo.connectionString(), id, options);
}

TEST(DrillTree, EveryFigureOfTheDemoReportsIsTheSumOfItsParts)
{
    const test::ExplainedDemo demo;
    int figures = 0, sums = 0, opened = 0;
    for (std::int32_t id = 1; id <= 6; ++id)
        withReport(demo, id, [&](const ReportRun& run, const RunRecord& record, DatabaseAccess& database) {
            for (const CallPlace& cell : figuresOf(*run.workbook)) {
                DrillTree tree(run.name, *run.workbook, record, cell);
                ++figures;
                sums += tree.root().sum ? 1 : 0;
                EXPECT_EQ(firstFault(tree.root()), "") << run.name << ' ' << tree.head().cell;
                if (figures % 20 != 0)
                    continue;
                openLevels(tree, tree.root(), database, 3);
                EXPECT_EQ(firstFault(tree.root()), "") << run.name << ' ' << tree.head().cell;
                EXPECT_FALSE(tree.head().ledgerHasChanged) << run.name << ' ' << tree.head().cell;
                opened += tree.root().parts.empty() || !tree.root().parts.front().isOpen ? 0 : 1;
            }
        });
    EXPECT_GT(figures, 500);
    EXPECT_GT(sums, figures * 9 / 10) << "of " << figures;
    EXPECT_GT(opened, 20);
    RecordProperty("figures", figures);
    RecordProperty("sums", sums);
}

TEST(JsonText, BytesThatAreNoCharacterAreReplaced)
{
    const struct {
        std::string_view bytes;
        int wrong; ///< bytes of no character; 0: all are one
    } cases[] = {
        {"\x7F", 0},
        {"\x80", 1},
        {"\xC2\x80", 0},
        {"\xC1\xBF", 2}, // 7F, too long
        {"\xE0\xA0\x80", 0},
        {"\xE0\x9F\xBF", 3},
        {"\xED\x9F\xBF", 0},
        {"\xED\xA0\x80", 3}, // surrogate
        {"\xEF\xBF\xBF", 0},
        {"\xE4\xB8", 2},
        {"\xF0\x90\x80\x80", 0},
        {"\xF0\x8F\xBF\xBF", 4},
        {"\xF4\x8F\xBF\xBF", 0},
        {"\xF4\x90\x80\x80", 4},
        {"\xF5\x80\x80\x80", 4},
        {"\xFF", 1},
    };
    for (const auto& [bytes, wrong] : cases) {
        std::string replaced;
        for (int byte = 0; byte < wrong; ++byte)
            replaced += "\\ufffd";
        EXPECT_EQ(jsonText(bytes), '"' + (wrong > 0 ? replaced : std::string(bytes)) + '"') << wrong;
    }
}

/// A reading of another report opens into that report's cell.
TEST(DrillTree, AReadingOfAnotherReportOpensIntoItsCell)
{
    const test::ExplainedDemo demo;
    int readings = 0;
    for (std::int32_t id = 1; id <= 6; ++id)
        withReport(demo, id, [&](const ReportRun& run, const RunRecord& record, DatabaseAccess& database) {
            for (const CallPlace& cell : figuresOf(*run.workbook)) {
                DrillTree tree(run.name, *run.workbook, record, cell);
                const bool reads = !tree.root().parts.empty() && tree.root().parts.front().reference;
                if (!reads || readings >= 10)
                    continue;
                ++readings;
                DrillNode& reading = tree.root().parts.front();
                tree.open(reading, database);
                EXPECT_EQ(firstFault(reading), "") << tree.head().cell;
                ASSERT_FALSE(reading.parts.empty());
                EXPECT_EQ(reading.parts.front().report, reading.reference->report);
                EXPECT_TRUE(reading.sum) << tree.head().cell;
            }
        });
    EXPECT_GE(readings, 3);
}

TEST(DrillTree, AnEmptyCellIsNoNumber)
{
    const test::ExplainedDemo demo;
    withReport(demo, 1, [&](const ReportRun& run, const RunRecord& record, DatabaseAccess&) {
        const DrillTree tree(run.name, *run.workbook, record, {1, 11, 5});
        EXPECT_EQ(tree.head().remark, "单元格是空的");
        EXPECT_TRUE(tree.root().parts.empty());
        EXPECT_FALSE(tree.root().sum);
    });
}

class ExplainCommand : public ::testing::Test {
protected:
    void fault(const std::string& cell, const char* wanted)
    {
        try {
            explainFigure(demo.connectionString(), 1, cell, 1);
            ADD_FAILURE() << cell;
        } catch (const ReportRunError& error) {
            EXPECT_THAT(error.what(), HasSubstr(wanted));
        }
    }
    test::ExplainedDemo demo;
};

TEST_F(ExplainCommand, RefusesWhatIsNoCell)
{
    fault("没有!B7", "没有名为“没有”的表页");
    fault("Sheet1!", "没有");
    fault("7B", "没有单元格");
    fault("", "没有单元格");
    fault("XFE1", "没有单元格");
    fault("D5:D6", "没有单元格");
}

TEST_F(ExplainCommand, TakesACellAsFormulasWriteIt)
{
    for (const char* cell : {"d5", "$D$5", "资产负债表!D5", "'资产负债表'!$D5"})
        EXPECT_EQ(explainFigure(demo.connectionString(), 1, cell, 1).head.cell, "资产负债表!D5") << cell;
    fault("'it''s'!D5", "没有名为“it's”的表页");
}

TEST_F(ExplainCommand, WritesOneRowALineWhateverTheNames)
{
    demo.open()->execute("update tblAccount set fName='长\n名\t\"称\\'||cast(x'B2E241EDA080F09F9880E4' as "
                         "text) where fLevel=2");
    const auto explained = [&] {
        std::optional<Explained> found;
        withReport(demo, 1, [&](const ReportRun& run, const RunRecord& record, DatabaseAccess& database) {
            const CallPlace cell = figuresOf(*run.workbook).front();
            DrillTree tree(run.name, *run.workbook, record, cell);
            openLevels(tree, tree.root(), database, 3);
            found = {tree.head(), tree.root()};
        });
        return std::move(*found);
    }();
    const std::string text = drillText(explained.head, explained.root);
    EXPECT_THAT(text, HasSubstr("长 名 \"称\\"));
    EXPECT_THAT(text, HasSubstr("\n差额\t0.00\n"));
    EXPECT_THAT(drillJson(explained.head, explained.root),
                HasSubstr("长\\u000a名\\u0009\\\"称\\\\\\ufffd\\ufffdA\\ufffd\\ufffd\\ufffd😀\\ufffd\""));
}

TEST_F(ExplainCommand, TellsThatTheLedgerHasChangedSince)
{
    withReport(demo, 1, [&](const ReportRun& run, const RunRecord& record, DatabaseAccess& database) {
        DrillTree tree(run.name, *run.workbook, record, figuresOf(*run.workbook).front());
        demo.open()->execute(
            "update tblAccountBal set fBeginBal=fBeginBal+1,fEndBal=fEndBal+1 where fDetailId=0");
        openLevels(tree, tree.root(), database, 2);
        EXPECT_TRUE(tree.head().ledgerHasChanged);
        EXPECT_THAT(tree.root().parts.front().remark, HasSubstr("账已变动"));
        EXPECT_THAT(drillText(tree.head(), tree.root()), HasSubstr("账已变动"));
    });
}

} // namespace
} // namespace selfreport
