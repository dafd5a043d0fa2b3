#include "demo/ledger/demo_ledger.h"

#include "demo/ledger/ledger_writer.h"
#include "demo/ledger/TradingCompany.h"
#include "failures/failure_text.h"
#include "platform/database/Connection.h"
#include "platform/database/sqlite/sqlite_provider.h"
#include "platform/database/sqlite/SqliteDatabase.h"

#include <algorithm>
#include <fcntl.h>
#include <filesystem>
#include <unistd.h>

namespace selfreport {

namespace {

constexpr int years = 2;

void refuseBroken(const std::vector<std::string>& broken)
{
    if (broken.empty())
        return;
    std::string reason = "演示账套不平:";
    for (const std::string& identity : broken)
        reason += " " + identity + ";";
    throw DatabaseError(unspecifiedError, reason);
}

/// The content must be on the disk before the name points to it.
void flushFile(const std::string& file)
{
    const int descriptor = ::open(file.c_str(), O_RDONLY);
    const bool flushed = descriptor >= 0 && ::fsync(descriptor) == 0;
    if (descriptor >= 0)
        ::close(descriptor);
    if (!flushed)
        throw DatabaseError(unspecifiedError, "数据库文件 " + file + ": 无法写入");
}

/// Removes the file at the end of its scope unless it got its final name.
class UnfinishedFile {
public:
    explicit UnfinishedFile(std::string file)
        : m_file(std::move(file))
    {
        remove();
    }
    ~UnfinishedFile() { remove(); }
    UnfinishedFile(const UnfinishedFile&) = delete;
    UnfinishedFile& operator=(const UnfinishedFile&) = delete;

    const std::string& name() const { return m_file; }

    void rename(const std::string& finished)
    {
        std::error_code error;
        std::filesystem::rename(m_file, finished, error);
        if (error)
            throw DatabaseError(unspecifiedError,
                                "数据库文件 " + finished + ": " + failures::reasonOfErrno(error.value()));
    }

private:
    void remove() const
    {
        std::error_code error;
        std::filesystem::remove(m_file, error);
        std::filesystem::remove(m_file + "-journal", error);
    }
    std::string m_file;
};

} // namespace

DemoLedgerOptions DemoLedgerOptions::ofBalanceRows(std::int64_t rows)
{
    DemoLedgerOptions options;
    const auto share = [&](std::int64_t perThousand, int least) {
        const std::int64_t lines = rows / (years * demo::periodsPerYear) + 1;
        return std::max(least, static_cast<int>(lines * perThousand / 1000));
    };
    options.departments = share(3, options.departments);
    options.customers = share(105, options.customers);
    options.suppliers = share(105, options.suppliers);
    options.goods = share(110, options.goods);
    options.salesPerPeriod = share(50, options.salesPerPeriod);
    return options;
}

void writeDemoLedger(Connection& connection, const DemoLedgerOptions& options)
{
    if (std::min({options.customers, options.suppliers, options.goods, options.salesPerPeriod}) < 1 ||
        options.departments < 8)
        throw DatabaseError(unspecifiedError, "演示账套至少要有八个部门, 一个客户、供应商、商品和一笔销售");
    demo::DemoRandom random(options.seed);
    const demo::DemoItems items =
        demo::makeDemoItems(random, options.departments, options.customers, options.suppliers, options.goods);
    demo::LedgerBook book;
    demo::TradingCompany company(book, items, random, options.salesPerPeriod);
    company.openBooks();
    for (int period = 0; period < years * demo::periodsPerYear; ++period)
        company.keepPeriod(period);
    Transaction transaction(connection);
    demo::writeBasicData(connection, book, items);
    demo::writeVouchers(connection, company.vouchers(), options.firstYear);
    demo::writeBalances(connection, book, options.firstYear, years);
    refuseBroken(checkDemoLedger(connection));
    transaction.commit();
}

void createDemoLedger(const std::string& file, const DemoLedgerOptions& options)
{
    UnfinishedFile unfinished(file + ".new");
    createDatabase(unfinished.name());
    writeDemoLedger(*openConnection(fileConnectionString(unfinished.name())), options);
    closeIdleSessions();
    flushFile(unfinished.name());
    unfinished.rename(file);
}

} // namespace selfreport
