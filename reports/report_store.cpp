#include "reports/report_store.h"

#include "failures/failure_text.h"
#include "reports/commit_outcome.h"
#include "reports/report_statements.h"
#include "spreadsheet/files/content.h"
#include "state/mdlMain.h"
#include "state/shared_state.h"

#include <chrono>
#include <functional>
#include <random>
#include <stdexcept>
#include <thread>
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
    } catch (const RepeatableError& error) {
        if (mayRepeat)
            return true;
        throw std::runtime_error("其他用户正在保存报表, 报表没有保存。请稍后再试。\n" + error.description);
    } catch (const std::exception& error) {
        throw std::runtime_error("报表没有保存。\n" + failures::sentenceOf(error));
    }
}

/// Runs `save` on the open connection, again as long as other sessions are in its way.
bool saved(const std::string& name, const spreadsheet::Workbook& workbook,
           const std::function<void(Connection&, const ReportToSave&)>& save)
{
    constexpr int mostAttempts = 20;
    for (int attempt = 1;; ++attempt) {
        bool again = false;
        const bool done = databaseProcedure(Icon::exclamation, [&](Connection& connection) {
            again = metAnother(
                [&] {
                    const std::vector<std::byte> content = spreadsheet::saveContent(workbook);
                    save(connection, {name, gLoginUserId, content});
                },
                attempt < mostAttempts);
        });
        if (!again)
            return done;
        pauseAfterMeeting(attempt);
    }
}

using Replacing = std::optional<SaveConflict>(Connection&, RememberedReport&, const ReportToSave&);

SaveOutcome outcomeOf(Replacing& replace, const std::string& name, const spreadsheet::Workbook& workbook,
                      RememberedReport& remembered)
{
    std::optional<SaveConflict> conflict;
    if (!saved(name, workbook, [&](Connection& connection, const ReportToSave& report) {
            conflict = replace(connection, remembered, report);
        }))
        return ReportNotSaved();
    if (conflict)
        return std::move(*conflict);
    gHeaderText = remembered.pageSetup.header;
    gFooterText = remembered.pageSetup.footer;
    return ReportSaved();
}

} // namespace

bool insertReport(const std::string& name, const spreadsheet::Workbook& workbook,
                  RememberedReport* remembered, const std::optional<StoredPageSetup>& pageSetup)
{
    return saved(name, workbook, [&](Connection& connection, const ReportToSave& report) {
        RememberedReport unwanted;
        RememberedReport& stored = remembered ? *remembered : unwanted;
        storeReport(connection, stored, report, pageSetup);
        gReportId = stored.id;
    });
}

bool loadReport(std::string& name, spreadsheet::Workbook& workbook, RememberedReport* remembered)
{
    gHeaderText.clear(); // those of the report before
    gFooterText.clear();
    if (remembered)
        *remembered = {gReportId, {}, {}};
    return databaseProcedure(Icon::exclamation, [&](Connection& connection) {
        const Recordset rows = connection.query(reportStatement(gReportId), BinaryColumns::fetched);
        if (rows.isEmpty())
            throw std::runtime_error("报表不存在!");
        const std::span<const std::byte> content = rows.binary(0, "fFileContent");
        const StoredPageSetup setup = pageSetupOf(rows);
        if (remembered)
            *remembered = {gReportId, versionOf(rows, content.size()), setup};
        spreadsheet::loadContent(workbook, content);
        name = rows.text(0, "fname");
        applyPageSetup(workbook, setup);
        gHeaderText = setup.header;
        gFooterText = setup.footer;
    });
}

SaveOutcome updateReport(const std::string& name, const spreadsheet::Workbook& workbook,
                         RememberedReport& remembered)
{
    return outcomeOf(replaceReport, name, workbook, remembered);
}

SaveOutcome recreateReport(const std::string& name, const spreadsheet::Workbook& workbook,
                           RememberedReport& remembered)
{
    return outcomeOf(restoreReport, name, workbook, remembered);
}

std::optional<bool> isReportName(const std::string& name)
{
    bool found = false;
    const bool known = databaseProcedure(Icon::exclamation, [&](Connection& connection) {
        found = !connection.query(reportOfNameStatement, {name}).isEmpty();
    });
    return known ? std::optional(found) : std::nullopt;
}

bool deleteInfo()
{
    return databaseProcedure(Icon::exclamation, [](Connection& connection) {
        try {
            removeReport(connection, gReportId);
        } catch (const CommitFailed&) {
            throw; // tells the outcome itself
        } catch (const std::exception& error) {
            throw std::runtime_error("报表没有删除。\n" + failures::sentenceOf(error));
        }
    });
}

} // namespace selfreport
