#include "tests/host/changed_ledger.h"
#include "tests/host/ProgramRun.h"

#include <gmock/gmock.h>

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::StartsWith;

namespace {

/// A demo database that all tests of this file share; they leave it as it is.
class Reports : public ::testing::Test {
protected:
    static void SetUpTestSuite()
    {
        s_folder = std::make_unique<TestFolder>();
        const ProgramRun run("demo " + demo());
        ASSERT_EQ(run.exitCode, 0) << run.errors;
    }
    static void TearDownTestSuite() { s_folder.reset(); }

    static std::string demo() { return s_folder->file("demo.db"); }

    inline static std::unique_ptr<TestFolder> s_folder;
};

/// At the end of the last period of an account.
std::string aCentTooMuch(const std::string& account)
{
    return "update tblAccountBal set fEndBal=fEndBal+0.01 where fYear=2025 and fPeriod=12 and fDetailId=0 "
           "and "
           "fCurrencyid=1 and faccountid=(select fitemid from tblAccount where fNumber='" +
           account + "')";
}

void writeFile(const std::string& file, const std::string& content)
{
    std::ofstream(file, std::ios::binary) << content;
}

} // namespace

TEST_F(Reports, EveryStoredReportBecomesPdfAndCsv)
{
    const ProgramRun list("list --db " + demo());
    ASSERT_EQ(list.exitCode, 0) << list.errors;
    std::istringstream lines(list.output);
    int count = 0;
    for (std::string id, rest; std::getline(lines, id, '\t') && std::getline(lines, rest); ++count) {
        const TestFolder folder;
        const ProgramRun run("run " + id + " --db " + demo() + " --pdf " + folder.file("r.pdf") + " --csv " +
                             folder.file("r.csv"));
        EXPECT_EQ(run.exitCode, 0) << run.errors;
        EXPECT_EQ(run.output, "");
        EXPECT_EQ(folder.content(), "r.csv r.pdf");
        EXPECT_THAT(contentOf(folder.file("r.pdf")), StartsWith("%PDF-")) << id;
        EXPECT_THAT(contentOf(folder.file("r.csv")), AllOf(StartsWith("\xEF\xBB\xBF"), HasSubstr("\r\n")))
            << id;
    }
    EXPECT_EQ(count, 6);
}

TEST_F(Reports, FiguresAgreeWithSeparateQueriesUntilTheLedgerChanges)
{
    const ProgramRun run("check --db " + demo());
    EXPECT_EQ(run.exitCode, 0) << run.output << run.errors;
    EXPECT_THAT(run.output, HasSubstr("资产负债表"));

    const TestFolder folder;
    const std::string changed =
        changedLedger(demo(), folder.file("wrong.db"), "update tblAccountBal set fEndBal = fEndBal + 1");
    const ProgramRun wrong("check --db " + changed);
    EXPECT_EQ(wrong.exitCode, 1);
    EXPECT_THAT(wrong.output, HasSubstr("不一致"));
}

TEST_F(Reports, TheLedgerIsProvedAndWhatIsWrongIsPlaced)
{
    const ProgramRun sound("prove --db " + demo());
    EXPECT_EQ(sound.exitCode, 0) << sound.output << sound.errors;
    EXPECT_THAT(sound.output, HasSubstr("通过\t凭证 = 发生额\n"));

    const TestFolder folder;
    const std::string changed = changedLedger(demo(), folder.file("wrong.db"), aCentTooMuch("100101"));
    const ProgramRun wrong("prove --db " + changed);
    EXPECT_EQ(wrong.exitCode, 1);
    EXPECT_THAT(wrong.output, AllOf(HasSubstr("不符\t期初 + 借方 − 贷方 = 期末\t1 行，差额合计 0.01"),
                                    HasSubstr("2025\t12\t100101"), HasSubstr("查询: select")));
    const ProgramRun other("prove --json --year 2024 --db " + changed);
    EXPECT_EQ(other.exitCode, 0) << "another year\n" << other.errors;
    EXPECT_THAT(other.output, StartsWith("{\"faults\":0,"));
}

TEST_F(Reports, AFigureIsExplainedAndACentThatIsTooMuchShows)
{
    const ProgramRun explained("explain 1 D5 --depth 4 --db " + demo()); // 货币资金
    EXPECT_EQ(explained.exitCode, 0) << explained.output << explained.errors;
    EXPECT_THAT(explained.output, AllOf(HasSubstr("1001:1012"), HasSubstr("1002 银行存款"),
                                        HasSubstr("100201 "), HasSubstr("\n差额\t0.00\n")));
    const TestFolder folder;
    const std::string changed = changedLedger(demo(), folder.file("wrong.db"), aCentTooMuch("100201"));
    const ProgramRun wrong("explain 1 D5 --depth 4 --json --db " + changed);
    EXPECT_EQ(wrong.exitCode, 1);
    EXPECT_THAT(wrong.output, HasSubstr("\"difference\":-0.01"));
    EXPECT_THAT(wrong.errors, HasSubstr("差额"));
    for (const char* arguments : {"explain 1 --db x", "explain 1 D5", "explain 1 D5 --depth 0 --db x",
                                  "explain 1 D5 --depth x --db x", "prove", "prove --year x --db x"})
        EXPECT_EQ(ProgramRun(arguments).exitCode, 2) << arguments;
    EXPECT_EQ(ProgramRun("explain 1 D5000000 --db " + demo()).exitCode, 1);
}

TEST_F(Reports, WithoutFilesTheCellsGoToStandardOutput)
{
    const TestFolder folder;
    const ProgramRun toFile("run 1 --db " + demo() + " --csv " + folder.file("a.csv"));
    const ProgramRun toOutput("run 1 --db " + demo());
    EXPECT_EQ(toOutput.output, contentOf(folder.file("a.csv")));
}

TEST_F(Reports, AConnectionStringAndAFileNameOpenTheSameDatabase)
{
    const ProgramRun byString("list --db \"provider = sqlite ; Data Source='" + demo() + "'\"");
    const ProgramRun byName("list --db " + demo());
    EXPECT_EQ(byString.exitCode, 0) << byString.errors;
    EXPECT_EQ(byString.output, byName.output);
}

TEST_F(Reports, DemoReplacesAFileOnlyWhenTold)
{
    const TestFolder folder;
    writeFile(folder.file("a.db"), "mine");
    const ProgramRun refused("demo " + folder.file("a.db"));
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_THAT(refused.errors, HasSubstr(folder.file("a.db")));
    EXPECT_EQ(contentOf(folder.file("a.db")), "mine");

    const ProgramRun replaced("demo --overwrite " + folder.file("a.db"));
    EXPECT_EQ(replaced.exitCode, 0) << replaced.errors;
    EXPECT_EQ(folder.content(), "a.db");
    const std::string database = " --db " + folder.file("a.db");
    EXPECT_EQ(ProgramRun("check" + database).output, ProgramRun("check --db " + demo()).output);
}

/// Each failure names the thing, and leaves the folder as it was.
TEST_F(Reports, FailuresNameTheThingAndLeaveNothing)
{
    const TestFolder folder;
    writeFile(folder.file("empty.db"), "");
    writeFile(folder.file("text.db"), std::string(5000, 'x'));
    writeFile(folder.file("plain"), "");
    writeFile(folder.file("old.pdf"), "old");
    std::filesystem::create_directory(folder.file("folder.pdf"));
    changedLedger(
        demo(), folder.file("damaged.db"),
        "update tblCWSelfReport set fFileContent = substr(fFileContent, 1, length(fFileContent) / 2)");
    std::filesystem::copy_file(demo(), folder.file("cut.db"));
    std::filesystem::resize_file(folder.file("cut.db"), std::filesystem::file_size(demo()) / 3);
    const std::string before = folder.content();

    struct Case {
        std::string arguments, named;
    };
    const std::string toFiles = " --pdf " + folder.file("old.pdf") + " --csv " + folder.file("new.csv");
    const Case cases[] = {
        {"list --db " + folder.file("missing.db"), "missing.db"},
        {"list --db " + folder.file("empty.db"), "empty.db"},
        {"list --db " + folder.file("text.db"), "text.db"},
        {"run 1 --db " + folder.file("missing.db") + toFiles, "missing.db"},
        {"run 1 --db " + folder.file("cut.db") + toFiles, ""},
        {"run 999 --db " + demo() + toFiles, "999"},
        {"run 1 --db " + folder.file("damaged.db") + toFiles, "1"},
        {"run 1 --db " + demo() + " --pdf " + folder.file("nowhere/a.pdf"), "nowhere/a.pdf"},
        {"run 1 --db " + demo() + " --csv " + folder.file("plain/a.csv"), "plain/a.csv"},
        {"run 1 --db " + demo() + " --csv " + folder.file("new.csv") + " --pdf " + folder.file("folder.pdf"),
         "folder.pdf"},
        {"check --db " + folder.file("missing.db"), "missing.db"},
        {"demo " + folder.file("nowhere/a.db"), "nowhere/a.db"},
        {"demo --overwrite " + folder.file("folder.pdf"), "folder.pdf"},
        {"list --db \"Provider=Nonsense;Data Source=a\"", "Nonsense"},
    };
    for (const Case& c : cases) {
        const ProgramRun run(c.arguments);
        EXPECT_EQ(run.exitCode, 1) << c.arguments << '\n' << run.errors;
        EXPECT_EQ(run.output, "") << c.arguments;
        EXPECT_THAT(run.errors, AllOf(HasSubstr("失败"), HasSubstr(c.named))) << c.arguments;
        EXPECT_EQ(folder.content(), before) << c.arguments;
        EXPECT_EQ(contentOf(folder.file("old.pdf")), "old") << c.arguments;
    }
}
