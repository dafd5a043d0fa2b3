#include "windows/designer/referred_report.h"

#include "fetch/inter_report_fetch.h"
#include "platform/services/Dialogs.h"
#include "reports/report_list.h"
#include "reports/ReportContext.h"
#include "spreadsheet/view/SpreadsheetControl.h"
#include "windows/designer/frmEditor.h"

#include <QPointer>

namespace selfreport {

namespace {

void goTo(spreadsheet::SpreadsheetControl& grid, const spreadsheet::CallPlace& place)
{
    grid.cells().setActiveSheet(place.sheet);
    grid.cursor().moveTo({place.column, place.row});
}

/// The window below may end, and take this one along.
struct Shown {
    QPointer<frmEditor> window;
    ~Shown() { delete window.data(); }
};

} // namespace

void showReferredReport(const ReportContext& from, const std::string& name, const frmDrill::PlaceIn& place,
                        QWidget* parent)
{
    const auto tells = [title = from.title](Icon icon, std::string_view text) {
        dialogs().message(icon, title, text);
    };
    ReportContext context(from.database.connectionString, tells);
    context.title = from.title;
    context.user = from.user;
    context.folder = from.folder;
    const auto id = context.database.read<std::optional<std::int32_t>>(
        Icon::exclamation, [name](Connection& connection) { return reportOfName(connection, name); });
    if (!id) // which the user knows
        return;
    if (!*id)
        return context.database.tell(Icon::exclamation, missingReport(name).reason + "。");
    context.report.id = **id;
    context.report.editFlag = 1;
    context.report.isRun = true;
    const Shown shown{new frmEditor(context, parent)};
    spreadsheet::SpreadsheetControl& grid = shown.window->fps1();
    if (const auto cell = place(grid.cells().workbook()))
        goTo(grid, *cell);
    shown.window->exec();
}

} // namespace selfreport
