#include "tests/host/ProgramRun.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <sstream>

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

/// Each says in Chinese what is wrong, and of which option.
TEST(CommandLine, ReasonsNameTheOption)
{
    const struct {
        const char *arguments, *reason;
    } cases[] = {
        {"run 1 --db ''", "缺少 --db"},
        {"run 1 --db a.db --csv ''", "--csv: 没有给出文件名"}, // of a script whose variable was never set
        {"run 1 --db a.db --pdf ''", "--pdf: 没有给出文件名"},
        {"run 1 --db a.db --pfd a.pdf --zzz=1 -x", "不认识: --pfd a.pdf --zzz=1 -x\n"},
        {"run 1 'a b' c --db a.db", "不认识: a b c\n"},
        {"--nonsense", "不认识: --nonsense\n"},
        {"run 1 --db a.db --archive", "--archive 要和 --pdf 一起用"},
        {"run '' --db a.db", "ID: 应为 1 到 2147483647 的整数"},
        {"run 0x1 --db a.db", "不是 \"0x1\""},
        {"run 1.0 --db a.db", "不是 \"1.0\""},
        {"run 2147483648 --db a.db", "不是 \"2147483648\""},
        {"prove --year 0 --db a.db", "--year: 应为 1 到 9999 的整数"},
        {"explain 1 A1 --depth 10 --db a.db", "--depth: 应为 1 到 9 的整数, 不是 \"10\""},
    };
    for (const auto& [arguments, reason] : cases) {
        const ProgramRun run(arguments);
        EXPECT_EQ(run.exitCode, 2) << arguments;
        EXPECT_THAT(run.errors, HasSubstr(reason)) << arguments;
    }
}

TEST(CommandLine, TheDatabaseMayStandBeforeTheCommandAndNumbersAreDecimal)
{
    const TestFolder folder;
    const std::string database = folder.file("demo.db");
    ASSERT_EQ(ProgramRun("demo " + database).exitCode, 0);
    const ProgramRun behind("run 2 --db " + database), before("--db " + database + " run 002");
    EXPECT_EQ(before.exitCode, 0) << before.errors;
    EXPECT_EQ(before.output, behind.output);
    EXPECT_THAT(ProgramRun("run 010 --db " + database).errors, HasSubstr("编号为10的"));
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

/// Where the second column of a help row begins, counted as a terminal shows it; 0 if none begins.
std::size_t secondColumn(const std::string& line)
{
    const std::size_t gap = line.starts_with("  ") ? line.find("  ", 2) : std::string::npos;
    if (gap == std::string::npos || line[2] == ' ')
        return 0;
    const auto wide = std::ranges::count_if(line.substr(0, gap), [](char c) { return (c & 0xC0) == 0xC0; });
    const auto following =
        std::ranges::count_if(line.substr(0, gap), [](char c) { return (c & 0xC0) == 0x80; });
    return line.find_first_not_of(' ', gap) + wide - following;
}

TEST(CommandLine, HelpStandsInColumns)
{
    for (const std::string command : {"", "demo", "list", "run", "check", "convert", "functions"}) {
        std::istringstream help(ProgramRun(command + " --help").output);
        std::vector<std::size_t> columns; // of the section
        bool isSection = false;
        for (std::string line; std::getline(help, line);) {
            if (line.empty() || line.ends_with(":")) {
                isSection = line == "命令:" || line == "选项:" || line == "参数:";
                columns.clear();
            } else if (isSection) {
                columns.push_back(secondColumn(line));
                EXPECT_GT(columns.back(), 0) << command << ": " << line;
                EXPECT_EQ(columns.back(), columns.front()) << command << ": " << line;
            }
        }
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
