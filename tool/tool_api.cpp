#include "tool/tool_api.h"
#include "component/application.h"
#include "component/clsSelfReport.h"
#include "component/host_call.h"
#include "demo/demo_check.h"
#include "demo/demo_reports.h"
#include "demo/ledger/demo_ledger.h"
#include "explain/drill_text.h"
#include "explain/explain_figure.h"
#include "explain/ledger_proof.h"
#include "explain/proof_text.h"
#include "platform/database/Connection.h"
#include "platform/database/sqlite/sqlite_provider.h"
#include "platform/services/FileDialog.h"
#include "platform/toolkit/QtSettings.h"
#include "reports/report_run.h"
#include "spreadsheet/files/FileFormats.h"
#include "spreadsheet/files/placing/PendingFile.h"
#include "spreadsheet/files/text/csv.h"
#include "spreadsheet/functions/function_reference.h"
#include "spreadsheet/print/pdf.h"
#include "text/amount_text.h"
#include "tool/frmHost.h"
#include "windows/printing/print_stamp.h"
#include "windows/printing/strict_printing.h"

#include <QDir>
#include <QStandardPaths>

#include <functional>
#include <ostream>
#include <span>

namespace selfreport {

// Each operation is a whole command: it takes texts, writes to the streams that it is given and hands back an
// exit code, and no exception or type of ours passes through. So the program stays a thin reader of command
// lines, and commands can be tested without a process. Files are opened for writing before the long work
// begins.

using spreadsheet::FileError;
using spreadsheet::PendingFile;
using spreadsheet::PendingFiles;

namespace {

/// Runs a command: exit code 0, or 1 after telling why.
int command(const ToolStreams& streams, const std::function<void()>& work) noexcept
{
    std::string reason = hostCall(work);
    if (reason.empty() && !streams.results.flush())
        reason = "无法写到标准输出";
    if (reason.empty())
        return 0;
    streams.notes << "失败: " << reason << std::endl;
    return 1;
}

/// A connection string as it stands; else the string for the embedded database in that file, by its whole
/// path: a design that a crash left is found again by the string, and each folder may have a demo.db.
std::string connectionString(const std::string& database)
{
    std::error_code unreadable;
    const bool isFile = std::filesystem::exists(database, unreadable) && !unreadable;
    if (!isFile && database.find('=') != std::string::npos)
        return database;
    const std::filesystem::path whole = std::filesystem::absolute(database, unreadable);
    return fileConnectionString(unreadable ? database : whole.string());
}

/// A file that is written if it is wanted.
PendingFile* pending(PendingFiles& files, const std::string& name)
{
    return name.empty() ? nullptr : &files.add(name);
}

std::string csvOf(const ReportRun& run)
{
    const std::string failed = failedFetchesText(run.diagnostics);
    return spreadsheet::workbookCsv(*run.workbook) + (failed.empty() ? failed : "\r\n" + failed + "\r\n");
}

/// Nobody is there to be asked, so paper of strict sheets says what it lacks.
std::vector<CellWithoutData> withheldCells(const ReportRun& run)
{
    std::vector<CellWithoutData> cells;
    for (const CellDiagnostic& each : run.diagnostics)
        if (const auto& [sheet, column, row] = each.place; isRefusedByStrictRuns(each.state))
            cells.push_back({sheet, {column, row}, each.reason});
    return withheldCells(*run.workbook, std::move(cells), true);
}

void writeReportPdf(const ReportRun& run, bool isArchive, PendingFile& file)
{
    startToolkit(Display::none);
    spreadsheet::PrintDocument document;
    document.title = QString::fromStdString(run.name);
    document.author = QString::fromStdString(operatorName({}));
    document.isArchive = isArchive;
    document.page.report = run.name;
    document.page.notice = failedFetchesText(run.diagnostics);
    const std::vector<CellWithoutData> withheld = withheldCells(run);
    if (!withheld.empty())
        document.page.notice += (document.page.notice.empty() ? "" : "  ") + withheldText(withheld);
    const NotedCells noted(*run.workbook, withheld);
    document.page.stamp = stampText(stampNow({}, {}, static_cast<int>(run.diagnostics.size())));
    const spreadsheet::Pdf pdf = spreadsheet::pdfOf(*run.workbook, document);
    file.write(std::as_bytes(std::span(pdf.bytes)));
}

void tellDiagnostics(const ReportRun& run, std::ostream& notes)
{
    std::string text; // standard error writes each piece by itself
    for (const std::string& message : run.messages)
        text += "提示: " + oneLine(message) + '\n';
    for (const CellDiagnostic& diagnostic : run.diagnostics) {
        const auto& [sheet, column, row] = diagnostic.place;
        text += (diagnostic.hasFailed() ? "取数失败: " : "取数诊断: ") + run.workbook->sheet(sheet).name() +
                '!' + spreadsheet::cellName({column, row}) + ' ' + diagnostic.function + ": " +
                oneLine(diagnostic.reason) + '\n';
    }
    notes << text;
}

/// A strict run found what must not be handed out.
struct StrictRefusal : ReportRunError {
    using ReportRunError::ReportRunError;
};

/// @throws ReportRunError if fetches failed, unless they may have; StrictRefusal
void requireFigures(const ReportRun& run, const ReportFiles& files, std::ostream& notes)
{
    const std::string failed = failedFetchesText(run.diagnostics);
    if (!failed.empty() && files.isStrict)
        throw ReportRunError(failed + "，没有写出");
    if (files.isStrict)
        if (const std::string refused = strictRefusalText(run.diagnostics); !refused.empty())
            throw StrictRefusal(refused + "，严格输出，没有写出");
    if (failed.empty())
        return;
    if (!files.allowFailed)
        throw ReportRunError(failed + "，没有写出；确实需要时用 --allow-failed");
    notes << "注意: " << failed << "，仍然写出\n";
}

/// Two decimals, right-aligned; the host's C locale has no say.
std::string amount(double value)
{
    constexpr std::size_t width = 20;
    const std::string text = amountText(value);
    return std::string(text.size() < width ? width - text.size() : 1, ' ') + text;
}

std::string allEndings()
{
    std::string endings;
    for (const ToolFormat& format : toolFormats())
        endings += (endings.empty() ? "" : " ") + format.ending;
    return endings;
}

void writeReport(const std::string& database, std::int32_t reportId, const ReportFiles& files,
                 const ToolStreams& streams)
{
    // Made first: what cannot be written is found before the long work.
    PendingFiles pendingFiles;
    PendingFile* const pdf = pending(pendingFiles, files.pdf);
    PendingFile* const csv = pending(pendingFiles, files.csv);
    QtSettings settings;
    const SettingsInUse settingsInUse(settings);
    const auto tell = [&](std::string_view what) { streams.notes << what << " …" << std::endl; };
    const ReportRun run =
        runReport(connectionString(database), reportId, {.kindsTold = files.isStrict, .progress = tell});
    tellDiagnostics(run, streams.notes);
    requireFigures(run, files, streams.notes);
    if (pdf)
        writeReportPdf(run, files.isArchive, *pdf);
    if (csv)
        csv->write(csvOf(run));
    pendingFiles.putInPlace();
    if (!pdf && !csv)
        streams.results << csvOf(run);
}

} // namespace

int toolDemo(const std::string& file, bool replaces, const ToolStreams& streams) noexcept
{
    return command(streams, [&] {
        if (!replaces && std::filesystem::exists(file))
            throw FileError("文件已存在: " + file);
        PendingFile database(file, spreadsheet::Replacing::anything);
        streams.notes << "生成演示账套 …" << std::endl;
        createDemoLedger(database.path().string());
        streams.notes << "生成演示报表 …" << std::endl;
        storeDemoReports(fileConnectionString(database.path().string()));
        closeIdleSessions();
        database.putInPlace(replaces);
        streams.results << file << '\n';
    });
}

int toolList(const std::string& database, const ToolStreams& streams) noexcept
{
    return command(streams, [&] {
        for (const ListedReport& report : listReports(connectionString(database)))
            streams.results << std::to_string(report.id) << '\t' << oneLine(report.name) << '\t'
                            << oneLine(report.savedBy) << '\t' << report.savedAt << '\n';
    });
}

int toolRun(const std::string& database, std::int32_t reportId, const ReportFiles& files,
            const ToolStreams& streams) noexcept
{
    constexpr int strictlyRefused = 4;
    bool isRefused = false;
    const int code = command(streams, [&] {
        try {
            writeReport(database, reportId, files, streams);
        } catch (const StrictRefusal&) {
            isRefused = true;
            throw;
        }
    });
    return isRefused ? strictlyRefused : code;
}

int toolCheck(const std::string& database, const ToolStreams& streams) noexcept
{
    return command(streams, [&] {
        int wrong = 0;
        for (const DemoFigure& figure : demoFigures(connectionString(database))) {
            streams.results << amount(figure.shown) << amount(figure.queried)
                            << (figure.agrees() ? "  一致    " : "  不一致  ") << figure.report << ' '
                            << figure.figure << '\n';
            wrong += figure.agrees() ? 0 : 1;
        }
        if (wrong > 0)
            throw ReportRunError(std::to_string(wrong) + " 个数据与另行查询的结果不一致");
    });
}

int toolProve(const std::string& database, int year, bool asJson, const ToolStreams& streams) noexcept
{
    return command(streams, [&] {
        const auto connection = provenConnection(connectionString(database));
        const LedgerProof proof = proveLedger(
            *connection, year, [&](std::string_view name) { streams.notes << name << " …" << std::endl; });
        streams.results << (asJson ? proofJson(proof) : proofText(proof));
        if (proof.faults() > 0)
            throw ReportRunError(proofSummary(proof));
    });
}

int toolExplain(const std::string& database, std::int32_t reportId, const std::string& cell, int depth,
                bool asJson, const ToolStreams& streams) noexcept
{
    return command(streams, [&] {
        QtSettings settings;
        const SettingsInUse settingsInUse(settings);
        const Explained explained =
            explainFigure(connectionString(database), reportId, cell, depth,
                          [&](std::string_view what) { streams.notes << what << " …" << std::endl; });
        streams.results << (asJson ? drillJson(explained.head, explained.root)
                                   : drillText(explained.head, explained.root));
        if (const std::string fault = oneLine(firstFault(explained.root)); !fault.empty())
            throw ReportRunError(fault);
    });
}

int toolWindow(const std::string& database, const ToolStreams& streams) noexcept
{
    return command(streams, [&] {
        startToolkit(Display::needed);
        FileDialogSettings settings;
        settings.title = "选择账套文件";
        settings.filter = "账套文件(*.db)|*.db";
        const auto chosen = database.empty() ? FileDialogInUse::current().chooseToOpen(settings) : database;
        if (!chosen)
            return;
        const QString folder = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
        QDir().mkpath(folder);
        clsSelfReport component;
        component.init(connectionString(*chosen), "财务报表", qEnvironmentVariable("USER").toStdString(),
                       folder.toStdString());
        frmHost({[&] { component.cwSelfReport(); }, [&](std::int32_t id) { component.cwSelfReportExe(id); }})
            .exec();
    });
}

std::vector<ToolFormat> toolFormats()
{
    std::vector<ToolFormat> formats;
    for (const spreadsheet::FileFormat& format : spreadsheet::fileFormats())
        formats.push_back({std::string(format.ending()), format.read != nullptr});
    return formats;
}

int toolConvert(const std::string& input, const std::string& output, bool recalculates,
                const ToolStreams& streams) noexcept
{
    return command(streams, [&] {
        const auto* const format = spreadsheet::fileFormatOfName(output);
        if (!format)
            throw FileError("无法从扩展名看出要写的格式 (" + allEndings() + "): " + output);
        spreadsheet::Workbook workbook;
        for (const std::string& warning : spreadsheet::loadWorkbook(workbook, input))
            streams.notes << "引入: " << warning << '\n';
        if (recalculates)
            workbook.recalculate();
        for (const std::string& warning : spreadsheet::saveWorkbook(workbook, output, *format))
            streams.notes << "引出: " << warning << '\n';
        streams.results << output << '\n';
    });
}

int toolFunctions(const ToolStreams& streams) noexcept
{
    return command(streams, [&] { streams.results << spreadsheet::functionReference(); });
}

} // namespace selfreport
