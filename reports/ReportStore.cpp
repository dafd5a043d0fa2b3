#include "reports/ReportStore.h"

#include "access/DatabaseAccess.h"
#include "failures/failure_text.h"
#include "reports/commit_outcome.h"
#include "reports/report_list.h"
#include "reports/report_statements.h"
#include "spreadsheet/files/content/content.h"
#include "spreadsheet/files/content/content_frame.h"

#include <chrono>
#include <memory>
#include <mutex>
#include <random>
#include <thread>
#include <utility>
#include <vector>

namespace selfreport {

// Two users may save at the same moment, and a user may stop waiting for either. An attempt therefore works
// on copies of its own and can be left behind; one that met another session is made again after a pause that
// differs from the other's; and what a commit wrote is noted where the waiting side can still read it.

namespace {

/// Two writers that met must not meet again.
void pauseAfterMeeting(int attempt)
{
    thread_local std::minstd_rand random{std::random_device()()};
    std::uniform_int_distribution<int> milliseconds(1, 10 * attempt);
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds(random)));
}

/// What one attempt works on and what it found.
struct Saving {
    RememberedReport stored;
    std::optional<SaveConflict> conflict;
};

/// What a commit writes, for those who no longer wait for it. Safe on both threads.
class WrittenReport {
public:
    void keep(const RememberedReport& saved)
    {
        const std::lock_guard lock(m_mutex);
        m_saved = saved;
    }
    void rememberAsUncertain(RememberedReport& remembered) const
    {
        const std::lock_guard lock(m_mutex);
        if (!m_saved)
            return;
        remembered.id = m_saved->id;
        remembered.uncertain = m_saved->version;
    }

private:
    mutable std::mutex m_mutex;
    std::optional<RememberedReport> m_saved;
};

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
    } catch (const DatabaseNotOpened&) {
        throw;
    } catch (const ReportNotSaved&) {
        throw;
    } catch (const RepeatableError& error) {
        if (mayRepeat)
            return true;
        throw ReportNotSaved("其他用户正在保存报表, 报表没有保存。请稍后再试。\n" + error.description);
    } catch (const std::exception& error) {
        throw ReportNotSaved("报表没有保存。\n" + failures::sentenceOf(error));
    }
}

Recordset readRow(DatabaseAccess& database, std::int32_t id)
{
    try {
        return database.asked<Recordset>([statement = reportStatement(id)](Connection& open) {
            return open.query(statement, BinaryColumns::fetched);
        });
    } catch (const WorkCancelled&) {
        throw ReportError("操作已取消，报表没有读出。");
    }
}

} // namespace

ReportStore::ReportStore(DatabaseAccess& database, std::string user)
    : m_database(database)
    , m_user(std::move(user))
{
}

/// Again as long as other sessions are in its way.
std::optional<SaveConflict> ReportStore::save(const std::string& name, const spreadsheet::Workbook& workbook,
                                              RememberedReport& remembered, const Write& write)
{
    constexpr int mostAttempts = 20;
    std::vector<std::byte> content;
    std::optional<SaveConflict> conflict;
    for (int number = 1;; ++number) {
        const auto once = [&] {
            if (number == 1)
                content = spreadsheet::saveContent(workbook);
            conflict = attempt(number, {name, m_user, content}, remembered, write);
        };
        if (!metAnother(once, number < mostAttempts))
            return conflict;
    }
}

/// The work may be left behind: it has a report and a memory of its own.
std::optional<SaveConflict> ReportStore::attempt(int number, const ReportToSave& report,
                                                 RememberedReport& remembered, const Write& write)
{
    const auto written = std::make_shared<WrittenReport>();
    const auto work = [number, written, write, name = report.name, user = report.savedBy, stored = remembered,
                       content =
                           std::vector(report.content.begin(), report.content.end())](Connection& open) {
        if (number > 1)
            pauseAfterMeeting(number - 1);
        Saving saving{stored, {}};
        saving.conflict =
            write(open, saving.stored,
                  {name, user, content, [written](const RememberedReport& saved) { written->keep(saved); }});
        return saving;
    };
    try {
        Saving saving = m_database.changed<Saving>(work);
        remembered = std::move(saving.stored);
        return std::move(saving.conflict);
    } catch (const OutcomeUnknown&) {
        written->rememberAsUncertain(remembered);
        throw;
    } catch (const ChangeLeftBehind& left) {
        written->rememberAsUncertain(remembered);
        throw OutcomeUnknown(left.number, left.description);
    } catch (const WorkCancelled&) {
        throw ReportNotSaved("操作已取消，报表没有保存。");
    }
}

void ReportStore::insert(const std::string& name, const spreadsheet::Workbook& workbook,
                         RememberedReport& remembered, const std::optional<StoredPageSetup>& pageSetup)
{
    save(name, workbook, remembered,
         [pageSetup](Connection& connection, RememberedReport& stored, const ReportToSave& report) {
             storeReport(connection, stored, report, pageSetup);
             return std::optional<SaveConflict>();
         });
}

std::string ReportStore::load(std::int32_t id, spreadsheet::Workbook& workbook, RememberedReport& remembered)
{
    remembered = {id, {}, {}};
    const Recordset rows = readRow(m_database, id);
    if (rows.isEmpty())
        throw ReportMissing();
    const std::span<const std::byte> content = rows.binary(0, "fFileContent");
    remembered = {id, versionOf(rows, content.size()), pageSetupOf(rows)};
    remembered.isOfLaterProgram = spreadsheet::isOfLaterVersion(content);
    remembered.unreadable = spreadsheet::loadContent(workbook, content);
    applyPageSetup(workbook, remembered.pageSetup);
    return rows.text(0, "fname");
}

std::optional<SaveConflict> ReportStore::replace(const std::string& name,
                                                 const spreadsheet::Workbook& workbook,
                                                 RememberedReport& remembered)
{
    return save(name, workbook, remembered, replaceReport);
}

std::optional<SaveConflict> ReportStore::restore(const std::string& name,
                                                 const spreadsheet::Workbook& workbook,
                                                 RememberedReport& remembered)
{
    return save(name, workbook, remembered, restoreReport);
}

bool ReportStore::hasName(const std::string& name)
{
    return m_database.asked<bool>([name](Connection& open) { return reportOfName(open, name).has_value(); });
}

void ReportStore::remove(std::int32_t id)
{
    try {
        m_database.changed<bool>([id](Connection& open) {
            removeReport(open, id);
            return true;
        });
    } catch (const CommitFailed&) {
        throw; // tells the outcome itself
    } catch (const OpeningFailed&) {
        throw;
    } catch (const DatabaseNotOpened&) {
        throw;
    } catch (const ChangeLeftBehind& left) {
        throw OutcomeUnknown(left.number, "操作已取消，数据库没有答复，无法确定报表是否已删除。");
    } catch (const WorkCancelled&) {
        throw ReportNotDeleted("操作已取消，报表没有删除。");
    } catch (const std::exception& error) {
        throw ReportNotDeleted("报表没有删除。\n" + failures::sentenceOf(error));
    }
}

} // namespace selfreport
