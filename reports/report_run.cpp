#include "reports/report_run.h"

#include "access/DatabaseAccess.h"
#include "failures/failure_text.h"
#include "fetch/ReportEvaluation.h"
#include "platform/database/dialect/connection_string.h"
#include "reports/ReportStore.h"

#include <exception>
#include <map>
#include <utility>

namespace selfreport {

namespace {

/// What the user calls the database; never the whole string, which may hold a password.
std::string databaseName(const std::string& connectionString)
{
    try {
        const ConnectionSettings settings = parseConnectionString(connectionString);
        const std::string& source = settings.value("Data Source");
        const std::string& catalogue = settings.value("Initial Catalog");
        return catalogue.empty() ? source : source + "/" + catalogue;
    } catch (const std::exception&) {
        return {};
    }
}

void load(ReportRun& run, std::int32_t id, DatabaseAccess& database)
{
    try {
        RememberedReport unwanted;
        run.name = ReportStore(database, {}).load(id, *run.workbook, unwanted);
    } catch (const ReportMissing&) {
        throw ReportRunError("没有编号为" + std::to_string(id) + "的报表");
    } catch (const std::exception& error) {
        throw ReportRunError("数据库“" + databaseName(database.connectionString) + "”中编号为" +
                             std::to_string(id) + "的报表无法载入：" + failures::sentenceOf(error));
    }
}

/// Sheets show kinds of nothing, or print none without a word.
bool tellsKinds(const spreadsheet::Workbook& workbook)
{
    for (int index = 1; index <= workbook.sheetCount(); ++index)
        if (const spreadsheet::SheetSettings& settings = workbook.sheet(index).settings();
            !settings.nothingTexts.empty() || settings.print.strict)
            return true;
    return false;
}

} // namespace

std::unique_ptr<Connection> provenConnection(const std::string& connectionString)
{
    try {
        return openConnection(connectionString);
    } catch (const std::exception& error) {
        throw ReportRunError("无法打开数据库“" + databaseName(connectionString) + "”：" +
                             failures::sentenceOf(error));
    }
}

std::vector<ListedReport> listReports(const std::string& connectionString)
{
    const std::unique_ptr<Connection> connection = provenConnection(connectionString);
    try {
        return storedReports(*connection);
    } catch (const std::exception& error) {
        throw ReportRunError("数据库“" + databaseName(connectionString) + "”读不出报表列表：" +
                             failures::sentenceOf(error));
    }
}

ReportRun runReport(const std::string& connectionString, std::int32_t id, const RunOptions& options)
{
    const auto tell = [&](std::string_view what) {
        if (options.progress)
            options.progress(what);
    };
    tell("打开数据库");
    provenConnection(connectionString);

    tell("载入报表");
    ReportRun run;
    run.workbook = std::make_unique<spreadsheet::Workbook>();
    DatabaseAccess database(connectionString,
                            [&run](Icon, std::string_view text) { run.messages.emplace_back(text); });
    load(run, id, database);

    tell("取数计算");
    std::map<spreadsheet::SheetCell, std::string> texts;
    {
        ReportEvaluation evaluation(*run.workbook, database);
        evaluation.addSelfFunction();
        evaluation.setFetchesShared(options.fetchesShared);
        evaluation.setKindsTold(options.kindsTold || tellsKinds(*run.workbook));
        evaluation.startRun();
        run.diagnostics = evaluation.diagnostics();
        texts = evaluation.textsInstead();
        if (options.computed)
            options.computed(run, evaluation.record(), database);
    }
    if (!texts.empty())
        run.workbook->setTextInstead(
            [texts = std::move(texts)](const spreadsheet::Sheet& sheet, spreadsheet::CellAddress cell) {
                const auto found = texts.find({sheet.id(), cell});
                return found == texts.end() ? std::nullopt : std::optional(found->second);
            });
    return run;
}

} // namespace selfreport
