#include "state/report_procedures.h"

#include <functional>
#include <utility>

namespace selfreport {

namespace {

/// False after telling the user why it failed.
bool done(ReportContext& context, const std::function<void(ReportStore)>& work)
{
    return context.database.done(Icon::exclamation, [&] { work({context.database, context.user}); });
}

void keepTexts(OpenReport& report, const StoredPageSetup& setup)
{
    report.header = setup.header;
    report.footer = setup.footer;
}

SaveOutcome outcomeOf(ReportContext& context,
                      const std::function<std::optional<SaveConflict>(ReportStore)>& save,
                      const RememberedReport& remembered)
{
    std::optional<SaveConflict> conflict;
    if (!done(context, [&](ReportStore store) { conflict = save(std::move(store)); }))
        return ReportLeft();
    if (conflict)
        return std::move(*conflict);
    keepTexts(context.report, remembered.pageSetup);
    return ReportSaved();
}

} // namespace

bool insertReport(ReportContext& context, const std::string& name, const spreadsheet::Workbook& workbook,
                  RememberedReport* remembered, const std::optional<StoredPageSetup>& pageSetup)
{
    RememberedReport unwanted;
    RememberedReport& stored = remembered ? *remembered : unwanted;
    return done(context, [&](ReportStore store) {
        store.insert(name, workbook, stored, pageSetup);
        context.report.id = stored.id;
    });
}

bool loadReport(ReportContext& context, std::string& name, spreadsheet::Workbook& workbook,
                RememberedReport* remembered)
{
    keepTexts(context.report, {}); // not those of the report before
    RememberedReport unwanted;
    RememberedReport& read = remembered ? *remembered : unwanted;
    return done(context, [&](ReportStore store) {
        name = store.load(context.report.id, workbook, read);
        keepTexts(context.report, read.pageSetup);
    });
}

SaveOutcome updateReport(ReportContext& context, const std::string& name,
                         const spreadsheet::Workbook& workbook, RememberedReport& remembered)
{
    return outcomeOf(
        context, [&](ReportStore store) { return store.replace(name, workbook, remembered); }, remembered);
}

SaveOutcome recreateReport(ReportContext& context, const std::string& name,
                           const spreadsheet::Workbook& workbook, RememberedReport& remembered)
{
    return outcomeOf(
        context, [&](ReportStore store) { return store.restore(name, workbook, remembered); }, remembered);
}

std::optional<bool> isReportName(ReportContext& context, const std::string& name)
{
    bool found = false;
    const bool isKnown = done(context, [&](ReportStore store) { found = store.hasName(name); });
    return isKnown ? std::optional(found) : std::nullopt;
}

bool deleteInfo(ReportContext& context)
{
    return done(context, [&](ReportStore store) { store.remove(context.report.id); });
}

} // namespace selfreport
