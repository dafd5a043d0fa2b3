// Figures that cannot be taken apart as usual: the tree says why, and stays.
#include "access/DatabaseAccess.h"
#include "explain/DrillTree.h"
#include "fetch/ReportEvaluation.h"
#include "platform/services/UserWait.h"
#include "tests/explain/ExplainedDemo.h"
#include "tests/tdsserver/TdsServer.h"

#include <cmath>
#include <gmock/gmock.h>

namespace selfreport {
namespace {

using ::testing::HasSubstr;

std::string closing(const std::string& account, const std::string& key = "2",
                    const std::string& currency = "")
{
    return "Acct(\"" + account + "\",\"" + key + "\",\"" + currency + "\",\"2025\",\"1\",\"12\")";
}

/// A workbook of formulas in column A, computed.
class Computed {
public:
    Computed(const std::string& connectionString, const std::vector<std::string>& formulas)
        : database(connectionString)
        , m_evaluation(m_workbook, database)
    {
        m_evaluation.addSelfFunction();
        int row = 0;
        for (const std::string& formula : formulas)
            demand(m_workbook.sheet(1).setFormula({1, ++row}, formula));
        m_evaluation.recalculate();
    }
    DrillTree tree(int row) const { return {"表", m_workbook, m_evaluation.record(), {1, 1, row}}; }

    DatabaseAccess database;

private:
    spreadsheet::Workbook m_workbook;
    ReportEvaluation m_evaluation;
};

TEST(DrillBadInput, ACellInACircleHasNoSum)
{
    const test::ExplainedDemo demo;
    const Computed computed(demo.connectionString(), {"A2+" + closing("1001"), "A1*2", "A3+1"});
    for (int row = 1; row <= 3; ++row) {
        const DrillTree tree = computed.tree(row);
        EXPECT_FALSE(tree.root().sum) << row;
        EXPECT_NE(tree.head().remark, "") << row;
        ASSERT_EQ(tree.root().parts.size(), row < 3 ? 1U : 0U) << row;
        for (const DrillNode& call : tree.root().parts)
            EXPECT_EQ(call.remark, "单元格循环引用，没有取数") << row;
    }
}

TEST(DrillBadInput, AFormulaOfThreeHundredCallsHasARowForEach)
{
    const test::ExplainedDemo demo;
    const char* const accounts[] = {"1001", "1002", "1122", "2202", "没有"};
    std::string formula;
    for (int call = 0; call < 300; ++call)
        formula += (call == 0 ? "" : call % 2 == 0 ? "+" : "-") + closing(accounts[call % 5]);
    Computed computed(demo.connectionString(), {formula});
    DrillTree tree = computed.tree(1);
    ASSERT_EQ(tree.root().parts.size(), 300U);
    EXPECT_TRUE(tree.root().sum && tree.root().isWhole());
    tree.open(tree.root().parts[299], computed.database);
    EXPECT_THAT(tree.root().parts[299].remark, HasSubstr("科目“没有”不存在"));
}

TEST(DrillBadInput, AnAccountThatWasDeletedSinceSaysSo)
{
    const test::ExplainedDemo demo;
    Computed computed(demo.connectionString(), {closing("100101") + "+" + closing("1002")});
    DrillTree tree = computed.tree(1);
    demo.open()->execute("delete from tblAccount where fNumber='100101'");
    DrillNode& gone = tree.root().parts[0];
    tree.open(gone, computed.database);
    EXPECT_THAT(gone.remark, HasSubstr("科目“100101”已不存在"));
    EXPECT_TRUE(tree.head().ledgerHasChanged);
    tree.open(tree.root().parts[1], computed.database);
    EXPECT_TRUE(tree.root().parts[1].isWhole());
    EXPECT_GT(tree.root().parts[1].parts.size(), 1U);
}

/// A code with a typing error was wrong before anybody could change the ledger.
TEST(DrillBadInput, AnAccountThatNeverWasIsNoChangeOfTheLedger)
{
    const test::ExplainedDemo demo;
    Computed computed(demo.connectionString(), {closing("1999"), closing("1001")});
    DrillTree tree = computed.tree(1);
    DrillNode& call = tree.root().parts[0];
    EXPECT_TRUE(call.isFault) << "a figure of what there is not is not known";
    tree.open(call, computed.database);
    EXPECT_EQ(call.remark, "科目“1999”不存在");
    EXPECT_FALSE(tree.head().ledgerHasChanged);
    EXPECT_FALSE(computed.tree(2).root().parts[0].isFault);
}

/// The ledger finds accounts whatever the width and case of their codes and the blanks around them, and so
/// they open.
TEST(DrillBadInput, CodesInFullWidthAndBetweenBlanksOpenIntoTheSame)
{
    const test::ExplainedDemo demo;
    const struct {
        std::string plain, other;
    } calls[] = {
        {closing("1001"), closing("１００１")},
        {closing("1001"), closing(" 1001")},
        {closing("1001:1002"), closing("1001 : 1002 ")},
        {closing("10**"), closing(" 10**")},
        {closing("1122|客户|00:99"), closing(" 1122 |客户 | 00: 99 ")},
        {closing("1122:1221", "13"), closing(" 1122: 1221", " １３")},
        {closing("1001", "3", "RMB"), closing("1001", "３", " RMB ")},
        {closing("1001", "3"), closing("1001", " 3", " ")},
    };
    for (const auto& [plain, other] : calls) {
        Computed computed(demo.connectionString(), {plain, other});
        std::vector<std::string> items[2];
        for (const int row : {1, 2}) {
            DrillTree tree = computed.tree(row);
            DrillNode& call = tree.root().parts[0];
            tree.open(call, computed.database);
            EXPECT_TRUE(call.isWhole()) << other;
            EXPECT_FALSE(tree.head().ledgerHasChanged) << other;
            items[row - 1].push_back(call.remark);
            for (const DrillNode& part : call.parts)
                items[row - 1].push_back(part.item);
        }
        EXPECT_GT(items[0].size(), 1U) << plain;
        EXPECT_EQ(items[1], items[0]) << other;
    }
}

/// 14184.425 is the same figure in both lines of the foot, whichever way its parts were added.
TEST(DrillBadInput, HalfAFenIsShownAlikeInSumAndCell)
{
    const test::ExplainedDemo demo;
    const Computed computed(demo.connectionString(), {closing("1001") + "%", closing("1002") + "%"});
    for (const int row : {1, 2}) {
        const DrillTree tree = computed.tree(row);
        ASSERT_TRUE(tree.root().sum && tree.root().whole);
        EXPECT_EQ(*tree.root().sum, *tree.root().whole);
        EXPECT_FALSE(std::signbit(tree.root().difference()));
    }
}

TEST(DrillBadInput, AServerThatGoesAwayLeavesTheTree)
{
    const test::ExplainedDemo demo;
    auto server = std::make_unique<tds::TdsServer>(demo.file());
    Computed computed(server->connectionString(), {closing("1001") + "+" + closing("1002")});
    DrillTree tree = computed.tree(1);
    tree.open(tree.root().parts[0], computed.database);
    const std::size_t opened = tree.root().parts[0].parts.size();
    ASSERT_GT(opened, 0U);
    server.reset();
    tree.open(tree.root().parts[1], computed.database);
    ASSERT_EQ(tree.root().parts[1].parts.size(), 1U);
    EXPECT_TRUE(tree.root().parts[1].parts[0].isFault);
    EXPECT_THAT(tree.root().parts[1].parts[0].item, HasSubstr("没有展开："));
    EXPECT_EQ(tree.root().parts[0].parts.size(), opened) << "what is open stays";
    closeIdleSessions();
}

} // namespace
} // namespace selfreport
