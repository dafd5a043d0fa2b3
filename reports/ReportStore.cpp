#include "reports/ReportStore.h"

#include "access/DatabaseAccess.h"
#include "failures/failure_text.h"
#include "reports/commit_outcome.h"
#include "reports/report_statements.h"
#include "spreadsheet/files/content/content.h"

#include <chrono>
#include <random>
#include <thread>
#include <utility>
#include <vector>

namespace selfreport {

namespace {

/// Two writers that met must not meet again.
void pauseAfterMeeting(int attempt)
{
    static std::minstd_rand random{std::random_device()()};
    std::uniform_int_distribution<int> milliseconds(1, 10 * attempt);
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds(random)));
}

/// Makes one attempt. True if another session was in its way and it may be made again.
bool metAnother(const std::function<void()>& attempt, bool mayRepeat)
{
    try {
        attempt();
        return false;
    } catch (const CommitFailed&) {
        throw; // tells the outcome itself
    } catch (const OpeningFailed&) {
        throw;
    } catch (const RepeatableError& error) {
        if (mayRepeat)
            return true;
        throw ReportNotSaved("其他用户正在保存报表, 报表没有保存。请稍后再试。\n" + error.description);
    } catch (const std::exception& error) {
        throw ReportNotSaved("报表没有保存。\n" + failures::sentenceOf(error));
    }
}

} // namespace

ReportStore::ReportStore(DatabaseAccess& database, std::string user)
    : m_database(database)
    , m_user(std::move(user))
{
}

/// Again as long as other sessions are in its way.
void ReportStore::save(const std::string& name, const spreadsheet::Workbook& workbook,
                       const std::function<void(Connection&, const ReportToSave&)>& write)
{
    constexpr int mostAttempts = 20;
    for (int attempt = 1;; ++attempt) {
        {
            const OpenedDatabase opened(m_database);
            const auto once = [&] {
                const std::vector<std::byte> content = spreadsheet::saveContent(workbook);
                write(*opened, {name, m_user, content});
            };
            if (!metAnother(once, attempt < mostAttempts))
                return;
        }
        pauseAfterMeeting(attempt);
    }
}

void ReportStore::insert(const std::string& name, const spreadsheet::Workbook& workbook,
                         RememberedReport& remembered, const std::optional<StoredPageSetup>& pageSetup)
{
    save(name, workbook, [&](Connection& connection, const ReportToSave& report) {
        storeReport(connection, remembered, report, pageSetup);
    });
}

std::string ReportStore::load(std::int32_t id, spreadsheet::Workbook& workbook, RememberedReport& remembered)
{
    remembered = {id, {}, {}};
    const OpenedDatabase opened(m_database);
    const Recordset rows = opened->query(reportStatement(id), BinaryColumns::fetched);
    if (rows.isEmpty())
        throw ReportMissing();
    const std::span<const std::byte> content = rows.binary(0, "fFileContent");
    remembered = {id, versionOf(rows, content.size()), pageSetupOf(rows)};
    spreadsheet::loadContent(workbook, content);
    applyPageSetup(workbook, remembered.pageSetup);
    return rows.text(0, "fname");
}

std::optional<SaveConflict> ReportStore::replace(const std::string& name,
                                                 const spreadsheet::Workbook& workbook,
                                                 RememberedReport& remembered)
{
    std::optional<SaveConflict> conflict;
    save(name, workbook, [&](Connection& connection, const ReportToSave& report) {
        conflict = replaceReport(connection, remembered, report);
    });
    return conflict;
}

std::optional<SaveConflict> ReportStore::restore(const std::string& name,
                                                 const spreadsheet::Workbook& workbook,
                                                 RememberedReport& remembered)
{
    std::optional<SaveConflict> conflict;
    save(name, workbook, [&](Connection& connection, const ReportToSave& report) {
        conflict = restoreReport(connection, remembered, report);
    });
    return conflict;
}

bool ReportStore::hasName(const std::string& name)
{
    const OpenedDatabase opened(m_database);
    return !opened->query(reportOfNameStatement, {name}).isEmpty();
}

void ReportStore::remove(std::int32_t id)
{
    const OpenedDatabase opened(m_database);
    try {
        removeReport(*opened, id);
    } catch (const CommitFailed&) {
        throw; // tells the outcome itself
    } catch (const OpeningFailed&) {
        throw;
    } catch (const std::exception& error) {
        throw ReportNotDeleted("报表没有删除。\n" + failures::sentenceOf(error));
    }
}

} // namespace selfreport
