#include "reports/ReportStore.h"

#include "spreadsheet/workbook/Workbook.h"
#include "tests/fetch/TestLedger.h"

#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace selfreport {
namespace {

/// The sentence of what the work throws, which is an `Error`; "" if nothing is.
template <class Error>
std::string sentenceOf(const std::function<void()>& work)
{
    try {
        work();
    } catch (const Error& error) {
        return error.what();
    }
    return "";
}

TEST(ReportStore, ThrowsWhatFailedClosesAndTellsNobody)
{
    const test::TestLedger ledger;
    gConnString = "";
    DatabaseAccess database(ledger.connectionString());
    ReportStore store(database, "li");
    const spreadsheet::Workbook report;
    RememberedReport first, second;
    store.insert("表", report, first);
    EXPECT_EQ(ledger.query("select fbillerid from tblCWSelfReport").text(0, "fbillerid"), "li");
    ledger.database().refuse("insert", "tblCWSelfReport", "满了");
    ledger.database().refuse("delete", "tblCWSelfReport", "不行");

    spreadsheet::Workbook loaded;
    EXPECT_EQ(sentenceOf<ReportMissing>([&] { store.load(99, loaded, second); }), "报表不存在!");
    EXPECT_FALSE(database.connection);
    EXPECT_THAT(sentenceOf<ReportNotSaved>([&] { store.insert("二", report, second); }),
                testing::AllOf(testing::StartsWith("报表没有保存。\n"), testing::HasSubstr("满了")));
    EXPECT_FALSE(database.connection);
    EXPECT_THAT(sentenceOf<ReportNotDeleted>([&] { store.remove(first.id); }),
                testing::AllOf(testing::StartsWith("报表没有删除。\n"), testing::HasSubstr("不行")));
    EXPECT_FALSE(database.connection);
    database.connectionString = "Provider=SQLite;Data Source=/nowhere/x.db";
    EXPECT_EQ(sentenceOf<DatabaseNotOpened>([&] { store.hasName("表"); }), "数据库文件不存在或读取错误!");
    EXPECT_TRUE(ledger.boxes.said.empty());
}

} // namespace
} // namespace selfreport
