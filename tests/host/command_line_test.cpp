#include "tests/host/ProgramRun.h"

#include <gmock/gmock.h>

using ::testing::HasSubstr;

TEST(CommandLine, WrongUseIsRefusedWithTwoAndNothingOnStandardOutput)
{
    const char* cases[] = {
        "nonsense",
        "--nonsense",
        "demo",
        "list",
        "list --db",
        "run --db a.db",
        "run 1",
        "run one --db a.db",
        "run 99999999999 --db a.db",
        "run 1 --db a.db --html a.html",
        "list --db a.db list --db b.db extra",
        "convert a.xls",
    };
    for (const char* arguments : cases) {
        const ProgramRun run(arguments);
        EXPECT_EQ(run.exitCode, 2) << arguments;
        EXPECT_EQ(run.output, "") << arguments;
        EXPECT_THAT(run.errors, HasSubstr("--help")) << arguments;
    }
}

TEST(CommandLine, HelpExplainsEveryCommandAndOption)
{
    struct Case {
        const char* arguments;
        std::vector<const char*> named;
    };
    const Case cases[] = {
        {"--help", {"demo", "list", "run", "check", "--db", "退出码"}},
        {"demo --help", {"FILE", "--overwrite"}},
        {"list --help", {"--db"}},
        {"run --help", {"ID", "--db", "--pdf", "--csv"}},
        {"check -h", {"--db"}},
        {"convert --help",
         {"IN", "OUT", "--recalculate", "(.ss7 .xls .xlsx .csv)", "(还有 .html", "、.csv、.html"}},
    };
    for (const Case& c : cases) {
        const ProgramRun run(c.arguments);
        EXPECT_EQ(run.exitCode, 0) << c.arguments;
        EXPECT_EQ(run.errors, "") << c.arguments;
        for (const char* name : c.named)
            EXPECT_THAT(run.output, HasSubstr(name)) << c.arguments;
    }
}

TEST(CommandLine, FunctionsArePrintedWithArgumentsAndHelp)
{
    const ProgramRun run("functions");
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.errors, "");
    EXPECT_THAT(run.output, HasSubstr("| `VLOOKUP(查找值,数据表,列序号,[近似匹配])` | "));
    EXPECT_EQ(ProgramRun("functions extra").exitCode, 2);
}
