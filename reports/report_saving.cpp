#include "reports/report_saving.h"

#include "platform/database/Connection.h"
#include "reports/commit_outcome.h"
#include "reports/report_list.h"
#include "reports/report_statements.h"
#include "reports/report_texts.h"

#include <algorithm>
#include <chrono>
#include <limits>
#include <stdexcept>
#include <string_view>
#include <thread>

namespace selfreport {

// A row is only replaced if it is still the one that was loaded, and row and menu item change together or not
// at all. Whether a commit was done can be unknown when the connection goes; then the content is compared
// with what stands there before anything is stored a second time.

namespace {

/// Makes those who store new reports wait for each other. Without a row, or when whoever held it has put
/// another in its place, they wait by a name, and then for a row that has come. The embedded database knows
/// no locks of names; there nobody writes beside a transaction.
void queueForNewReport(Connection& connection)
{
    if (connection.execute(queueForNewReportStatement) > 0)
        return;
    ProcedureCall lock{"sp_getapplock", {}};
    lock.append("Resource", 255, "selfreport: new report")
        .append("LockMode", 32, "Exclusive")
        .append("LockOwner", 32, "Transaction");
    connection.call(lock);
    connection.execute(queueForNewReportStatement);
}

/// The number behind the highest one.
std::int64_t nextNumber(Connection& connection, std::string_view statement, std::int64_t step)
{
    const Recordset rows = connection.query(statement);
    const std::int64_t number = rows.isEmpty() ? step : rows.integer(0, "noid1") + step;
    if (number > std::numeric_limits<std::int32_t>::max())
        throw DatabaseError(unspecifiedError, "编号已经用尽。");
    return number;
}

/// The time of a save. Columns of times count in 300ths of a second: whole hundredths come back as they went.
SqlDateTime momentOfSave()
{
    constexpr int hundredth = 10'000'000; // nanoseconds
    SqlDateTime now = localNow();
    now.nanosecond -= now.nanosecond % hundredth;
    return now;
}

/// … which tells it from the one before.
SqlDateTime momentAfter(const std::string& savedAt)
{
    SqlDateTime now = momentOfSave();
    while (dateTimeText(now) == savedAt) {
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
        now = momentOfSave();
    }
    return now;
}

void insertRow(Connection& connection, std::int64_t id, const ReportToSave& report, const SqlDateTime& moment,
               const std::optional<StoredPageSetup>& setup)
{
    std::vector<SqlValue> values{id, report.name, moment, std::int64_t{1}, report.savedBy, report.content};
    if (setup)
        values.insert(values.end(), {setup->header, setup->footer, setup->top, setup->bottom, setup->left,
                                     setup->right, setup->direction});
    connection.execute(setup ? insertReportWithPageSetupStatement : insertReportStatement, values);
}

void insertMenuItem(Connection& connection, std::int64_t id, const std::string& name)
{
    const std::int64_t item = nextNumber(connection, lastMenuItemStatement, 10);
    connection.execute(insertMenuItemStatement(item, id, name));
    if (connection.query(countMenuItemStatement(item)).integer(0, "fcount") != 1)
        throw RepeatableError(unspecifiedError, "菜单项的编号已被占用。");
}

/// The host's table may lack a key that would have refused it.
void requireToBeAlone(Connection& connection, std::int64_t id)
{
    if (connection.query(countReportStatement(id)).integer(0, "fcount") != 1)
        throw RepeatableError(unspecifiedError, "报表的编号已被占用。");
}

bool holdsReport(Connection& connection, std::int64_t id, const ReportToSave& report)
{
    const Recordset rows = connection.query(reportStatement(id), BinaryColumns::fetched);
    for (std::size_t row = 0; row < rows.rowCount(); ++row)
        if (rows.text(row, "fname") == report.name &&
            std::ranges::equal(rows.binary(row, "fFileContent"), report.content))
            return true;
    return false;
}

/// Ends a save. The row's version is read while nobody else can change it.
void finish(Connection& connection, Transaction& transaction, RememberedReport& remembered,
            const ReportToSave& report, std::int64_t id, const StoredPageSetup& setup)
{
    requireToBeAlone(connection, id);
    const RememberedReport saved{static_cast<std::int32_t>(id),
                                 versionOf(connection.query(reportVersionStatement(id))), setup};
    if (report.beforeCommit)
        report.beforeCommit(saved);
    try {
        commitOrFindOut(transaction, [&](Connection& fresh) { return holdsReport(fresh, id, report); });
    } catch (const OutcomeUnknown&) {
        remembered.id = saved.id;
        remembered.uncertain = saved.version;
        throw;
    }
    remembered = saved;
}

std::string userName(Connection& connection, const std::string& user)
{
    try {
        const Recordset rows = connection.query(userNameStatement, {user});
        if (!rows.isEmpty() && !rows.text(0, "fusername").empty())
            return rows.text(0, "fusername");
    } catch (const ConnectionLost&) {
        throw;
    } catch (const DatabaseError&) {
        // Who may not read the table of users is told the id.
    }
    return user;
}

/// What stands under the remembered id, and whether that is in the way.
struct Found {
    std::optional<ReportVersion> version;
    std::optional<SaveConflict> conflict{};
};

/// Waits for a transaction that is changing the row, and lets no other one change it.
Found lookUnderLock(Connection& connection, const RememberedReport& remembered)
{
    connection.execute(lockReportStatement(remembered.id));
    const Recordset rows = connection.query(reportVersionStatement(remembered.id));
    const std::optional<ReportVersion> found = versionOf(rows);
    if (!found)
        return {found, SaveConflict{SaveConflict::Kind::deleted}};
    const bool isOwn = found == remembered.version || found == remembered.uncertain;
    if (isOwn && rows.rowCount() == 1)
        return {found};
    const bool isOther = isOwn || (remembered.version && remembered.version->name != found->name);
    return {found,
            SaveConflict{isOther ? SaveConflict::Kind::otherReport : SaveConflict::Kind::savedMeanwhile,
                         found, userName(connection, found->savedBy)}};
}

/// Before anything is sent.
void requireFit(Connection& connection, const ReportToSave& report)
{
    if (const std::string problem = reportRefusal(connection, report.name, report.savedBy); !problem.empty())
        throw std::runtime_error(problem);
}

} // namespace

void storeReport(Connection& connection, RememberedReport& remembered, const ReportToSave& report,
                 const std::optional<StoredPageSetup>& pageSetup)
{
    requireFit(connection, report);
    Transaction transaction(connection);
    queueForNewReport(connection);
    const std::int64_t id = nextNumber(connection, lastReportIdStatement, 1);
    insertRow(connection, id, report, momentOfSave(), pageSetup);
    insertMenuItem(connection, id, report.name);
    finish(connection, transaction, remembered, report, id, pageSetup.value_or(StoredPageSetup()));
}

std::optional<SaveConflict> replaceReport(Connection& connection, RememberedReport& remembered,
                                          const ReportToSave& report)
{
    requireFit(connection, report);
    Transaction transaction(connection);
    Found found = lookUnderLock(connection, remembered);
    if (found.conflict)
        return std::move(found.conflict);
    const std::int32_t id = remembered.id;
    const StoredPageSetup kept = pageSetupOf(connection.query(pageSetupStatement(id)));
    connection.execute(deleteReportStatement(id));
    insertRow(connection, id, report, momentAfter(found.version->savedAt), kept);
    finish(connection, transaction, remembered, report, id, kept);
    return std::nullopt;
}

std::optional<SaveConflict> restoreReport(Connection& connection, RememberedReport& remembered,
                                          const ReportToSave& report)
{
    requireFit(connection, report);
    Transaction transaction(connection);
    queueForNewReport(connection);
    Found found = lookUnderLock(connection, remembered);
    if (found.version && !found.conflict) // it is back as it was
        return SaveConflict{SaveConflict::Kind::savedMeanwhile, found.version,
                            userName(connection, found.version->savedBy)};
    if (found.conflict->kind != SaveConflict::Kind::deleted)
        return std::move(found.conflict);
    const std::int32_t id = remembered.id;
    const StoredPageSetup setup = remembered.pageSetup;
    insertRow(connection, id, report, momentOfSave(), setup);
    if (connection.query(menuItemStatement(id)).isEmpty())
        insertMenuItem(connection, id, report.name);
    finish(connection, transaction, remembered, report, id, setup);
    return std::nullopt;
}

bool isRowOf(Connection& connection, const RememberedReport& remembered)
{
    const auto conflict = lookUnderLock(connection, remembered).conflict;
    return !conflict || conflict->kind != SaveConflict::Kind::otherReport;
}

void removeReport(Connection& connection, std::int32_t id)
{
    Transaction transaction(connection);
    const bool isThere = isReportStored(connection, id);
    connection.execute(deleteReportStatement(id));
    connection.execute(deleteMenuItemStatement(id));
    commitOrFindOut(transaction, [id](Connection& fresh) {
        return fresh.query(pageSetupStatement(id)).isEmpty() && fresh.query(menuItemStatement(id)).isEmpty();
    });
    if (!isThere)
        throw std::runtime_error("报表不存在!");
}

} // namespace selfreport
