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
