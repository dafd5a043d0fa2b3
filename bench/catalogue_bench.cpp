// Times the window that lists stored reports: 5,000 reports of 100 KB each in the embedded database.
#include "bench/bench_table.h"
#include "demo/ledger/demo_ledger.h"
#include "platform/database/sqlite/SqliteDatabase.h"
#include "platform/list_grid/ListGrid.h"
#include "state/shared_state.h"
#include "windows/list/frmSelfReportMain.h"

#include <filesystem>
#include <QApplication>
#include <unistd.h>

using namespace selfreport;

namespace {

constexpr int reportCount = 5000;
constexpr std::size_t contentBytes = 100'000;

void fill(Connection& connection)
{
    connection.execute("insert into tbluser(fuserid,fusername) values('wang','王会计')");
    std::vector<std::byte> content(contentBytes);
    Transaction transaction(connection);
    for (std::int64_t id = 1; id <= reportCount; ++id) {
        content[static_cast<std::size_t>(id)] = std::byte{1}; // no two alike
        connection.execute("insert into tblCWSelfReport(noid,fname,fdate,fisshow,fbillerid,fFileContent) "
                           "values(?,?,?,?,?,?)",
                           {id, "部门费用明细表 " + std::to_string(id), std::string("2026-03-05 08:05:09"),
                            std::int64_t{1}, std::string("wang"), std::span<const std::byte>(content)});
    }
    transaction.commit();
}

} // namespace

int main(int count, char** arguments)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(count, arguments);
    const std::filesystem::path file =
        std::filesystem::temp_directory_path() / ("catalogue_bench-" + std::to_string(::getpid()) + ".db");
    createDatabase(file.string());
    gConnString = "Provider=SQLite;Data Source=" + file.string();
    fill(*openConnection(gConnString));

    BenchTable table("report list");
    std::unique_ptr<frmSelfReportMain> window;
    const auto close = [&] { window.reset(); };
    const auto open = [&] {
        window = std::make_unique<frmSelfReportMain>(sharedContext, [] {});
        window->show();
        QCoreApplication::processEvents();
    };
    table.row("5,000 reports of 100 KB: open the window, first frame", bestSeconds(3, close, open), 0.3, "s");
    table.row("refill the list",
              bestSeconds(
                  3, [] {}, [&] { window->getReport(); }),
              0.3, "s");
    if (window->vsf1().rowCount() != reportCount + 1)
        return 1;
    window.reset();
    closeIdleSessions();
    std::filesystem::remove(file);
    return table.finish();
}
