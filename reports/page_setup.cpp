#include "reports/page_setup.h"

#include "platform/database/session/Recordset.h"
#include "platform/services/SettingsStore.h"
#include "reports/placeholders.h"
#include "spreadsheet/cells/SheetSettings.h"
#include "spreadsheet/workbook/Workbook.h"

#include <algorithm>
#include <cmath>
#include <string_view>

namespace selfreport {

namespace {

double marginOf(const Recordset& rows, std::string_view column)
{
    return rows.isNull(0, column) ? StoredPageSetup::defaultMargin : rows.number(0, column);
}

int twips(double inches)
{
    constexpr double mostInches = 100; // more fits no paper
    return static_cast<int>(std::lround(std::clamp(inches, 0.0, mostInches) * spreadsheet::twipsPerInch));
}

} // namespace

StoredPageSetup pageSetupOf(const Recordset& rows)
{
    if (rows.isEmpty())
        return {};
    return {rows.text(0, "fHeader"),
            rows.text(0, "fFooter"),
            marginOf(rows, "fTop"),
            marginOf(rows, "fBottom"),
            marginOf(rows, "fLeft"),
            marginOf(rows, "fRight"),
            rows.isNull(0, "fDirection") ? 1 : rows.integer(0, "fDirection")};
}

void applyPageSetup(spreadsheet::Workbook& workbook, const StoredPageSetup& setup)
{
    const std::string header = placeholdersFilled(setup.header, settingsStore());
    const std::string footer = placeholdersFilled(setup.footer, settingsStore());
    for (int index = 1; index <= workbook.sheetCount(); ++index)
        workbook.sheet(index).changeSettings([&](spreadsheet::SheetSettings& settings) {
            spreadsheet::PrintSettings& print = settings.print;
            print.marginTop = twips(setup.top);
            print.marginBottom = twips(setup.bottom);
            print.marginLeft = twips(setup.left);
            print.marginRight = twips(setup.right);
            print.landscape = setup.direction != 1;
            print.header = header;
            print.footer = footer;
        });
}

} // namespace selfreport
