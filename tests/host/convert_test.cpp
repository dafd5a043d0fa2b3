#include "tests/host/ProgramRun.h"

#include <gmock/gmock.h>

using ::testing::HasSubstr;

namespace {

void put(const std::string& file, const std::string& content)
{
    std::ofstream(file, std::ios::binary) << content;
}

} // namespace

TEST(Convert, GoesThroughEveryFormatAndBack)
{
    const TestFolder folder;
    put(folder.file("a.csv"), "科目;金额\n库存现金;1234.5\n");
    const char* const steps[] = {"a.csv", "b.xls", "c.xlsx", "d.ss7", "e.csv"};
    for (std::size_t i = 1; i < std::size(steps); ++i) {
        const ProgramRun run("convert " + folder.file(steps[i - 1]) + " " + folder.file(steps[i]) +
                             (i == 2 ? " --recalculate" : ""));
        EXPECT_EQ(run.exitCode, 0) << run.errors;
        EXPECT_EQ(run.output, folder.file(steps[i]) + "\n");
    }
    EXPECT_EQ(contentOf(folder.file("e.csv")), "\xEF\xBB\xBF科目,金额\r\n库存现金,1234.5\r\n");
    EXPECT_EQ(ProgramRun("convert " + folder.file("d.ss7") + " " + folder.file("f.html")).exitCode, 0);
    EXPECT_THAT(contentOf(folder.file("f.html")), HasSubstr("库存现金</td>"));
}

TEST(Convert, RefusalsNameTheReasonAndKeepTheFormerFile)
{
    const TestFolder folder;
    put(folder.file("page.xls"), "<html></html>");
    put(folder.file("good.csv"), "1,2");
    put(folder.file("out.xls"), "从前");
    const struct {
        std::string arguments, reason;
    } cases[] = {
        {folder.file("page.xls") + " " + folder.file("out.xls"), "网页"},
        {folder.file("none.xls") + " " + folder.file("out.xls"), "none.xls"},
        {folder.file("good.csv") + " " + folder.file("out.doc"), "扩展名"},
        {folder.file("good.csv") + " /nowhere/out.xls", "文件夹不存在"},
    };
    for (const auto& c : cases) {
        const ProgramRun run("convert " + c.arguments);
        EXPECT_EQ(run.exitCode, 1) << c.arguments;
        EXPECT_THAT(run.errors, HasSubstr(c.reason));
    }
    EXPECT_EQ(contentOf(folder.file("out.xls")), "从前");
    EXPECT_EQ(folder.content(), "good.csv out.xls page.xls");
}
