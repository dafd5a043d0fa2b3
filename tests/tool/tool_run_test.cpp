#include "tool/tool_api.h"

#include "fetch/CallState.h"
#include "spreadsheet/files/content/content.h"
#include "spreadsheet/workbook/Workbook.h"
#include "tests/fetch/TestLedger.h"
#include "tests/own_files.h"
#include "tests/platform/WindowTest.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iterator>
#include <QProcess>
#include <sstream>

namespace selfreport {
namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;

std::string contentOf(const std::filesystem::path& file)
{
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

std::string textOf(const std::filesystem::path& pdf)
{
    QProcess process;
    process.start("pdftotext", {"-layout", QString::fromStdString(pdf.string()), "-"});
    process.waitForFinished();
    return process.readAllStandardOutput().toStdString();
}

/// One run of the operation, its outputs kept.
struct Ran {
    Ran(const test::TestLedger& ledger, const ReportFiles& files)
        : exitCode(toolRun(ledger.connectionString(), 4, files, {output, notes}))
    {
    }
    std::ostringstream output, notes;
    int exitCode;
};

TEST(ReportRun, NamesOfSeveralLinesTakeOne)
{
    const test::TestLedger ledger;
    spreadsheet::Workbook report;
    report.sheet(1).setText({1, 1}, "99\n98");
    spreadsheet::demand(report.sheet(1).setFormula({1, 2}, R"(Acct(A1 ,"2" , "", "2025","1","2"))"));
    ledger.addReport(4, "应收\r\n\t表", spreadsheet::saveContent(report));
    ledger.run("insert into tblUser(fUserId,fUserName) values(77,'王\n芳')");
    ledger.run("update tblCWSelfReport set fBillerId=77");
    std::ostringstream output, notes, parts, why;
    EXPECT_EQ(toolList(ledger.connectionString(), {output, notes}), 0);
    EXPECT_THAT(output.str(), AllOf(HasSubstr("4\t应收   表\t王 芳\t"), EndsWith("\n")));
    EXPECT_EQ(std::ranges::count(output.str(), '\n'), 1) << output.str();
    EXPECT_THAT(Ran(ledger, {}).notes.str(), HasSubstr("取数诊断: Sheet1!A2 Acct: 科目“99 98”不存在\n"));
    EXPECT_EQ(toolExplain(ledger.connectionString(), 4, "A2", 1, false, {parts, why}), 1);
    EXPECT_THAT(parts.str(), AllOf(HasSubstr("报表\t应收   表\n"), HasSubstr("\n99 98\t")));
    EXPECT_THAT(why.str(), EndsWith("科目“99 98”不存在\n"));
}

/// The fetch that fails is the second: what came before it was good.
TEST(ReportRun, AFailedFetchLeavesFilesAndOutputUnlessAllowed)
{
    const test::TestLedger ledger;
    spreadsheet::Workbook report;
    spreadsheet::demand(report.sheet(1).setFormula({1, 1}, R"(Acct("1001" ,"2" , "", "2025","1","2"))"));
    spreadsheet::demand(
        report.sheet(1).setFormula({1, 2}, R"(Acct("1122|客户|001" ,"2" , "", "2025","1","2"))"));
    spreadsheet::demand(report.sheet(1).setFormula({1, 3}, R"(Acct("9999" ,"2" , "", "2025","1","2"))"));
    ledger.addReport(4, "应收表", spreadsheet::saveContent(report));
    const std::filesystem::path csv = test::ownFile("run.csv");
    const std::string file = csv.string();

    EXPECT_EQ(Ran(ledger, {"", file}).exitCode, 0); // an account that there is not is no failure
    const std::string good = contentOf(csv);
    EXPECT_THAT(good, HasSubstr("100.25"));

    ledger.run("drop table tblItemClass");
    for (const ReportFiles& files : {ReportFiles{"", file}, ReportFiles{}}) {
        const Ran ran(ledger, files);
        EXPECT_EQ(ran.exitCode, 1);
        EXPECT_EQ(ran.output.str(), "");
        EXPECT_THAT(ran.notes.str(),
                    AllOf(HasSubstr("取数失败: Sheet1!A2 Acct"), HasSubstr("取数诊断: Sheet1!A3"),
                          HasSubstr("失败: 1 处取数失败，数字不可用")));
        EXPECT_EQ(contentOf(csv), good);
    }

    const Ran allowed(ledger, {"", file, true});
    EXPECT_EQ(allowed.exitCode, 0) << allowed.notes.str();
    EXPECT_THAT(allowed.notes.str(), HasSubstr("注意: 1 处取数失败，数字不可用"));
    EXPECT_THAT(contentOf(csv), AllOf(HasSubstr("100.25"), EndsWith("\r\n\r\n1 处取数失败，数字不可用\r\n")));
    EXPECT_EQ(Ran(ledger, {"", "", true}).output.str(), contentOf(csv));
    std::filesystem::remove(csv);
}

/// With an application of the test's own: the run would make the program its owner for all tests behind it.
using RunOnPaper = test::WindowTest;

/// Nobody can be asked whether a strict sheet may go out without its data.
TEST_F(RunOnPaper, AStrictSheetSaysWhatItLacks)
{
    const test::TestLedger ledger;
    const std::filesystem::path pdf = test::ownFile("strict.pdf");
    for (const bool isStrict : {false, true}) {
        spreadsheet::Workbook report;
        spreadsheet::demand(report.sheet(1).setFormula({1, 1}, R"(Acct("1001","2","","2025","1","2"))"));
        spreadsheet::demand(report.sheet(1).setFormula({1, 2}, R"(Acct("9999","2","","2025","1","2")+7)"));
        report.sheet(1).changeSettings(
            [&](spreadsheet::SheetSettings& settings) { settings.print.strict = isStrict; });
        ledger.addReport(isStrict ? 4 : 5, "应收表", spreadsheet::saveContent(report));
        std::ostringstream output, notes;
        ASSERT_EQ(toolRun(ledger.connectionString(), isStrict ? 4 : 5, {pdf.string(), ""}, {output, notes}),
                  0)
            << notes.str();
        const std::string text = textOf(pdf);
        EXPECT_EQ(text.find("※ 未取到数据 1 处") != std::string::npos, isStrict) << text;
        EXPECT_EQ(text.find("※7") != std::string::npos, isStrict) << text;
        EXPECT_THAT(text, HasSubstr("7"));
    }
    std::filesystem::remove(pdf);
}

/// The call that lacks its account stands in another report, behind a total that is read.
TEST_F(RunOnPaper, AStrictSheetSaysWhatReportsThatItReadsLack)
{
    const test::TestLedger ledger;
    spreadsheet::Workbook below, report;
    spreadsheet::demand(below.sheet(1).setFormula({1, 1}, R"(Acct("9999","2","","2025","1","2"))"));
    spreadsheet::demand(below.sheet(1).setFormula({1, 2}, "A1+7"));
    ledger.addReport(5, "底表", spreadsheet::saveContent(below));
    spreadsheet::demand(report.sheet(1).setFormula({1, 1}, R"(REF_F("底表","A2",""))"));
    report.sheet(1).changeSettings(
        [](spreadsheet::SheetSettings& settings) { settings.print.strict = true; });
    ledger.addReport(4, "汇总", spreadsheet::saveContent(report));
    const std::filesystem::path pdf = test::ownFile("reads.pdf");
    const Ran ran(ledger, {pdf.string(), ""});
    EXPECT_EQ(ran.exitCode, 0) << ran.notes.str();
    EXPECT_THAT(textOf(pdf), HasSubstr("※ 未取到数据 1 处"));
    std::filesystem::remove(pdf);
}

TEST_F(RunOnPaper, ShowsKindsOfNothingAsTheSheetSays)
{
    const test::TestLedger ledger;
    spreadsheet::Workbook report;
    spreadsheet::demand(report.sheet(1).setFormula({1, 1}, R"(Acct("9999","2","","2025","1","2"))"));
    report.sheet(1).changeSettings([](spreadsheet::SheetSettings& settings) {
        settings.nothingTexts[static_cast<int>(CallState::missing)] = "无此科目";
    });
    ledger.addReport(4, "应收表", spreadsheet::saveContent(report));
    const std::filesystem::path pdf = test::ownFile("kinds.pdf");
    EXPECT_EQ(Ran(ledger, {pdf.string(), ""}).exitCode, 0);
    EXPECT_THAT(textOf(pdf), HasSubstr("无此科目"));
    std::filesystem::remove(pdf);
}

} // namespace
} // namespace selfreport
