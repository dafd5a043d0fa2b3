#include "state/report_procedures.h"

#include "state/shared_state.h"

#include <functional>
#include <utility>

namespace selfreport {

namespace {

ReportStore sharedStore()
{
    return {sharedContext.database, gLoginUserId};
}

/// False after telling the user why it failed.
bool done(const std::function<void(ReportStore)>& work)
{
    return sharedContext.database.done(Icon::exclamation, [&] { work(sharedStore()); });
}

void keepTexts(const StoredPageSetup& setup)
{
    gHeaderText = setup.header;
    gFooterText = setup.footer;
}

SaveOutcome outcomeOf(const std::function<std::optional<SaveConflict>(ReportStore)>& save,
                      const RememberedReport& remembered)
{
    std::optional<SaveConflict> conflict;
    if (!done([&](ReportStore store) { conflict = save(std::move(store)); }))
        return ReportLeft();
    if (conflict)
        return std::move(*conflict);
    keepTexts(remembered.pageSetup);
    return ReportSaved();
}

} // namespace

bool insertReport(const std::string& name, const spreadsheet::Workbook& workbook,
                  RememberedReport* remembered, const std::optional<StoredPageSetup>& pageSetup)
{
    RememberedReport unwanted;
    RememberedReport& stored = remembered ? *remembered : unwanted;
    return done([&](ReportStore store) {
        store.insert(name, workbook, stored, pageSetup);
        gReportId = stored.id;
    });
}

bool loadReport(std::string& name, spreadsheet::Workbook& workbook, RememberedReport* remembered)
{
    keepTexts({}); // not those of the report before
    RememberedReport unwanted;
    RememberedReport& read = remembered ? *remembered : unwanted;
    return done([&](ReportStore store) {
        name = store.load(gReportId, workbook, read);
        keepTexts(read.pageSetup);
    });
}

SaveOutcome updateReport(const std::string& name, const spreadsheet::Workbook& workbook,
                         RememberedReport& remembered)
{
    return outcomeOf([&](ReportStore store) { return store.replace(name, workbook, remembered); },
                     remembered);
}

SaveOutcome recreateReport(const std::string& name, const spreadsheet::Workbook& workbook,
                           RememberedReport& remembered)
{
    return outcomeOf([&](ReportStore store) { return store.restore(name, workbook, remembered); },
                     remembered);
}

std::optional<bool> isReportName(const std::string& name)
{
    bool found = false;
    const bool isKnown = done([&](ReportStore store) { found = store.hasName(name); });
    return isKnown ? std::optional(found) : std::nullopt;
}

bool deleteInfo()
{
    return done([](ReportStore store) { store.remove(gReportId); });
}

} // namespace selfreport
