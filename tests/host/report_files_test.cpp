// Where the program writes reports, and what it leaves alone.
#include "tests/host/changed_ledger.h"
#include "tests/host/ProgramRun.h"

#include <gmock/gmock.h>
#include <sys/stat.h>

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

namespace {

class ReportFiles : public ::testing::Test {
protected:
    static void SetUpTestSuite()
    {
        s_demo = std::make_unique<TestFolder>();
        const ProgramRun run("demo " + s_demo->file("demo.db"));
        ASSERT_EQ(run.exitCode, 0) << run.errors;
    }
    static void TearDownTestSuite() { s_demo.reset(); }

    ReportFiles()
    {
        std::ofstream(folder.file("a.pdf")) << "old pdf";
        std::ofstream(folder.file("a.csv")) << "old csv";
    }
    static std::string demo() { return s_demo->file("demo.db"); }
    std::string both(const std::string& database = demo()) const
    {
        return "run 1 --db " + database + " --pdf " + folder.file("a.pdf") + " --csv " + folder.file("a.csv");
    }
    void expectOld() const
    {
        EXPECT_EQ(contentOf(folder.file("a.pdf")), "old pdf");
        EXPECT_EQ(contentOf(folder.file("a.csv")), "old csv");
    }

    const TestFolder folder;

private:
    inline static std::unique_ptr<TestFolder> s_demo;
};

std::string pdfText(const std::string& file)
{
    const TestFolder folder;
    const std::string command = "pdftotext -layout " + file + " " + folder.file("text");
    EXPECT_EQ(std::system(command.c_str()), 0);
    return contentOf(folder.file("text"));
}

} // namespace

/// The database is whole but for the balances: today's statement of zeros must not take the place of a good
/// one.
TEST_F(ReportFiles, StayWhenTheLedgerCannotBeRead)
{
    const std::string broken = folder.file("broken.db");
    std::filesystem::copy_file(demo(), broken);
    sqlite3* connection = nullptr;
    ASSERT_EQ(sqlite3_open(broken.c_str(), &connection), SQLITE_OK);
    ASSERT_EQ(sqlite3_exec(connection, "drop table tblAccountBal", nullptr, nullptr, nullptr), SQLITE_OK);
    sqlite3_close(connection);
    const std::string before = folder.content();

    const ProgramRun run(both(broken));
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.errors, AllOf(HasSubstr("处取数失败，数字不可用"), HasSubstr("--allow-failed")));
    expectOld();
    EXPECT_EQ(folder.content(), before);
    const ProgramRun toOutput("run 1 --db " + broken);
    EXPECT_EQ(toOutput.exitCode, 1);
    EXPECT_EQ(toOutput.output, "");

    const ProgramRun strict(both(broken) + " --strict --allow-failed");
    EXPECT_EQ(strict.exitCode, 1);
    EXPECT_EQ(folder.content(), before);

    const ProgramRun allowed(both(broken) + " --allow-failed");
    EXPECT_EQ(allowed.exitCode, 0) << allowed.errors;
    EXPECT_THAT(allowed.errors, HasSubstr("注意: "));
    EXPECT_THAT(pdfText(folder.file("a.pdf")), HasSubstr("处取数失败，数字不可用"));
    EXPECT_THAT(contentOf(folder.file("a.csv")), HasSubstr("处取数失败，数字不可用"));
    EXPECT_EQ(ProgramRun(both()).exitCode, 0);
    EXPECT_THAT(pdfText(folder.file("a.pdf")), Not(HasSubstr("取数失败")));
}

/// Accounts that the balance sheet names are gone: its zeros may be shown, but a strict run hands out none.
TEST_F(ReportFiles, StayWhenAStrictRunFindsNamesWithoutMeaning)
{
    EXPECT_EQ(ProgramRun(both() + " --strict").exitCode, 0); // zeros and periods without rows are figures
    std::ofstream(folder.file("a.pdf")) << "old pdf";
    std::ofstream(folder.file("a.csv")) << "old csv";
    const std::string changed =
        changedLedger(demo(), folder.file("changed.db"),
                      "update tblAccount set fNumber='x'||fNumber where fNumber like '1122%'");
    const std::string before = folder.content();

    const ProgramRun run(both(changed) + " --strict");
    EXPECT_EQ(run.exitCode, 4) << run.errors;
    EXPECT_THAT(run.errors, AllOf(HasSubstr("科目“1122”不存在"), HasSubstr("处未取到数据")));
    EXPECT_EQ(folder.content(), before);
    const ProgramRun toOutput("run 1 --db " + changed + " --strict");
    EXPECT_EQ(toOutput.exitCode, 4);
    EXPECT_EQ(toOutput.output, "");
    EXPECT_EQ(ProgramRun(both(changed)).exitCode, 0);
}

TEST_F(ReportFiles, AreRefusedTogether)
{
    std::filesystem::permissions(folder.file("a.csv"), std::filesystem::perms::owner_read);
    std::filesystem::create_symlink("a.pdf", folder.file("link"));
    const struct {
        std::string arguments, named;
    } cases[] = {
        {both(), "只读"},
        {"run 1 --db " + demo() + " --pdf " + folder.file("a.pdf") + " --csv " + folder.file("link"),
         "同一个文件"},
        {"run 1 --db " + demo() + " --pdf " + folder.file("a.pdf") + " --csv " + folder.file("no/b.csv"),
         "no/b.csv"},
    };
    const std::string before = folder.content();
    for (const auto& [arguments, named] : cases) {
        const ProgramRun run(arguments);
        EXPECT_EQ(run.exitCode, 1) << arguments;
        EXPECT_THAT(run.errors, HasSubstr(named));
        expectOld();
        EXPECT_EQ(folder.content(), before);
    }
}

TEST_F(ReportFiles, AreNeverTheLedgerItself)
{
    const std::string own = folder.file("own.db");
    std::filesystem::copy_file(demo(), own);
    for (const char* option : {"--csv ", "--pdf "}) {
        const ProgramRun run("run 1 --db " + own + " --allow-failed " + option + own);
        EXPECT_EQ(run.exitCode, 1) << option;
        EXPECT_THAT(run.errors, HasSubstr("账套数据库"));
    }
    EXPECT_EQ(contentOf(own), contentOf(demo()));
    EXPECT_EQ(ProgramRun("demo --overwrite " + own).exitCode, 0) << "that is what it is for";
}

TEST_F(ReportFiles, MayBePipesAndLinks)
{
    ASSERT_EQ(mkfifo(folder.file("pipe").c_str(), 0600), 0);
    std::filesystem::create_symlink("a.pdf", folder.file("link"));
    const std::string reader = "timeout 60 cat " + folder.file("pipe") + " >" + folder.file("read") + " &";
    ASSERT_EQ(std::system(reader.c_str()), 0);
    const ProgramRun run("run 1 --db " + demo() + " --pdf " + folder.file("link") + " --csv " +
                         folder.file("pipe"));
    EXPECT_EQ(run.exitCode, 0) << run.errors;
    EXPECT_TRUE(std::filesystem::is_fifo(folder.file("pipe")));
    EXPECT_TRUE(std::filesystem::is_symlink(folder.file("link")));
    EXPECT_THAT(contentOf(folder.file("a.pdf")), StartsWith("%PDF-"));
    EXPECT_EQ(folder.content(), "a.csv a.pdf link pipe read");
}
